; ERROR: type error. term x has type Int, but Bool was expected. (make_and) (line: 3)
(declare-fun x () Int)
(assert (and x true))
