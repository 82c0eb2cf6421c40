; ERROR: ERROR: not takes exactly 1 arguments (2 given) (line: 2)
(assert (not true false))
