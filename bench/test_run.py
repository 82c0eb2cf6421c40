"""Self-test of bench/run with the fake solvers of bench/testdata: no real
solver is needed, and the whole test takes a few seconds."""
import csv
import os
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
RUN = os.path.join(HERE, "run")
DATA = os.path.join(HERE, "testdata")
SMT, CNF = os.path.join(DATA, "smt"), os.path.join(DATA, "cnf")
sys.path.insert(0, HERE)

from zbench import inputs, judge, smt2_models  # noqa: E402


def fake(mode):
    return os.path.join(DATA, "fake_" + mode)


class Runner(unittest.TestCase):
    def setUp(self):
        self.tmp = tempfile.mkdtemp(prefix="bench_run_test")
        self.addCleanup(shutil.rmtree, self.tmp)

    def run_bench(self, zenlo, *args, peers=None):
        """Runs bench/run; returns (exit code, stdout, stderr, CSV rows)."""
        argv = [sys.executable, "-S", RUN, "--zenlo", fake(zenlo),
                "-o", self.tmp,
                "--no-plot", "-q", "-j", "2", "-t", "10"]
        if peers:
            argv += ["--solvers", ",".join(["zenlo"] + list(peers))]
            argv += ["--solver-path=%s=%s" % (p, fake(m))
                     for p, m in peers.items()]
        else:
            argv.append("--no-peers")
        env = dict(os.environ, ZENLO_FAKE_PYTHON=sys.executable)
        proc = subprocess.run(argv + list(args), capture_output=True,
                              text=True, env=env, timeout=60)
        path = os.path.join(self.tmp, "results.csv")
        rows = []
        if os.path.exists(path):
            with open(path, newline="") as f:
                rows = list(csv.DictReader(f))
        return proc.returncode, proc.stdout, proc.stderr, rows

    def status_of(self, rows, solver):
        return {os.path.basename(r["file"]): r["status"] for r in rows
                if r["solver"] == solver}


class Verdicts(Runner):
    def test_correct_solver_passes_and_csv_has_a_row_per_run(self):
        rc, out, err, rows = self.run_bench(
            "right", "--check-models", SMT, CNF,
            peers={"z3": "right", "cadical": "right"})
        self.assertEqual(rc, 0, out + err)
        self.assertNotIn("WRONG", out)
        self.assertEqual(list(rows[0]), ["file", "logic", "solver", "answers",
                                         "expected", "time", "status", "cpu",
                                         "mem_mb", "note"])
        got = {(os.path.basename(r["file"]), r["solver"]):
               (r["logic"], r["answers"], r["expected"], r["status"])
               for r in rows}
        self.assertEqual(got, {
            ("no_status.smt2", "zenlo"): ("QF_UF", "sat", "unknown", "ok"),
            ("no_status.smt2", "z3"): ("QF_UF", "sat", "unknown", "ok"),
            ("push_pop.smt2", "zenlo"): ("QF_UF", "sat;unsat", "sat;unsat",
                                         "ok"),
            ("push_pop.smt2", "z3"): ("QF_UF", "sat;unsat", "sat;unsat",
                                      "ok"),
            ("unsat.smt2", "zenlo"): ("QF_UF", "unsat", "unsat", "ok"),
            ("unsat.smt2", "z3"): ("QF_UF", "unsat", "unsat", "ok"),
            ("sat.cnf", "zenlo"): ("DIMACS", "sat", "sat", "ok"),
            ("sat.cnf", "cadical"): ("DIMACS", "sat", "sat", "ok"),
            ("unsat.cnf", "zenlo"): ("DIMACS", "unsat", "unsat", "ok"),
            ("unsat.cnf", "cadical"): ("DIMACS", "unsat", "unsat", "ok"),
        })
        self.assertRegex(out, r"\nzenlo +5 +5 +3 +3 +0 +0 +0 +0 +0 ")

    def test_wrong_answers_fail_the_run_and_are_listed_first(self):
        rc, out, err, rows = self.run_bench("wrong", SMT,
                                            peers={"z3": "right"})
        self.assertEqual(rc, 1)
        self.assertTrue(out.startswith("WRONG ANSWERS (4):"), out)
        self.assertLess(out.index("WRONG"), out.index("solver "))
        self.assertIn("push_pop.smt2  query 2: answered sat, expected unsat",
                      out)
        # No status in the file: contradicting a peer is enough.
        self.assertIn("no_status.smt2  answered unsat, but z3 answered sat",
                      out)
        self.assertEqual(set(self.status_of(rows, "zenlo").values()),
                         {"wrong"})

    def test_peer_contradicting_the_status_is_only_a_disagreement(self):
        rc, out, err, rows = self.run_bench(
            "right", SMT, "--filter", "push_pop|unsat", peers={"z3": "wrong"})
        self.assertEqual(rc, 0, out)
        self.assertNotIn("WRONG", out)
        self.assertIn("Peer disagreements (3", out)
        self.assertEqual(self.status_of(rows, "z3"),
                         {"push_pop.smt2": "disagree",
                          "unsat.smt2": "disagree"})

    def test_peer_that_reported_errors_is_no_evidence(self):
        # z3 answers even after dropping an assertion it could not parse.
        rc, out, err, rows = self.run_bench(
            "wrong", os.path.join(SMT, "no_status.smt2"),
            peers={"z3": "error"})
        self.assertEqual(rc, 0, out)
        self.assertEqual([(r["solver"], r["status"], r["note"]) for r in rows],
                         [("zenlo", "ok", ""),
                          ("z3", "ok", '(error "fake failure")')])

    def test_expected_answers_from_index_override_the_file(self):
        folder = os.path.join(self.tmp, "bench", "QF_UF")
        os.makedirs(folder)
        shutil.copy(os.path.join(SMT, "push_pop.smt2"), folder)
        with open(os.path.join(self.tmp, "bench", "index.tsv"), "w") as f:
            f.write("path\tlogic\texpected\tcheck_sats\tsource\n"
                    "QF_UF/push_pop.smt2\tQF_XY\tsat;sat\t2\there\n")
        rc, out, err, rows = self.run_bench("right", folder)
        self.assertEqual(rc, 1)
        self.assertIn("QF_UF/push_pop.smt2  query 2: answered unsat, "
                      "expected sat", out)
        self.assertEqual((rows[0]["logic"], rows[0]["expected"]),
                         ("QF_XY", "sat;sat"))


class Failures(Runner):
    def test_crash_garbage_and_error_lines_are_errors_not_solved(self):
        # zenlo's error lines count even with all answers given; a peer's
        # only when it leaves queries unanswered.
        rc, out, err, rows = self.run_bench(
            "error", SMT, peers={"z3": "crash", "cvc5": "garbage"})
        self.assertEqual(rc, 0, out)
        for solver in ("zenlo", "z3", "cvc5"):
            self.assertEqual(set(self.status_of(rows, solver).values()),
                             {"error"}, solver)
            self.assertRegex(out, r"\n%s +3 +0 +0 +0 " % solver)
        notes = {r["solver"]: r["note"] for r in rows}
        self.assertEqual(notes["zenlo"], '(error "fake failure")')
        self.assertEqual(notes["z3"], "killed by signal 11")
        self.assertTrue(notes["cvc5"].startswith("0 answers to 1 queries"))

    def test_timeout_is_enforced(self):
        start = time.monotonic()
        rc, out, err, rows = self.run_bench(
            "sleep", "-t", "1", os.path.join(SMT, "unsat.smt2"))
        self.assertLess(time.monotonic() - start, 8)
        self.assertEqual(rc, 0)
        self.assertEqual(rows[0]["status"], "timeout")
        self.assertLessEqual(float(rows[0]["time"]), 1.0)
        self.assertRegex(out, r"PAR-2.*\n.* 2\.0\n")

    def test_memory_limit_gives_memout(self):
        rc, out, err, rows = self.run_bench(
            "memhog", "-m", "300", os.path.join(CNF, "sat.cnf"))
        self.assertEqual(rows[0]["status"], "memout")

    def test_bad_dimacs_model_is_a_wrong_answer(self):
        rc, out, err, rows = self.run_bench("badmodel", "--check-models",
                                            CNF)
        self.assertEqual(rc, 1)
        self.assertTrue(out.startswith("WRONG ANSWERS (1):"), out)
        self.assertIn("sat.cnf  model: clause 1 (1 2 0) is false", out)
        rc, out, err, rows = self.run_bench("badmodel", CNF)
        self.assertEqual(rc, 0, "models are checked only on request")

    @unittest.skipUnless(shutil.which("z3"), "z3 checks SMT-LIB models")
    def test_smt_models_are_checked_by_z3_at_every_sat_answer(self):
        rc, out, err, rows = self.run_bench("right", "--check-models", SMT)
        self.assertEqual(rc, 0, out + err)
        self.assertNotIn("models:", out)
        rc, out, err, rows = self.run_bench("badmodel", "--check-models",
                                            SMT)
        self.assertEqual(rc, 1)
        self.assertIn("push_pop.smt2  model: query 1: an assertion is false",
                      out)
        self.assertIn("no_status.smt2  model: an assertion is false", out)

    def test_smt_models_not_given_yet_are_skipped_with_a_note(self):
        rc, out, err, rows = self.run_bench("error", "--check-models", SMT)
        self.assertNotIn("WRONG", out)
        self.assertIn("models: 2 runs with sat answers of zenlo's not "
                      "checked", out)

    def test_bad_usage_is_reported_not_run(self):
        cases = [(["--zenlo", "/nonexistent/zenlo", SMT], "zenlo not found"),
                 ([os.path.join(DATA, "missing.smt2")], "no such file"),
                 (["--peers", "nosuch", SMT], "unknown solver nosuch"),
                 (["--filter", "(", SMT], "bench/run:")]
        for args, message in cases:
            proc = subprocess.run([sys.executable, "-S", RUN, "-o", self.tmp,
                                   "--zenlo", fake("right")] + args,
                                  capture_output=True, text=True)
            self.assertEqual(proc.returncode, 2, args)
            self.assertIn(message, proc.stderr)


class Inputs(unittest.TestCase):
    def test_status_in_force_per_check_sat_ignoring_comments_and_strings(self):
        logic, expected, stack = inputs.scan_smt2(
            '; (check-sat) (set-logic WRONG)\n(set-logic QF_LIA)\n'
            '(check-sat)\n(set-info :status sat)\n(echo "(check-sat) ;")\n'
            '(check-sat-assuming (a))\n(declare-const |(check-sat)| Int)\n'
            '(set-info :status unsat)(check-sat)')
        self.assertEqual((logic, expected, stack),
                         ("QF_LIA", ["unknown", "sat", "unsat"], False))

    def test_dimacs_model_check(self):
        clauses = [[1, 2], [-1, 3]]
        self.assertIsNone(judge.check_dimacs_model(clauses, [1, 3]))
        self.assertIsNone(judge.check_dimacs_model(clauses, [-1, 2]))
        self.assertIn("clause 2", judge.check_dimacs_model(clauses, [1, 2]))
        self.assertIn("both true and false",
                      judge.check_dimacs_model(clauses, [1, -1, 3]))
        self.assertIn("without a model",
                      judge.check_dimacs_model(clauses, None))


SCOPED = """(declare-sort U 0)
(declare-fun a () U)
(declare-fun f (U Bool) U)
(declare-fun p () Bool)
(assert (distinct (f a p) (f a true)))
(check-sat)
(push 1)
(declare-const c U)
(assert (= c a))
(check-sat-assuming ((not p)))
(pop 1)
(check-sat)
"""
MODEL = """(model
  (define-fun a () U .u0)
  (define-fun p () Bool false)
  (define-fun f ((?X1 U) (?X2 Bool)) U (ite (and (= ?X1 .u0) (= ?X2 false))
    (as @v U) .u0))
%s)"""


@unittest.skipUnless(shutil.which("z3"), "z3 checks SMT-LIB models")
class SmtModels(unittest.TestCase):
    def problems(self, *models):
        out = "".join("sat\n%s\n" % m for m in models)
        return [(n, why.split("\n")[0])
                for n, why in smt2_models.check_output(SCOPED, out).problems]

    def test_models_that_hold_at_every_scope(self):
        c = "  (define-fun c () U .u0)\n"
        self.assertEqual(self.problems(MODEL % "", MODEL % c, MODEL % ""),
                         [])

    def test_missing_ill_sorted_and_false_models(self):
        good, c = MODEL % "", "  (define-fun c () U .u0)\n"
        self.assertEqual(self.problems(good, good, good),
                         [(2, "no value for c")])
        self.assertEqual(self.problems(
            good, MODEL.replace("U .u0)", "Bool true)", 1) % c, good),
            [(2, "value of a has sort Bool, declared U")])
        # Distinct abstract values are distinct elements.
        self.assertEqual(self.problems(good.replace("(as @v U)", ".u0"),
                                       MODEL % c, good),
                         [(1, "an assertion is false in the model")])
        # The assumption (not p) must hold too.
        self.assertEqual(self.problems(
            good, (MODEL % c).replace("Bool false", "Bool true"), good),
            [(2, "an assertion is false in the model")])

    def test_pairs_of_minus_model_pin_values_only(self):
        script = "(declare-fun x () Bool)(assert x)(check-sat)"
        self.assertEqual(smt2_models.check_output(
            script, "sat\n( (x true) )\n").problems, [])
        self.assertEqual(len(smt2_models.check_output(
            script, "sat\n( (x false) )\n").problems), 1)

    def test_division_by_zero_is_whatever_makes_the_model_hold(self):
        script = ("(set-logic QF_LIA)(declare-fun x () Int)"
                  "(assert (= (div x 0) 3))(assert ((_ divisible 3) x))"
                  "(check-sat)")
        model = "sat\n(model (define-fun x () Int %s))\n"
        self.assertEqual(
            smt2_models.check_output(script, model % "6").problems, [])
        self.assertEqual(
            len(smt2_models.check_output(script, model % "4").problems), 1)

    def test_a_refused_redeclaration_needs_no_value(self):
        script = ("(set-logic QF_UF)(define-fun m ((q Bool)) Bool q)"
                  "(declare-fun m (Bool) Bool)(declare-const x Bool)"
                  "(declare-fun x (Bool) Bool)(assert (m x))(check-sat)")
        model = "sat\n(model (define-fun x () Bool %s))\n"
        self.assertEqual(
            smt2_models.check_output(script, model % "true").problems, [])
        self.assertEqual(
            len(smt2_models.check_output(script, model % "false").problems),
            1)

    def test_missing_value_after_a_reported_error_is_not_wrong(self):
        script = ("(set-logic QF_UF)(declare-fun u (Bool) Bool)"
                  "(declare-const x Bool)(assert x)(check-sat)")
        model = "sat\n(model (define-fun x () Bool true))\n"
        self.assertEqual(len(smt2_models.check_output(
            script, model).problems), 1)
        self.assertEqual(smt2_models.check_output(
            script, '(error "refused (line: 1)")\n' + model).problems, [])

    def test_probed_sat_answer_needs_a_model_unless_not_supported(self):
        script = "(declare-fun x () Bool)(assert x)(check-sat)"
        r = smt2_models.check_output(
            script, 'sat\n(error "model not available")\n', probed=True)
        self.assertEqual(r.problems, [(1, 'get-model after sat answered '
                                          '(error "model not available")')])
        r = smt2_models.check_output(
            script, 'sat\nunsupported\n',
            probed=True)
        self.assertEqual((r.problems, r.checked), ([], 0))
        self.assertIn("unsupported", r.skipped)


if __name__ == "__main__":
    unittest.main()
