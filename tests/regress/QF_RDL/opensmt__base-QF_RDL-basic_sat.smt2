; From the shared benchmark set: QF_RDL/opensmt__base-QF_RDL-basic_sat.smt2
(set-logic QF_RDL)
(declare-fun b () Real)
(set-info :status sat)
(assert (and (< 0 b) (< b 1)))
(check-sat)
(exit)
