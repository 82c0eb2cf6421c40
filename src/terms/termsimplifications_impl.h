// What the files of the standard simplification functions share: small
// helpers on numbers and tags, the value comparison behind equalities, and
// the registration function of each family. Not for other folders.
#ifndef ZENLO_TERMS_TERMSIMPLIFICATIONS_IMPL_H
#define ZENLO_TERMS_TERMSIMPLIFICATIONS_IMPL_H

#include "terms/stdtermsimplifier.h"
#include "terms/termmanager.h"

namespace zenlo {
namespace termsimpl {

using SimplFun = StdTermSimplifier::simpl_fun;

inline SymbolTag::tag tag_of(const TermManager& tm, const Term_* t) {
  return tm.get_tag(t->get_symbol());
}

inline bool is_num(const TermManager& tm, const Term_* t) {
  return tm.is_number(t->get_symbol());
}

inline bool num_value(const TermManager& tm, const Term_* t, QNumber& v) {
  return tm.is_number(t->get_symbol(), &v);
}

inline bool is_arith(const TermManager& tm, const Term_* t) {
  return tm.is_arithmetic_type(t->get_type());
}

inline const Term_* bool_term(const TermManager& tm, bool b) {
  return b ? tm.make_true() : tm.make_false();
}

// Returns: whether t is a floating-point number whose bits are a NaN.
bool is_fp_nan_number(const TermManager& tm, const Term_* t);

// Compares two terms as values.
// - Returns: 1 when they are the same value, 0 when they are known to be
//   different values, -1 when that cannot be told from the terms.
int compare_values(TermManager& tm, const Term_* a, const Term_* b);

// Equality over any type but Real and Int.
class GenericEqSimpl : public SimplFun {
 public:
  const Term_* operator()(TermManager& tm,
                          const Symbol* symbol,
                          TermList& args) override;
};

void register_bool_simplifications(StdTermSimplifier& s);
void register_arith_simplifications(StdTermSimplifier& s);
void register_bv_simplifications(StdTermSimplifier& s);
void register_fp_simplifications(StdTermSimplifier& s);
void register_bv_eq_rules(StdTermSimplifier& s);
void register_bv_bit_rules(StdTermSimplifier& s);
void register_bv_op_rules(StdTermSimplifier& s);

}  // namespace termsimpl
}  // namespace zenlo

#endif
