#include "theory/theoryowner.h"

#include "terms/termmanager.h"

namespace zenlo {

namespace {

// Congruence is sound for every sort but complete only where a sort has
// infinitely many values: over finitely many, distinct terms can run out
// of values, which takes counting.
TheoryId theory_of_sort(const TermManager& tm, const Type* type) {
  if (tm.is_bool_type(type)) {
    return TheoryId::Euf;
  }
  if (tm.is_bv_type(type)) {
    return TheoryId::Bv;
  }
  if (tm.is_fp_type(type) || tm.is_fprounding_type(type)) {
    return TheoryId::Fp;
  }
  if (tm.is_enum_type(type)) {
    // Counting is the cardinality checker's, beside EUF.
    return TheoryId::Euf;
  }
  if (tm.is_array_type(type)) {
    // Over finite sorts too: extensionality instances tie an array's
    // value to its cells, whose sorts have their own solvers.
    return TheoryId::Arr;
  }
  if (tm.is_finite_domain_type(type)) {
    return TheoryId::None;
  }
  return TheoryId::Euf;
}

}  // namespace

TheoryId theory_of(const TermManager& tm, const Term_* t) {
  SymbolTag::tag tag = tm.get_tag(t->get_symbol());
  if (tag >= SymbolTag::BV_CONCAT && tag <= SymbolTag::BV_SEXT) {
    return TheoryId::Bv;
  }
  if (tag >= SymbolTag::FP_EQ && tag <= SymbolTag::FP_FROM_IEEEBV) {
    return TheoryId::Fp;
  }
  switch (tag) {
    case SymbolTag::TRUE:
    case SymbolTag::FALSE:
    case SymbolTag::NOT:
    case SymbolTag::AND:
    case SymbolTag::OR:
    case SymbolTag::IFF: return TheoryId::Search;
    case SymbolTag::PLUS:
    case SymbolTag::TIMES:
    case SymbolTag::DIVIDE:
    case SymbolTag::FLOOR:
    case SymbolTag::LEQ:
    case SymbolTag::INT_MOD_CONGR: return TheoryId::La;
    case SymbolTag::INT_FROM_UBV:
    case SymbolTag::INT_FROM_SBV:
    case SymbolTag::INT_TO_BV: return TheoryId::Bv;
    case SymbolTag::ARRAY_READ:
    case SymbolTag::ARRAY_WRITE:
    case SymbolTag::ARRAY_CONST: return TheoryId::Arr;
    case SymbolTag::PI:
    case SymbolTag::EXP:
    case SymbolTag::SIN:
    case SymbolTag::LOG:
    case SymbolTag::POW:
    case SymbolTag::ASIN: return TheoryId::Na;
    case SymbolTag::FORALL:
    case SymbolTag::EXISTS: return TheoryId::None;
    case SymbolTag::EQ: return theory_of_sort(tm, t->get_child(0)->get_type());
    default: break;
  }
  if (t->get_arity() == 0 && tm.is_bool_type(t->get_type())) {
    return TheoryId::Search;
  }
  return theory_of_sort(tm, t->get_type());
}

const char* theory_name(TheoryId id) {
  switch (id) {
    case TheoryId::Search: return "search";
    case TheoryId::None: return "none";
    case TheoryId::Euf: return "euf";
    case TheoryId::La: return "la";
    case TheoryId::Bv: return "bv";
    case TheoryId::Fp: return "fp";
    case TheoryId::Arr: return "arr";
    case TheoryId::Na: return "na";
  }
  return "none";
}

}  // namespace zenlo
