; x lies in [1, 2] and f(x) differs from both f(1) and f(2): only the
; integers 1 and 2 are there, so one of the interface equalities must hold.
(set-logic QF_UFLIA)
(declare-fun f (Int) Int)
(declare-fun x () Int)
(assert (<= 1 x 2))
(assert (not (= (f x) (f 1))))
(assert (not (= (f x) (f 2))))
(set-info :status unsat)
(check-sat)
