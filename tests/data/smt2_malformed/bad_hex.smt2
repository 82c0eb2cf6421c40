; ERROR: unrecognized text: #xZZ (line: 3)
(declare-fun v () (_ BitVec 8))
(assert (= v #xZZ))
