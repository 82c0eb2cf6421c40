; ARGS: -allow_bool_function_args=true
; Lemmas on demand leave an extensionality witness read out of the model
; while its two arrays are equal; such a read must not count as proof that
; two other arrays differ either, or the model makes them equal.
(set-logic QF_AX)
(set-info :status sat)
(declare-fun a0 () (Array Bool Bool))
(declare-fun a1 () (Array Bool Bool))
(declare-fun a2 () (Array Bool Bool))
(declare-fun i3 () Bool)
(declare-fun i4 () Bool)
(declare-fun i6 () Bool)
(declare-fun b7 () Bool)
(declare-fun b8 () Bool)
(assert (xor true (distinct (store a0 false (select a2 b7)) a0 (store a1 false i6))))
(assert (=> (= (store a1 false i4) (store (store a1 false false) false false)) (distinct (store a1 (not b8) i6) (store (store a2 i3 b7) false (not i4)) (store (ite (= a1 a2) a2 a0) false (select a1 b8)))))
(check-sat)
