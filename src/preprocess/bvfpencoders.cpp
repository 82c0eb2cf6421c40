#include "preprocess/bvfpencoders.h"

#include <string>
#include <vector>

#include "terms/numbers.h"
#include "terms/termmanager.h"

namespace zenlo {

namespace {

// sum over i of weight(i) * bit i of w, each bit read as 0 or 1.
const Term_* weighted_bits(TermManager& tm, const Term_* w, bool top_negative) {
  size_t width = 0;
  tm.is_bv_type(w->get_type(), &width);
  const Term_* one = tm.make_bv_number(QNumber(1), 1);
  const Term_* zero = tm.make_number(0);
  const Term_* sum = zero;
  QNumber weight(1);
  for (size_t i = 0; i < width; ++i) {
    QNumber wi = top_negative && i + 1 == width ? -weight : weight;
    const Term_* bit = tm.make_equal(tm.make_bv_extract(i, i, w), one);
    sum = tm.make_plus(sum, tm.make_term_ite(bit, tm.make_number(wi), zero));
    weight = weight * QNumber(2);
  }
  return sum;
}

std::string op_name(const Term_* t) {
  std::string n = t->get_symbol()->get_name();
  return !n.empty() && n[0] == '`' ? n.substr(1) : n;
}

// The function that reads `t`'s open cases, made once per name and type.
const Symbol* open_case_function(TermManager& tm,
                                 const std::string& name,
                                 const Term_* t) {
  std::vector<const Type*> args;
  for (const Term_* c : *t) {
    args.push_back(c->get_type());
  }
  const Type* ft = tm.get_function_type(args, t->get_type());
  const Symbol* f = tm.find_symbol(name);
  if (f == nullptr || f->get_type() != ft) {
    f = tm.make_unique_symbol(name, ft);
  }
  return f;
}

// `t` is c where `regular` holds, the open-case function elsewhere.
void define_guarded(TermManager& tm,
                    const Term_* t,
                    const Term_* c,
                    const Term_* regular,
                    const Symbol* f,
                    TermList& side) {
  TermList args(t->begin(), t->end());
  const Term_* open = tm.make_uninterpreted_function(f, args);
  side.push_back(tm.make_or(tm.make_not(regular), tm.make_equal(c, t)));
  side.push_back(tm.make_or(regular, tm.make_equal(c, open)));
}

}  // namespace

bool IntToBvEncoder::operator()(TermManager& tm,
                                const Term_* t,
                                const Term_*& replacement,
                                TermList& side,
                                TermList& added) {
  size_t width = 0;
  if (!tm.is_bv_type(t->get_type(), &width)) {
    return false;
  }
  std::string id = std::to_string(t->get_id());
  const Term_* c = fresh(tm, ".int2bv" + id, t->get_type(), added);
  // y is the quotient by 2^w, of either sign: the standard reduces every
  // integer modulo 2^w, negative ones included.
  const Term_* y = fresh(tm, "int2bv_y_" + id, tm.get_integer_type(), added);
  const Term_* high = tm.make_times(tm.make_number(BVNumber::pow2(width)), y);
  side.push_back(tm.make_equal(tm.make_plus(high, weighted_bits(tm, c, false)),
                               t->get_child(0)));
  replacement = c;
  return true;
}

bool IntFromBvEncoder::operator()(TermManager& tm,
                                  const Term_* t,
                                  const Term_*& replacement,
                                  TermList& side,
                                  TermList& added) {
  // The sum goes into a side constraint, which is walked: its case splits
  // over the bits are encoded in turn.
  const Term_* c = fresh(tm,
                         ".bv2nat" + std::to_string(t->get_id()),
                         tm.get_integer_type(),
                         added);
  bool is_signed = tm.get_tag(t->get_symbol()) == SymbolTag::INT_FROM_SBV;
  side.push_back(
      tm.make_equal(c, weighted_bits(tm, t->get_child(0), is_signed)));
  replacement = c;
  return true;
}

bool BvDivEncoder::operator()(TermManager& tm,
                              const Term_* t,
                              const Term_*& replacement,
                              TermList& side,
                              TermList& added) {
  size_t width = 0;
  tm.is_bv_type(t->get_type(), &width);
  const Term_* b = t->get_child(1);
  const Term_* c =
      fresh(tm, ".bvdiv" + std::to_string(t->get_id()), t->get_type(), added);
  const Term_* nonzero =
      tm.make_not(tm.make_equal(b, tm.make_bv_number(QNumber(0), width)));
  const Symbol* f = open_case_function(
      tm, "uf." + op_name(t) + "_" + std::to_string(width), t);
  define_guarded(tm, t, c, nonzero, f, side);
  replacement = c;
  return true;
}

bool FpMinMaxEncoder::operator()(TermManager& tm,
                                 const Term_* t,
                                 const Term_*& replacement,
                                 TermList& side,
                                 TermList& added) {
  size_t e = 0, m = 0;
  tm.is_fp_type(t->get_type(), &e, &m);
  const Term_* a = t->get_child(0);
  const Term_* b = t->get_child(1);
  const Term_* c = fresh(
      tm, ".fpminmax" + std::to_string(t->get_id()), t->get_type(), added);
  const Term_* opposite_zeros = tm.make_and(
      tm.make_and(tm.make_fp_iszero(a), tm.make_fp_iszero(b)),
      tm.make_not(tm.make_iff(tm.make_fp_isneg(a), tm.make_fp_isneg(b))));
  const Symbol* f = open_case_function(
      tm,
      "uf." + op_name(t) + "_" + std::to_string(e) + "_" + std::to_string(m),
      t);
  define_guarded(tm, t, c, tm.make_not(opposite_zeros), f, side);
  replacement = c;
  return true;
}

}  // namespace zenlo
