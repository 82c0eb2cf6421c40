; Arithmetic under uninterpreted functions needs theory combination, which
; the arithmetic solver does not do yet: unknown, never a wrong sat.
(set-logic QF_UFLRA)
(declare-fun f (Real) Real)
(declare-fun x () Real)
(declare-fun y () Real)
(assert (<= x y))
(assert (<= y x))
(push 1)
(assert (distinct (f x) (f y)))
(check-sat)
(pop 1)
(set-info :status sat)
(check-sat)
