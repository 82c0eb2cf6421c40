; From the shared benchmark set: QF_RDL/cvc5__regress0-simple-rdl.smt2
(set-logic QF_RDL)
(set-info :status unsat)
(declare-fun x () Real)
(declare-fun y () Real)
(assert (not (=> (< (- x y) 0) (< x y))))
(check-sat)

