; ERROR: unterminated quoted symbol (line: 2)
(declare-fun |abc () Int)
(check-sat)
