; Text that is no token, a comma, and a bare word at the top level.
(declare-const a Bool)
(assert { a })
(assert (and a, a))
hello
(assert (not a))
(check-sat)
(echo "still here")
