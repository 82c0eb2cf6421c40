; Arrays as arguments of functions: two arrays that a model would make
; equal must not split a congruence, and equal ones must not.
(set-logic QF_AUFLIA)
(declare-fun f ((Array Int Int)) Int)
(declare-fun a () (Array Int Int))
(declare-fun b () (Array Int Int))
(declare-fun i () Int)
(assert (not (= (f a) (f b))))
(assert (= (select a i) (select b i)))
(set-info :status sat)
(check-sat)
(assert (= a (store b i (select a i))))
(set-info :status unsat)
(check-sat)
