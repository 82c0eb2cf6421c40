; ERROR: unsupported command: declare-datatypes (line: 2)
(declare-datatypes ((T 0)) (((a) (b))))
