; ERROR: bit-vector types need a positive width (line: 2)
(declare-fun v () (_ BitVec 0))
