#include "theory/check/theoryfactchecks.h"

#include <string>

#include "terms/termmanager.h"
#include "theory/check/arrfactchecker.h"
#include "theory/check/bvfactchecker.h"
#include "theory/check/eufclosurechecker.h"
#include "theory/check/lafactchecker.h"
#include "theory/theoryowner.h"

namespace zenlo {

namespace {

const char* kind_name(TheoryFactKind kind) {
  switch (kind) {
    case TheoryFactKind::Conflict: return "conflict";
    case TheoryFactKind::Explanation: return "explanation";
    case TheoryFactKind::Lemma: return "lemma";
  }
  return "fact";
}

// The literals as the message shows them, cut short for huge facts: the
// message must name the fact, and the replay gives the rest.
std::string lits_text(const std::vector<TheoryLit>& lits) {
  constexpr size_t kMaxChars = 2000;
  std::string s;
  for (TheoryLit l : lits) {
    std::string a = l.atom()->to_str();
    s += l.negated() ? " (not " + a + ")" : " " + a;
    if (s.size() > kMaxChars) {
      return s.substr(0, kMaxChars) + " ...";
    }
  }
  return s;
}

}  // namespace

TheoryFactChecks::TheoryFactChecks(TermManager& tm, int num_slots)
    : d_tm(tm), d_checkers(num_slots) {
  d_checkers[static_cast<int>(TheoryId::Euf)] =
      std::make_unique<EufClosureChecker>(tm);
  d_checkers[static_cast<int>(TheoryId::La)] =
      std::make_unique<LaFactChecker>(tm);
  d_checkers[static_cast<int>(TheoryId::Bv)] =
      std::make_unique<BvFactChecker>(tm);
  d_checkers[static_cast<int>(TheoryId::Arr)] =
      std::make_unique<ArrFactChecker>(tm);
}

TheoryFactChecks::~TheoryFactChecks() = default;

void TheoryFactChecks::set_checker(int slot,
                                   std::unique_ptr<TheoryFactChecker> checker) {
  d_checkers.at(slot) = std::move(checker);
}

void TheoryFactChecks::check(int slot,
                             const char* theory,
                             const TheoryFact& fact) {
  ++d_checked;
  const std::unique_ptr<TheoryFactChecker>& c = d_checkers.at(slot);
  if (c == nullptr) {
    throw error(std::string("internal error: check of theory facts: ") + theory
                + " has no checker for its " + kind_name(fact.kind));
  }
  std::string why = c->check(fact);
  // Atoms are normalized for every theory alike: an equality that EUF
  // derives between sums reaches it as an arithmetic atom, so a fact may
  // need another theory's reading. Each checker is sound, so a refutation
  // by any of them will do.
  for (size_t i = 0; !why.empty() && i < d_checkers.size(); ++i) {
    if (d_checkers[i] != nullptr && d_checkers[i] != c
        && d_checkers[i]->check(fact).empty()) {
      why.clear();
    }
  }
  if (!why.empty()) {
    throw error(std::string("internal error: check of theory facts: ") + theory
                + " " + kind_name(fact.kind) + " does not hold (" + why
                + "):" + lits_text(fact.lits));
  }
}

}  // namespace zenlo
