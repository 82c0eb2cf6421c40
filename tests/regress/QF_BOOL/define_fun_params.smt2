; ARGS: -model
; Functions defined over Bool parameters are macros: each application is
; the body with the arguments in place.
(set-logic QF_UF)
(define-fun maj ((a Bool) (b Bool) (c Bool)) Bool
  (or (and a b) (and a c) (and b c)))
(define-fun xor3 ((a Bool) (b Bool) (c Bool)) Bool (xor a (xor b c)))
(declare-const x Bool)
(declare-const y Bool)
(declare-const z Bool)
; A full adder: the carry is the majority, the sum the parity.
(define-fun carry () Bool (maj x y z))
(define-fun sum () Bool (xor3 x y z))
(assert carry)
(assert (not sum))
(set-info :status sat)
(check-sat)
; Exactly two of three inputs are set, so one is clear.
(assert (and x y))
(set-info :status sat)
(check-sat)
(assert z)
(set-info :status unsat)
(check-sat)
