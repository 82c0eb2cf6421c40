// S-expressions: nodes and their manager, list and association functions,
// matching and reading. Every walk uses an explicit stack.
#include "frontend/sexp.h"

#include <cstdio>

#include "zenlo.h"

extern "C" {
int zenlo_sexp_parser_debug = 0;
}

namespace zenlo {

// ----------------------------------------------------------------------
// Handles and nodes
// ----------------------------------------------------------------------

Sexp::Sexp(Sexp_* node) : d_node(node) {
  if (d_node != nullptr) {
    ++d_node->d_word;
  }
}

Sexp::Sexp(const Sexp& o) : Sexp(o.d_node) {}

Sexp& Sexp::operator=(const Sexp& o) {
  Sexp copy(o);
  std::swap(d_node, copy.d_node);
  return *this;
}

Sexp& Sexp::operator=(Sexp&& o) noexcept {
  std::swap(d_node, o.d_node);
  return *this;
}

Sexp::~Sexp() {
  if (d_node != nullptr && (--d_node->d_word & ~Sexp_::kConsBit) == 0) {
    d_node->d_manager->destroy(d_node);
  }
}

namespace {

// Annotation keys compare by structure, through the node's own manager.
std::vector<std::pair<Sexp, Sexp>>::iterator find_key(
    std::vector<std::pair<Sexp, Sexp>>& v,
    const SexpManager& m,
    const Sexp& key) {
  for (auto it = v.begin(); it != v.end(); ++it) {
    if (sexp::cmp(m, it->first, key) == 0) {
      return it;
    }
  }
  return v.end();
}

}  // namespace

bool Sexp_::has_annotation(const Sexp& key) const {
  return !get_annotation(key).is_null();
}

Sexp Sexp_::get_annotation(const Sexp& key) const {
  if (d_annotations == nullptr) {
    return Sexp();
  }
  auto it = find_key(*d_annotations, *d_manager, key);
  return it == d_annotations->end() ? Sexp() : it->second;
}

void Sexp_::add_annotation(const Sexp& key, const Sexp& value) {
  if (d_annotations == nullptr) {
    d_annotations = std::make_unique<std::vector<std::pair<Sexp, Sexp>>>();
  }
  auto it = find_key(*d_annotations, *d_manager, key);
  if (it != d_annotations->end()) {
    it->second = value;
  } else {
    d_annotations->emplace_back(key, value);
  }
}

void Sexp_::del_annotation(const Sexp& key) {
  if (d_annotations != nullptr) {
    auto it = find_key(*d_annotations, *d_manager, key);
    if (it != d_annotations->end()) {
      d_annotations->erase(it);
    }
  }
}

void Sexp_::clear_annotations() {
  d_annotations.reset();
}

void Sexp_::copy_annotations(const Sexp_* other) {
  if (other == this || other->d_annotations == nullptr) {
    return;
  }
  for (const auto& p : *other->d_annotations) {
    add_annotation(p.first, p.second);
  }
}

// ----------------------------------------------------------------------
// The manager
// ----------------------------------------------------------------------

SexpManager::SexpManager() {
  d_nil = sh_sym(intern("nil"));
}

// Nodes still referenced by a table or by each other are let go without
// counting: the whole store goes at once.
SexpManager::~SexpManager() {
  for (Sexp_& n : d_nodes) {
    n.d_car.release();
    n.d_cdr.release();
    if (n.d_annotations != nullptr) {
      for (auto& p : *n.d_annotations) {
        p.first.release();
        p.second.release();
      }
    }
  }
  for (auto& e : d_conses) {
    e.second.release();
  }
  for (auto& e : d_symbols) {
    e.second.release();
  }
  d_nil.release();
}

Sexp_* SexpManager::alloc() {
  Sexp_* n;
  if (!d_free.empty()) {
    n = d_free.back();
    d_free.pop_back();
  } else {
    d_nodes.emplace_back();
    n = &d_nodes.back();
  }
  n->d_manager = this;
  n->d_word = 0;
  return n;
}

void SexpManager::destroy(Sexp_* node) {
  d_dying.push_back(node);
  if (d_destroying) {
    return;
  }
  d_destroying = true;
  auto drop = [this](Sexp_* p) {
    if (p != nullptr && (--p->d_word & ~Sexp_::kConsBit) == 0) {
      d_dying.push_back(p);
    }
  };
  while (!d_dying.empty()) {
    Sexp_* x = d_dying.back();
    d_dying.pop_back();
    drop(x->d_car.release());
    drop(x->d_cdr.release());
    if (x->d_annotations != nullptr) {
      auto annotations = std::move(x->d_annotations);
      for (auto& p : *annotations) {
        drop(p.first.release());
        drop(p.second.release());
      }
    }
    x->d_word = 0;
    d_free.push_back(x);
  }
  d_destroying = false;
}

Sexp SexpManager::cons(const Sexp& a, const Sexp& b) {
  Sexp_* n = alloc();
  n->d_word = Sexp_::kConsBit;
  n->d_car = a;
  n->d_cdr = b;
  return Sexp(n);
}

Sexp SexpManager::sym(uint32_t id) {
  Sexp_* n = alloc();
  n->d_symbol = id;
  return Sexp(n);
}

Sexp SexpManager::make_symbol(std::string_view text) {
  return sym(intern(text));
}

Sexp SexpManager::sh_cons(const Sexp& a, const Sexp& b) {
  std::pair<Sexp_*, Sexp_*> key(a.get(), b.get());
  if (const Sexp* s = d_conses.get(key)) {
    return *s;
  }
  Sexp s = cons(a, b);
  d_conses.insert(key, s);
  return s;
}

Sexp SexpManager::sh_sym(uint32_t id) {
  if (const Sexp* s = d_symbols.get(id)) {
    return *s;
  }
  Sexp s = sym(id);
  d_symbols.insert(id, s);
  return s;
}

size_t SexpManager::strhash(std::string_view text) {
  return hsh::NameHash()(text);
}

uint32_t SexpManager::intern(std::string_view text) {
  if (const uint32_t* id = d_ids.get(text)) {
    return *id;
  }
  d_texts.push_back(std::make_unique<std::string>(text));
  uint32_t id = static_cast<uint32_t>(d_texts.size() - 1);
  d_ids.insert(std::string_view(*d_texts.back()), id);
  return id;
}

// ----------------------------------------------------------------------
// Structure
// ----------------------------------------------------------------------

namespace sexp {

int cmp(const SexpManager& m, const Sexp& a, const Sexp& b) {
  std::vector<std::pair<const Sexp_*, const Sexp_*>> stack{{a.get(), b.get()}};
  while (!stack.empty()) {
    auto [x, y] = stack.back();
    stack.pop_back();
    if (x == y) {
      continue;
    }
    if (x == nullptr || y == nullptr) {
      return x == nullptr ? -1 : 1;
    }
    if (x->is_symbol() && y->is_symbol()) {
      int c = m.get_symbol_value(x->symbol_id())
                  .compare(m.get_symbol_value(y->symbol_id()));
      if (c != 0) {
        return c < 0 ? -1 : 1;
      }
    } else if (x->is_symbol() != y->is_symbol()) {
      return x->is_symbol() ? -1 : 1;
    } else {
      stack.emplace_back(x->cdr().get(), y->cdr().get());
      stack.emplace_back(x->car().get(), y->car().get());
    }
  }
  return 0;
}

bool is_list(const SexpManager& m, const Sexp& s) {
  const Sexp_* p = s.get();
  while (p != nullptr && p->is_cons()) {
    p = p->cdr().get();
  }
  return m.is_nil(p);
}

size_t list_length(const SexpManager&, const Sexp& s) {
  size_t n = 0;
  for (const Sexp_* p = s.get(); p != nullptr && p->is_cons();
       p = p->cdr().get()) {
    ++n;
  }
  return n;
}

Sexp list_nth(const SexpManager&, const Sexp& s, size_t i) {
  const Sexp_* p = s.get();
  for (; i > 0; --i) {
    p = p->cdr().get();
  }
  return p->car();
}

Sexp list_push(SexpManager& m, const Sexp& list, const Sexp& x) {
  return m.cons(x, list);
}

Sexp list_pop(const SexpManager& m, const Sexp& list) {
  return list->is_cons() ? list->cdr() : m.nil();
}

Sexp list_revappend(SexpManager& m, const Sexp& a, const Sexp& b) {
  Sexp r = b;
  for (const Sexp_* p = a.get(); p != nullptr && p->is_cons();
       p = p->cdr().get()) {
    r = m.cons(p->car(), r);
  }
  return r;
}

Sexp list_reverse(SexpManager& m, const Sexp& list) {
  return list_revappend(m, list, m.nil());
}

Sexp list_append(SexpManager& m, const Sexp& a, const Sexp& b) {
  return list_revappend(m, list_reverse(m, a), b);
}

std::vector<Sexp> list_elements(const SexpManager&, const Sexp& list) {
  std::vector<Sexp> out;
  for (const Sexp_* p = list.get(); p != nullptr && p->is_cons();
       p = p->cdr().get()) {
    out.push_back(p->car());
  }
  return out;
}

bool is_assoc(const SexpManager& m, const Sexp& s) {
  if (!is_list(m, s)) {
    return false;
  }
  for (const Sexp& e : list_elements(m, s)) {
    if (!e->is_cons()) {
      return false;
    }
  }
  return true;
}

Sexp find_assoc(const SexpManager& m, const Sexp& alist, const Sexp& key) {
  for (const Sexp_* p = alist.get(); p != nullptr && p->is_cons();
       p = p->cdr().get()) {
    const Sexp& pair = p->car();
    if (pair->is_cons() && cmp(m, pair->car(), key) == 0) {
      return pair->cdr();
    }
  }
  return Sexp();
}

Sexp add_assoc(SexpManager& m,
               const Sexp& alist,
               const Sexp& key,
               const Sexp& value) {
  return m.cons(m.cons(key, value), alist);
}

Sexp del_assoc(SexpManager& m, const Sexp& alist, const Sexp& key) {
  Sexp kept = m.nil();
  for (const Sexp& e : list_elements(m, alist)) {
    if (!(e->is_cons() && cmp(m, e->car(), key) == 0)) {
      kept = m.cons(e, kept);
    }
  }
  return list_reverse(m, kept);
}

// Bottom-up with a memo, so shared subtrees stay shared in the copy.
Sexp copy(SexpManager& m, const Sexp& s) {
  if (s.is_null()) {
    return s;
  }
  hsh::HashMap<const Sexp_*, Sexp> done;
  std::vector<std::pair<const Sexp_*, bool>> stack{{s.get(), false}};
  while (!stack.empty()) {
    auto [x, expanded] = stack.back();
    if (done.contains(x)) {
      stack.pop_back();
      continue;
    }
    if (x->is_cons() && !expanded) {
      stack.back().second = true;
      stack.emplace_back(x->cdr().get(), false);
      stack.emplace_back(x->car().get(), false);
      continue;
    }
    stack.pop_back();
    Sexp c = x->is_cons()
                 ? m.cons(*done.get(x->car().get()), *done.get(x->cdr().get()))
                 : m.sym(x->symbol_id());
    c->copy_annotations(x);
    done.insert(x, c);
  }
  return *done.get(s.get());
}

std::string to_string(const SexpManager& m, const Sexp& s) {
  // Work items: a node to print, or (node null) a text to write.
  std::vector<std::pair<const Sexp_*, const char*>> stack{{s.get(), ""}};
  std::string out;
  while (!stack.empty()) {
    auto [x, text] = stack.back();
    stack.pop_back();
    if (x == nullptr) {
      out += text;
    } else if (x->is_symbol()) {
      out += m.get_symbol_value(x->symbol_id());
    } else {
      std::vector<const Sexp_*> elems;
      const Sexp_* p = x;
      for (; p->is_cons(); p = p->cdr().get()) {
        elems.push_back(p->car().get());
      }
      out += "(";
      stack.emplace_back(nullptr, ")");
      if (!m.is_nil(p)) {
        stack.emplace_back(p, "");
        stack.emplace_back(nullptr, " . ");
      }
      for (size_t i = elems.size(); i-- > 0;) {
        stack.emplace_back(elems[i], "");
        if (i > 0) {
          stack.emplace_back(nullptr, " ");
        }
      }
    }
  }
  return out;
}

Sexp from_string(SexpManager& m, const std::string& text, bool hash_consed) {
  return SexpParser(m, hash_consed).parse(text);
}

}  // namespace sexp

// ----------------------------------------------------------------------
// Matching
// ----------------------------------------------------------------------

SexpMatcher::SexpMatcher(SexpManager& m, const std::vector<Sexp>& variables)
    : d_m(m), d_vars(variables) {}

void SexpMatcher::add_var(const Sexp& var) {
  d_vars.push_back(var);
}

bool SexpMatcher::is_var(const Sexp& s) const {
  for (const Sexp& v : d_vars) {
    if (sexp::cmp(d_m, v, s) == 0) {
      return true;
    }
  }
  return false;
}

bool SexpMatcher::match(const Sexp& pattern, const Sexp& expr) {
  size_t mark = d_bindings.size();
  std::vector<std::pair<Sexp, Sexp>> stack{{pattern, expr}};
  bool ok = true;
  while (ok && !stack.empty()) {
    auto [p, e] = stack.back();
    stack.pop_back();
    if (is_var(p)) {
      Sexp bound = get(p);
      ok = bound.is_null() ? (put(p, e), true) : sexp::cmp(d_m, bound, e) == 0;
    } else if (p->is_cons() && e->is_cons()) {
      stack.emplace_back(p->cdr(), e->cdr());
      stack.emplace_back(p->car(), e->car());
    } else {
      ok = sexp::cmp(d_m, p, e) == 0;
    }
  }
  if (!ok) {
    d_bindings.resize(mark);
  }
  return ok;
}

Sexp SexpMatcher::get(const Sexp& var) const {
  for (const auto& b : d_bindings) {
    if (sexp::cmp(d_m, b.first, var) == 0) {
      return b.second;
    }
  }
  return Sexp();
}

void SexpMatcher::put(const Sexp& var, const Sexp& value) {
  erase(var);
  d_bindings.emplace_back(var, value);
}

void SexpMatcher::erase(const Sexp& var) {
  for (auto it = d_bindings.begin(); it != d_bindings.end(); ++it) {
    if (sexp::cmp(d_m, it->first, var) == 0) {
      d_bindings.erase(it);
      return;
    }
  }
}

}  // namespace zenlo
