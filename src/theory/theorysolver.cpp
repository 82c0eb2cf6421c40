#include "theory/theorysolver.h"

#include "base/logger.h"
#include "base/terminationtest.h"

namespace zenlo {

TheorySolver::TheorySolver(TermManager* tm)
    : d_tm(tm), d_logger(new Logger(nullptr)) {}

TheorySolver::~TheorySolver() {
  if (d_owns_logger) {
    delete d_logger;
  }
}

void TheorySolver::set_logger(Logger* logger) {
  if (d_owns_logger) {
    delete d_logger;
  }
  d_logger = logger;
  d_owns_logger = false;
}

std::pair<bool, bool> TheorySolver::tell_atom(const Term_*) {
  return {false, false};
}

void TheorySolver::retract_atom(const Term_* atom) {
  throw error("can't retract atom: " + atom->to_str());
}

bool TheorySolver::assume(TheoryLit) {
  return true;
}

bool TheorySolver::assume(const TheoryEq*) {
  return true;
}

bool TheorySolver::check(bool) {
  return true;
}

void TheorySolver::get_conflict(std::vector<TheoryLit>&) {
  throw error("can't be in conflict");
}

TheoryLit TheorySolver::get_next_implied() {
  return tlit_Undef;
}

bool TheorySolver::get_explanation(TheoryLit, bool, std::vector<TheoryLit>&) {
  throw error("can't explain");
}

bool TheorySolver::has_lemmas() {
  return false;
}

TheoryLemma TheorySolver::get_lemma(std::vector<TheoryLit>&) {
  throw error("can't generate lemmas");
}

void TheorySolver::retract_lemma(void*) {
  throw error("can't retract lemmas");
}

proof::Proof* TheorySolver::get_conflict_proof() {
  throw error("can't produce proofs");
}

proof::Proof* TheorySolver::get_implied_proof(TheoryLit) {
  throw error("can't produce proofs");
}

proof::Proof* TheorySolver::get_lemma_proof(void*) {
  throw error("can't produce proofs");
}

void TheorySolver::build_abstract_model() {
  throw error("can't build abstract model");
}

lbool TheorySolver::equal_in_model(const Term_* a, const Term_* b) {
  throw error("can't check equality of " + a->to_str() + " and " + b->to_str());
}

bool TheorySolver::is_alien(const Term_*) {
  throw error("can't detect alien terms");
}

void TheorySolver::poll_termination() const {
  if (d_termination != nullptr) {
    (*d_termination)();
  }
}

}  // namespace zenlo
