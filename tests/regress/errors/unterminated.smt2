; The script ends inside a string: the good commands before it answer,
; then one error, then nothing.
(declare-const a Bool)
(assert a)
(check-sat)
(echo "never closed
(check-sat)
