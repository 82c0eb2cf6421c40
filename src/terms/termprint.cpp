// Text forms of terms for messages and logs. The SMT-LIB printers are
// elsewhere; these print stored names as they are.
#include <ostream>
#include <sstream>
#include <utility>
#include <vector>

#include "terms/term.h"
#include "terms/termmanager.h"

namespace zenlo {

void print_term(std::ostream& out, const Term_* t) {
  // (term, index of the next child to print); no recursion, so any depth
  // prints.
  std::vector<std::pair<const Term_*, size_t>> stack;
  stack.emplace_back(t, 0);
  while (!stack.empty()) {
    const Term_* u = stack.back().first;
    size_t i = stack.back().second;
    size_t n = u->get_arity();
    if (n == 0) {
      out << u->get_symbol()->get_name();
      stack.pop_back();
      continue;
    }
    if (i == 0) {
      out << '(' << u->get_symbol()->get_name();
    }
    if (i == n) {
      out << ')';
      stack.pop_back();
      continue;
    }
    out << ' ';
    stack.back().second = i + 1;
    stack.emplace_back(u->get_child(i), 0);
  }
}

std::string Term_::to_str() const {
  std::ostringstream out;
  print_term(out, this);
  return out.str();
}

std::string Term_::to_shallow_str() const {
  size_t n = get_arity();
  if (n == 0) {
    return d_symbol->get_name();
  }
  std::string s = "(" + d_symbol->get_name();
  for (size_t i = 0; i < n; ++i) {
    s += " _";
  }
  return s + ")";
}

namespace {

constexpr int kLiteralDepth = 10;

void print_literal(const TermManager& tm,
                   std::ostream& out,
                   const Term_* t,
                   int depth) {
  SymbolTag::tag tag = tm.get_tag(t->get_symbol());
  if (t->get_arity() == 0) {
    out << t->get_symbol()->get_name();
  } else if (tag == SymbolTag::ITE) {
    out << "(" << t->get_symbol()->get_name() << "<" << t->get_id()
        << "> _ _ _)";
  } else if (tag == SymbolTag::AND || tag == SymbolTag::OR
             || tag == SymbolTag::IFF || depth >= kLiteralDepth) {
    out << t->to_shallow_str();
  } else {
    // Depth is bounded by kLiteralDepth, so recursion is safe here.
    out << "(" << t->get_symbol()->get_name();
    for (const Term_* c : *t) {
      out << " ";
      print_literal(tm, out, c, depth + 1);
    }
    out << ")";
  }
}

}  // namespace

std::string TermManager::to_shallow_str_literal(const Term_* t) const {
  std::ostringstream out;
  print_literal(*this, out, t, 0);
  return out.str();
}

std::ostream& operator<<(std::ostream& out, const outterm& t) {
  print_term(out, t.term);
  return out;
}

std::ostream& operator<<(std::ostream& out, const outshallowterm& t) {
  return out << t.term->to_shallow_str();
}

std::ostream& operator<<(std::ostream& out, const outtermlist& l) {
  out << "[";
  const char* sep = "";
  for (const Term_* t : l.list) {
    out << sep << outterm(t);
    sep = ", ";
  }
  return out << "]";
}

std::ostream& operator<<(std::ostream& out, const outtermset& s) {
  out << "{";
  const char* sep = "";
  for (const Term_* t : s.set) {
    out << sep << outterm(t);
    sep = ", ";
  }
  return out << "}";
}

std::ostream& operator<<(std::ostream& out, const outtermmap& m) {
  out << "{";
  const char* sep = "";
  for (const auto& kv : m.map) {
    out << sep << outterm(kv.first) << " -> " << outterm(kv.second);
    sep = ", ";
  }
  return out << "}";
}

}  // namespace zenlo
