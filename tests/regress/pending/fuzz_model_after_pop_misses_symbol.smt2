; get-model after the pop (probed by the regression runner) leaves out q7,
; a symbol declared at level 0 that the live assertions do not mention.
; Found by bench/fuzz; waits for a fix.
; model: query 2: no value for q7
; replay: bench/fuzz --logic QF_UF --incremental --replay 5212
(declare-sort U 0)
(declare-sort V 0)
(declare-fun c0 () U)
(declare-fun c1 () U)
(declare-fun c2 () V)
(declare-fun c3 () V)
(declare-fun c4 () V)
(declare-fun f5 (V U) V)
(declare-fun f6 (U) V)
(declare-fun q7 (U V) Bool)
(declare-fun b8 () Bool)
(push 1)
(declare-fun c9 () V)
(assert (let ((_let0 (or (xor (= (f5 c3 c1) (f6 c1)) (= c0 c0)) b8 (not (q7 c1 c4)) (distinct (q7 c1 (f6 c0)) (= c0 c0))))) (or _let0 (q7 c1 (f5 c4 c0)))))
(push 1)
(assert (not (= c2 c9)))
(set-info :status sat)
(check-sat)
(pop 2)
(declare-fun c9 () V)
(set-info :status sat)
(check-sat-assuming (b8))
