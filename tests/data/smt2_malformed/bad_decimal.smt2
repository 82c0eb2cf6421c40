; ERROR: unknown symbol: 1.2.3 (line: 2)
(assert (< 1.2.3 2))
