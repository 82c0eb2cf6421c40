// Backtrack points, assumptions and models of an environment.
#include "api/environment.h"

namespace zenlo {

namespace {

[[noreturn]] void not_yet(const char* what) {
  throw Environment::error(std::string(what) + " is not supported yet");
}

}  // namespace

void Environment::push_backtrack_point() {
  not_yet("push");
}

void Environment::pop_backtrack_point() {
  not_yet("pop");
}

int Environment::check_with_assumptions(
    const std::vector<const Term_*>& /*assumptions*/) {
  not_yet("checking under assumptions");
}

std::vector<const Term_*> Environment::get_unsat_assumptions() {
  not_yet("get-unsat-assumptions");
}

const Term_* Environment::get_model_value(const Term_* /*t*/) {
  not_yet("model generation");
}

std::vector<std::pair<const Term_*, const Term_*>>
Environment::get_model_assignments() {
  not_yet("model generation");
}

}  // namespace zenlo
