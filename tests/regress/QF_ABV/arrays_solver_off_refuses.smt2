; ARGS: -theory.arr.enabled=false
; Congruence alone cannot count values: five distinct arrays over 1-bit
; indices and elements are contradictory (only four exist), so without the
; arrays solver the answer must be unknown, never sat.
(set-logic QF_ABV)
(declare-fun a () (Array (_ BitVec 1) (_ BitVec 1)))
(declare-fun b () (Array (_ BitVec 1) (_ BitVec 1)))
(declare-fun c () (Array (_ BitVec 1) (_ BitVec 1)))
(declare-fun d () (Array (_ BitVec 1) (_ BitVec 1)))
(declare-fun e () (Array (_ BitVec 1) (_ BitVec 1)))
(assert (distinct a b c d e))
(check-sat)
