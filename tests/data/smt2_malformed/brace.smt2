; ERROR: unrecognized text: {true} (line: 2)
(assert {true})
