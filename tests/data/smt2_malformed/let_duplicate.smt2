; ERROR: symbol `a' already defined (line: 3)
(declare-fun p () Bool)
(assert (let ((a p) (a true)) a))
