; Options set right after set-logic take effect; once a name exists they
; are refused and the script goes on.
(set-logic QF_LRA)
(set-option :produce-models true)
(set-option :produce-assignments true)
(declare-fun x () Real)
(assert (! (> x 1) :named a1))
(check-sat)
(get-value ((> x 1)))
(get-assignment)
(set-option :produce-models false)
(get-value ((< x 1)))
