// SMT-LIB 2 scripts and single terms: where definitions go (nested let, or
// define-fun lines) and the attributes of annotated terms.
#include <sstream>

#include "frontend/termprinter.h"

namespace zenlo {

SmtLib2TermPrinter::SmtLib2TermPrinter(TermManager* tm,
                                       const Configuration::Printer* config,
                                       bool use_defines,
                                       const TermAnnotations* annotations,
                                       std::string status,
                                       std::string logic)
    : SmtLibTermPrinter(tm, config, std::move(status), std::move(logic)),
      d_use_defines(use_defines),
      d_annotations(annotations) {}

void SmtLib2TermPrinter::print_terms(std::ostream& out, const TermList& terms) {
  print_terms(out, terms, std::vector<std::string>());
}

void SmtLib2TermPrinter::print_terms(std::ostream& out,
                                     const TermList& terms,
                                     const std::vector<std::string>& trailers) {
  for (const Term_* t : terms) {
    if (!d_tm->is_bool_type(t->get_type())) {
      throw error("can't assert a term of sort " + to_smtlib(t->get_type())
                  + ": it is not a formula");
    }
  }
  std::string saved;
  saved.swap(d_trailer);
  clear_labels();
  print_start(out);
  print_declarations(out, terms);
  for (size_t i = 0; i < terms.size(); ++i) {
    d_trailer = i < trailers.size() ? trailers[i] : std::string();
    if (lets()) {
      // A let does not reach past its assertion.
      clear_labels();
    }
    print_define_section_start(out);
    std::string root = do_print_term(out, terms[i]);
    print_define_section_end(out);
    print_formula_term(out, root, terms[i]);
    print_end(out);
  }
  d_trailer.swap(saved);
}

void SmtLib2TermPrinter::print_declarations(std::ostream& out,
                                            const TermList& roots) {
  std::vector<const Symbol*> symbols;
  std::vector<const Type*> types;
  collect_symbols_and_types(roots, symbols, types);
  for (const Type* t : types) {
    print_type_declaration(out, t);
  }
  for (const Symbol* s : symbols) {
    print_symbol_declaration(out, s);
  }
}

void SmtLib2TermPrinter::print_single_term(std::ostream& out,
                                           const Term_* t,
                                           bool newline) {
  bool saved = d_newlines;
  d_single = true;
  d_newlines = newline;
  try {
    clear_labels();
    print_start(out);
    print_define_section_start(out);
    std::string root = do_print_term(out, t);
    print_define_section_end(out);
    print_formula_term(out, root, t);
    print_end(out);
  } catch (...) {
    d_single = false;
    d_newlines = saved;
    throw;
  }
  d_single = false;
  d_newlines = saved;
}

// A leaf gets a label only to carry its attributes; with lets, a term with
// free variables is written in place, inside its quantifier.
bool SmtLib2TermPrinter::get_define_label(const Term_* t, std::string& label) {
  bool annotated = d_annotations != nullptr && d_annotations->contains(t)
                   && !d_annotated.contains(t);
  if (t->get_arity() == 0 && !annotated) {
    return false;
  }
  if (lets() && !free_variables(t).empty()) {
    return false;
  }
  label = make_label(t);
  return true;
}

void SmtLib2TermPrinter::print_term_and_children(std::string& out,
                                                 const Term_* t,
                                                 const ChildTexts& children) {
  // Attributes go with the first occurrence only: a second :named of the
  // same name would not read back.
  const AttributeList* attrs =
      d_annotations == nullptr ? nullptr : d_annotations->get(t);
  if (attrs != nullptr && !d_annotated.insert(t).second) {
    attrs = nullptr;
  }
  if (attrs == nullptr) {
    SmtLibTermPrinter::print_term_and_children(out, t, children);
    return;
  }
  out += "(! ";
  SmtLibTermPrinter::print_term_and_children(out, t, children);
  for (const Attribute& a : *attrs) {
    out += " " + a.key;
    if (!a.value.empty()) {
      out += " " + a.value;
    }
  }
  out += ")";
}

void SmtLib2TermPrinter::print_define_section_start(std::ostream& out) {
  if (!lets() || d_single) {
    return;
  }
  out << (d_trailer.empty() ? "(assert" : "(assert (!")
      << (d_newlines ? "\n" : " ");
}

void SmtLib2TermPrinter::print_define_start(std::ostream& out,
                                            const std::string& label,
                                            const Term_* t) {
  if (lets()) {
    out << "(let ((" << label << " ";
    ++d_open;
    return;
  }
  std::string params;
  print_free_variable_list(params, free_variables(t));
  out << "(define-fun " << label << " (" << params << ") "
      << to_smtlib(t->get_type()) << " ";
}

void SmtLib2TermPrinter::print_define_end(std::ostream& out, const Term_*) {
  if (lets()) {
    out << "))" << (d_newlines ? "\n" : " ");
  } else {
    out << ")\n";
  }
}

void SmtLib2TermPrinter::print_start(std::ostream& out) {
  d_open = 0;
  d_annotated.clear();
  forget_declared_sorts();
  if (d_single) {
    return;
  }
  if (!d_logic.empty()) {
    out << "(set-logic " << d_logic << ")\n";
  }
  if (!d_status.empty()) {
    out << "(set-info :status " << d_status << ")\n";
  }
  out << "(set-info :source |printed by Zenlo|)\n";
}

void SmtLib2TermPrinter::print_formula_term(std::ostream& out,
                                            const std::string& text,
                                            const Term_*) {
  if (lets()) {
    out << text;
    return;
  }
  out << (d_trailer.empty() ? "(assert " : "(assert (! ") << text;
}

void SmtLib2TermPrinter::print_end(std::ostream& out) {
  out << std::string(d_open, ')');
  d_open = 0;
  if (d_single) {
    if (d_newlines) {
      out << "\n";
    }
    return;
  }
  if (!d_trailer.empty()) {
    out << " " << d_trailer << ")";
  }
  out << ")";
  if (d_newlines) {
    out << "\n";
  }
}

}  // namespace zenlo
