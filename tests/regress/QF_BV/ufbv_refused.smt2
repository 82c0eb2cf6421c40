; Bit-vector terms under uninterpreted functions need theory combination,
; which the bit-vector solver does not do yet: congruence would not see
; that x and y have equal bits, so the answer must be unknown, never sat.
(set-logic QF_UFBV)
(declare-const x (_ BitVec 4))
(declare-const y (_ BitVec 4))
(declare-fun p ((_ BitVec 4)) Bool)
(assert (= (bvadd x #x1) (bvadd y #x1)))
(assert (p x))
(assert (not (p y)))
(check-sat)
