; ARGS: -allow_bool_function_args=true
; Waits for a fix: get-model answers "Invalid model" for UFs with Boolean
; arguments that are formulas. Found by bench/fuzz.
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
