"""Self-test of bench/fuzz: the generators are deterministic per seed, the
reducer shrinks planted failures, and a run against a zenlo with a planted
bug saves a reduced, replayable finding. Needs z3 only for the last part."""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
FUZZ = os.path.join(HERE, "fuzz")
sys.path.insert(0, HERE)

from zfuzz import reduce  # noqa: E402
from zfuzz.generators import DIMACS, LOGICS  # noqa: E402

CASE = """import sys
sys.path.insert(0, %r)
from zfuzz.cases import Case
for logic in %r:
    for inc in (False, True) if logic != "DIMACS" else (False,):
        for seed in range(5):
            print(Case(logic, seed, inc).text)
"""


class Generators(unittest.TestCase):
    def texts(self, hashseed):
        code = CASE % (HERE, list(LOGICS) + [DIMACS])
        env = dict(os.environ, PYTHONHASHSEED=str(hashseed))
        return subprocess.run([sys.executable, "-c", code], env=env,
                              capture_output=True, text=True,
                              check=True).stdout

    def test_same_seed_same_script_in_any_process(self):
        self.assertEqual(self.texts(1), self.texts(2))

    def test_seeds_and_modes_give_different_scripts(self):
        blocks = self.texts(0).split("\n\n")
        self.assertEqual(len(set(blocks)), len(blocks))
        self.assertIn("(push", self.texts(0))
        self.assertIn("(check-sat-assuming", self.texts(0))


class Reducer(unittest.TestCase):
    def test_script_keeps_only_what_the_failure_needs(self):
        noise = ["(declare-fun p%d () Bool)" % i for i in range(3, 20)]
        noise += ["(assert (or p%d p%d))" % (i, i + 1) for i in range(3, 19)]
        text = "\n".join(
            ["(set-logic QF_BOOL)", "(declare-fun p1 () Bool)",
             "(declare-fun p2 () Bool)"] + noise
            + ["(assert (and (or p3 p4) (not (xor p1 p2))))",
               "(check-sat)"]) + "\n"

        def fails(t):  # a valid script with an xor over p1 and p2
            declared = all("(declare-fun p%d () Bool)" % i in t
                           for i in range(1, 20) if "p%d " % i in t
                           or "p%d)" % i in t)
            return declared and "(xor p1 p2)" in t and "(check-sat)" in t
        small = reduce.reduce_script(text, fails)
        self.assertEqual(small.split("\n"), [
            "(declare-fun p1 () Bool)", "(declare-fun p2 () Bool)",
            "(assert (xor p1 p2))", "(check-sat)", ""])

    def test_cnf_down_to_the_two_literals_that_matter(self):
        clauses = [[i, -(i + 1), i + 2] for i in range(1, 40)]
        clauses[10].append(-33)
        small = reduce.reduce_cnf(
            45, clauses, lambda n, cs: any(-33 in c for c in cs)
            and any(7 in c for c in cs))
        self.assertEqual(sorted(small), [[-33], [7]])

    def test_budget_bounds_the_work(self):
        calls = []
        reduce.reduce_cnf(10, [[i, i + 1, i + 2] for i in range(1, 80)],
                          lambda n, cs: calls.append(1) or True, calls=5)
        self.assertEqual(len(calls), 5)


@unittest.skipUnless(shutil.which("z3"), "the end-to-end run needs z3")
class PlantedBug(unittest.TestCase):
    def test_finding_is_reduced_saved_with_statuses_and_replayable(self):
        out = tempfile.mkdtemp(prefix="fuzz_test")
        self.addCleanup(shutil.rmtree, out)
        zenlo = os.path.join(HERE, "testdata", "fake_xor_bug")
        base = [sys.executable, FUZZ, "--zenlo", zenlo, "--no-models",
                "--logic", "QF_BOOL", "-o", out]
        proc = subprocess.run(base + ["-n", "12", "--seed", "40",
                                      "--max-findings", "1"],
                              capture_output=True, text=True, timeout=300)
        self.assertEqual(proc.returncode, 1, proc.stdout + proc.stderr)
        self.assertRegex(proc.stdout, r"QF_BOOL +\d+ .* 1 ")
        found = [f for f in os.listdir(out) if ".orig." not in f]
        self.assertEqual(len(found), 1, found)
        seed = int(found[0].split("-")[-1].split(".")[0])
        with open(os.path.join(out, found[0])) as f:
            small = f.read()
        with open(os.path.join(out, found[0].replace(".smt2",
                                                     ".orig.smt2"))) as f:
            orig = f.read()
        self.assertIn("xor", small)
        # The reduced script's own status: z3's answer, which the bug flips.
        status = "sat" if "(set-info :status sat)" in small else "unsat"
        proc = subprocess.run(["z3", "-smt2", "-in"], input=small,
                              capture_output=True, text=True)
        self.assertEqual(proc.stdout.split()[0], status)
        self.assertIn("; replay: bench/fuzz --logic QF_BOOL --no-models "
                      "--replay %d" % seed, small)
        self.assertLess(small.count("(assert"), orig.count("(assert"))
        replay = subprocess.run(base + ["--replay", str(seed)],
                                capture_output=True, text=True, timeout=60)
        self.assertEqual(replay.returncode, 1)
        self.assertIn("verdict: answer", replay.stdout)

    def test_true_models_of_incremental_scripts_all_pass(self):
        # z3's own models in zenlo's form: the model check must accept
        # them under push/pop and assumptions, or it would cry wolf.
        zenlo = os.path.join(HERE, "testdata", "fake_z3_models")
        proc = subprocess.run(
            [sys.executable, FUZZ, "--zenlo", zenlo, "--logic", "QF_UF",
             "--incremental", "-n", "6", "--seed", "9", "--no-reduce",
             "-o", tempfile.gettempdir()],
            capture_output=True, text=True, timeout=300)
        self.assertEqual(proc.returncode, 0, proc.stdout + proc.stderr)
        row = proc.stdout.split("QF_UF ")[-1].split()
        self.assertGreater(int(row[4]), 10, proc.stdout)  # models checked


if __name__ == "__main__":
    unittest.main()
