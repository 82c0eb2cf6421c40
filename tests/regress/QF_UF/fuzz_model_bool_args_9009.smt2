; ARGS: -allow_bool_function_args=true
; get-model once answered "Invalid model": a Boolean argument whose
; variable went with a pop, while the application stayed from an older
; level, was never asked for again. Found by bench/fuzz.
; replay: bench/fuzz --logic QF_UF --incremental --replay 9009
(declare-sort U 0)
(declare-sort V 0)
(declare-fun c0 () U)
(declare-fun c1 () U)
(declare-fun c2 () U)
(declare-fun c3 () V)
(declare-fun c4 () V)
(declare-fun f5 (V Bool) U)
(declare-fun b6 () Bool)
(assert (let ((_let0 (or (ite (= (f5 c3 (= (f5 c4 (= c4 c4)) (f5 c3 (= c2 c0)))) c0) (= c4 c3) b6) (xor (= (f5 c3 (distinct c4 c3)) (f5 c3 (= c1 c0))) (= c4 c3))))) (= c1 (f5 c4 (distinct (f5 c4 true) (f5 c4 false) (f5 c4 (= c1 c0)))))))
(push 1)
(set-info :status sat)
(check-sat-assuming ((not b6)))
(pop 1)
(set-info :status sat)
(check-sat-assuming (b6))
