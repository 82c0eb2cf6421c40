; ERROR: ERROR: index 1 of BitVec is too large (99999999 given, at most 16777216) (line: 2)
(declare-fun x () (_ BitVec 99999999))
