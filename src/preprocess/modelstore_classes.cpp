// The full phase of a model: classes of equal terms, one value per class,
// the function tables, and the values of what preprocessing removed.
#include <algorithm>

#include "preprocess/modelstore.h"
#include "terms/termmanager.h"

namespace zenlo {

namespace {

// Union-find over terms, for the classes of the model.
class TermPartition {
 public:
  void unite(const Term_* a, const Term_* b) {
    const Term_* ra = find(a);
    const Term_* rb = find(b);
    if (ra != rb) {
      // The older term stands for the class: deterministic, and values
      // (made early) tend to win.
      if (rb->get_id() < ra->get_id()) {
        std::swap(ra, rb);
      }
      d_parent[rb] = ra;
    }
  }

  const Term_* find(const Term_* t) {
    const Term_* r = t;
    for (const Term_* const* p = d_parent.get(r); p != nullptr && *p != r;
         p = d_parent.get(r)) {
      r = *p;
    }
    if (!d_parent.contains(t)) {
      d_parent.insert(t, t);
      d_order.push_back(t);
    }
    // Path compression keeps later finds short.
    for (const Term_* c = t; c != r;) {
      const Term_* next = *d_parent.get(c);
      d_parent[c] = r;
      c = next;
    }
    return r;
  }

  // After: `out` holds the classes, each sorted by id, in the order of
  // their oldest members.
  void classes(std::vector<TermList>& out) {
    hsh::HashMap<const Term_*, size_t> index;
    TermList order = d_order;
    std::sort(order.begin(), order.end(), [](auto* a, auto* b) {
      return a->get_id() < b->get_id();
    });
    for (const Term_* t : order) {
      const Term_* r = find(t);
      size_t* i = index.get(r);
      if (i == nullptr) {
        index.insert(r, out.size());
        out.emplace_back();
        i = index.get(r);
      }
      out[*i].push_back(t);
    }
  }

 private:
  TermMap d_parent;
  TermList d_order;
};

}  // namespace

void ModelStore::check_compute_full() {
  if (!d_failure.empty()) {
    throw error(d_failure);
  }
  if (d_state == 0) {
    compute();
  }
  if (d_state == 1 && d_full) {
    compute_full();
  }
}

void ModelStore::compute_full() {
  d_state = 2;
  SimplifierScope scope(*this);
  std::vector<TermList> classes;
  build_classes(classes);
  value_classes(classes);
  collect_points(classes);
  apply_rewrite_steps();
}

void ModelStore::build_classes(std::vector<TermList>& classes) {
  TermPartition p;
  for (const ModelData& c : d_constraints) {
    if (c.second == nullptr) {
      p.unite(c.term, c.flag ? d_tm->make_true() : d_tm->make_false());
    } else {
      p.unite(c.term, c.second);
    }
  }
  p.classes(classes);
}

void ModelStore::value_classes(const std::vector<TermList>& classes) {
  for (const TermList& members : classes) {
    const Term_* v = class_value(members);
    if (v == nullptr) {
      continue;
    }
    d_used_values.insert(v);
    for (const Term_* m : members) {
      const Term_* const* old = d_values.get(m);
      if (old != nullptr && *old != v) {
        throw error("Invalid model");
      }
      d_values[m] = v;
    }
  }
  // Classes without a value of their own get fresh ones, after every
  // value the theories gave is known, so that no fresh value collides.
  // An array class that the arrays solver described by writes over terms
  // of other classes is evaluated once those have values, the arrays of
  // arrays last.
  std::vector<std::pair<size_t, const TermList*>> arrays;
  for (const TermList& members : classes) {
    if (d_values.contains(members.front())) {
      continue;
    }
    if (const Term_* d = array_description(members)) {
      arrays.emplace_back(array_depth(d->get_type()), &members);
      continue;
    }
    const Term_* v = fresh_value(members.front()->get_type(), &members);
    d_used_values.insert(v);
    for (const Term_* m : members) {
      d_values[m] = v;
    }
  }
  std::stable_sort(arrays.begin(), arrays.end(), [](auto& x, auto& y) {
    return x.first < y.first;
  });
  for (const auto& [depth, members] : arrays) {
    (void)depth;
    const Term_* d = array_description(*members);
    value_array_cells(d);
    const Term_* v = evaluate(d);
    d_used_values.insert(v);
    for (const Term_* m : *members) {
      d_values[m] = v;
    }
  }
}

// Returns: the member that is a write chain over a constant array, as the
// arrays solver describes a class's value; null when there is none.
const Term_* ModelStore::array_description(const TermList& members) const {
  if (!d_tm->is_array_type(members.front()->get_type())) {
    return nullptr;
  }
  for (const Term_* m : members) {
    const Term_* t = m;
    while (d_tm->get_tag(t->get_symbol()) == SymbolTag::ARRAY_WRITE) {
      t = t->get_child(0);
    }
    if (d_tm->get_tag(t->get_symbol()) == SymbolTag::ARRAY_CONST) {
      return m;
    }
  }
  return nullptr;
}

// The cells of a description name classes of the solvers' model. A term
// that stands for such a class and that no formula holds (a read, whose
// array's value is being made from it, or a witness index the solver
// made) is no formula to evaluate: its class gets a fresh value of its
// own, which no other class holds.
void ModelStore::value_array_cells(const Term_* description) {
  auto cell = [this](const Term_* x) {
    if (d_values.contains(x) || is_good_model_value(x)
        || d_tm->is_array_type(x->get_type())) {
      return;
    }
    const Term_* v = fresh_value(x->get_type(), nullptr);
    d_used_values.insert(v);
    d_values.insert(x, v);
  };
  const Term_* t = description;
  while (d_tm->get_tag(t->get_symbol()) == SymbolTag::ARRAY_WRITE) {
    cell(t->get_child(1));
    cell(t->get_child(2));
    t = t->get_child(0);
  }
  cell(t->get_child(0));
}

size_t ModelStore::array_depth(const Type* type) const {
  const Type* element = nullptr;
  size_t depth = 0;
  while (d_tm->is_array_type(type, nullptr, &element)) {
    ++depth;
    type = element;
  }
  return depth;
}

// Returns: the one value among the members (or the value the engine gave
// to a Boolean constant among them); null when there is none.
// Throws: "Invalid model" for two different values in one class.
const Term_* ModelStore::class_value(const TermList& members) {
  const Term_* value = nullptr;
  for (const Term_* m : members) {
    const Term_* v = nullptr;
    if (is_good_model_value(m)) {
      v = m;
    } else if (const Term_* const* known = d_values.get(m)) {
      v = *known;
    }
    if (v != nullptr && value != nullptr && v != value) {
      throw error("Invalid model");
    }
    value = v != nullptr ? v : value;
  }
  return value;
}

// The function tables: each application of an uninterpreted function that
// the classes hold gives the point (f v1 ... vn) the value of its class.
void ModelStore::collect_points(const std::vector<TermList>& classes) {
  TermList args;
  for (const TermList& members : classes) {
    for (const Term_* m : members) {
      // A theory may name a class by a term that no formula of this answer
      // holds (left from an earlier check): it stands for the class only,
      // and its arguments, valued by nothing, must not set a point.
      if (m->get_arity() == 0
          || !d_tm->is_uninterpreted_function(m->get_symbol())
          || !d_seen.contains(m)) {
        continue;
      }
      args.clear();
      for (const Term_* a : *m) {
        args.push_back(evaluate(a));
      }
      const Term_* point = d_tm->do_make_term(m->get_symbol(), args);
      const Term_* v = *d_values.get(m);
      const Term_* const* old = d_values.get(point);
      if (old != nullptr && *old != v) {
        throw error("Invalid model");  // congruence broken
      }
      d_values[point] = v;
      const Term_* const* def = d_function_defaults.get(m->get_symbol());
      if (def == nullptr) {
        d_function_defaults.insert(m->get_symbol(), point);
      } else if (point->get_id() < (*def)->get_id()) {
        d_function_defaults[m->get_symbol()] = point;
      }
    }
  }
  // The first point (by id, as the iteration orders them) gives the
  // default: a printed table ends in a value it already uses.
  for (auto& [f, point] : d_function_defaults) {
    point = *d_values.get(point);
  }
}

// Newest first: an older step's dst may mention a newer step's src, never
// the other way round, since a newer formula no longer contains what an
// older step eliminated.
void ModelStore::apply_rewrite_steps() {
  for (size_t i = d_rewrite_list.size(); i-- > 0;) {
    const ModelData& step = d_rewrite_list[i];
    if (step.flag) {
      continue;  // ad-hoc steps come with the free-input stage
    }
    const Term_* v = evaluate(step.second);
    if (!is_good_model_value(v)) {
      v = default_value(step.term->get_type());
    }
    const Term_* key = step.term;
    if (key->get_arity() > 0) {
      TermList args;
      for (const Term_* a : *key) {
        args.push_back(evaluate(a));
      }
      key = d_tm->do_make_term(key->get_symbol(), args);
    }
    d_values[key] = v;
    d_values[step.term] = v;
  }
}

}  // namespace zenlo
