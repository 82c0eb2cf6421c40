"""Random CNF near the satisfiability threshold, with the odd edge case
(units, duplicate literals, tautologies, an empty clause now and then)."""


def generate(rng):
    """(number of variables, clauses) of one random formula."""
    n = rng.randint(5, 90)
    k = rng.choice((3, 3, 3, 3, 2, 4))
    ratio = {2: 1.0, 3: 4.26, 4: 9.9}[k] * rng.uniform(0.85, 1.15)
    clauses = []
    for _ in range(max(1, round(n * ratio))):
        width = k if rng.random() < 0.9 else rng.randint(1, k + 2)
        clauses.append([rng.choice((1, -1)) * rng.randint(1, n)
                        for _ in range(width)])
    if rng.random() < 0.02:
        clauses.append([])
    return n, clauses


def text(n, clauses):
    lines = ["p cnf %d %d" % (n, len(clauses))]
    lines += [" ".join(map(str, c + [0])) for c in clauses]
    return "\n".join(lines) + "\n"
