// WordClausifier: the word cache, the traversal and the dispatch by
// operator. The circuits are in wordclausifier_gates.cpp and
// wordclausifier_arith.cpp.
#include "theory/bv/wordclausifier.h"

#include "base/terminationtest.h"
#include "terms/termmanager.h"

namespace zenlo {
namespace bv {

ClauseSink::~ClauseSink() = default;

WordClausifierInterface::~WordClausifierInterface() = default;

WordClausifier::WordClausifier(TermManager* tm,
                               const Configuration::Theory::Bv* config)
    : d_tm(tm), d_config(config) {}

WordClausifier::~WordClausifier() = default;

// ---------------------------------------------------------------------------
// Words and the cache
// ---------------------------------------------------------------------------

BvLitList* WordClausifier::word_of(const Term_* term) const {
  size_t id = term->get_id();
  return id < d_words.size() ? d_words[id] : nullptr;
}

BvLitList* WordClausifier::new_word() {
  if (d_free.empty()) {
    d_pool.push_back(std::make_unique<BvLitList>());
    return d_pool.back().get();
  }
  BvLitList* w = d_free.back();
  d_free.pop_back();
  w->clear();
  return w;
}

void WordClausifier::recycle(BvLitList* w) {
  d_free.push_back(w);
}

void WordClausifier::cache(const Term_* term, BvLitList* w) {
  size_t id = term->get_id();
  if (id >= d_words.size()) {
    d_words.resize(std::max(id + 1, d_words.size() * 2), nullptr);
  }
  d_words[id] = w;
  d_order.push_back(term);
  ++d_stats.words;
}

void WordClausifier::mark(const Term_* term) {
  cache(term, &d_mark_word);
  --d_stats.words;
}

bool WordClausifier::get_bits(const Term_* term, BvLitList& bits) const {
  const BvLitList* w = word_of(term);
  if (w == nullptr || w == &d_mark_word) {
    return false;
  }
  bits = *w;
  return true;
}

void WordClausifier::retract_upto(const Term_* term) {
  while (!d_order.empty()) {
    const Term_* t = d_order.back();
    d_order.pop_back();
    if (t != nullptr) {
      if (d_words[t->get_id()] != &d_mark_word) {
        recycle(d_words[t->get_id()]);
      }
      d_words[t->get_id()] = nullptr;
    }
    if (t == term) {
      return;
    }
  }
}

void WordClausifier::push_backtrack_point() {
  d_order.push_back(nullptr);
}

void WordClausifier::pop_backtrack_point() {
  retract_upto(nullptr);
}

bool WordClausifier::is_terminal(const Term_* term) const {
  if (term->get_arity() == 0) {
    return true;
  }
  switch (d_tm->get_tag(term->get_symbol())) {
    case SymbolTag::ITE:
    case SymbolTag::ARRAY_READ:
    case SymbolTag::ARRAY_WRITE: return true;
    default: return d_tm->is_uninterpreted_function(term->get_symbol());
  }
}

// ---------------------------------------------------------------------------
// Entry points
// ---------------------------------------------------------------------------

BvLit WordClausifier::bit_blast(const Term_* term, ClauseSink& sink) {
  return blast_word(term, sink)[0];
}

const BvLitList& WordClausifier::blast_word(const Term_* term,
                                            ClauseSink& sink) {
  d_sink = &sink;
  blast(term);
  return *word_of(term);
}

void WordClausifier::notify_interface_term(const Term_* term,
                                           ClauseSink& sink) {
  blast_word(term, sink);
}

void WordClausifier::set_bits(const Term_* term,
                              ClauseSink& sink,
                              const BvLitList& bits) {
  BvLitList* w = word_of(term);
  if (w == nullptr) {
    w = new_word();
    *w = bits;
    cache(term, w);
    return;
  }
  for (size_t i = 0; i < bits.size(); ++i) {
    sink.push(-(*w)[i], bits[i]);
    sink.push((*w)[i], -bits[i]);
  }
}

void WordClausifier::make_bits(const Term_* term,
                               BvLitList& bits,
                               ClauseSink& sink) {
  const BvLitList* w = word_of(term);
  if (w == nullptr) {
    throw error("make_bits: no word for " + term->to_shallow_str());
  }
  bits.clear();
  for (BvLit b : *w) {
    BvLit l = sink.new_atom();
    sink.push(-l, b);
    sink.push(l, -b);
    bits.push_back(l);
  }
}

bool WordClausifier::bit_blast_theory_eq(BvLit lit,
                                         const Term_* lhs,
                                         const Term_* rhs,
                                         ClauseSink& sink) {
  d_sink = &sink;
  blast(lhs);
  blast(rhs);
  const BvLitList& a = *word_of(lhs);
  const BvLitList& b = *word_of(rhs);
  for (size_t i = 0; i < a.size(); ++i) {
    if (a[i] == -b[i]) {
      return false;
    }
  }
  BvLit r = word_equal(a, b, lit);
  tie_to_proxy(r, lit);
  return true;
}

// ---------------------------------------------------------------------------
// Traversal
// ---------------------------------------------------------------------------

void WordClausifier::poll() const {
  if (d_termination != nullptr) {
    (*d_termination)();
  }
}

// Operators with a circuit: their arguments are blasted first. Everything
// else is a leaf.
bool WordClausifier::enters(SymbolTag::tag tag) const {
  if (tag >= SymbolTag::BV_CONCAT && tag <= SymbolTag::BV_SEXT) {
    return true;
  }
  switch (tag) {
    case SymbolTag::NOT:
    case SymbolTag::AND:
    case SymbolTag::OR:
    case SymbolTag::IFF:
    case SymbolTag::EQ: return true;
    default: return false;
  }
}

// An explicit stack: deep terms must not exhaust the call stack. A term
// is blasted once all its arguments are cached; the termination test is
// polled before each, so an interrupt leaves only completed words.
void WordClausifier::blast(const Term_* root) {
  d_todo.clear();
  d_todo.push_back(root);
  while (!d_todo.empty()) {
    const Term_* t = d_todo.back();
    if (word_of(t) != nullptr) {
      d_todo.pop_back();
      continue;
    }
    if (enters(d_tm->get_tag(t->get_symbol())) && t->get_arity() > 0) {
      bool pushed = false;
      for (const Term_* c : *t) {
        if (word_of(c) == nullptr) {
          d_todo.push_back(c);
          pushed = true;
        }
      }
      if (pushed) {
        continue;
      }
    }
    d_todo.pop_back();
    poll();
    // The root's proxy is asked for only when the root itself is built.
    d_root = t == root ? root : nullptr;
    blast_one(t);
  }
  d_root = nullptr;
}

const BvLitList& WordClausifier::arg(const Term_* t, size_t i) const {
  return *word_of(t->get_child(i));
}

void WordClausifier::blast_one(const Term_* t) {
  SymbolTag::tag tag = d_tm->get_tag(t->get_symbol());
  BvLitList* w = new_word();
  try {
    if (!enters(tag) || t->get_arity() == 0) {
      blast_leaf(t, *w);
    } else if (tag >= SymbolTag::BV_CONCAT && tag <= SymbolTag::BV_SEXT) {
      blast_word_op(t, tag, *w);
    } else {
      blast_bool(t, tag, *w);
    }
  } catch (...) {
    recycle(w);
    throw;
  }
  cache(t, w);
}

void WordClausifier::blast_leaf(const Term_* t, BvLitList& out) {
  const Symbol* s = t->get_symbol();
  SymbolTag::tag tag = d_tm->get_tag(s);
  size_t width = 0;
  if (tag == SymbolTag::TRUE || tag == SymbolTag::FALSE) {
    out.push_back(const_lit(tag == SymbolTag::TRUE));
    return;
  }
  bool is_bv = d_tm->is_bv_type(t->get_type(), &width);
  bool is_bool = d_tm->is_bool_type(t->get_type());
  QNumber value;
  if (is_bv && d_tm->is_number(s, &value)) {
    for (size_t i = 0; i < width; ++i) {
      out.push_back(const_lit(BVNumber::test_bit(value, i)));
    }
    return;
  }
  bool app = t->get_arity() > 0 && d_apps_as_leaves
             && (d_tm->is_uninterpreted_function(s)
                 || d_tm->get_tag(s) == SymbolTag::ARRAY_READ);
  if ((t->get_arity() > 0 && !app) || !(is_bv || is_bool)) {
    throw error("not supported! " + t->to_shallow_str());
  }
  if (is_bool) {
    BvLit p = proxy_of(t);
    out.push_back(p != l_undef ? p : fresh());
    return;
  }
  for (size_t i = 0; i < width; ++i) {
    out.push_back(d_sink->new_atom());
  }
}

BvLit WordClausifier::proxy_of(const Term_* t) {
  BvLit p = l_undef;
  if (t == d_root && d_sink->get_proxy(t, &p)) {
    return p;
  }
  return l_undef;
}

// The circuit's output folded to something else than the proxy (a
// constant, or a gate shared with another term): the proxy is tied to it
// and stands for the term from now on.
BvLit WordClausifier::tie_to_proxy(BvLit result, BvLit proxy) {
  if (proxy == l_undef || result == proxy) {
    return result;
  }
  d_sink->push(-result, proxy);
  d_sink->push(-proxy, result);
  return proxy;
}

void WordClausifier::blast_bool(const Term_* t,
                                SymbolTag::tag tag,
                                BvLitList& out) {
  BvLit r = l_undef;
  switch (tag) {
    case SymbolTag::NOT: r = -arg(t, 0)[0]; break;
    case SymbolTag::AND:
    case SymbolTag::OR: {
      bool is_and = tag == SymbolTag::AND;
      r = const_lit(is_and);
      for (size_t i = 0; i < t->get_arity(); ++i) {
        BvLit c = arg(t, i)[0];
        r = is_and ? bit_and(r, c) : bit_or(r, c);
      }
      break;
    }
    case SymbolTag::IFF: r = -bit_xor(arg(t, 0)[0], arg(t, 1)[0]); break;
    case SymbolTag::EQ: {
      BvLit p = proxy_of(t);
      if (d_tm->is_bool_type(t->get_child(0)->get_type())) {
        r = tie_to_proxy(-bit_xor(arg(t, 0)[0], arg(t, 1)[0]), p);
      } else {
        r = tie_to_proxy(word_equal(arg(t, 0), arg(t, 1), p), p);
      }
      break;
    }
    default: throw error("not supported! " + t->to_shallow_str());
  }
  out.push_back(r);
}

void WordClausifier::blast_word_op(const Term_* t,
                                   SymbolTag::tag tag,
                                   BvLitList& out) {
  switch (tag) {
    case SymbolTag::BV_NOT:
      for (BvLit b : arg(t, 0)) {
        out.push_back(-b);
      }
      return;
    case SymbolTag::BV_AND:
    case SymbolTag::BV_OR:
    case SymbolTag::BV_XOR: {
      const BvLitList& a = arg(t, 0);
      const BvLitList& b = arg(t, 1);
      for (size_t i = 0; i < a.size(); ++i) {
        out.push_back(tag == SymbolTag::BV_AND  ? bit_and(a[i], b[i])
                      : tag == SymbolTag::BV_OR ? bit_or(a[i], b[i])
                                                : bit_xor(a[i], b[i]));
      }
      return;
    }
    case SymbolTag::BV_NEG: word_neg(arg(t, 0), out); return;
    case SymbolTag::BV_ADD:
      word_add(arg(t, 0), arg(t, 1), l_false, out);
      return;
    case SymbolTag::BV_SUB: word_sub(arg(t, 0), arg(t, 1), out); return;
    case SymbolTag::BV_MUL: word_mul(t, out); return;
    case SymbolTag::BV_UDIV:
    case SymbolTag::BV_SDIV:
    case SymbolTag::BV_UREM:
    case SymbolTag::BV_SREM: word_divide(t, tag, out); return;
    case SymbolTag::BV_LSHL:
    case SymbolTag::BV_LSHR:
    case SymbolTag::BV_ASHR: word_shift(t, tag, out); return;
    case SymbolTag::BV_ULT:
    case SymbolTag::BV_ULE:
    case SymbolTag::BV_SLT:
    case SymbolTag::BV_SLE: {
      BvLit p = proxy_of(t);
      bool strict = tag == SymbolTag::BV_ULT || tag == SymbolTag::BV_SLT;
      bool is_signed = tag == SymbolTag::BV_SLT || tag == SymbolTag::BV_SLE;
      BvLit r = is_signed ? word_signed_cmp(arg(t, 0), arg(t, 1), strict, p)
                          : word_cmp(arg(t, 0), arg(t, 1), strict, p);
      out.push_back(tie_to_proxy(r, p));
      return;
    }
    case SymbolTag::BV_COMP:
      out.push_back(word_equal(arg(t, 0), arg(t, 1), l_undef));
      return;
    default: blast_rewiring(t, tag, out); return;
  }
}

// Rewiring: no gate, the result's bits are the argument's in another order.
void WordClausifier::blast_rewiring(const Term_* t,
                                    SymbolTag::tag tag,
                                    BvLitList& out) {
  const Symbol* s = t->get_symbol();
  const BvLitList& a = arg(t, 0);
  size_t n = a.size();
  size_t k = 0;
  size_t lsb = 0;
  size_t width = 0;
  d_tm->is_bv_type(t->get_type(), &width);
  switch (tag) {
    case SymbolTag::BV_CONCAT:
      out = arg(t, 1);
      out.insert(out.end(), a.begin(), a.end());
      return;
    case SymbolTag::BV_EXTRACT:
      d_tm->is_bv_extract(s, &k, &lsb);
      out.assign(a.begin() + lsb, a.begin() + lsb + width);
      return;
    case SymbolTag::BV_ROL:
    case SymbolTag::BV_ROR:
      if (tag == SymbolTag::BV_ROL) {
        d_tm->is_bv_rol(s, &k);
      } else {
        d_tm->is_bv_ror(s, &k);
      }
      k %= n;
      // Rotating left by k is rotating right by n - k.
      k = tag == SymbolTag::BV_ROL ? (n - k) % n : k;
      for (size_t j = 0; j < n; ++j) {
        out.push_back(a[(j + k) % n]);
      }
      return;
    case SymbolTag::BV_ZEXT:
    case SymbolTag::BV_SEXT:
      out = a;
      out.resize(width, tag == SymbolTag::BV_ZEXT ? l_false : a[n - 1]);
      return;
    default: throw error("not supported! " + t->to_shallow_str());
  }
}

void WordClausifier::check_budget(uint64_t gates) {
  if (d_stats.gates + gates > d_gate_budget) {
    throw error("bit-blasting limit reached: a circuit of about "
                + std::to_string(gates) + " gates");
  }
}

}  // namespace bv
}  // namespace zenlo
