; Two integer equation refutations in a row: the second one must not carry
; the literals of the first, which were no longer true (the search then
; learnt clauses that did not follow).
(set-logic QF_LIA)
(set-info :status unsat)
(declare-fun i0 () Int)
(declare-fun i1 () Int)
(assert (= (+ 22 i1) (+ (* 7 i0) (ite (= (- 3) i1) i0 i1))))
(assert (<= 0 i0))
(assert (>= i1 (ite (<= i0 7) (- 3) 0)))
(check-sat)
