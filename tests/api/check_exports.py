#!/usr/bin/env python3
"""The shared library's dynamic symbols are exactly the functions that
the public headers declare with ZENLO_API: nothing missing (a declared
function nobody defined links only until someone calls it) and nothing
extra (a leaked internal symbol becomes a compatibility promise).

  check_exports.py LIBZENLO_SO HEADER...
"""
import re
import subprocess
import sys


def declared(headers):
    names = set()
    for path in headers:
        with open(path, encoding="utf-8") as f:
            text = f.read()
        for m in re.finditer(r"ZENLO_API\b[^;{]*?\b(zenlo_\w+)\s*\(", text):
            names.add(m.group(1))
        for m in re.finditer(r"ZENLO_API\s+extern\b[^;]*?\b(zenlo_\w+)\s*;",
                             text):
            names.add(m.group(1))
    return names


def exported(lib):
    out = subprocess.run(["nm", "-D", "--defined-only", lib],
                         capture_output=True, text=True, check=True).stdout
    return {line.split()[-1] for line in out.splitlines() if line.strip()}


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    want = declared(sys.argv[2:])
    have = exported(sys.argv[1])
    missing = sorted(want - have)
    extra = sorted(have - want)
    for name in missing:
        print("declared but not exported: " + name)
    for name in extra:
        print("exported but not declared: " + name)
    print("%d functions declared, %d symbols exported" % (len(want), len(have)))
    sys.exit(1 if missing or extra else 0)


if __name__ == "__main__":
    main()
