; ERROR: syntax error, unexpected ')', expecting a keyword (line: 2)
(assert (! true))
