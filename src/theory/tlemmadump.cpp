#include "theory/tlemmadump.h"

#include <ostream>
#include <vector>

#include "terms/termmanager.h"

namespace zenlo {

namespace {

void print_type(std::ostream& out, const Type* t) {
  if (t->is_simple()) {
    out << t->get_name();
  } else {
    out << t->to_str();
  }
}

}  // namespace

// Interpreted symbols print under their stored names; the front end's
// SMT-LIB printer, once there, writes them in the standard syntax.
void write_tlemma_formula(std::ostream& out,
                          TermManager& tm,
                          const Term_* formula) {
  SymbolSet declared;
  std::vector<const Term_*> stack{formula};
  BitSet seen;
  while (!stack.empty()) {
    const Term_* t = stack.back();
    stack.pop_back();
    if (seen.get(t->get_id())) {
      continue;
    }
    seen.set(t->get_id());
    const Symbol* s = t->get_symbol();
    if (!tm.is_interpreted(s) && !tm.is_variable(s)
        && declared.insert(s).second) {
      out << "(declare-fun " << s->get_name() << " (";
      for (size_t i = 0; i < s->get_arity(); ++i) {
        out << (i > 0 ? " " : "");
        print_type(out, s->get_arg_type(i));
      }
      out << ") ";
      print_type(out, s->get_output_type());
      out << ")\n";
    }
    for (const Term_* c : *t) {
      stack.push_back(c);
    }
  }
  out << "(assert ";
  print_term(out, formula);
  out << ")\n";
}

}  // namespace zenlo
