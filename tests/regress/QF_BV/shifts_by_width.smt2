; Shifts by the width or more give the fill: zero for bvshl and bvlshr,
; copies of the sign bit for bvashr; the amount is a variable.
(set-logic QF_BV)
(set-info :status unsat)
(declare-const x (_ BitVec 12))
(declare-const s (_ BitVec 12))
(assert (bvuge s #x00c))
(assert (or (not (= (bvshl x s) #x000))
            (not (= (bvlshr x s) #x000))
            (not (= (bvashr x s) (ite (bvslt x #x000) #xfff #x000)))))
(check-sat)
