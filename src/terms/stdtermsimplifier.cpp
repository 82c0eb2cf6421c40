#include "terms/stdtermsimplifier.h"

#include "terms/termmanager.h"
#include "terms/termsimplifications.h"

namespace zenlo {

StdTermSimplifier::StdTermSimplifier(TermManager* tm, bool standard)
    : d_tm(tm), d_normalizer(tm) {
  if (standard) {
    termsimpl::register_standard_simplifications(tm, this);
  }
}

StdTermSimplifier::~StdTermSimplifier() = default;

const Term_* StdTermSimplifier::operator()(const Symbol* symbol,
                                           TermList& args) {
  if (args.empty()) {
    return nullptr;
  }
  simpl_fun* f = d_funs[d_tm->get_tag(symbol)].get();
  const Term_* t = f != nullptr ? (*f)(*d_tm, symbol, args)
                                : d_tm->do_make_term(symbol, args);
  return d_normalizer.norm_single(t);
}

void StdTermSimplifier::register_simplification(SymbolTag::tag tag,
                                                simpl_fun* f) {
  std::unique_ptr<simpl_fun> owned(f);
  if (d_funs[tag] != nullptr) {
    throw error("a simplification for " + SymbolTag::to_str(tag)
                + " is registered already");
  }
  d_funs[tag] = std::move(owned);
}

void StdTermSimplifier::register_normalization(TermNormalizer::norm_fun* rule) {
  d_normalizer.register_rule(rule);
}

void StdTermSimplifier::set_logger(Logger* logger) {
  d_logger = logger;
  d_normalizer.set_logger(logger);
}

}  // namespace zenlo
