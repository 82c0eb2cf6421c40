#include "theory/check/lafactchecker.h"

#include <gmp.h>

#include <algorithm>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "terms/numbers.h"
#include "terms/termmanager.h"

namespace zenlo {

namespace {

// A GMP rational and nothing more: every operation goes to GMP, so that
// the checker does not share the machine-word fast path of QNumber.
class Rat {
 public:
  Rat() { mpq_init(d_v); }

  explicit Rat(long n) {
    mpq_init(d_v);
    mpq_set_si(d_v, n, 1);
  }

  Rat(const Rat& o) {
    mpq_init(d_v);
    mpq_set(d_v, o.d_v);
  }

  Rat& operator=(const Rat& o) {
    mpq_set(d_v, o.d_v);
    return *this;
  }

  ~Rat() { mpq_clear(d_v); }

  static Rat of(const QNumber& q) {
    Rat r;
    q.to_mpq(r.d_v);
    return r;
  }

  int sign() const { return mpq_sgn(d_v); }

  bool is_integer() const { return mpz_cmp_ui(mpq_denref(d_v), 1) == 0; }

  Rat floor() const {
    Rat r;  // 0/1: setting the numerator alone keeps it canonical
    mpz_fdiv_q(mpq_numref(r.d_v), mpq_numref(d_v), mpq_denref(d_v));
    return r;
  }

  const mpq_t& get() const { return d_v; }

  mpq_t& get() { return d_v; }

  bool is_zero() const { return sign() == 0; }

  int compare(const Rat& o) const { return mpq_cmp(d_v, o.d_v); }

  // this += a * b
  void add_mul(const Rat& a, const Rat& b) {
    Rat t;
    mpq_mul(t.d_v, a.d_v, b.d_v);
    mpq_add(d_v, d_v, t.d_v);
  }

  Rat operator*(const Rat& o) const {
    Rat r;
    mpq_mul(r.d_v, d_v, o.d_v);
    return r;
  }

  Rat operator/(const Rat& o) const {
    Rat r;
    mpq_div(r.d_v, d_v, o.d_v);
    return r;
  }

  Rat neg() const {
    Rat r;
    mpq_neg(r.d_v, d_v);
    return r;
  }

  Rat abs() const { return sign() < 0 ? neg() : *this; }

  std::string str() const {
    char* s = mpq_get_str(nullptr, 10, d_v);
    std::string out(s);
    void (*free_fn)(void*, size_t);
    mp_get_memory_functions(nullptr, nullptr, &free_fn);
    free_fn(s, out.size() + 1);
    return out;
  }

 private:
  mpq_t d_v;
};

enum class Rel { Le, Lt, Eq, Ne };  // sum + k REL 0

struct Row {
  std::map<int, Rat> coef;  // no zero coefficients
  Rat k;
  Rel rel = Rel::Le;

  // this += a * other
  void add_scaled(const Row& other, const Rat& a) {
    for (const auto& [x, c] : other.coef) {
      Rat& mine = coef[x];
      mine.add_mul(a, c);
      if (mine.is_zero()) {
        coef.erase(x);
      }
    }
    k.add_mul(a, other.k);
  }

  void scale(const Rat& a) {
    for (auto& entry : coef) {
      entry.second = entry.second * a;
    }
    k = k * a;
  }

  // For a row without variables.
  bool holds() const {
    int s = k.sign();
    switch (rel) {
      case Rel::Le: return s <= 0;
      case Rel::Lt: return s < 0;
      case Rel::Eq: return s == 0;
      case Rel::Ne: return s != 0;
    }
    return true;
  }
};

enum class Outcome { Refuted, Consistent, TooLarge };

class Reader {
 public:
  explicit Reader(const TermManager& tm) : d_tm(tm) {}

  const std::vector<bool>& int_vars() const { return d_is_int; }

  // Returns: false when the literal is not an arithmetic comparison.
  bool read(TheoryLit lit, Row& row) {
    const Term_* atom = lit.atom();
    SymbolTag::tag tag = d_tm.get_tag(atom->get_symbol());
    if ((tag != SymbolTag::EQ && tag != SymbolTag::LEQ)
        || atom->get_arity() != 2 || !is_arith(atom->get_child(0))) {
      return false;
    }
    add(atom->get_child(0), Rat(1), row);
    add(atom->get_child(1), Rat(-1), row);
    if (tag == SymbolTag::EQ) {
      row.rel = lit.negated() ? Rel::Ne : Rel::Eq;
    } else if (lit.negated()) {
      // not (a - b <= 0) is b - a < 0
      row.scale(Rat(-1));
      row.rel = Rel::Lt;
    } else {
      row.rel = Rel::Le;
    }
    return true;
  }

 private:
  bool is_arith(const Term_* t) const {
    return d_tm.is_real_type(t->get_type())
           || d_tm.is_integer_type(t->get_type());
  }

  void add(const Term_* t, const Rat& a, Row& row) {
    QNumber value;
    if (d_tm.is_number(t->get_symbol(), &value)) {
      row.k.add_mul(a, Rat::of(value));
      return;
    }
    switch (d_tm.get_tag(t->get_symbol())) {
      case SymbolTag::PLUS:
        for (const Term_* c : *t) {
          add(c, a, row);
        }
        return;
      case SymbolTag::TIMES: {
        Rat factor = a;
        const Term_* other = nullptr;
        int others = 0;
        Rat k;
        for (const Term_* c : *t) {
          if (constant_value(c, k)) {
            factor = factor * k;
          } else {
            other = c;
            ++others;
          }
        }
        if (others == 0) {
          row.k.add_mul(factor, Rat(1));
          return;
        }
        if (others == 1) {
          add(other, factor, row);
          return;
        }
        break;
      }
      case SymbolTag::DIVIDE:
        if (t->get_arity() == 2) {
          Rat d;
          if (constant_value(t->get_child(1), d) && !d.is_zero()) {
            add(t->get_child(0), a / d, row);
            return;
          }
        }
        break;
      default: break;
    }
    add_var(var(t), a, row);
  }

  // Returns: whether t is built from numbers alone, with its value in out.
  bool constant_value(const Term_* t, Rat& out) {
    QNumber value;
    if (d_tm.is_number(t->get_symbol(), &value)) {
      out = Rat::of(value);
      return true;
    }
    SymbolTag::tag tag = d_tm.get_tag(t->get_symbol());
    if (tag != SymbolTag::PLUS && tag != SymbolTag::TIMES
        && (tag != SymbolTag::DIVIDE || t->get_arity() != 2)) {
      return false;
    }
    Rat acc(tag == SymbolTag::PLUS ? 0 : 1);
    Rat k;
    bool first = true;
    for (const Term_* c : *t) {
      if (!constant_value(c, k)) {
        return false;
      }
      if (tag == SymbolTag::PLUS) {
        acc.add_mul(k, Rat(1));
      } else if (tag == SymbolTag::TIMES || first) {
        acc = acc * k;
      } else if (k.is_zero()) {
        return false;
      } else {
        acc = acc / k;
      }
      first = false;
    }
    out = acc;
    return true;
  }

  int var(const Term_* t) {
    auto [it, fresh] = d_vars.emplace(t, static_cast<int>(d_vars.size()));
    if (fresh) {
      d_is_int.push_back(d_tm.is_integer_type(t->get_type()));
    }
    return it->second;
  }

  static void add_var(int x, const Rat& a, Row& row) {
    Rat& c = row.coef[x];
    c.add_mul(a, Rat(1));
    if (c.is_zero()) {
      row.coef.erase(x);
    }
  }

  const TermManager& d_tm;
  std::unordered_map<const Term_*, int> d_vars;
  std::vector<bool> d_is_int;  // by variable: the term has sort Int
};

// Integers. A row whose variables all have sort Int takes integer values
// on its sum once its coefficients are scaled to integers, so its constant
// may be rounded: over the integers, sum + k <= 0 with coprime integer
// coefficients is sum + ceil(k) <= 0, sum + k < 0 is sum + floor(k) + 1 <= 0,
// and sum + k = 0 has no solution unless k is an integer. Every row here,
// given or derived, holds at every integer solution, so rounding any of
// them is sound. Equalities over integers are solved without leaving the
// integers: for a unit coefficient directly, otherwise by writing the
// variable with the smallest coefficient a as an integer combination of
// the others plus a fresh integer variable, which leaves the equality with
// coefficients below a; the integer solutions correspond one to one.
class Integers {
 public:
  explicit Integers(std::vector<bool> is_int) : d_is_int(std::move(is_int)) {}

  bool all_int(const Row& r) const {
    for (const auto& entry : r.coef) {
      if (!d_is_int[entry.first]) {
        return false;
      }
    }
    return true;
  }

  int fresh() {
    d_is_int.push_back(true);
    return static_cast<int>(d_is_int.size()) - 1;
  }

  bool is_int(int x) const { return d_is_int[x]; }

  // Returns: false when the row has no integer solution.
  bool round(Row& r) const {
    if (r.coef.empty() || r.rel == Rel::Ne || !all_int(r)) {
      return true;
    }
    mpz_t l, g, t;
    mpz_init_set_ui(l, 1);
    mpz_init_set_ui(g, 0);
    mpz_init(t);
    for (const auto& entry : r.coef) {
      mpz_lcm(l, l, mpq_denref(entry.second.get()));
    }
    for (const auto& entry : r.coef) {
      mpz_divexact(t, l, mpq_denref(entry.second.get()));
      mpz_mul(t, t, mpq_numref(entry.second.get()));
      mpz_gcd(g, g, t);
    }
    Rat factor;
    mpq_set_num(factor.get(), l);
    mpq_set_den(factor.get(), g);
    mpq_canonicalize(factor.get());
    mpz_clears(l, g, t, nullptr);
    r.scale(factor);
    switch (r.rel) {
      case Rel::Eq: return r.k.is_integer();
      case Rel::Le: r.k = r.k.neg().floor().neg(); break;
      case Rel::Lt:
        r.k = r.k.floor();
        r.k.add_mul(Rat(1), Rat(1));
        r.rel = Rel::Le;
        break;
      case Rel::Ne: break;
    }
    return true;
  }

 private:
  std::vector<bool> d_is_int;
};

class Eliminator {
 public:
  Eliminator(size_t max_rows, Integers ints)
      : d_max_rows(max_rows), d_ints(std::move(ints)) {}

  // Requires: no row is a disequality.
  Outcome decide(std::vector<Row> rows) {
    if (!round_all(rows) || !solve_equalities(rows) || !round_all(rows)) {
      return Outcome::Refuted;
    }
    while (true) {
      if (!drop_constants(rows)) {
        return Outcome::Refuted;
      }
      if (rows.empty()) {
        return Outcome::Consistent;
      }
      if (!eliminate_one(rows)) {
        return Outcome::TooLarge;
      }
    }
  }

 private:
  bool round_all(std::vector<Row>& rows) const {
    for (Row& r : rows) {
      if (!d_ints.round(r)) {
        return false;
      }
    }
    return true;
  }

  // r := r with x replaced, where def is a row whose x-coefficient is -1
  // and which reads  (expression for x) - x = 0.
  static void substitute(Row& r, int x, const Row& def) {
    auto it = r.coef.find(x);
    if (it != r.coef.end()) {
      Rat a = it->second;
      r.add_scaled(def, a);
    }
  }

  // Each equality solves for one of its variables, which is then
  // substituted everywhere; over integers the equality keeps its row
  // until a unit coefficient appears (see Integers).
  bool solve_equalities(std::vector<Row>& rows) {
    for (size_t i = 0; i < rows.size();) {
      if (rows[i].rel != Rel::Eq) {
        ++i;
        continue;
      }
      if (!d_ints.round(rows[i])) {
        return false;
      }
      if (rows[i].coef.empty()) {
        if (!rows[i].holds()) {
          return false;
        }
        rows[i] = std::move(rows.back());
        rows.pop_back();
        continue;
      }
      int x = pivot(rows[i]);
      Rat a = rows[i].coef.at(x);
      if (!d_ints.all_int(rows[i]) || a.abs().compare(Rat(1)) == 0) {
        Row eq = std::move(rows[i]);
        rows[i] = std::move(rows.back());
        rows.pop_back();
        eq.scale((Rat(1) / a).neg());  // now reads  expr - x = 0
        for (Row& r : rows) {
          substitute(r, x, eq);
        }
        i = 0;
        continue;
      }
      Row def = decompose(rows[i], x);
      for (Row& r : rows) {
        substitute(r, x, def);
      }
    }
    return true;
  }

  // The variable to solve for: a real one where there is one (solving
  // for an integer would forget its integrality), else one with the
  // smallest absolute coefficient.
  int pivot(const Row& eq) const {
    int best = -1;
    Rat best_abs;
    for (const auto& [x, c] : eq.coef) {
      if (!d_ints.is_int(x)) {
        return x;
      }
      if (best < 0 || c.abs().compare(best_abs) < 0) {
        best = x;
        best_abs = c.abs();
      }
    }
    return best;
  }

  // For a x + sum b_i y_i + k = 0 with integer coefficients and a > 1:
  // x = t - sum floor(b_i / a) y_i - floor(k / a), t a fresh integer.
  // Returns: that definition as a row  (expression for x) - x = 0.
  Row decompose(Row& eq, int x) {
    if (eq.coef.at(x).sign() < 0) {
      eq.scale(Rat(-1));
    }
    Rat a = eq.coef.at(x);
    Row def;
    def.rel = Rel::Eq;
    def.coef[x] = Rat(-1);
    def.coef[d_ints.fresh()] = Rat(1);
    for (const auto& [y, b] : eq.coef) {
      if (y != x) {
        Rat q = (b / a).floor();
        if (!q.is_zero()) {
          def.coef[y] = q.neg();
        }
      }
    }
    def.k = (eq.k / a).floor().neg();
    return def;
  }

  static bool drop_constants(std::vector<Row>& rows) {
    for (size_t i = 0; i < rows.size();) {
      if (rows[i].coef.empty()) {
        if (!rows[i].holds()) {
          return false;
        }
        rows[i] = std::move(rows.back());
        rows.pop_back();
      } else {
        ++i;
      }
    }
    return true;
  }

  // Fourier-Motzkin on the variable with the fewest new rows; rows with
  // the same sum up to a positive factor keep only the tightest.
  bool eliminate_one(std::vector<Row>& rows) {
    std::map<int, std::pair<size_t, size_t>> counts;
    for (const Row& r : rows) {
      for (const auto& [x, c] : r.coef) {
        auto& n = counts[x];
        (c.sign() > 0 ? n.first : n.second) += 1;
      }
    }
    int best = -1;
    size_t best_cost = 0;
    for (const auto& [x, n] : counts) {
      size_t cost = n.first * n.second;
      if (best < 0 || cost < best_cost) {
        best = x;
        best_cost = cost;
      }
    }
    std::vector<Row> pos, neg, out;
    for (Row& r : rows) {
      auto it = r.coef.find(best);
      if (it == r.coef.end()) {
        out.push_back(std::move(r));
      } else if (it->second.sign() > 0) {
        pos.push_back(std::move(r));
      } else {
        neg.push_back(std::move(r));
      }
    }
    if (out.size() + pos.size() * neg.size() > d_max_rows) {
      return false;
    }
    for (const Row& p : pos) {
      for (const Row& n : neg) {
        // |n_x| * p + p_x * n cancels x; both factors are positive.
        Row r = p;
        r.scale(n.coef.at(best).abs());
        r.add_scaled(n, p.coef.at(best));
        r.rel = (p.rel == Rel::Lt || n.rel == Rel::Lt) ? Rel::Lt : Rel::Le;
        d_ints.round(r);
        out.push_back(std::move(r));
      }
    }
    rows = tightest(std::move(out));
    return true;
  }

  static std::vector<Row> tightest(std::vector<Row> rows) {
    std::map<std::string, size_t> seen;
    std::vector<Row> out;
    for (Row& r : rows) {
      if (!r.coef.empty()) {
        r.scale(Rat(1) / r.coef.begin()->second.abs());
      }
      std::string key;
      for (const auto& [x, c] : r.coef) {
        key += std::to_string(x) + ":" + c.str() + " ";
      }
      auto [it, fresh] = seen.emplace(key, out.size());
      if (fresh) {
        out.push_back(std::move(r));
        continue;
      }
      // sum + k <= 0 is tighter for a larger k; < beats <= at equal k.
      Row& old = out[it->second];
      int c = r.k.compare(old.k);
      if (c > 0 || (c == 0 && r.rel == Rel::Lt)) {
        old = std::move(r);
      }
    }
    return out;
  }

  size_t d_max_rows;
  Integers d_ints;
};

}  // namespace

std::string LaFactChecker::check(const TheoryFact& fact) {
  const auto* split = dynamic_cast<const LaSplitCertificate*>(fact.certificate);
  if (split == nullptr) {
    return decide(fact.lits);
  }
  // The split must cover every integer point, then each side must refute.
  std::vector<TheoryLit> lits{TheoryLit(split->below, true),
                              TheoryLit(split->above, true)};
  std::string why = decide(lits);
  if (!why.empty()) {
    return "the split of the certificate leaves a gap: " + why;
  }
  for (const Term_* side : {split->below, split->above}) {
    lits.assign(fact.lits.begin(), fact.lits.end());
    lits.push_back(TheoryLit(side, false));
    why = decide(lits);
    if (!why.empty()) {
      return "under `" + side->to_str() + "': " + why;
    }
  }
  return "";
}

std::string LaFactChecker::decide(const std::vector<TheoryLit>& lits) {
  Reader reader(d_tm);
  std::vector<Row> base;
  std::vector<Row> diseqs;
  for (TheoryLit lit : lits) {
    Row row;
    if (!reader.read(lit, row)) {
      return "`" + lit.atom()->to_str() + "' is not an arithmetic comparison";
    }
    (row.rel == Rel::Ne ? diseqs : base).push_back(std::move(row));
  }
  Eliminator elim(d_max_rows, Integers(reader.int_vars()));
  Outcome outcome = elim.decide(base);
  // t != 0 is refuted when the rest refutes t < 0 and t > 0 alike.
  for (size_t i = 0; outcome != Outcome::Refuted && i < diseqs.size(); ++i) {
    Row below = diseqs[i];
    below.rel = Rel::Lt;
    Row above = below;
    above.scale(Rat(-1));
    std::vector<Row> with = base;
    with.push_back(std::move(below));
    Outcome first = elim.decide(with);
    if (first != Outcome::Refuted) {
      outcome = std::max(outcome, first);
      continue;
    }
    with.back() = std::move(above);
    Outcome second = elim.decide(std::move(with));
    outcome = second == Outcome::Refuted ? second : std::max(outcome, second);
  }
  switch (outcome) {
    case Outcome::Refuted: return "";
    case Outcome::Consistent:
      return "the literals have a solution over the rationals";
    case Outcome::TooLarge:
      return "elimination needs more than " + std::to_string(d_max_rows)
             + " constraints";
  }
  return "";
}

}  // namespace zenlo
