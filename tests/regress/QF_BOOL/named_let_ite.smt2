; ARGS: -model
; Named terms, let with shadowing and parallel binding, Boolean ite.
; The first check is unsat only if the parallel binding were read
; sequentially (t would be q, contradicting (not s) with s = q).
(set-option :produce-assignments true)
(declare-fun p () Bool)
(declare-fun q () Bool)
(declare-fun r () Bool)
(assert (! (=> q p) :named imp))
; Bindings are parallel: t is the outer s, which is p.
(assert (let ((s p)) (let ((s q) (t s)) (and t (not s)))))
(assert (let ((s (ite r p q))) (let ((s (not s))) (or s r))))
(set-info :status sat)
(check-sat)
; The names stand for their terms in later assertions.
(assert (not imp))
(set-info :status unsat)
(check-sat)
(reset)
(declare-fun a () Bool)
(declare-fun b () Bool)
(assert (distinct a b))
(assert (= a (ite b false true)))
(set-info :status sat)
(check-sat)
(assert (= a b))
(set-info :status unsat)
(check-sat)
