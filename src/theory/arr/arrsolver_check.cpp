// arr::Solver: the lemma generators, run on EUF's classes of a full
// assignment, cheapest first; each stops the check once it made a lemma,
// so that the search answers it before the dearer ones look again.
#include <algorithm>

#include "terms/termmanager.h"
#include "theory/arr/arrsolver.h"
#include "theory/euf/eufsolver.h"

namespace zenlo {
namespace arr {

void Solver::check(bool approx) {
  if (approx || !d_ready || !d_pending.empty()) {
    return;
  }
  ++d_stats.checks;
  if (generate_write_lemmas()) {
    return;
  }
  prepare_classes();
  if (generate_const_lemmas()) {
    return;
  }
  if (d_mode == 2 ? generate_row_lemmas_frugal() : generate_row_lemmas()) {
    return;
  }
  generate_ext_lemmas();
}

// The array terms of each class, and the classes in the order first met.
void Solver::prepare_classes() {
  d_members.clear();
  d_class_reps.clear();
  for (const Term_* a : d_arrays) {
    if (!known(a)) {
      continue;
    }
    const Term_* r = rep(a);
    auto* list = d_members.get(r);
    if (list == nullptr) {
      d_class_reps.push_back(r);
      list = &d_members[r];
    }
    list->push_back(a);
  }
}

bool Solver::generate_write_lemmas() {
  poll();
  bool made = false;
  for (const Term_* w : d_writes) {
    if (!d_write_done.contains(w)) {
      queue_write_lemma(w);
      made = true;
    }
  }
  return made;
}

// ---------------------------------------------------------------------------
// Constant arrays
// ---------------------------------------------------------------------------

bool Solver::generate_const_lemmas() {
  poll();
  bool made = false;
  // Every read on a member of a constant array's class has its value.
  for (const Term_* k : d_consts) {
    const Term_* e = k->get_child(0);
    if (!known(k) || !known(e)) {
      continue;
    }
    const Term_* ve = rep(e);
    for (const Term_* m : members(rep(k))) {
      const auto* reads = d_reads_on.get(m);
      if (reads == nullptr) {
        continue;
      }
      for (const Term_* r : *reads) {
        if (!known(r) || rep(r) == ve) {
          continue;
        }
        Lemma l;
        l.kind = LemmaKind::Const;
        if (m != k) {
          add_lit(~eq_lit(k, m), l);
        }
        add_lit(eq_lit(e, r), l);
        queue(std::move(l));
        made = true;
        break;
      }
    }
  }
  if (made) {
    return true;
  }
  for (const Term_* k : d_consts) {
    poll();
    if (known(k) && !check_propagate_const(k)) {
      made = true;
      if (d_config->lazy_lemmas) {
        break;
      }
    }
  }
  return made;
}

// Writes change finitely many cells: two constant arrays that writes
// connect, in either direction, hold the same value.
bool Solver::check_propagate_const(const Term_* k) {
  const Term_* e = k->get_child(0);
  if (!known(e)) {
    return true;
  }
  const Term_* ve = rep(e);
  d_edges.clear();
  d_walk.assign(1, rep(k));
  d_edges.insert(rep(k), WriteEdge{});
  for (size_t n = 0; n < d_walk.size(); ++n) {
    const Term_* c = d_walk[n];
    const auto& members = this->members(c);
    for (const Term_* m : members) {
      if (m != k && is_const(m) && known(m->get_child(0))
          && rep(m->get_child(0)) != ve && add_consteq_lemma(c, m, k)) {
        return false;
      }
    }
    follow_writes(c, nullptr);
  }
  return true;
}

// Queues the classes that a write of class `c` (down to its base) or a
// write on a member of `c` (up to the write) reaches, across writes at
// indices other than `index` (any index when null).
void Solver::follow_writes(const Term_* c, const Term_* index) {
  auto crosses = [this, index](const Term_* w) {
    return index == nullptr
           || (known(w->get_child(1)) && rep(w->get_child(1)) != index);
  };
  for (const Term_* m : members(c)) {
    if (is_write(m) && known(m->get_child(0)) && crosses(m)) {
      const Term_* rb = rep(m->get_child(0));
      if (!d_edges.contains(rb)) {
        d_edges.insert(rb, WriteEdge{c, m, true});
        d_walk.push_back(rb);
      }
    }
    if (const auto* ws = d_writes_on.get(m)) {
      for (const Term_* w : *ws) {
        if (!known(w) || !crosses(w)) {
          continue;
        }
        const Term_* rw = rep(w);
        if (!d_edges.contains(rw)) {
          d_edges.insert(rw, WriteEdge{c, w, false});
          d_walk.push_back(rw);
        }
      }
    }
  }
}

bool Solver::finite_index(const Term_* array) const {
  const Type* index = nullptr;
  d_tm->is_array_type(array->get_type(), &index);
  return d_tm->is_finite_domain_type(index);
}

bool Solver::add_consteq_lemma(const Term_* c,
                               const Term_* k2,
                               const Term_* k) {
  const Type* index = nullptr;
  d_tm->is_array_type(k->get_type(), &index);
  QNumber size;
  if (d_tm->is_finite_domain_type(index, &size)) {
    // Over a finite index the writes may cover every cell.
    TermSet written;
    for (const Term_* cur = c;;) {
      const WriteEdge& edge = *d_edges.get(cur);
      if (edge.write == nullptr) {
        break;
      }
      written.insert(rep(edge.write->get_child(1)));
      cur = edge.prev;
    }
    if (QNumber(static_cast<long>(written.size())) >= size) {
      return false;
    }
  }
  Lemma l;
  l.kind = LemmaKind::Const;
  add_lit(eq_lit(k2->get_child(0), k->get_child(0)), l);
  add_path(c, k2, k, nullptr, l);
  queue(std::move(l));
  return true;
}

// ---------------------------------------------------------------------------
// Read over write
// ---------------------------------------------------------------------------

bool Solver::generate_row_lemmas() {
  bool made = false;
  for (size_t n = 0; n < d_reads.size(); ++n) {
    poll();
    if (known(d_reads[n]) && !check_propagate_read(d_reads[n], nullptr)) {
      made = true;
      if (d_config->lazy_lemmas) {
        break;
      }
    }
  }
  return made;
}

bool Solver::check_propagate_read(
    const Term_* r, hsh::HashMap<const Term_*, ClassModel>* model) {
  const Term_* a = r->get_child(0);
  const Term_* i = r->get_child(1);
  if (!known(a) || !known(i)) {
    return true;
  }
  const Term_* ri = rep(i);
  const Term_* rv = rep(r);
  d_edges.clear();
  d_walk.assign(1, rep(a));
  d_edges.insert(rep(a), WriteEdge{});
  for (size_t n = 0; n < d_walk.size(); ++n) {
    const Term_* c = d_walk[n];
    const auto& members = this->members(c);
    if (model != nullptr) {
      (*model)[c].entries.emplace_back(i, r);
    } else {
      for (const Term_* m : members) {
        if (const auto* reads = d_reads_on.get(m)) {
          for (const Term_* r2 : *reads) {
            if (r2 != r && known(r2) && known(r2->get_child(1))
                && rep(r2->get_child(1)) == ri && rep(r2) != rv) {
              add_row_lemma(c, r2, r);
              return false;
            }
          }
        }
        if (is_const(m) && known(m->get_child(0))
            && rep(m->get_child(0)) != rv) {
          add_row_lemma(c, m, r);
          return false;
        }
      }
    }
    follow_writes(c, ri);
  }
  return true;
}

// x (a read at an index equal to r's, or a constant array) sits on class
// `c`, which the walk reached from r's array: r = x, or the path breaks.
void Solver::add_row_lemma(const Term_* c, const Term_* x, const Term_* r) {
  const Term_* i = r->get_child(1);
  Lemma l;
  l.kind = LemmaKind::Row;
  if (is_read(x)) {
    add_lit(eq_lit(x, r), l);
    add_reason(x->get_child(1), i, l);
    add_path(c, x->get_child(0), r->get_child(0), i, l);
  } else {
    add_lit(eq_lit(x->get_child(0), r), l);
    add_path(c, x, r->get_child(0), i, l);
  }
  queue(std::move(l));
}

void Solver::add_path(const Term_* c,
                      const Term_* exit,
                      const Term_* start,
                      const Term_* index,
                      Lemma& lemma) {
  for (const Term_* cur = c;;) {
    const WriteEdge& edge = *d_edges.get(cur);
    const Term_* w = edge.write;
    if (w == nullptr) {
      add_reason(start, exit, lemma);
      return;
    }
    // Entered through the base going down, through the write going up.
    add_reason(edge.down ? w->get_child(0) : w, exit, lemma);
    if (index != nullptr) {
      add_lit(eq_lit(index, w->get_child(1)), lemma);
    }
    exit = edge.down ? w : w->get_child(0);
    cur = edge.prev;
  }
}

// For each write, read over write at each index read on its base's class
// or on its own.
bool Solver::generate_row_lemmas_frugal() {
  bool made = false;
  for (size_t n = 0; n < d_writes.size(); ++n) {
    poll();
    const Term_* w = d_writes[n];
    if (!known(w) || !known(w->get_child(0)) || !known(w->get_child(1))) {
      continue;
    }
    const Term_* ri = rep(w->get_child(1));
    for (const Term_* c : {rep(w->get_child(0)), rep(w)}) {
      for (const Term_* m : members(c)) {
        const auto* reads = d_reads_on.get(m);
        if (reads == nullptr) {
          continue;
        }
        for (const Term_* r : *reads) {
          const Term_* j = r->get_child(1);
          if (!known(j) || rep(j) == ri) {
            continue;
          }
          const Term_* key = make_read(*d_tm, w, rep(j));
          if (d_row_done.insert(key).second) {
            row_lemma_frugal(w, rep(j));
            made = true;
          }
        }
      }
    }
    if (made && d_config->lazy_lemmas) {
      break;
    }
  }
  return made;
}

void Solver::row_lemma_frugal(const Term_* w, const Term_* j) {
  Lemma l;
  l.kind = LemmaKind::Row;
  l.key = make_read(*d_tm, w, j);
  add_lit(eq_lit(j, w->get_child(1)), l);
  add_lit(eq_lit(make_read(*d_tm, w->get_child(0), j), l.key), l);
  queue(std::move(l));
}

// ---------------------------------------------------------------------------
// Extensionality
// ---------------------------------------------------------------------------

void Solver::compute_bowtie_relation() {
  d_bowtie.clear();
  auto find = [this](const Term_* t) {
    const Term_* r = t;
    for (const Term_* const* p = d_bowtie.get(r); p != nullptr && *p != r;
         p = d_bowtie.get(r)) {
      r = *p;
    }
    return r;
  };
  for (const Term_* w : d_writes) {
    if (!known(w) || !known(w->get_child(0))) {
      continue;
    }
    const Term_* a = find(rep(w->get_child(0)));
    const Term_* b = find(rep(w));
    if (a != b) {
      d_bowtie[b] = a;
    }
  }
  // Flattened, so that lookups need no walk.
  for (auto& [t, root] : d_bowtie) {
    root = find(root);
  }
}

// Without reads, arrays over an infinite index can always be told apart;
// over a finite one, too many distinct arrays cannot.
bool Solver::generate_ext_lemmas() {
  if (d_reads.empty() && !d_model_generation
      && std::none_of(d_class_reps.begin(),
                      d_class_reps.end(),
                      [this](const Term_* r) { return finite_index(r); })) {
    return false;
  }
  poll();
  compute_bowtie_relation();
  return generate_ext_lemmas(false) || generate_ext_lemmas(true);
}

bool Solver::generate_ext_lemmas(bool second) {
  int made = 0;
  const int limit = d_config->lazy_lemmas ? d_config->max_ext_lemmas : 0;
  for (size_t x = 0; x < d_class_reps.size(); ++x) {
    poll();
    for (size_t y = x + 1; y < d_class_reps.size(); ++y) {
      const Term_* ra = d_class_reps[x];
      const Term_* rb = d_class_reps[y];
      if (ra->get_type() != rb->get_type()) {
        continue;
      }
      if (bowtie_representative(ra) != bowtie_representative(rb)) {
        if (!second || !(d_model_generation || finite_index(ra))) {
          continue;
        }
      } else if (second) {
        continue;  // the first pass saw it
      }
      if (d_config->enable_witness && find_witness(ra, rb)) {
        continue;
      }
      if (!d_euf->are_disequal(ra, rb)
          && !(d_config->enable_ext_arg && check_ext_arg_condition(ra, rb))) {
        continue;
      }
      if (ext_lemma(ra, rb)) {
        ++made;
        if (limit > 0 && made >= limit) {
          return true;
        }
      }
    }
  }
  return made > 0;
}

// Some read of each class at one index, with values EUF keeps apart; only
// reads that the model follows can witness a difference in it.
bool Solver::find_witness(const Term_* a, const Term_* b) {
  for (const Term_* ma : members(a)) {
    const auto* ra = d_reads_on.get(ma);
    if (ra == nullptr) {
      continue;
    }
    for (const Term_* mb : members(b)) {
      const auto* rb = d_reads_on.get(mb);
      if (rb == nullptr) {
        continue;
      }
      for (const Term_* x : *ra) {
        for (const Term_* y : *rb) {
          if (known(x) && known(y) && read_in_model(x) && read_in_model(y)
              && known(x->get_child(1)) && known(y->get_child(1))
              && rep(x->get_child(1)) == rep(y->get_child(1))
              && d_euf->are_disequal(x, y)) {
            return true;
          }
        }
      }
    }
  }
  return false;
}

// Both classes sit at one position of applications of one symbol whose
// other arguments agree: their equality decides a congruence.
bool Solver::check_ext_arg_condition(const Term_* a, const Term_* b) {
  auto same = [this](const Term_* x, const Term_* y) {
    if (!known(x) || !known(y)) {
      return false;
    }
    return bowtie_representative(rep(x)) == bowtie_representative(rep(y));
  };
  for (const Term_* ma : members(a)) {
    const auto* ua = d_arg_of.get(ma);
    if (ua == nullptr) {
      continue;
    }
    for (const Term_* mb : members(b)) {
      const auto* ub = d_arg_of.get(mb);
      if (ub == nullptr) {
        continue;
      }
      for (const auto& [fa, pa] : *ua) {
        for (const auto& [fb, pb] : *ub) {
          if (pa != pb || fa->get_symbol() != fb->get_symbol()) {
            continue;
          }
          bool all = true;
          for (uint32_t k = 0; k < fa->get_arity() && all; ++k) {
            all = k == pa || same(fa->get_child(k), fb->get_child(k));
          }
          if (all) {
            return true;
          }
        }
      }
    }
  }
  return false;
}

const Term_* Solver::witness_index(const std::string& name,
                                   const Term_* array) {
  const Type* index = nullptr;
  d_tm->is_array_type(array->get_type(), &index);
  const Symbol* s = d_tm->find_symbol(name);
  if (s == nullptr) {
    s = d_tm->make_symbol(name, index);
  }
  return d_tm->make_constant(s);
}

// a = b, or they differ at a fresh index.
bool Solver::ext_lemma(const Term_* a, const Term_* b) {
  const Term_* eq = equality(a, b);
  if (!d_ext_done.insert(eq).second) {
    return false;
  }
  const Term_* k = witness_index(".idx" + std::to_string(eq->get_id()), a);
  Lemma l;
  l.kind = LemmaKind::Ext;
  l.key = eq;
  add_lit(TheoryLit(eq), l);
  add_lit(~eq_lit(make_read(*d_tm, a, k), make_read(*d_tm, b, k)), l);
  queue(std::move(l));
  return true;
}

// ---------------------------------------------------------------------------
// Models
// ---------------------------------------------------------------------------

void Solver::collect_model(hsh::HashMap<const Term_*, ClassModel>& out) {
  prepare_classes();
  compute_bowtie_relation();
  hsh::HashMap<const Term_*, const Term_*> const_of_bowtie;
  for (const Term_* k : d_consts) {
    if (known(k)) {
      const Term_* b = bowtie_representative(rep(k));
      if (!const_of_bowtie.contains(b)) {
        const_of_bowtie.insert(b, k);
      }
    }
  }
  for (const Term_* c : d_class_reps) {
    ClassModel& m = out[c];
    for (const Term_* t : members(c)) {
      if (is_const(t)) {
        m.base = t;
        break;
      }
    }
    if (m.base == nullptr) {
      if (const Term_* const* k =
              const_of_bowtie.get(bowtie_representative(c))) {
        m.base = *k;
      }
    }
  }
  for (const Term_* r : d_reads) {
    if (known(r) && read_in_model(r)) {
      check_propagate_read(r, &out);
    }
  }
}

}  // namespace arr
}  // namespace zenlo
