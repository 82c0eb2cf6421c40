; ERROR: ERROR: extract takes exactly 2 indices (1 given) (line: 3)
(declare-fun v () (_ BitVec 8))
(assert (= ((_ extract 3) v) #x0))
