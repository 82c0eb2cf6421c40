// Term nodes. A term is a symbol applied to its children; the node is a
// two-word header (id, symbol) followed directly by the children, so a
// constant takes two machine words and a binary application four, in one
// allocation. Nodes are hash-consed by the TermBank: equal terms are the
// same node, and every layer compares terms by pointer and keys its tables
// by id.
//
// A node is immutable. Its id is unique among living terms of its store,
// and each child has a smaller id than its parent.
#ifndef ZENLO_TERMS_TERM_H
#define ZENLO_TERMS_TERM_H

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "terms/hashtable.h"
#include "terms/signature.h"

namespace zenlo {

class Term_ {
 public:
  uint64_t get_id() const { return d_id; }

  const Symbol* get_symbol() const { return d_symbol; }

  size_t get_arity() const { return d_symbol->get_arity(); }

  // Returns: the output type of the head symbol.
  const Type* get_type() const { return d_symbol->get_output_type(); }

  // Requires: i < arity.
  const Term_* get_child(size_t i) const { return children()[i]; }

  const Term_* const* begin() const { return children(); }

  const Term_* const* end() const { return children() + get_arity(); }

  // A constant prints as its stored name, an application as
  // "(name child ...)". Iterative: any depth prints.
  std::string to_str() const;
  // The same with every child printed as "_".
  std::string to_shallow_str() const;

 private:
  friend class TermBank;

  Term_(uint64_t id, const Symbol* s) : d_id(id), d_symbol(s) {}

  const Term_* const* children() const {
    return reinterpret_cast<const Term_* const*>(this + 1);
  }

  const Term_** children() { return reinterpret_cast<const Term_**>(this + 1); }

  uint64_t d_id;
  const Symbol* d_symbol;
};

static_assert(sizeof(Term_) == 2 * sizeof(void*),
              "children must follow the two-word header directly");

namespace hsh {
template <>
struct Hash<const Term_*> {
  size_t operator()(const Term_* t) const { return t->get_id(); }
};
}  // namespace hsh

using TermList = std::vector<const Term_*>;
using TermSet = hsh::HashSet<const Term_*>;
using TermMap = hsh::HashMap<const Term_*, const Term_*>;

// Stream adapters for messages and logs:
//   out << outterm(t) << outshallowterm(t) << outtermlist(v);
struct outterm {
  explicit outterm(const Term_* t) : term(t) {}

  const Term_* term;
};

struct outshallowterm {
  explicit outshallowterm(const Term_* t) : term(t) {}

  const Term_* term;
};

struct outtermlist {
  explicit outtermlist(const TermList& l) : list(l) {}

  const TermList& list;
};

struct outtermset {
  explicit outtermset(const TermSet& s) : set(s) {}

  const TermSet& set;
};

struct outtermmap {
  explicit outtermmap(const TermMap& m) : map(m) {}

  const TermMap& map;
};

std::ostream& operator<<(std::ostream& out, const outterm& t);
std::ostream& operator<<(std::ostream& out, const outshallowterm& t);
std::ostream& operator<<(std::ostream& out, const outtermlist& l);
std::ostream& operator<<(std::ostream& out, const outtermset& s);
std::ostream& operator<<(std::ostream& out, const outtermmap& m);

// Writes the text of Term_::to_str to a stream without building the string.
void print_term(std::ostream& out, const Term_* t);

}  // namespace zenlo

#endif
