// The standard simplification functions and rewrite rules of the
// construction-time simplifier, and the notion of a value that model
// evaluation and the simplifier share.
//
// The functions themselves live in one file per theory family
// (termsimplifications_*.cpp); this header is what other folders call.
#ifndef ZENLO_TERMS_TERMSIMPLIFICATIONS_H
#define ZENLO_TERMS_TERMSIMPLIFICATIONS_H

#include "terms/term.h"

namespace zenlo {

class StdTermSimplifier;
class TermManager;

namespace termsimpl {

// Fills both tables of `s`: one simplification function per tag, and the
// bit-vector rewrite rules of the embedded normalizer, in their fixed
// order.
// - Requires: `s` has no function and no rule registered yet.
// - Throws: StdTermSimplifier::error when a tag has a function already.
void register_standard_simplifications(TermManager* tm, StdTermSimplifier* s);

// - Returns: whether `t` is a value of its type: true or false; a number
//   (Real, Int, bit-vector, float); one of the four rounding modes; an
//   array built by writes of values into a constant array of a value; an
//   enum value; with `with_abstract`, also a constant whose name begins
//   with "@" (the abstract values of models).
bool is_value(TermManager* tm, const Term_* t, bool with_abstract);

}  // namespace termsimpl
}  // namespace zenlo

#endif
