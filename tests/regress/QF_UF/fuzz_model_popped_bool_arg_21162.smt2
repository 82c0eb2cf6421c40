; ARGS: -allow_bool_function_args=true
; get-model once answered "Invalid model": after a pop, a term over a
; popped declaration came back at level 0, asked for as a Boolean argument
; by an application whose node was already gone. Found by bench/fuzz.
; replay: bench/fuzz --logic QF_UF --incremental --replay 21162
(declare-sort U 0)
(declare-fun c0 () U)
(declare-fun c1 () U)
(declare-fun c2 () U)
(declare-fun c3 () U)
(declare-fun c4 () U)
(declare-fun f5 (Bool U Bool) U)
(declare-fun q6 (U) Bool)
(declare-fun q7 (U U U) Bool)
(declare-fun b8 () Bool)
(assert (= c4 c3))
(assert (let ((_let0 (not (distinct (= (f5 (q6 c4) (f5 (= c0 c1) c1 (= c3 c0)) (= (f5 (= c2 c4) c4 (= c4 c4)) c4)) c1) (= c4 c1))))) _let0))
(push 2)
(declare-fun c9 () U)
(assert (distinct c1 c0 (f5 true c0 (= (f5 true c3 (= c9 c4)) c1)) c2))
(set-info :status sat)
(check-sat)
(pop 2)
(assert (or (distinct c2 (ite (= c0 (f5 (= c0 c0) c4 (= c1 c1))) c3 (ite (= c3 c0) c1 c3)) c1) false (= c1 (f5 true c4 false))))
(set-info :status sat)
(check-sat-assuming ((not b8)))
