; ARGS: -model
; From the shared benchmark set: QF_UF/cvc5__regress0-bool-issue1978.smt2
; COMMAND-LINE: --incremental
; EXPECT: sat
; EXPECT: unsat
(set-logic ALL)
(declare-fun _substvar_29_ () Bool)
(declare-fun _substvar_30_ () Bool)
(declare-fun _substvar_36_ () Bool)
(assert (= false (and _substvar_29_ _substvar_30_)))
(set-info :status sat)
(check-sat)
(assert false)
(push 1)
(assert _substvar_36_)
(set-info :status unsat)
(check-sat)