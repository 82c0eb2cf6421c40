; `-2' is a symbol in SMT-LIB, which zenlo refuses to declare (the term
; store names numbers so). Reading later uses as the number -2 turned
; x = 3, x = -2 into unsat; they are refused as well now.
(set-logic QF_LIA)
(declare-fun x () Int)
(declare-fun -2 () Int)
(assert (= x 3))
(assert (= x -2))
(check-sat)
(assert (= x (- 2)))
(check-sat)
