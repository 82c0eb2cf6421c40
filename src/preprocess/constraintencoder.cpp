#include "preprocess/constraintencoder.h"

#include <string>

#include "base/terminationtest.h"
#include "terms/termmanager.h"
#include "terms/termvisitor.h"

namespace zenlo {

// The walk of one encode() call: looks each subterm's tag up in the table,
// reuses a cached encoding (and does not descend into it: its inner terms
// were handled when it was made), or makes a new one and descends, since
// the new side constraints mention the children.
class ConstraintEncoder::Walker : public TermVisitorCallback {
 public:
  Walker(ConstraintEncoder& enc, TermList& side) : d_enc(enc), d_side(side) {}

  VisitResult visit(const Term_* t, bool preorder) override {
    if (!preorder) {
      return VisitResult::Process;
    }
    enc_fun* e = d_enc.d_table[d_enc.d_tm->get_tag(t->get_symbol())];
    if (e == nullptr) {
      return VisitResult::Process;
    }
    if (const Term_* const* known = d_enc.d_encoded.get(t)) {
      d_subst.insert(t, *known);
      return VisitResult::Skip;
    }
    const Term_* replacement = nullptr;
    if (!(*e)(*d_enc.d_tm, t, replacement, d_side, d_enc.d_added)) {
      return VisitResult::Process;
    }
    d_enc.d_encoded.insert(t, replacement);
    d_subst.insert(t, replacement);
    if (d_enc.d_termination != nullptr) {
      (*d_enc.d_termination)();
    }
    return VisitResult::Process;
  }

  TermMap& substitution() { return d_subst; }

 private:
  ConstraintEncoder& d_enc;
  TermList& d_side;
  TermMap d_subst;
};

ConstraintEncoder::ConstraintEncoder(TermManager* tm,
                                     const Options& options,
                                     RewriteStack* rewrite_stack)
    : d_tm(tm), d_options(options), d_rewrite_stack(rewrite_stack) {
  // Term-ITE simplification and ITE minimisation refine this encoder; the
  // plain encoding is always correct without them.
  register_encoder(std::make_unique<TermIteEncoder>());
}

ConstraintEncoder::~ConstraintEncoder() = default;

void ConstraintEncoder::register_encoder(std::unique_ptr<enc_fun> e) {
  d_table[e->get_tag()] = e.get();
  d_encoders.push_back(std::move(e));
}

void ConstraintEncoder::set_termination_test(TerminationTest* test) {
  d_termination = test;
  for (auto& e : d_encoders) {
    e->set_termination_test(test);
  }
}

void ConstraintEncoder::reset() {
  d_encoded.clear();
  d_added.clear();
}

const Term_* ConstraintEncoder::encode(const Term_* t,
                                       TermList& side_constraints) {
  size_t first_side = side_constraints.size();
  TermMap subst;
  {
    Walker cb(*this, side_constraints);
    TermVisitor<Walker> walk(*d_tm, cb);
    walk.visit(t, false);
    // Side constraints may hold encodable terms of their own; the list
    // grows while it is walked, and the visitor's cache spans all roots.
    for (size_t i = first_side; i < side_constraints.size(); ++i) {
      walk.visit(side_constraints[i], false);
    }
    subst = std::move(cb.substitution());
  }
  if (subst.empty()) {
    return t;
  }
  TermList roots(side_constraints.begin() + first_side, side_constraints.end());
  roots.push_back(t);
  TermList images;
  d_tm->substitute(roots, subst, images, false);
  const Term_* result = images.back();
  images.pop_back();
  side_constraints.resize(first_side);
  side_constraints.insert(side_constraints.end(), images.begin(), images.end());
  return result;
}

const Term_* ConstraintEncoder::operator()(const Term_* f) {
  TermList side;
  const Term_* result = encode(f, side);
  for (const Term_* s : side) {
    result = d_tm->make_and(result, s);
  }
  return result;
}

// ---------------------------------------------------------------------------
// Encoders
// ---------------------------------------------------------------------------

bool TermIteEncoder::operator()(TermManager& tm,
                                const Term_* t,
                                const Term_*& replacement,
                                TermList& side,
                                TermList& added) {
  const Term_* c = t->get_child(0);
  const Term_* v = tm.make_constant(tm.make_unique_symbol(
      ".ite" + std::to_string(t->get_id()), t->get_type()));
  side.push_back(tm.make_or(tm.make_not(c), tm.make_eq(v, t->get_child(1))));
  side.push_back(tm.make_or(c, tm.make_eq(v, t->get_child(2))));
  added.push_back(v);
  replacement = v;
  return true;
}

}  // namespace zenlo
