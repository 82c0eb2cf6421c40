; A predicate applied to a term-ite: preprocessing replaces the ite, so no
; solver meets (p (ite ...)) itself; its value must come from p's table at
; the ite's value, not from a class of its own.
(set-option :produce-models true)
(declare-sort U 0)
(declare-fun p (U) Bool)
(declare-fun f (U) U)
(declare-fun v () U)
(assert (xor (p (ite (p v) (f v) v)) (p (f v))))
(set-info :status sat)
(check-sat)
(get-model)
