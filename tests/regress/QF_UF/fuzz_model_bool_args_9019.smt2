; ARGS: -allow_bool_function_args=true
; get-model once answered "Invalid model": a Boolean argument whose
; variable went with a pop, while the application stayed from an older
; level, was never asked for again. Found by bench/fuzz.
; replay: bench/fuzz --logic QF_UF --incremental --replay 9019
(declare-sort U 0)
(declare-fun c0 () U)
(declare-fun c3 () U)
(declare-fun f5 (Bool) U)
(assert (= c0 (f5 (distinct (f5 true) c3))))
(push 2)
(set-info :status sat)
(check-sat)
(pop 1)
(set-info :status sat)
(check-sat)
