// Type checks of the term store are off for the length of a check: every
// term the pipeline builds comes from terms already checked, and the
// checks would cost a lookup per constructed node. The old value comes
// back on every exit.
#ifndef ZENLO_API_TYPECHECKSCOPE_H
#define ZENLO_API_TYPECHECKSCOPE_H

#include "terms/termmanager.h"

namespace zenlo {

class TypecheckOff {
 public:
  explicit TypecheckOff(TermManager& tm)
      : d_tm(tm), d_old(tm.typechecking_enabled()) {
    tm.enable_typechecking(false);
  }

  ~TypecheckOff() { d_tm.enable_typechecking(d_old); }

  TypecheckOff(const TypecheckOff&) = delete;
  TypecheckOff& operator=(const TypecheckOff&) = delete;

 private:
  TermManager& d_tm;
  bool d_old;
};

}  // namespace zenlo

#endif
