; ARGS: -allow_bool_function_args=true
; Once answered unsat at the last check: the atoms of a popped point had
; been told to EUF again at level 0 after a restart, and retracting them
; at level 1 cut a level out of EUF, which then kept a stale literal.
; Found by the randomised C API test.
(declare-sort U 0)
(declare-fun f (U) U)
(declare-fun g (Bool U) U)
(declare-fun p0 () Bool)
(declare-fun p1 () Bool)
(declare-fun a () U)
(declare-fun b () U)
(declare-fun c () U)
(assert (= (= (f a) (g (not (= c (f a))) b)) (not p0)))
(assert p1)
(set-info :status sat)
(check-sat-assuming ((not p0)))
(push 1)
(push 1)
(set-info :status sat)
(check-sat-assuming ((= (g p0 a) (g (and p1 (= b c)) a))))
(pop 1)
(set-info :status sat)
(check-sat)
(assert (not (= (f a) (g (not (= c (f a))) b))))
(set-info :status sat)
(check-sat)
