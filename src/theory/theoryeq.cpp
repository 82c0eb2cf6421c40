#include "theory/theoryeq.h"

namespace zenlo {

TheoryEq::TheoryEq(const Term_* a, const Term_* b)
    : d_left(a->get_id() > b->get_id() ? a : b),
      d_right(a->get_id() > b->get_id() ? b : a) {}

void TheoryEq::explain(std::vector<TheoryLit>&) const {}

TheoryEq* TheoryEq::new_copy() const {
  return new TheoryEq(*this);
}

void TheoryEq::destroy() {
  delete this;
}

std::string TheoryEq::to_str() const {
  return "Teq(= " + d_left->to_str() + " " + d_right->to_str() + ")";
}

}  // namespace zenlo
