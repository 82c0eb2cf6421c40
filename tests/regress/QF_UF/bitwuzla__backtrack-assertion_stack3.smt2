; ARGS: -model
; From the shared benchmark set: QF_UF/bitwuzla__backtrack-assertion_stack3.smt2 (statuses from z3)
(assert false)
(assert (distinct (_ bv0 32) (_ bv0 32)))
(push 1)
(set-info :status unsat)
(set-info :status unsat)
(check-sat)
(pop 1)
