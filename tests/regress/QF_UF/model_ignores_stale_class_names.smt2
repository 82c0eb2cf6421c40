; ARGS: -allow_bool_function_args=true
; get-model once answered "Invalid model" at the second check: EUF named a
; class by an application left from the first check, whose argument no
; formula of the second answer valued. Found by the randomised C API test.
(declare-sort U 0)
(declare-fun f (U) U)
(declare-fun g (Bool U) U)
(declare-fun p1 () Bool)
(declare-fun a () U)
(declare-fun b () U)
(declare-fun c () U)
(set-info :status sat)
(check-sat-assuming ((= (f (f a)) (g (and p1 (= b c)) a)) true true true))
(set-info :status sat)
(check-sat-assuming ((not p1) true (= (g true c) (g false a)) true))
