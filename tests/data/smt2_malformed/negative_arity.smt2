; ERROR: syntax error, unexpected symbol `-1', expecting ')' (line: 2)
(declare-sort U -1)
