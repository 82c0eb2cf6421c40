// The printing walk: declarations first, then each non-leaf subterm under
// a label, children before parents.
#include "frontend/termprinter.h"

#include <algorithm>

#include "terms/termvisitor.h"

namespace zenlo {

// Post-order: a term is printed once all of its children have a text.
class TermPrinter::WalkCallback : public TermVisitorCallback {
 public:
  WalkCallback(TermPrinter& p, std::ostream& out) : d_p(p), d_out(out) {}

  VisitResult visit(const Term_* t, bool preorder) override {
    if (preorder) {
      return d_p.d_texts.contains(t) ? VisitResult::Skip : VisitResult::Process;
    }
    if (!d_p.d_texts.contains(t)) {
      print(t);
    }
    return VisitResult::Process;
  }

 private:
  void print(const Term_* t) {
    d_children.clear();
    for (const Term_* c : *t) {
      d_children.push_back(d_p.d_texts.get(c));
    }
    d_label.clear();
    d_body.clear();
    if (!d_p.get_define_label(t, d_label)) {
      d_p.print_term_and_children(d_body, t, d_children);
      d_p.d_texts.insert(t, d_body);
      return;
    }
    std::string app;
    d_p.print_label_application(app, d_label, t, d_p.free_variables(t));
    d_p.print_define_start(d_out, d_label, t);
    d_p.print_term_and_children(d_body, t, d_children);
    d_out << d_body;
    d_p.print_define_end(d_out, t);
    d_p.d_texts.insert(t, app);
  }

  TermPrinter& d_p;
  std::ostream& d_out;
  ChildTexts d_children;
  std::string d_label;
  std::string d_body;
};

TermPrinter::TermPrinter(TermManager* tm, const Configuration::Printer* config)
    : d_tm(tm), d_config(config) {}

TermPrinter::~TermPrinter() = default;

void TermPrinter::print_formula(std::ostream& out, const Term_* term) {
  std::vector<const Symbol*> symbols;
  std::vector<const Type*> types;
  collect_symbols_and_types(TermList{term}, symbols, types);
  clear_labels();
  print_start(out);
  for (const Type* t : types) {
    print_type_declaration(out, t);
  }
  for (const Symbol* s : symbols) {
    print_symbol_declaration(out, s);
  }
  print_define_section_start(out);
  std::string root = do_print_term(out, term);
  print_define_section_end(out);
  print_formula_term(out, root, term);
  print_end(out);
}

void TermPrinter::print_term(std::ostream& out,
                             const Term_* term,
                             bool newline) {
  print_single_term(out, term, newline);
}

const std::string& TermPrinter::do_print_term(std::ostream& out,
                                              const Term_* term) {
  d_free = d_tm->get_free_variable_map(term);
  WalkCallback cb(*this, out);
  TermVisitor<WalkCallback> visitor(*d_tm, cb);
  visitor.visit(term);
  return *d_texts.get(term);
}

// ----------------------------------------------------------------------
// Declarations
// ----------------------------------------------------------------------

namespace {

// Collects the uninterpreted symbols of a walk, and every type a term or
// a symbol of the walk has.
class SymbolCollector : public TermVisitorCallback {
 public:
  SymbolCollector(TermManager& tm, SymbolSet& syms, TypeSet& types)
      : d_tm(tm), d_syms(syms), d_types(types) {}

  VisitResult visit(const Term_* t, bool preorder) override {
    if (!preorder) {
      return VisitResult::Process;
    }
    const Symbol* s = t->get_symbol();
    d_types.insert(t->get_type());
    if (d_tm.is_constant(s) || d_tm.is_uninterpreted_function(s)) {
      d_syms.insert(s);
      for (size_t i = 0; i < s->get_arity(); ++i) {
        d_types.insert(s->get_arg_type(i));
      }
    }
    return VisitResult::Process;
  }

 private:
  TermManager& d_tm;
  SymbolSet& d_syms;
  TypeSet& d_types;
};

}  // namespace

void TermPrinter::collect_symbols_and_types(const TermList& roots,
                                            std::vector<const Symbol*>& symbols,
                                            std::vector<const Type*>& types) {
  SymbolSet syms;
  TypeSet all_types;
  SymbolCollector cb(*d_tm, syms, all_types);
  TermVisitor<SymbolCollector> visitor(*d_tm, cb);
  for (const Term_* r : roots) {
    visitor.visit(r, false);
  }
  symbols.assign(syms.begin(), syms.end());
  std::sort(
      symbols.begin(), symbols.end(), [](const Symbol* a, const Symbol* b) {
        return a->get_id() < b->get_id();
      });
  std::vector<const Type*> by_id(all_types.begin(), all_types.end());
  std::sort(by_id.begin(), by_id.end(), [](const Type* a, const Type* b) {
    return a->get_id() < b->get_id();
  });
  TypeSet seen;
  for (const Type* t : by_id) {
    collect_type(t, seen, types);
  }
}

// Appends t after its components, each type once. Types nest no deeper
// than the reader allows sorts to, so a recursion over components is safe.
void TermPrinter::collect_type(const Type* t,
                               TypeSet& seen,
                               std::vector<const Type*>& types) {
  if (seen.contains(t)) {
    return;
  }
  seen.insert(t);
  const Type* index = nullptr;
  const Type* element = nullptr;
  if (d_tm->is_array_type(t, &index, &element)) {
    collect_type(index, seen, types);
    collect_type(element, seen, types);
    return;
  }
  if (t->is_simple() || d_tm->is_bv_type(t) || d_tm->is_fp_type(t)) {
    types.push_back(t);
    return;
  }
  // A function type or an instance of a parametric sort: component 0 is
  // the application marker or the sort's constructor, declared with the
  // instance itself.
  const std::vector<const Type*>& comps = t->get_components();
  for (size_t i = 1; i < comps.size(); ++i) {
    collect_type(comps[i], seen, types);
  }
  types.push_back(t);
}

}  // namespace zenlo
