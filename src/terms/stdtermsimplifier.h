// The construction-time simplifier that an environment installs in its
// term store. Every application the store builds passes through it: one
// simplification function per symbol tag folds constants and applies the
// identities of its operator (x + 0, (not (not x)), two numbers under one
// bvadd, arguments of commutative operators in ascending id order), then
// the embedded TermNormalizer applies the rules of the head symbol. Terms
// are thus in a weak normal form from the moment they exist.
//
// Every function ends in TermManager::do_make_term, or builds its result
// through the store's constructors, which call back into this simplifier;
// all functions are local (constant time apart from the walk over a sum),
// so the call depth is bounded whatever the depth of the terms.
//
// The tables are filled once, by termsimpl::register_standard_
// simplifications at construction, and never change. The normalizer's
// memo keys by term pointer; the store clears it when it collects
// garbage.
#ifndef ZENLO_TERMS_STDTERMSIMPLIFIER_H
#define ZENLO_TERMS_STDTERMSIMPLIFIER_H

#include <array>
#include <memory>
#include <vector>

#include "base/exception.h"
#include "terms/symboltag.h"
#include "terms/term.h"
#include "terms/termnormalizer.h"
#include "terms/termsimplifier.h"

namespace zenlo {

class Logger;
class TermManager;

class StdTermSimplifier : public TermSimplifier {
 public:
  ZENLO_DECLARE_ERROR;

  // The simplification of one tag.
  class simpl_fun {
   public:
    virtual ~simpl_fun() = default;

    // - Requires: `args` type-checked against `symbol`, whose tag is the
    //   one this function is registered for; args.size() > 0.
    // - Returns: a term equivalent to symbol(args), never null.
    // - After: `args` may have been reordered or overwritten.
    virtual const Term_* operator()(TermManager& tm,
                                    const Symbol* symbol,
                                    TermList& args) = 0;
  };

  // - Requires: `tm` outlives the simplifier.
  // - After: with `standard`, every standard simplification and rule is
  //   registered; otherwise both tables are empty.
  explicit StdTermSimplifier(TermManager* tm, bool standard = true);
  ~StdTermSimplifier() override;

  StdTermSimplifier(const StdTermSimplifier&) = delete;
  StdTermSimplifier& operator=(const StdTermSimplifier&) = delete;

  // - Returns: null for a constant (the store makes it itself), else the
  //   simplified and normalised symbol(args).
  const Term_* operator()(const Symbol* symbol, TermList& args) override;

  // Takes ownership of `f`.
  // - Throws: error naming the tag when the tag has a function already.
  void register_simplification(SymbolTag::tag tag, simpl_fun* f);

  // Takes ownership of `rule`.
  void register_normalization(TermNormalizer::norm_fun* rule);

  void set_logger(Logger* logger);

  TermNormalizer& get_normalizer() { return d_normalizer; }

  // Forgets the normalizer's memo (see the header comment).
  void clear_cache() override { d_normalizer.clear_cache(); }

 private:
  TermManager* d_tm;
  // Indexed by tag: a term only meets the function of its own head.
  std::array<std::unique_ptr<simpl_fun>, SymbolTag::num_tags> d_funs;
  TermNormalizer d_normalizer;
  Logger* d_logger = nullptr;
};

}  // namespace zenlo

#endif
