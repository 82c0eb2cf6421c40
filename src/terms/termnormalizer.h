// Rewriting by local rules to a fixpoint. A TermNormalizer holds rules
// (norm_fun objects) listed by the tag of the root symbol they apply to;
// a term only meets the rules of its own head, tried in the order they
// were registered, and the first one that changes the term decides.
//
// Two users: StdTermSimplifier embeds one for the cheap bit-vector rules
// that run on every term the store builds (norm_single on the freshly
// made term), and the preprocessing pipeline owns another one for the
// rules that the `preprocessor.simplification` bits select, applied to a
// whole formula by operator().
//
// A rule builds its result through the term store, so with the
// construction-time simplifier on, the result has been simplified and
// normalised in its turn before the rule returns it. The memo maps a term
// to what it was rewritten to; it keys by term pointer and so must be
// cleared when the store collects garbage.
//
// The normalizer knows nothing of the rules' meaning: soundness is the
// business of each rule, and termination the business of the rule set.
#ifndef ZENLO_TERMS_TERMNORMALIZER_H
#define ZENLO_TERMS_TERMNORMALIZER_H

#include <array>
#include <memory>
#include <vector>

#include "terms/hashtable.h"
#include "terms/symboltag.h"
#include "terms/term.h"

namespace zenlo {

class Logger;
class TermManager;

class TermNormalizer {
 public:
  // Rules on EQ are filed by the type of the two sides as well, so that an
  // equality only meets the rules of its theory.
  enum class norm_group { Other = 0, Arith = 1, BvFp = 2, Array = 3 };

  static constexpr int num_groups = 4;

  // A local rewrite rule.
  class norm_fun {
   public:
    virtual ~norm_fun() = default;

    // Returns: the tag of the root symbol this rule looks at.
    virtual SymbolTag::tag get_applicant() const = 0;

    // - Requires: t's head has the applicant tag.
    // - Returns: true when the rule applies; *result is then an
    //   equivalent term, built through the store.
    virtual bool operator()(TermManager& tm,
                            const Term_* t,
                            const Term_** result) = 0;

    // Returns: the group, meaningful for rules on EQ only.
    virtual norm_group get_group() const { return norm_group::Other; }

    // Returns: the rule's complete text, for logs.
    virtual const char* get_signature() const = 0;
  };

  // A rule that sees a whole formula at its root, before the walk.
  class global_norm_fun {
   public:
    virtual ~global_norm_fun() = default;

    // Returns: the root tag this rule applies to; 0 applies to none.
    virtual SymbolTag::tag get_applicant() const { return SymbolTag::UNKNOWN; }

    virtual bool operator()(TermManager& tm,
                            const Term_* t,
                            const Term_** result) = 0;

    virtual const char* get_signature() const = 0;
  };

  // Called around each whole run, for rules that keep state per run.
  class session_fun {
   public:
    virtual ~session_fun() = default;

    virtual void begin() {}

    virtual void end() {}
  };

  // - Requires: `tm` outlives the normalizer.
  explicit TermNormalizer(TermManager* tm);
  ~TermNormalizer();

  TermNormalizer(const TermNormalizer&) = delete;
  TermNormalizer& operator=(const TermNormalizer&) = delete;

  // Takes ownership. A rule goes to the list of its applicant tag, and a
  // rule on EQ to the list of its group too.
  void register_rule(norm_fun* rule);
  void register_global_rule(global_norm_fun* rule);
  void register_session_handler(session_fun* handler);

  void set_logger(Logger* logger) { d_logger = logger; }

  // A whole run: global rules at the root, then every subterm rebuilt
  // bottom-up from the normal forms of its arguments and normalised.
  // Iterative, so any depth is fine.
  // - Returns: the normal form of `t`.
  const Term_* operator()(const Term_* t);

  // - Returns: the normal form of `t` by the rules of its head only (the
  //   arguments are taken as they are); memoised.
  const Term_* norm_single(const Term_* t);

  // - Returns: the result of the first rule of t's head that gives a term
  //   other than t, or t. Not memoised.
  const Term_* normalize(const Term_* t);

  // - Returns: the end of t's chain in the memo (t itself when absent).
  const Term_* find_in_cache(const Term_* t) const;

  // Forgets every memoised rewrite; needed after the store collected
  // garbage, since the memo keys by pointer.
  void clear_cache() { d_memo.clear(); }

  size_t cache_size() const { return d_memo.size(); }

  size_t num_rules() const { return d_rules.size(); }

 private:
  const std::vector<norm_fun*>& rules_for(const Term_* t) const;
  norm_group group_of_equality(const Term_* t) const;
  const Term_* apply_global_rules(const Term_* t);
  const Term_* rebuild(const Term_* t);

  TermManager* d_tm;
  std::vector<std::unique_ptr<norm_fun>> d_rules;
  std::array<std::vector<norm_fun*>, SymbolTag::num_tags> d_by_tag;
  std::array<std::vector<norm_fun*>, num_groups> d_by_group;
  std::vector<std::unique_ptr<global_norm_fun>> d_global;
  std::vector<std::unique_ptr<session_fun>> d_sessions;
  TermMap d_memo;
  Logger* d_logger = nullptr;
  // Work stack and argument buffer of operator(), kept between runs.
  std::vector<const Term_*> d_stack;
  TermList d_args;
};

}  // namespace zenlo

#endif
