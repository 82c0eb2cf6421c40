#include "terms/termnormalizer.h"

#include <ostream>

#include "base/logger.h"
#include "terms/termmanager.h"

namespace zenlo {

TermNormalizer::TermNormalizer(TermManager* tm) : d_tm(tm) {}

TermNormalizer::~TermNormalizer() = default;

void TermNormalizer::register_rule(norm_fun* rule) {
  d_rules.emplace_back(rule);
  SymbolTag::tag tag = rule->get_applicant();
  d_by_tag[tag].push_back(rule);
  if (tag == SymbolTag::EQ) {
    d_by_group[static_cast<int>(rule->get_group())].push_back(rule);
  }
}

void TermNormalizer::register_global_rule(global_norm_fun* rule) {
  d_global.emplace_back(rule);
}

void TermNormalizer::register_session_handler(session_fun* handler) {
  d_sessions.emplace_back(handler);
}

// ----------------------------------------------------------------------
// One term
// ----------------------------------------------------------------------

TermNormalizer::norm_group TermNormalizer::group_of_equality(
    const Term_* t) const {
  const Type* type = t->get_child(0)->get_type();
  if (d_tm->is_real_type(type) || d_tm->is_integer_type(type)) {
    return norm_group::Arith;
  }
  if (d_tm->is_bv_type(type) || d_tm->is_fp_type(type)) {
    return norm_group::BvFp;
  }
  if (d_tm->is_array_type(type)) {
    return norm_group::Array;
  }
  return norm_group::Other;
}

const std::vector<TermNormalizer::norm_fun*>& TermNormalizer::rules_for(
    const Term_* t) const {
  SymbolTag::tag tag = d_tm->get_tag(t->get_symbol());
  if (tag == SymbolTag::EQ) {
    return d_by_group[static_cast<int>(group_of_equality(t))];
  }
  return d_by_tag[tag];
}

const Term_* TermNormalizer::normalize(const Term_* t) {
  if (t->get_arity() == 0) {
    return t;
  }
  for (norm_fun* rule : rules_for(t)) {
    const Term_* r = nullptr;
    if ((*rule)(*d_tm, t, &r) && r != nullptr && r != t) {
      if (d_logger != nullptr && d_logger->would_log("", 5)) {
        (*d_logger)("") << loglevel(5) << "rewriting with "
                        << rule->get_signature() << endlog;
      }
      return r;
    }
  }
  return t;
}

const Term_* TermNormalizer::find_in_cache(const Term_* t) const {
  // A chain arises when a term's rewrite was itself rewritten later;
  // following it to the end gives the latest normal form.
  while (const Term_* const* next = d_memo.get(t)) {
    t = *next;
  }
  return t;
}

const Term_* TermNormalizer::norm_single(const Term_* t) {
  if (d_memo.contains(t)) {
    return find_in_cache(t);
  }
  const Term_* r = normalize(t);
  if (r != t) {
    d_memo.insert(t, r);
  }
  return r;
}

// ----------------------------------------------------------------------
// A whole formula
// ----------------------------------------------------------------------

const Term_* TermNormalizer::apply_global_rules(const Term_* t) {
  SymbolTag::tag tag = d_tm->get_tag(t->get_symbol());
  for (auto& rule : d_global) {
    const Term_* r = nullptr;
    if (rule->get_applicant() == tag && (*rule)(*d_tm, t, &r) && r != nullptr) {
      if (d_logger != nullptr) {
        (*d_logger)("") << loglevel(3) << "normalizing with "
                        << rule->get_signature() << endlog;
      }
      t = r;
      tag = d_tm->get_tag(t->get_symbol());
    }
  }
  return t;
}

// Rebuilds t from the normal forms of its arguments (all known by now) and
// rewrites the head until no rule changes it.
const Term_* TermNormalizer::rebuild(const Term_* t) {
  d_args.clear();
  bool changed = false;
  for (const Term_* c : *t) {
    const Term_* n = find_in_cache(c);
    changed = changed || n != c;
    d_args.push_back(n);
  }
  const Term_* r = changed ? d_tm->make_term(t->get_symbol(), d_args) : t;
  for (const Term_* next = normalize(r); next != r; next = normalize(r)) {
    r = next;
  }
  return r;
}

const Term_* TermNormalizer::operator()(const Term_* root) {
  if (d_logger != nullptr) {
    (*d_logger)("") << loglevel(4) << "normalizing ..." << endlog;
  }
  for (auto& s : d_sessions) {
    s->begin();
  }
  root = apply_global_rules(root);
  TermSet done;
  d_stack.clear();
  d_stack.push_back(root);
  while (!d_stack.empty()) {
    const Term_* t = d_stack.back();
    if (done.contains(t)) {
      d_stack.pop_back();
      continue;
    }
    bool ready = true;
    for (const Term_* c : *t) {
      if (!done.contains(c)) {
        d_stack.push_back(c);
        ready = false;
      }
    }
    if (!ready) {
      continue;
    }
    d_stack.pop_back();
    done.insert(t);
    const Term_* r = rebuild(t);
    if (r != t) {
      d_memo[t] = r;
    }
  }
  for (auto& s : d_sessions) {
    s->end();
  }
  return find_in_cache(root);
}

}  // namespace zenlo
