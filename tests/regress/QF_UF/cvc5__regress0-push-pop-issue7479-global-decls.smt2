; ARGS: -model
; From the shared benchmark set: QF_UF/cvc5__regress0-push-pop-issue7479-global-decls.smt2 (statuses from z3)
; COMMAND-LINE: -i
; EXPECT: unsat
(set-logic ALL)
(set-option :global-declarations true)
(define-fun y () Bool (> 0 0))
(assert y)
(push)
(set-info :status unsat)
(check-sat)
