; |1| is a symbol, not the number 1: its declaration was refused and the
; assertions over it dropped, so this answered sat.
(set-logic QF_LIA)
(set-info :status unsat)
(declare-fun |1| () Int)
(declare-fun || () Int)
(assert (= |1| (+ || 2)))
(assert (= || 1))
(assert (< |1| 1))
(check-sat)
