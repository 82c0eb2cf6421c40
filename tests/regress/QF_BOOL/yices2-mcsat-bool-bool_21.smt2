; ARGS: -model
; From the shared benchmark set: QF_UF/yices2__mcsat-bool-bool_21.smt2
(set-logic QF_UF)
(set-info :smt-lib-version 2.0)
(declare-fun x () Bool)
(declare-fun y () Bool)
(assert (or x y))
(assert (or x (not y)))
(assert (or (not x) y))
(set-info :status sat)
(check-sat)
(exit)
