// TheoryManager: every theory fact goes to an independent checker when
// -check.theory_facts is on. Kept apart from the solvers' dispatch so that
// the checks stay out of the way of those who change it.
#include "terms/termmanager.h"
#include "theory/check/theoryfactchecks.h"
#include "theory/theorymanager.h"

namespace zenlo {

namespace {
// In the order of SolverIndex.
const char* const kTheoryNames[TheoryManager::kNumSolvers] = {
    "EUF", "LA", "BV", "FP", "arrays", "NA"};
}  // namespace

// Builds the set of literals that must be contradictory: a conflict as it
// is, an explanation with the implied literal negated, a lemma negated.
void TheoryManager::check_fact(int solver,
                               TheoryLit lit,
                               const std::vector<TheoryLit>& lits,
                               bool is_lemma) {
  if (d_fact_checks == nullptr) {
    d_fact_checks = std::make_unique<TheoryFactChecks>(*d_tm, kNumSolvers);
  }
  d_check_lits.clear();
  if (!lit.is_undef()) {
    d_check_lits.push_back(~lit);
  }
  for (TheoryLit l : lits) {
    d_check_lits.push_back(is_lemma ? ~l : l);
  }
  TheoryFactKind kind = is_lemma         ? TheoryFactKind::Lemma
                        : lit.is_undef() ? TheoryFactKind::Conflict
                                         : TheoryFactKind::Explanation;
  TheoryFact fact{kind, d_check_lits, d_solvers[solver]->fact_certificate()};
  d_fact_checks->check(solver, kTheoryNames[solver], fact);
}

}  // namespace zenlo
