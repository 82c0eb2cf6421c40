// A reference evaluator for the simplifier's tests: the value of a small
// ground term under an assignment of its constants, written from the
// operators' definitions and independent of the simplifier. Booleans are
// 0 and 1, bit-vectors their unsigned value (host arithmetic, widths up to
// 32), Real and Int exact rationals.
//
// Operations left open by their theory get one fixed, non-trivial
// meaning here (x / 0 = 2x + 1; the bit-vector divisions by zero as in
// SMT-LIB), so a rewrite that depended on another meaning would show.
#ifndef ZENLO_TESTS_UNIT_SIMPL_EVAL_H
#define ZENLO_TESTS_UNIT_SIMPL_EVAL_H

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <unordered_map>

#include "terms/termmanager.h"

namespace zenlo_test {

using zenlo::QNumber;
using zenlo::SymbolTag;
using zenlo::Term_;
using zenlo::TermManager;

class RefEval {
 public:
  RefEval(const TermManager& tm, const std::map<std::string, QNumber>& env)
      : d_tm(tm), d_env(env) {}

  QNumber operator()(const Term_* t) {
    auto it = d_memo.find(t);
    if (it != d_memo.end()) {
      return it->second;
    }
    QNumber v = eval(t);
    d_memo.emplace(t, v);
    return v;
  }

 private:
  static uint64_t mask(size_t w) { return w >= 64 ? ~0ull : (1ull << w) - 1; }

  static int64_t to_signed(uint64_t a, size_t w) {
    return (a >> (w - 1)) & 1 ? static_cast<int64_t>(a | ~mask(w))
                              : static_cast<int64_t>(a);
  }

  size_t width(const Term_* t) const {
    size_t w = 0;
    d_tm.is_bv_type(t->get_type(), &w);
    return w;
  }

  uint64_t bv(const Term_* t) { return (*this)(t).to_long(); }

  QNumber eval(const Term_* t) {
    QNumber v;
    if (d_tm.is_number(t->get_symbol(), &v)) {
      return v;
    }
    if (t == d_tm.make_true() || t == d_tm.make_false()) {
      return QNumber(t == d_tm.make_true() ? 1L : 0L);
    }
    if (t->get_arity() == 0) {
      auto it = d_env.find(t->get_symbol()->get_name());
      if (it == d_env.end()) {
        throw std::runtime_error("unassigned " + t->to_str());
      }
      return it->second;
    }
    SymbolTag::tag tag = d_tm.get_tag(t->get_symbol());
    if (tag >= SymbolTag::BV_CONCAT && tag <= SymbolTag::BV_SEXT) {
      return QNumber(static_cast<long>(eval_bv(t, tag)));
    }
    return eval_other(t, tag);
  }

  QNumber eval_other(const Term_* t, SymbolTag::tag tag) {
    auto c = [&](size_t i) { return (*this)(t->get_child(i)); };
    auto b = [](bool x) { return QNumber(x ? 1L : 0L); };
    switch (tag) {
      case SymbolTag::AND: return b(c(0) == 1L && c(1) == 1L);
      case SymbolTag::OR: return b(c(0) == 1L || c(1) == 1L);
      case SymbolTag::NOT: return b(c(0) == 0L);
      case SymbolTag::IFF:
      case SymbolTag::EQ: return b(c(0) == c(1));
      case SymbolTag::LEQ: return b(c(0) <= c(1));
      case SymbolTag::ITE: return c(0) == 1L ? c(1) : c(2);
      case SymbolTag::PLUS: return c(0) + c(1);
      case SymbolTag::TIMES: return c(0) * c(1);
      case SymbolTag::DIVIDE:
        return c(1).is_zero() ? c(0) * QNumber(2L) + QNumber(1L) : c(0) / c(1);
      case SymbolTag::FLOOR: return c(0).floor();
      case SymbolTag::INT_MOD_CONGR: {
        QNumber m;
        d_tm.is_int_mod_congr(t->get_symbol(), &m);
        return b(m.divides(c(0) - c(1)));
      }
      case SymbolTag::INT_FROM_UBV: return c(0);
      case SymbolTag::INT_FROM_SBV: {
        size_t w = width(t->get_child(0));
        return QNumber(static_cast<long>(to_signed(c(0).to_long(), w)));
      }
      default:
        throw std::runtime_error("no reference for " + t->to_shallow_str());
    }
  }

  uint64_t eval_bv(const Term_* t, SymbolTag::tag tag) {
    size_t w = width(t->get_child(0));
    uint64_t m = mask(w);
    uint64_t a = bv(t->get_child(0));
    if (t->get_arity() == 1) {
      return eval_bv_unary(t, tag, w, a);
    }
    uint64_t y = bv(t->get_child(1));
    int64_t sa = to_signed(a, w), sy = to_signed(y, w);
    switch (tag) {
      case SymbolTag::BV_CONCAT: return (a << width(t->get_child(1))) | y;
      case SymbolTag::BV_AND: return a & y;
      case SymbolTag::BV_OR: return a | y;
      case SymbolTag::BV_XOR: return a ^ y;
      case SymbolTag::BV_ULT: return a < y;
      case SymbolTag::BV_ULE: return a <= y;
      case SymbolTag::BV_SLT: return sa < sy;
      case SymbolTag::BV_SLE: return sa <= sy;
      case SymbolTag::BV_COMP: return a == y;
      case SymbolTag::BV_ADD: return (a + y) & m;
      case SymbolTag::BV_SUB: return (a - y) & m;
      case SymbolTag::BV_MUL: return (a * y) & m;
      case SymbolTag::BV_UDIV: return y == 0 ? m : a / y;
      case SymbolTag::BV_UREM: return y == 0 ? a : a % y;
      case SymbolTag::BV_SDIV:
        return y == 0 ? (sa < 0 ? 1 : m) : static_cast<uint64_t>(sa / sy) & m;
      case SymbolTag::BV_SREM:
        return y == 0 ? a : static_cast<uint64_t>(sa % sy) & m;
      case SymbolTag::BV_LSHL: return y >= w ? 0 : (a << y) & m;
      case SymbolTag::BV_LSHR: return y >= w ? 0 : a >> y;
      case SymbolTag::BV_ASHR:
        return static_cast<uint64_t>(sa >> (y >= w ? w - 1 : y)) & m;
      default:
        throw std::runtime_error("no reference for " + t->to_shallow_str());
    }
  }

  uint64_t eval_bv_unary(const Term_* t,
                         SymbolTag::tag tag,
                         size_t w,
                         uint64_t a) {
    const zenlo::FamilyKey* k = d_tm.get_family_key(t->get_symbol());
    switch (tag) {
      case SymbolTag::BV_NOT: return ~a & mask(w);
      case SymbolTag::BV_NEG: return (0 - a) & mask(w);
      case SymbolTag::BV_EXTRACT:
        return (a >> k->n[1]) & mask(k->n[0] - k->n[1] + 1);
      case SymbolTag::BV_ZEXT: return a;
      case SymbolTag::BV_SEXT:
        return static_cast<uint64_t>(to_signed(a, w)) & mask(w + k->n[0]);
      case SymbolTag::BV_ROL:
      case SymbolTag::BV_ROR: {
        size_t r = k->n[0] % w;
        r = tag == SymbolTag::BV_ROL ? r : (w - r) % w;
        return r == 0 ? a : ((a << r) | (a >> (w - r))) & mask(w);
      }
      default:
        throw std::runtime_error("no reference for " + t->to_shallow_str());
    }
  }

  const TermManager& d_tm;
  const std::map<std::string, QNumber>& d_env;
  std::unordered_map<const Term_*, QNumber> d_memo;
};

}  // namespace zenlo_test

#endif
