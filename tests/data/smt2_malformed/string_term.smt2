; ERROR: syntax error, unexpected string, expecting a term (line: 2)
(assert "true")
