; x + y = z makes x equal to z - y, and the input already holds that
; equation (in its normal form) at level 0: congruence must still hear it
; as an equation between the two arguments of f.
(set-logic QF_UFLIA)
(declare-fun f (Int) Int)
(declare-fun x () Int)
(declare-fun y () Int)
(declare-fun z () Int)
(assert (= (+ x y) z))
(assert (= (f x) (+ (f (- z y)) 1)))
(set-info :status unsat)
(check-sat)
