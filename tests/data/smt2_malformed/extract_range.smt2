; ERROR: range too large in bv extraction. arg has width 8, but range is [9:0] (line: 3)
(declare-fun v () (_ BitVec 8))
(assert (= ((_ extract 9 0) v) v))
