; ERROR: syntax error, unexpected ')', expecting '(' (line: 2)
(assert true)))
(check-sat)
