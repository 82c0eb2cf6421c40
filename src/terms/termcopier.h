// Copying terms from one store into another. Interpreted symbols are
// recreated in the target by tag and parameters, numbers by value, enum
// types by name and values, and every other symbol by name with its type
// copied; each term is rebuilt through the target's make_term, so the
// target's simplifier sees the copy. One copier keeps its memos across
// calls, so copying many terms shares the work on common subterms.
//
// Used by TermManager::copy_term and its batch forms; the checks of the
// target store are off while copying, since the source terms were checked
// when they were made.
#ifndef ZENLO_TERMS_TERMCOPIER_H
#define ZENLO_TERMS_TERMCOPIER_H

#include "terms/hashtable.h"
#include "terms/term.h"
#include "terms/termmanager.h"

namespace zenlo {

class TermCopier {
 public:
  TermCopier(TermManager& from, TermManager& to) : d_from(from), d_to(to) {}

  // Returns: the image of t (a term of `from`) in `to`.
  const Term_* copy_term(const Term_* t);
  const Type* copy_type(const Type* t);
  const Symbol* copy_symbol(const Symbol* s);

  // After: `from_term` is copied as `to_term`, and not descended into.
  void seed(const Term_* from_term, const Term_* to_term) {
    d_terms[from_term] = to_term;
  }

  // For the walk: the image of a term copied already, or null.
  const Term_* image(const Term_* t) const {
    const Term_* const* i = d_terms.get(t);
    return i == nullptr ? nullptr : *i;
  }

  void rebuild(const Term_* t);

 private:
  const Type* copy_type_uncached(const Type* t);
  const Symbol* copy_symbol_uncached(const Symbol* s);
  const Symbol* copy_number(const Symbol* s, const QNumber& value);

  TermManager& d_from;
  TermManager& d_to;
  hsh::HashMap<const Type*, const Type*> d_types;
  hsh::HashMap<const Symbol*, const Symbol*> d_symbols;
  TermMap d_terms;
  TermList d_args;
};

}  // namespace zenlo

#endif
