// arr::Solver: the terms told, the pending lemmas, and the pieces every
// lemma is made of. The generators are in arrsolver_check.cpp.
#include "theory/arr/arrsolver.h"

#include <algorithm>

#include "base/terminationtest.h"
#include "terms/termmanager.h"
#include "terms/termvisitor.h"
#include "theory/euf/eufsolver.h"

namespace zenlo {
namespace arr {

const Term_* make_read(TermManager& tm,
                       const Term_* array,
                       const Term_* index) {
  SimplificationScope raw(tm, false);
  return tm.make_array_read(array, index);
}

Solver::Solver(TermManager* tm,
               euf::Solver* euf,
               const Configuration::Theory::Arr* config,
               int mode)
    : d_tm(tm), d_euf(euf), d_config(config), d_mode(mode) {}

bool Solver::is_read(const Term_* t) const {
  return d_tm->get_tag(t->get_symbol()) == SymbolTag::ARRAY_READ;
}

bool Solver::is_write(const Term_* t) const {
  return d_tm->get_tag(t->get_symbol()) == SymbolTag::ARRAY_WRITE;
}

bool Solver::is_const(const Term_* t) const {
  return d_tm->get_tag(t->get_symbol()) == SymbolTag::ARRAY_CONST;
}

void Solver::poll() const {
  if (d_termination != nullptr) {
    (*d_termination)();
  }
}

// ---------------------------------------------------------------------------
// Terms
// ---------------------------------------------------------------------------

namespace {

// The distinct subterms of an atom, children first; an `ite` is a leaf,
// since its branches are the search's to choose.
struct Collect : TermVisitorCallback {
  Collect(const TermManager& tm, std::vector<const Term_*>& out)
      : d_tm(tm), d_out(out) {}

  VisitResult visit(const Term_* t, bool preorder) override {
    if (preorder) {
      return d_tm.get_tag(t->get_symbol()) == SymbolTag::ITE
                 ? VisitResult::Skip
                 : VisitResult::Process;
    }
    d_out.push_back(t);
    return VisitResult::Process;
  }

  const TermManager& d_tm;
  std::vector<const Term_*>& d_out;
};

template <class V>
void erase_last(std::vector<V>& v, const V& x) {
  auto it = std::find(v.rbegin(), v.rend(), x);
  if (it != v.rend()) {
    v.erase(std::next(it).base());
  }
}

}  // namespace

void Solver::collect_terms(const Term_* atom) {
  d_visit.clear();
  Collect cb(*d_tm, d_visit);
  TermVisitor<Collect> v(*d_tm, cb);
  v.visit(atom);
}

// Array terms, reads, and applications with an array argument.
bool Solver::interesting(const Term_* t) const {
  if (d_tm->is_array_type(t->get_type()) || is_read(t)) {
    return true;
  }
  for (const Term_* c : *t) {
    if (d_tm->is_array_type(c->get_type())) {
      return true;
    }
  }
  return false;
}

bool Solver::tell_atom(const Term_* atom) {
  collect_terms(atom);
  bool any = false;
  for (const Term_* t : d_visit) {
    if (!interesting(t)) {
      continue;
    }
    any = true;
    if (++d_count[t] == 1) {
      add_term(t);
    }
  }
  return any;
}

void Solver::retract_atom(const Term_* atom) {
  collect_terms(atom);
  // A pending lemma may speak of a term that goes now.
  drop_pending();
  for (auto it = d_visit.rbegin(); it != d_visit.rend(); ++it) {
    uint32_t* n = d_count.get(*it);
    if (n == nullptr) {
      continue;
    }
    if (--*n == 0) {
      d_count.erase(*it);
      remove_term(*it);
    }
  }
}

void Solver::add_term(const Term_* t) {
  const bool array = d_tm->is_array_type(t->get_type());
  if (array) {
    d_arrays.push_back(t);
  }
  if (is_write(t)) {
    d_writes.push_back(t);
    d_writes_on[t->get_child(0)].push_back(t);
    if (!d_write_read.contains(t)) {
      d_write_read.insert(t, make_read(*d_tm, t, t->get_child(1)));
    }
    if (!d_write_done.contains(t)) {
      queue_write_lemma(t);
    }
  } else if (is_read(t)) {
    d_reads.push_back(t);
    d_reads_on[t->get_child(0)].push_back(t);
  } else if (is_const(t)) {
    d_consts.push_back(t);
  }
  // Arrays as arguments: two arrays that the model makes equal must not
  // split an application's congruence.
  if (t->get_arity() > 0
      && (d_tm->is_uninterpreted_function(t->get_symbol()) || is_read(t)
          || is_write(t))) {
    for (uint32_t k = 0; k < t->get_arity(); ++k) {
      const Term_* c = t->get_child(k);
      const bool base = k == 0 && (is_read(t) || is_write(t));
      if (!base && d_tm->is_array_type(c->get_type())) {
        d_arg_of[c].emplace_back(t, k);
      }
    }
  }
}

void Solver::remove_term(const Term_* t) {
  if (t->get_arity() > 0) {
    for (uint32_t k = 0; k < t->get_arity(); ++k) {
      const Term_* c = t->get_child(k);
      if (auto* list = d_arg_of.get(c)) {
        erase_last(*list, std::make_pair(t, k));
        if (list->empty()) {
          d_arg_of.erase(c);
        }
      }
    }
  }
  if (is_write(t)) {
    erase_last(d_writes, t);
    auto* on = d_writes_on.get(t->get_child(0));
    erase_last(*on, t);
    if (on->empty()) {
      d_writes_on.erase(t->get_child(0));
    }
    d_write_done.erase(t);
  } else if (is_read(t)) {
    erase_last(d_reads, t);
    auto* on = d_reads_on.get(t->get_child(0));
    erase_last(*on, t);
    if (on->empty()) {
      d_reads_on.erase(t->get_child(0));
    }
  } else if (is_const(t)) {
    erase_last(d_consts, t);
  }
  if (d_tm->is_array_type(t->get_type())) {
    erase_last(d_arrays, t);
  }
}

// ---------------------------------------------------------------------------
// Lemmas
// ---------------------------------------------------------------------------

void Solver::drop_pending() {
  for (const Lemma& l : d_pending) {
    retract_lemma(l.key, l.kind);
  }
  d_pending.clear();
}

void Solver::retract_lemma(const Term_* key, LemmaKind kind) {
  if (key == nullptr) {
    return;
  }
  switch (kind) {
    case LemmaKind::Write: d_write_done.erase(key); break;
    case LemmaKind::Ext: d_ext_done.erase(key); break;
    case LemmaKind::Row: d_row_done.erase(key); break;
    case LemmaKind::Const: break;
  }
}

Lemma Solver::take_lemma() {
  Lemma l = std::move(d_pending.front());
  d_pending.pop_front();
  return l;
}

// A clause with a true literal says nothing; duplicates go. Over Bool, the
// instance's x = y is (iff x y), which the search would not know the
// meaning of: it becomes (x or not y) and (not x or y), its negation
// (x or y) and (not x or not y), one clause for each choice.
void Solver::queue(Lemma lemma) {
  for (TheoryLit l : lemma.clause) {
    if (l.atom() == d_tm->make_true() && !l.negated()) {
      retract_lemma(lemma.key, lemma.kind);
      return;
    }
  }
  d_split.clear();
  d_split.emplace_back();
  for (TheoryLit l : lemma.clause) {
    if (!d_iffs.contains(l.atom())) {
      for (std::vector<TheoryLit>& c : d_split) {
        c.push_back(l);
      }
      continue;
    }
    TheoryLit x(l.atom()->get_child(0));
    TheoryLit y(l.atom()->get_child(1));
    if (l.negated()) {
      y = ~y;
    }
    const size_t n = d_split.size();
    for (size_t i = 0; i < n; ++i) {
      d_split.push_back(d_split[i]);
      d_split[i].push_back(x);
      d_split[i].push_back(~y);
      d_split.back().push_back(~x);
      d_split.back().push_back(y);
    }
  }
  bool any = false;
  for (std::vector<TheoryLit>& c : d_split) {
    std::sort(c.begin(), c.end());
    c.erase(std::unique(c.begin(), c.end()), c.end());
    bool valid = false;
    for (size_t i = 1; i < c.size() && !valid; ++i) {
      valid = c[i].atom() == c[i - 1].atom();  // p or not p
    }
    if (valid) {
      continue;
    }
    any = true;
    Lemma part;
    part.kind = lemma.kind;
    part.key = lemma.key;
    part.clause = std::move(c);
    d_pending.push_back(std::move(part));
  }
  if (!any) {
    retract_lemma(lemma.key, lemma.kind);
    return;
  }
  switch (lemma.kind) {
    case LemmaKind::Write: ++d_stats.write_lemmas; break;
    case LemmaKind::Row: ++d_stats.row_lemmas; break;
    case LemmaKind::Ext: ++d_stats.ext_lemmas; break;
    case LemmaKind::Const: ++d_stats.const_lemmas; break;
  }
}

void Solver::queue_write_lemma(const Term_* w) {
  const Term_* const* r = d_write_read.get(w);
  const Term_* read = r != nullptr ? *r : make_read(*d_tm, w, w->get_child(1));
  Lemma l;
  l.kind = LemmaKind::Write;
  l.key = w;
  add_lit(eq_lit(read, w->get_child(2)), l);
  d_write_done.insert(w);
  queue(std::move(l));
}

const Term_* Solver::rep(const Term_* t) const {
  return d_euf->get_representative(t);
}

bool Solver::known(const Term_* t) const {
  return d_euf->has_node(t);
}

// The atom a = b as it stands (the simplifier could turn it into an atom
// that congruence reads differently), true for one term, false for two
// different numbers.
const Term_* Solver::equality(const Term_* a, const Term_* b) {
  if (a == b) {
    return d_tm->make_true();
  }
  if (d_tm->is_number_term(a) && d_tm->is_number_term(b)) {
    return d_tm->make_false();
  }
  if (d_tm->is_number_term(a)
      || (!d_tm->is_number_term(b) && b->get_id() < a->get_id())) {
    std::swap(a, b);
  }
  SimplificationScope raw(*d_tm, false);
  return d_tm->make_equal(a, b);
}

TheoryLit Solver::eq_lit(const Term_* a, const Term_* b) {
  if (!d_tm->is_bool_type(a->get_type())) {
    return TheoryLit(equality(a, b));
  }
  if (a == b) {
    return TheoryLit(d_tm->make_true());
  }
  const Term_* t = d_tm->make_true();
  const Term_* f = d_tm->make_false();
  if (a == t || a == f) {
    std::swap(a, b);
  }
  if (b == t || b == f) {
    return b == t ? TheoryLit(a) : ~TheoryLit(a);
  }
  if (b->get_id() < a->get_id()) {
    std::swap(a, b);
  }
  SimplificationScope raw(*d_tm, false);
  const Term_* iff = d_tm->make_iff(a, b);
  d_iffs.insert(iff);
  return TheoryLit(iff);
}

void Solver::add_lit(TheoryLit lit, Lemma& lemma) {
  // A false literal adds nothing to a clause.
  if (lit.atom() == d_tm->make_false() && !lit.negated()) {
    return;
  }
  if (lit.atom() == d_tm->make_true() && lit.negated()) {
    return;
  }
  lemma.clause.push_back(lit);
}

// The negated reasons for a = b, which EUF holds now.
void Solver::add_reason(const Term_* a, const Term_* b, Lemma& lemma) {
  if (a == b) {
    return;
  }
  d_reasons.clear();
  d_euf->get_congruence_reason(a, b, d_reasons);
  if (d_expand) {
    d_expand(d_reasons);
  }
  for (TheoryLit l : d_reasons) {
    add_lit(~l, lemma);
  }
}

}  // namespace arr
}  // namespace zenlo
