; Symbols whose names read as numbers keep their bars in the model.
(set-logic QF_LIA)
(set-info :status sat)
(declare-fun |1| () Int)
(declare-fun |-2| () Int)
(assert (= |1| 2))
(assert (= (+ |-2| 1) -1))
(assert (< 1 |1|))
(check-sat)
