; ERROR: undeclared sort Foo (line: 2)
(declare-fun x () Foo)
