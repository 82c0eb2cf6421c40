; ARGS: -model
; From the shared benchmark set: QF_UF/opensmt__base-QF_UF-test-tl-ite-sat.smt2
(set-logic QF_UF)
(declare-fun c () Bool)
(declare-fun b () Bool)
(declare-fun a () Bool)
(set-info :status sat)
(assert (ite c (and (ite (or b (not c)) a (not a)) (or (not c) b)) (and a c)))
(set-info :status sat)
(check-sat)
