; ERROR: ERROR: repeat makes a bit-vector wider than 16777216 bits (line: 3)
(declare-fun x () (_ BitVec 64))
(assert (= ((_ repeat 1000000) x) ((_ repeat 1000000) x)))
