// The kinds of interpreted symbols. Every layer above the term store
// dispatches on them: theory solvers pick their atoms by tag, the
// simplifier registers one rewriter per tag, the printers and the copier
// choose the syntax and the constructor by tag. User symbols, numbers and
// the rounding-mode constants have tag UNKNOWN.
//
// The numeric values are part of the C interface (zenlo_decl_get_tag).
#ifndef ZENLO_TERMS_SYMBOLTAG_H
#define ZENLO_TERMS_SYMBOLTAG_H

#include <cstdint>
#include <string>

namespace zenlo {

struct SymbolTag {
  enum tag : uint8_t {
    UNKNOWN = 0,
    TRUE,
    FALSE,
    AND,
    OR,
    NOT,
    IFF,
    PLUS,
    TIMES,
    DIVIDE,
    FLOOR,
    LEQ,
    EQ,
    ITE,
    INT_MOD_CONGR,
    BV_CONCAT,
    BV_EXTRACT,
    BV_NOT,
    BV_AND,
    BV_OR,
    BV_XOR,
    BV_ULT,
    BV_SLT,
    BV_ULE,
    BV_SLE,
    BV_COMP,
    BV_NEG,
    BV_ADD,
    BV_SUB,
    BV_MUL,
    BV_UDIV,
    BV_SDIV,
    BV_UREM,
    BV_SREM,
    BV_LSHL,
    BV_LSHR,
    BV_ASHR,
    BV_ROL,
    BV_ROR,
    BV_ZEXT,
    BV_SEXT,
    ARRAY_READ,
    ARRAY_WRITE,
    ARRAY_CONST,
    FP_EQ,
    FP_LT,
    FP_LE,
    FP_NEG,
    FP_ADD,
    FP_SUB,
    FP_MUL,
    FP_DIV,
    FP_SQRT,
    FP_ABS,
    FP_MIN,
    FP_MAX,
    FP_CAST,
    FP_ROUND_TO_INT,
    FP_FROM_SBV,
    FP_FROM_UBV,
    FP_TO_SBV,
    FP_TO_UBV,
    FP_AS_IEEEBV,
    FP_ISNAN,
    FP_ISINF,
    FP_ISZERO,
    FP_ISSUBNORMAL,
    FP_ISNORMAL,
    FP_ISNEG,
    FP_ISPOS,
    FP_FROM_IEEEBV,
    INT_FROM_UBV,
    INT_FROM_SBV,
    INT_TO_BV,
    PI,
    EXP,
    SIN,
    LOG,
    POW,
    ASIN,
    FORALL,
    EXISTS,
  };

  // One past the largest tag, for tables indexed by tag.
  static constexpr int num_tags = EXISTS + 1;

  // Returns: "SymbolTag::" followed by the enumerator's name.
  static std::string to_str(tag t);
};

}  // namespace zenlo

#endif
