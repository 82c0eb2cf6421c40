#include "preprocess/polaritychecker.h"

#include <algorithm>

#include "terms/termmanager.h"

namespace zenlo {

namespace {

// The polarity bits seen through a `not`: negative and positive swap.
uint8_t flipped(uint8_t v) {
  return static_cast<uint8_t>(((v & 1) << 1) | ((v & 2) >> 1));
}

}  // namespace

void PolarityChecker::record(const Term_* t, uint8_t value) {
  uint64_t id = t->get_id();
  if (id >= d_value.size()) {
    d_value.resize(std::max<size_t>(id + 1, 2 * d_value.size()), 0);
  }
  if (!d_marks.empty()) {
    d_undo.emplace_back(id, d_value[id]);
  }
  d_value[id] = value;
}

void PolarityChecker::add_formula(const Term_* f) {
  d_stack.clear();
  d_stack.emplace_back(f, static_cast<uint8_t>(kPositive));
  while (!d_stack.empty()) {
    auto [t, incoming] = d_stack.back();
    d_stack.pop_back();
    uint64_t id = t->get_id();
    uint8_t old = id < d_value.size() ? d_value[id] : 0;
    if ((old & incoming) == incoming) {
      continue;
    }
    record(t, static_cast<uint8_t>(old | incoming));
    // Only the new polarity needs to travel down: the old one has been
    // passed on when it was recorded.
    uint8_t fresh = static_cast<uint8_t>(incoming & ~old);
    switch (d_tm->get_tag(t->get_symbol())) {
      case SymbolTag::AND:
      case SymbolTag::OR:
        for (const Term_* a : *t) {
          d_stack.emplace_back(a, fresh);
        }
        break;
      case SymbolTag::NOT:
        d_stack.emplace_back(t->get_child(0), flipped(fresh));
        break;
      case SymbolTag::IFF:
        for (const Term_* a : *t) {
          d_stack.emplace_back(a, static_cast<uint8_t>(kBoth));
        }
        break;
      default: break;
    }
  }
}

void PolarityChecker::add_literal(const Term_* t, bool negated) {
  uint64_t id = t->get_id();
  uint8_t old = id < d_value.size() ? d_value[id] : 0;
  uint8_t bit = negated ? kNegative : kPositive;
  if ((old & bit) == 0) {
    record(t, static_cast<uint8_t>(old | bit));
  }
}

int PolarityChecker::operator()(const Term_* t) const {
  if (!d_enabled) {
    return 0;
  }
  if (!d_tm->is_bool_type(t->get_type())) {
    throw error(
        "polarity information is meaningful only for terms of type Bool");
  }
  uint64_t id = t->get_id();
  return id < d_value.size() ? d_value[id] : 0;
}

void PolarityChecker::pop_backtrack_point() {
  size_t mark = d_marks.back();
  d_marks.pop_back();
  while (d_undo.size() > mark) {
    d_value[d_undo.back().first] = d_undo.back().second;
    d_undo.pop_back();
  }
}

}  // namespace zenlo
