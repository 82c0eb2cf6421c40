; ERROR: unknown symbol: f (line: 2)
(define-fun f ((x Int)) Int (f x))
