// The table of SMT-LIB 2 built-in symbols: one SymbolHandler per name,
// built once and shared by every parser. Most handlers are a plain
// function with an arity rule; indexed symbols get the indices too. Each
// theory registers its symbols in a file of its own.
//
// Only the frontend's own files include this header.
#ifndef ZENLO_FRONTEND_SMTLIBHANDLERS_H
#define ZENLO_FRONTEND_SMTLIBHANDLERS_H

#include <memory>
#include <string_view>
#include <vector>

#include "frontend/smtlibtermparser.h"

namespace zenlo {

using HandlerTable = hsh::HashMap<std::string_view, const SymbolHandler*>;

// Returns: the handlers of the SMT-LIB 2 symbols, keyed by name.
const HandlerTable& smtlib2_handlers();

using PlainFn = const Term_* (*)(TermManager& tm,
                                 const Type* sort,
                                 TermArgs args);
using IndexedFn = const Term_* (*)(TermManager& tm,
                                   std::string_view name,
                                   const Type* sort,
                                   IndexArgs indices,
                                   TermArgs args);

class HandlerRegistry {
 public:
  // A symbol taking `arity` arguments, exactly or at least.
  void plain(const char* name, size_t arity, bool exact, PlainFn fn);
  // An indexed symbol; the function checks its own counts.
  void indexed(const char* name, IndexedFn fn);

  HandlerTable& table() { return d_table; }

 private:
  std::vector<std::unique_ptr<SymbolHandler>> d_owned;
  HandlerTable d_table;
};

void add_core_handlers(HandlerRegistry& r);
void add_bv_handlers(HandlerRegistry& r);
void add_fp_handlers(HandlerRegistry& r);

// Whether t is an Int or Real number, and its value.
bool is_rational_literal(TermManager& tm, const Term_* t, QNumber* value);
// Whether t is a bit-vector number, with its value and width.
bool is_bv_literal(TermManager& tm,
                   const Term_* t,
                   QNumber* value,
                   size_t* width);
// -t: a number literal negated as a number, anything else times -1.
const Term_* arith_negate(TermManager& tm, const Term_* t);
// a / b: the number itself for two number literals (b not 0).
const Term_* divide(TermManager& tm, const Term_* a, const Term_* b);
// The float of an IEEE bit pattern: a number for a literal.
const Term_* fp_from_bits(TermManager& tm,
                          size_t e,
                          size_t m,
                          const Term_* bits);

}  // namespace zenlo

#endif
