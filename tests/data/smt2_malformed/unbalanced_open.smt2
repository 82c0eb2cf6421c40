; ERROR: syntax error, unexpected end of input, expecting a term (line: 4)
(declare-fun p () Bool)
(assert (and p
