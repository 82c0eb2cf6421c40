; The values of the named Boolean terms.
(set-option :produce-assignments true)
(declare-fun p () Bool)
(declare-fun q () Bool)
(assert (! (not p) :named np))
(assert (! (or p q) :named pq))
(get-assignment)
(check-sat)
(get-assignment)
