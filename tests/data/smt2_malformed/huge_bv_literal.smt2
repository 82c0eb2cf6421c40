; ERROR: ERROR: index 1 of bv1 is too large (1000000000000 given, at most 16777216) (line: 2)
(assert (= (_ bv1 1000000000000) (_ bv1 1000000000000)))
