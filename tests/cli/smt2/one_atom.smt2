(declare-fun a () Bool)
(assert a)
(check-sat)
