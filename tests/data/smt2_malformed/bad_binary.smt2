; ERROR: unrecognized text: #b012 (line: 2)
(assert (= #b012 #b011))
