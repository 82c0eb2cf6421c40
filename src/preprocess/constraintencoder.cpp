#include "preprocess/constraintencoder.h"

#include <string>

#include "base/terminationtest.h"
#include "preprocess/arithencoders.h"
#include "preprocess/bvfpencoders.h"
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
    size_t first = d_side.size();
    if (!(*e)(*d_enc.d_tm, t, replacement, d_side, d_enc.d_added)) {
      return VisitResult::Process;
    }
    if (e->defines_by_original()) {
      for (size_t i = first; i < d_side.size(); ++i) {
        d_guarded.emplace_back(i, t);
      }
    }
    d_enc.d_encoded.insert(t, replacement);
    d_subst.insert(t, replacement);
    if (d_enc.d_termination != nullptr) {
      (*d_enc.d_termination)();
    }
    return VisitResult::Process;
  }

  TermMap& substitution() { return d_subst; }

  // (index in the side constraints, the term it defines) of the
  // constraints that must keep their own term.
  std::vector<std::pair<size_t, const Term_*>>& guarded() { return d_guarded; }

 private:
  ConstraintEncoder& d_enc;
  TermList& d_side;
  TermMap d_subst;
  std::vector<std::pair<size_t, const Term_*>> d_guarded;
};

ConstraintEncoder::ConstraintEncoder(TermManager* tm,
                                     const Options& options,
                                     RewriteStack* rewrite_stack)
    : d_tm(tm), d_options(options), d_rewrite_stack(rewrite_stack) {
  // Term-ITE simplification and ITE minimisation refine this encoder; the
  // plain encoding is always correct without them.
  register_encoder(std::make_unique<TermIteEncoder>());
  register_encoder(std::make_unique<IntModCongrEncoder>());
  register_encoder(std::make_unique<FloorEncoder>());
  if (options.times_zero_line) {
    std::vector<std::unique_ptr<enc_fun>> chain;
    chain.push_back(std::make_unique<TimesIteEncoder>());
    chain.push_back(std::make_unique<TimesZeroLineEncoder>());
    register_encoder(
        std::make_unique<chain_enc>(SymbolTag::TIMES, std::move(chain)));
  } else {
    register_encoder(std::make_unique<TimesIteEncoder>());
  }
  register_encoder(std::make_unique<DivideEncoder>(options.na_div_by_zero_uf));
  register_encoder(std::make_unique<IntToBvEncoder>());
  register_encoder(std::make_unique<IntFromBvEncoder>(SymbolTag::INT_FROM_UBV));
  register_encoder(std::make_unique<IntFromBvEncoder>(SymbolTag::INT_FROM_SBV));
  register_encoder(std::make_unique<LogEncoder>());
  register_encoder(std::make_unique<PowEncoder>());
  register_encoder(std::make_unique<ASinEncoder>());
  if (options.bv_div_by_zero_uf) {
    for (SymbolTag::tag tag : {SymbolTag::BV_UDIV,
                               SymbolTag::BV_SDIV,
                               SymbolTag::BV_UREM,
                               SymbolTag::BV_SREM}) {
      register_encoder(std::make_unique<BvDivEncoder>(tag));
    }
  }
  if (options.fp_minmax_zero_uf) {
    for (SymbolTag::tag tag : {SymbolTag::FP_MIN, SymbolTag::FP_MAX}) {
      register_encoder(std::make_unique<FpMinMaxEncoder>(tag));
    }
  }
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
  std::vector<std::pair<size_t, const Term_*>> guarded;
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
    guarded = std::move(cb.guarded());
  }
  if (subst.empty()) {
    return t;
  }
  TermList roots(side_constraints.begin() + first_side, side_constraints.end());
  roots.push_back(t);
  TermList images;
  d_tm->substitute(roots, subst, images, false);
  // A guarded definition says what its term is where the guard holds: the
  // term must stay there (its children are substituted all the same).
  for (const auto& [i, own] : guarded) {
    const Term_* image = subst.get(own) != nullptr ? *subst.get(own) : own;
    subst.erase(own);
    images[i - first_side] =
        d_tm->substitute(side_constraints[i], subst, false);
    subst.insert(own, image);
  }
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

const Term_* ConstraintEncoder::enc_fun::fresh(TermManager& tm,
                                               const std::string& name,
                                               const Type* type,
                                               TermList& added) {
  const Term_* c = tm.make_constant(tm.make_unique_symbol(name, type));
  added.push_back(c);
  return c;
}

bool ConstraintEncoder::chain_enc::operator()(TermManager& tm,
                                              const Term_* t,
                                              const Term_*& replacement,
                                              TermList& side,
                                              TermList& added) {
  for (auto& f : d_fs) {
    if ((*f)(tm, t, replacement, side, added)) {
      return true;
    }
  }
  return false;
}

void ConstraintEncoder::chain_enc::set_termination_test(TerminationTest* test) {
  for (auto& f : d_fs) {
    f->set_termination_test(test);
  }
}

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
