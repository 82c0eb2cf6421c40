#!/usr/bin/env python3
"""Fails when an #include under src/ crosses the layering of the folders.

Each folder of src/ is a layer; a file may include its own folder, the
folders of lower layers, and those of its own layer (the engine, the
theories, preprocessing and proofs call each other). The public headers
of include/ are the C interface: only the layers that serve it, and the
front end that declares the exported debug switches, may include them.

Usage: check_includes.py SRC_DIR | --self-test
"""
import os
import re
import sys

LAYERS = [
    ["base"],
    ["terms"],
    ["dpll", "theory", "preprocess", "proof"],
    ["env"],
    ["opt", "existelim"],
    ["frontend"],
    ["api"],
    ["driver"],
]
PUBLIC_HEADERS = {"zenlo.h", "quorm.h"}
PUBLIC_FROM = {"frontend", "api", "driver"}

RANK = {folder: i for i, layer in enumerate(LAYERS) for folder in layer}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')


def check_file(path, folder):
    problems = []
    with open(path, encoding="utf-8", errors="replace") as f:
        for lineno, line in enumerate(f, 1):
            m = INCLUDE.match(line)
            if not m:
                continue
            target = m.group(1)
            if "/" not in target:
                if target in PUBLIC_HEADERS and folder not in PUBLIC_FROM:
                    problems.append((lineno, target, "public header"))
                continue
            top = target.split("/", 1)[0]
            if top not in RANK:
                problems.append((lineno, target, "unknown folder"))
            elif RANK[top] > RANK[folder]:
                problems.append((lineno, target, "points up"))
    return problems


def self_test():
    """A forbidden arrow of each kind is reported, allowed ones are not."""
    import tempfile
    cases = {
        "terms/a.h": ('#include "base/exception.h"\n', 0),
        "theory/b.cpp": ('#include "dpll/dpllsolver.h"\n', 0),
        "base/c.h": ('#include "terms/term.h"\n', 1),
        "env/d.cpp": ('#include "frontend/termprinter.h"\n', 1),
        "dpll/e.cpp": ('#include "zenlo.h"\n', 1),
        "api/f.cpp": ('#include "zenlo.h"\n#include "driver/x.h"\n', 1),
    }
    with tempfile.TemporaryDirectory() as d:
        for rel, (text, _) in cases.items():
            os.makedirs(os.path.join(d, os.path.dirname(rel)), exist_ok=True)
            with open(os.path.join(d, rel), "w") as f:
                f.write(text)
        for rel, (_, want) in cases.items():
            folder = rel.split("/", 1)[0]
            got = len(check_file(os.path.join(d, rel), folder))
            if got != want:
                print(f"self-test: {rel}: {got} problem(s), expected {want}")
                return 1
    print("self-test passed")
    return 0


def main():
    if sys.argv[1] == "--self-test":
        return self_test()
    src = sys.argv[1]
    bad = 0
    files = 0
    for root, _, names in os.walk(src):
        rel = os.path.relpath(root, src)
        if rel == ".":
            continue
        folder = rel.split(os.sep, 1)[0]
        for name in sorted(names):
            if not name.endswith((".h", ".cpp", ".c")):
                continue
            path = os.path.join(root, name)
            files += 1
            if folder not in RANK:
                print(f"{os.path.relpath(path, src)}: folder '{folder}' "
                      "has no layer")
                bad += 1
                continue
            for lineno, target, why in check_file(path, folder):
                print(f"{os.path.relpath(path, src)}:{lineno}: "
                      f'#include "{target}": {why} from {folder}/')
                bad += 1
    for name in sorted(os.listdir(src)):
        if os.path.isfile(os.path.join(src, name)) and \
                name.endswith((".h", ".cpp", ".c")):
            print(f"{name}: source file outside every layer")
            bad += 1
    print(f"{files} files checked, {bad} forbidden include(s)")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
