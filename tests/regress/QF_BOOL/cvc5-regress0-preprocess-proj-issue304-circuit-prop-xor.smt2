; ARGS: -model
; From the shared benchmark set: QF_UF/cvc5__regress0-preprocess-proj-issue304-circuit-prop-xor.smt2
; EXPECT: sat
(set-logic ALL)
(set-option :produce-proofs true)
(declare-const a Bool)
(declare-const b Bool)
(assert b)
(assert (xor b (not a)))
(set-info :status sat)
(check-sat)
