// Every SMT-LIB text of a term goes through this family.
//
// TermPrinter is the walk: it turns a term with sharing into a sequence of
// named definitions, each non-leaf subterm printed once under a label and
// referred to by the label afterwards, so a DAG prints in size linear in
// its number of nodes. The walk is iterative (TermVisitor), so any depth
// prints. What a definition looks like is left to the subclasses.
//
// SmtLibTermPrinter knows the concrete syntax: names with bars where
// needed, sorts, numbers in the configured formats, and the name of every
// interpreted symbol. SmtLib2TermPrinter writes SMT-LIB 2 scripts: nested
// let (or define-fun lines with `use_defines`), declarations, and the
// attributes of annotated terms such as :named.
//
// A printer belongs to one thread; it memoises the texts of symbols and
// sorts, which stay valid as long as the term store does not collect them.
//
// Callers: the C interface (zenlo_to_smtlib2...), the command interpreter
// for models and values (print_atom), and the API tracer.
#ifndef ZENLO_FRONTEND_TERMPRINTER_H
#define ZENLO_FRONTEND_TERMPRINTER_H

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "base/configuration.h"
#include "base/exception.h"
#include "frontend/smtlib2abstractparser.h"
#include "terms/hashtable.h"
#include "terms/termmanager.h"

namespace zenlo {

class TermPrinter {
 public:
  ZENLO_DECLARE_ERROR;

  // Requires: `tm` outlives the printer; `config` may be null (defaults).
  TermPrinter(TermManager* tm, const Configuration::Printer* config);
  virtual ~TermPrinter();
  TermPrinter(const TermPrinter&) = delete;
  TermPrinter& operator=(const TermPrinter&) = delete;

  // Prints `term` as a whole input: header, declarations of its sorts and
  // symbols, and the term with its shared subterms defined once.
  void print_formula(std::ostream& out, const Term_* term);
  // Prints `term` alone, with its definitions but no header.
  void print_term(std::ostream& out, const Term_* term, bool newline = false);

 protected:
  using ChildTexts = std::vector<const std::string*>;

  virtual void print_type_declaration(std::ostream& out, const Type* t) = 0;
  virtual void print_symbol_declaration(std::ostream& out, const Symbol* s) = 0;
  virtual void print_single_term(std::ostream& out,
                                 const Term_* t,
                                 bool newline) = 0;
  // Returns: false when t is printed in place (its text is stored, no
  // definition is written), else true with its label.
  virtual bool get_define_label(const Term_* t, std::string& label) = 0;
  virtual void print_label_application(std::string& out,
                                       const std::string& label,
                                       const Term_* t,
                                       const TermList& free_vars) = 0;
  virtual void print_term_and_children(std::string& out,
                                       const Term_* t,
                                       const ChildTexts& children) = 0;
  virtual void print_define_section_start(std::ostream& out) = 0;
  virtual void print_define_section_end(std::ostream& out) = 0;
  virtual void print_define_start(std::ostream& out,
                                  const std::string& label,
                                  const Term_* t) = 0;
  virtual void print_define_end(std::ostream& out, const Term_* t) = 0;
  virtual void print_start(std::ostream& out) = 0;
  virtual void print_end(std::ostream& out) = 0;
  virtual void print_formula_term(std::ostream& out,
                                  const std::string& text,
                                  const Term_* t) = 0;

  // The user symbols and the sorts to declare for `roots`: symbols by id,
  // sorts with their components first.
  void collect_symbols_and_types(const TermList& roots,
                                 std::vector<const Symbol*>& symbols,
                                 std::vector<const Type*>& types);
  // Writes the definitions of the subterms of `term` that have none yet.
  // Returns: the text that stands for `term`.
  const std::string& do_print_term(std::ostream& out, const Term_* term);

  // Forgets every label, so the next term defines its subterms again.
  void clear_labels() { d_texts.clear(); }

  // The free variables of a subterm of the term being printed.
  const TermList& free_variables(const Term_* t) const { return d_free.get(t); }

  TermManager* d_tm;
  const Configuration::Printer* d_config;

 private:
  class WalkCallback;
  friend class WalkCallback;

  void collect_type(const Type* t,
                    TypeSet& seen,
                    std::vector<const Type*>& types);

  // Text by term: the label, the label application, or the whole text of
  // a term printed in place.
  hsh::HashMap<const Term_*, std::string> d_texts;
  FreeVariableMap d_free;
};

class SmtLibTermPrinter : public TermPrinter {
 public:
  // `status` and `logic` go to the header when not empty.
  SmtLibTermPrinter(TermManager* tm,
                    const Configuration::Printer* config,
                    std::string status = std::string(),
                    std::string logic = std::string());
  ~SmtLibTermPrinter() override;

  // The whole term in one piece, with no definitions: values of models.
  void print_atom(std::ostream& out, const Term_* t);
  std::string atom_to_string(const Term_* t);

  // The syntax of each kind of thing.
  const std::string& to_smtlib(const Type* t);
  const std::string& to_smtlib(const Symbol* s);
  std::string to_smtlib(const QNumber& n) const;
  // A name, with bars when it is no simple symbol; "" stays "".
  static std::string to_smtlib(std::string_view name);
  static std::string to_smtlib_bin(const QNumber& n, size_t width);
  static std::string to_smtlib_hex(const QNumber& n, size_t width);

  void set_newlines(bool on) { d_newlines = on; }

 protected:
  void print_type_declaration(std::ostream& out, const Type* t) override;
  void print_symbol_declaration(std::ostream& out, const Symbol* s) override;
  void print_label_application(std::string& out,
                               const std::string& label,
                               const Term_* t,
                               const TermList& free_vars) override;
  void print_term_and_children(std::string& out,
                               const Term_* t,
                               const ChildTexts& children) override;
  bool get_define_label(const Term_* t, std::string& label) override;

  void print_free_variable_list(std::string& out, const TermList& vars);

  void forget_declared_sorts() { d_declared_ctors.clear(); }

  std::string make_label(const Term_* t) const;

  std::string d_status;
  std::string d_logic;
  // Definitions written and not closed yet (nested lets).
  size_t d_open = 0;
  bool d_single = false;
  bool d_newlines = true;

 private:
  std::string symbol_text(const Symbol* s);
  std::string interpreted_text(const Symbol* s);
  std::string family_text(const Symbol* s);
  std::string number_text(const Symbol* s, const QNumber& value);
  std::string bv_number_text(const QNumber& value, size_t width) const;
  std::string fp_number_text(const QNumber& bits, size_t e, size_t m) const;
  std::string type_text(const Type* t);
  void append_children(std::string& out,
                       const Term_* t,
                       const ChildTexts& children);
  void append_as_real(std::string& out,
                      const Term_* c,
                      const std::string& text);
  bool is_zero_number(const Term_* t) const;

  std::vector<const char*> d_tag_names;
  hsh::HashMap<const Symbol*, std::string> d_symbol_texts;
  hsh::HashMap<const Type*, std::string> d_type_texts;
  // The constructors of parametric user sorts declared by this print.
  TypeSet d_declared_ctors;
};

// The attributes printed with a term: key (with its colon) and value.
using TermAnnotations = hsh::HashMap<const Term_*, AttributeList>;

class SmtLib2TermPrinter : public SmtLibTermPrinter {
 public:
  // With `use_defines`, shared subterms become define-fun lines ahead of
  // the assertions, else nested lets inside each assertion. Requires:
  // `annotations`, when given, outlives the printer.
  SmtLib2TermPrinter(TermManager* tm,
                     const Configuration::Printer* config,
                     bool use_defines = false,
                     const TermAnnotations* annotations = nullptr,
                     std::string status = std::string(),
                     std::string logic = std::string());

  // Attributes written after the formula of print_formula, as in
  // (assert (! f :named a)); empty for none.
  void set_trailer(std::string trailer) { d_trailer = std::move(trailer); }

  // One script: the declarations of all terms, then one assert each;
  // `trailers`, when given, holds the attributes of each assertion.
  // - Throws: error for a term that is not a formula.
  void print_terms(std::ostream& out, const TermList& terms);
  void print_terms(std::ostream& out,
                   const TermList& terms,
                   const std::vector<std::string>& trailers);

 protected:
  void print_single_term(std::ostream& out,
                         const Term_* t,
                         bool newline) override;
  bool get_define_label(const Term_* t, std::string& label) override;
  void print_term_and_children(std::string& out,
                               const Term_* t,
                               const ChildTexts& children) override;
  void print_define_section_start(std::ostream& out) override;

  void print_define_section_end(std::ostream&) override {}

  void print_define_start(std::ostream& out,
                          const std::string& label,
                          const Term_* t) override;
  void print_define_end(std::ostream& out, const Term_* t) override;
  void print_start(std::ostream& out) override;
  void print_end(std::ostream& out) override;
  void print_formula_term(std::ostream& out,
                          const std::string& text,
                          const Term_* t) override;

 private:
  bool lets() const { return !d_use_defines || d_single; }

  void print_declarations(std::ostream& out, const TermList& roots);

  bool d_use_defines;
  const TermAnnotations* d_annotations;
  // Annotated terms whose attributes this print has written.
  TermSet d_annotated;
  std::string d_trailer;
};

}  // namespace zenlo

#endif
