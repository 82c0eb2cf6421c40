; ARGS: -model
; From the shared benchmark set: QF_UF/z3test__regressions-smt2-3959.smt2
(declare-const a Bool)
(set-info :status sat)
(check-sat-assuming (a (or true)))
