; An assert that fails leaves the script asking more than the solver holds:
; sat would be a guess, unsat still stands, and a pop past the failure
; gives back the right to answer sat.
(set-logic QF_LIA)
(declare-fun x () Int)
(push 1)
(assert (> x y))
(check-sat)
(assert (< x 0))
(assert (> x 0))
(check-sat)
(pop 1)
(check-sat)
(assert (> x (undefined 1)))
(check-sat)
(get-info :reason-unknown)
(reset-assertions)
(check-sat)
