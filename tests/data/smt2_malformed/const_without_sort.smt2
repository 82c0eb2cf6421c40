; ERROR: ERROR: const needs a sort, as in ((as const (Array Int Int)) 0) (line: 2)
(assert (= (const 0) (const 0)))
