; truth: sat
(set-logic QF_UF)
(declare-const a Bool)
(assert a)
(check-sat)
