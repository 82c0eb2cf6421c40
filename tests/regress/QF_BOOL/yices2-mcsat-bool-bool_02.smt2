; ARGS: -model
; From the shared benchmark set: QF_UF/yices2__mcsat-bool-bool_02.smt2
(set-logic QF_UF)
(set-info :smt-lib-version 2.0)
(declare-fun x () Bool)
(declare-fun y () Bool)
(assert (=> x y))
(set-info :status sat)
(check-sat)
(exit)
