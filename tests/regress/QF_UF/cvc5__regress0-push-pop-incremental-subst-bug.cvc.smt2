; ARGS: -model
; COMMAND-LINE: --incremental
; EXPECT: sat
; EXPECT: unsat
; EXPECT: unsat
; EXPECT: sat
; EXPECT: sat
; EXPECT: sat
; EXPECT: sat
(set-logic ALL)
(declare-sort U 0)
(declare-fun x () U)
(declare-fun y () U)
(set-info :status sat)
(check-sat-assuming ( (not (= x y)) ))
(assert (= x y))
(set-info :status unsat)
(check-sat-assuming ( (not (= x y)) ))
(declare-fun z () U)
(push 1)
(set-info :status unsat)
(check-sat-assuming ( (not (= x y)) ))
(set-info :status sat)
(check-sat-assuming ( (not (= x z)) ))
(set-info :status sat)
(check-sat-assuming ( (not (= z x)) ))
(set-info :status sat)
(check-sat-assuming ( (= z x) ))
(pop 1)
(set-info :status sat)
(check-sat-assuming ( (= z x) ))
