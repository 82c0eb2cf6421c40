; Division and remainder by zero have SMT-LIB's results: bvudiv gives all
; ones, bvurem the dividend, bvsdiv -1 or 1 by the dividend's sign, bvsrem
; the dividend. Each negated identity is unsat; the divisor is a variable
; so that the circuit, not the simplifier, decides.
(set-logic QF_BV)
(set-info :status unsat)
(declare-const x (_ BitVec 8))
(declare-const z (_ BitVec 8))
(assert (= z #x00))
(push 1)
(assert (or (not (= (bvudiv x z) #xff))
            (not (= (bvurem x z) x))
            (not (= (bvsrem x z) x))
            (not (= (bvsdiv x z) (ite (bvslt x #x00) #x01 #xff)))))
(check-sat)
(pop 1)
(push 1)
(set-info :status sat)
(assert (= (bvudiv x z) (bvurem x z)))
(check-sat)
(pop 1)
