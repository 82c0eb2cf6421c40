// The hook through which construction-time rewriting enters the term store.
// With simplifications on, TermManager::make_term hands every application
// to the installed simplifier before hash-consing it; the simplifier may
// return an equivalent term built through the store, or null to let the
// application be made as it stands. The store itself knows no rewrite.
#ifndef ZENLO_TERMS_TERMSIMPLIFIER_H
#define ZENLO_TERMS_TERMSIMPLIFIER_H

#include "terms/term.h"

namespace zenlo {

class TermSimplifier {
 public:
  virtual ~TermSimplifier() = default;

  // Requires: args type-checked against `symbol` (when checks are on).
  // Returns: a term equivalent to symbol(args), or null.
  // After: args may have been reordered; it is a scratch copy.
  virtual const Term_* operator()(const Symbol* symbol, TermList& args) = 0;

  // Forgets whatever the simplifier remembers of particular terms. The
  // store calls it when it collects garbage, since dead terms' pointers
  // and ids are then reused.
  virtual void clear_cache() {}
};

}  // namespace zenlo

#endif
