; Over the reals x may lie strictly between 1 and 2.
(set-logic QF_UFLRA)
(declare-fun f (Real) Real)
(declare-fun x () Real)
(assert (<= 1.0 x 2.0))
(assert (not (= (f x) (f 1.0))))
(assert (not (= (f x) (f 2.0))))
(set-info :status sat)
(check-sat)
