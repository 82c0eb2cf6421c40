#include "theory/bv/bvmodelevaluator.h"

#include <unordered_map>

#include "terms/termmanager.h"

namespace zenlo {
namespace bv {

const Term_* ModelEvaluator::value_of(const Term_* t) {
  if (!d_tm->is_bv_type(t->get_type())) {
    return nullptr;
  }
  if (const Term_* v = from_bits(t)) {
    return v;
  }
  if (d_tm->is_number(t->get_symbol())) {
    return t;
  }
  if (d_clausifier->is_terminal(t)) {
    return nullptr;
  }
  return evaluate(t);
}

const Term_* ModelEvaluator::from_bits(const Term_* t) {
  if (!d_clausifier->get_bits(t, d_bits)) {
    return nullptr;
  }
  QNumber sum(0);
  for (size_t i = d_bits.size(); i-- > 0;) {
    if (d_bits[i] != l_undef && d_value(d_bits[i])) {
      BVNumber::set_bit(sum, i, true);
    }
  }
  return d_tm->make_bv_number(sum, d_bits.size());
}

// Bottom-up with an explicit stack. Arguments of Boolean sort (an `ite`'s
// condition) or of other theories have no value here: the whole term then
// has none.
const Term_* ModelEvaluator::evaluate(const Term_* root) {
  SimplificationScope scope(*d_tm, true);
  std::unordered_map<const Term_*, const Term_*> values;
  std::vector<const Term_*> stack{root};
  while (!stack.empty()) {
    const Term_* t = stack.back();
    if (values.count(t) != 0) {
      stack.pop_back();
      continue;
    }
    const Term_* v = nullptr;
    size_t width = 0;
    bool is_bv = d_tm->is_bv_type(t->get_type(), &width);
    if (is_bv && (v = from_bits(t)) != nullptr) {
    } else if (d_tm->is_number(t->get_symbol())) {
      v = t;
    } else if (is_bv && t->get_arity() == 0) {
      v = d_tm->make_bv_number(QNumber(0), width);
    } else if (is_bv && !d_clausifier->is_terminal(t)) {
      bool ready = true;
      for (const Term_* c : *t) {
        if (values.count(c) == 0) {
          stack.push_back(c);
          ready = false;
        }
      }
      if (!ready) {
        continue;
      }
      TermList args;
      for (const Term_* c : *t) {
        if (values[c] == nullptr) {
          return nullptr;
        }
        args.push_back(values[c]);
      }
      v = d_tm->make_term(t->get_symbol(), args);
      if (!d_tm->is_number(v->get_symbol())) {
        v = nullptr;
      }
    }
    values[t] = v;
    stack.pop_back();
  }
  return values[root];
}

}  // namespace bv
}  // namespace zenlo
