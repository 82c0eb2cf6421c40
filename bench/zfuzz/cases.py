"""One generated input of bench/fuzz, made again at will from its logic,
seed and mode, and its reduction under a failure of the same kind."""
import random

from . import gen_cnf, reduce, scripts
from .generators import DIMACS, LOGICS


class Case:
    """One generated input: its text, the zenlo options it needs, how to
    judge it and how to reduce it."""

    def __init__(self, logic, seed, incremental):
        self.logic, self.seed = logic, seed
        rng = random.Random("%s:%d:%s" % (logic, seed, incremental))
        if logic == DIMACS:
            self.n, self.clauses = gen_cnf.generate(rng)
            self.text, self.args = gen_cnf.text(self.n, self.clauses), []
            self.suffix = ".cnf"
        else:
            theory = LOGICS[logic]
            cmds, sig = scripts.script(rng, theory, incremental)
            self.text = "\n".join(cmds) + "\n"
            self.args = theory.zenlo_args(sig)
            self.suffix = ".smt2"

    def reduced(self, orc, verdict, calls):
        want = verdict.signature()

        def same(text):
            v = orc.judge(text, self.args)
            return not v.invalid and v.kind and v.signature() == want
        if self.suffix == ".cnf":
            clauses = reduce.reduce_cnf(
                self.n, self.clauses,
                lambda n, cs: same(gen_cnf.text(n, cs)), calls)
            return gen_cnf.text(self.n, clauses)
        return reduce.reduce_script(self.text, same, calls)
