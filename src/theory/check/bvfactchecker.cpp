#include "theory/check/bvfactchecker.h"

#include <unordered_set>

#include "base/configuration.h"
#include "dpll/dpllsolver.h"
#include "terms/termmanager.h"
#include "theory/bv/eagerclausesink.h"
#include "theory/bv/wordclausifier.h"

namespace zenlo {

namespace {

bool blastable_type(const TermManager& tm, const Type* t) {
  return tm.is_bv_type(t) || tm.is_bool_type(t);
}

}  // namespace

bool BvFactChecker::collect(const TheoryFact& fact,
                            std::vector<const Term_*>& apps,
                            std::string& why) const {
  std::vector<const Term_*> stack;
  std::unordered_set<const Term_*> seen;
  for (TheoryLit l : fact.lits) {
    stack.push_back(l.atom());
  }
  while (!stack.empty()) {
    const Term_* t = stack.back();
    stack.pop_back();
    if (!seen.insert(t).second) {
      continue;
    }
    if (!blastable_type(d_tm, t->get_type())) {
      why = "not a bit-vector term: " + t->to_shallow_str();
      return false;
    }
    if (d_tm.get_tag(t->get_symbol()) == SymbolTag::ARRAY_READ) {
      // A leaf, tied only to the reads of the same array term: its array
      // is no word.
      apps.push_back(t);
      stack.push_back(t->get_child(1));
      continue;
    }
    if (t->get_arity() > 0 && d_tm.is_uninterpreted_function(t->get_symbol())) {
      apps.push_back(t);
    }
    stack.insert(stack.end(), t->begin(), t->end());
  }
  return true;
}

std::string BvFactChecker::check(const TheoryFact& fact) {
  std::vector<const Term_*> apps;
  std::string why;
  if (!collect(fact, apps, why)) {
    return why;
  }
  Configuration::Dpll config;
  DpllSolver engine(&config);
  bv::eager::EagerClauseSink sink(&engine);
  bv::WordClausifier blaster(&d_tm, nullptr);
  blaster.set_applications_as_leaves(true);
  try {
    for (TheoryLit l : fact.lits) {
      bv::BvLit b = blaster.bit_blast(l.atom(), sink);
      sink.push_unit(l.negated() ? -b : b);
    }
    // Functional consistency: for two applications of one function,
    // some argument differs or the results agree.
    SimplificationScope raw(d_tm, false);
    for (size_t i = 0; i < apps.size(); ++i) {
      for (size_t j = i + 1; j < apps.size(); ++j) {
        const Term_* a = apps[i];
        const Term_* b = apps[j];
        if (a->get_symbol() != b->get_symbol()) {
          continue;
        }
        const bool read =
            d_tm.get_tag(a->get_symbol()) == SymbolTag::ARRAY_READ;
        if (read && a->get_child(0) != b->get_child(0)) {
          continue;
        }
        bv::BvLitList clause;
        for (size_t k = read ? 1 : 0; k < a->get_arity(); ++k) {
          const Term_* x = a->get_child(k);
          const Term_* y = b->get_child(k);
          const Term_* eq = d_tm.is_bool_type(x->get_type())
                                ? d_tm.make_iff(x, y)
                                : d_tm.make_equal(x, y);
          clause.push_back(-blaster.bit_blast(eq, sink));
        }
        const Term_* same = d_tm.is_bool_type(a->get_type())
                                ? d_tm.make_iff(a, b)
                                : d_tm.make_equal(a, b);
        clause.push_back(blaster.bit_blast(same, sink));
        sink.clause() = clause;
        sink.add_clause();
      }
    }
  } catch (const Exception& e) {
    return std::string("cannot blast: ") + e.what();
  }
  if (engine.solve()) {
    return "its literals have a model in bits";
  }
  return "";
}

}  // namespace zenlo
