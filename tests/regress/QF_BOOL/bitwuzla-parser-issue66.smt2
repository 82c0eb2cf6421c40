; ARGS: -model
; From the shared benchmark set: QF_UF/bitwuzla__parser-issue66.smt2
(set-option :produce-models true)
(push 1)
(declare-fun a () Bool)
(assert a)
(pop 1)
(set-info :status sat)
(set-info :status sat)
(check-sat)
(get-model)
