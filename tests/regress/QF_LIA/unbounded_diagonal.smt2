(set-logic QF_LIA)
(set-info :status sat)
; No bounds at all: the relaxation starts fractional, branching finds a
; point of 7x - 5y = 1 with x + y large.
(declare-fun x () Int)
(declare-fun y () Int)
(assert (= (- (* 7 x) (* 5 y)) 1))
(assert (> (+ x y) 37))
(check-sat)
