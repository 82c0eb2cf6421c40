(set-logic QF_UF)
(declare-fun p () Bool)
(assert p)
