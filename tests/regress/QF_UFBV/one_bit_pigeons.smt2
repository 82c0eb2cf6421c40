; Three values of a 1-bit sort under one function cannot all differ, and
; the function's images of equal arguments are equal: unsat needs the
; arguments' bits and congruence together.
(set-logic QF_UFBV)
(declare-fun f ((_ BitVec 1)) (_ BitVec 8))
(declare-const a (_ BitVec 1))
(declare-const b (_ BitVec 1))
(declare-const c (_ BitVec 1))
(assert (distinct (f a) (f b) (f c)))
(set-info :status unsat)
(check-sat)
