; ERROR: unknown symbol: q (line: 3)
(declare-fun p () Bool)
(assert (or p q))
