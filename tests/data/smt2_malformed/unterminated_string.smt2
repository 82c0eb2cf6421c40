; ERROR: unterminated string literal (line: 2)
(echo "abc
(check-sat)
