// TypecheckScope: sets the term store's type checking for the length of a
// scope; the old value comes back on every exit, exceptions included.
// A check turns it off: every term the pipeline builds comes from terms
// already checked, and the checks would cost a lookup per constructed node.
#ifndef ZENLO_TERMS_TYPECHECKSCOPE_H
#define ZENLO_TERMS_TYPECHECKSCOPE_H

#include "terms/termmanager.h"

namespace zenlo {

class TypecheckScope {
 public:
  TypecheckScope(TermManager& tm, bool on)
      : d_tm(tm), d_old(tm.typechecking_enabled()) {
    tm.enable_typechecking(on);
  }

  ~TypecheckScope() { d_tm.enable_typechecking(d_old); }

  TypecheckScope(const TypecheckScope&) = delete;
  TypecheckScope& operator=(const TypecheckScope&) = delete;

 private:
  TermManager& d_tm;
  bool d_old;
};

}  // namespace zenlo

#endif
