; ARGS: -model
; From the shared benchmark set: QF_UF/cvc5__regress0-unconstrained-issue4644.smt2
; COMMAND-LINE: --unconstrained-simp
(set-logic ALL)
(declare-fun a () Bool)
(declare-fun b () Bool)
(declare-fun c () Bool)
(assert (distinct a c))
(assert (= a b (= b c)))
(set-info :status sat)
(set-info :status sat)
(check-sat)
