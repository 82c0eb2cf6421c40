; ERROR: syntax error, unexpected ')', expecting a term (line: 2)
(assert (and))
