// What an SMT-LIB name means: the name-to-term machinery shared by every
// client of the SMT-LIB 2 reader. SmtLibTermParser resolves a name in this
// order: indexed built-ins; the innermost let binding or quantified
// variable; define-fun definitions; symbols of the term store; built-in
// symbols through the handler table. It builds terms only through the
// TermManager's constructors, so the store's type checks apply to
// everything read.
//
// It knows nothing of commands, sorts or the grammar: the reader calls it,
// and the command interpreter calls it for declarations and for undoing
// them at a pop.
#ifndef ZENLO_FRONTEND_SMTLIBTERMPARSER_H
#define ZENLO_FRONTEND_SMTLIBTERMPARSER_H

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/smtlib2abstractparser.h"
#include "terms/hashtable.h"
#include "terms/termmanager.h"

namespace zenlo {

// The builder of one built-in symbol. Handlers are stateless and shared by
// all parsers. The base operators answer null, which the caller reports
// as an unknown symbol.
class SymbolHandler {
 public:
  // The largest index of an indexed symbol or sort: widths beyond it would
  // ask the number code for powers of two of absurd size.
  static constexpr size_t kMaxIndex = size_t{1} << 24;

  virtual ~SymbolHandler() = default;

  // `sort` is the sort an "as" asked for, or null.
  virtual const Term_* operator()(TermManager& tm,
                                  std::string_view name,
                                  const Type* sort,
                                  TermArgs args) const;
  virtual const Term_* operator()(TermManager& tm,
                                  std::string_view name,
                                  const Type* sort,
                                  IndexArgs indices,
                                  TermArgs args) const;

  // Throws ParserInterface::error "ERROR: name takes exactly (at least) n
  // arguments (k given)" on a wrong count.
  static void check_arity(std::string_view name,
                          size_t n,
                          TermArgs args,
                          bool exact);
  static void check_idx_arity(std::string_view name,
                              size_t n,
                              IndexArgs indices);
  // Returns: index `position` (from 0) as a number.
  // Throws: ParserInterface::error when it is no numeral or above
  //   kMaxIndex.
  static size_t check_idx_int(std::string_view name,
                              IndexArgs indices,
                              size_t position);
};

class SmtLibTermParser {
 public:
  // Requires: `tm` outlives the parser.
  // After: the global bindings of bit0, bit1, the rounding modes under
  //   their long and short names, and pi exist.
  explicit SmtLibTermParser(TermManager* tm);
  ~SmtLibTermParser();
  SmtLibTermParser(const SmtLibTermParser&) = delete;
  SmtLibTermParser& operator=(const SmtLibTermParser&) = delete;

  TermManager& get_term_manager() { return *d_tm; }

  // ------------------------------------------------------------------
  // Terms.
  // ------------------------------------------------------------------

  // The term a name denotes, applied to `args` when there are some.
  // - Throws: ParserInterface::error ("unknown symbol: f", "wrong number
  //   of arguments for symbol `f'", ...) or TermManager::error for
  //   arguments of the wrong type.
  const Term_* make_term(std::string_view name,
                         const Type* sort,
                         IndexArgs indices,
                         TermArgs args);
  const Term_* make_number_term(std::string_view text);
  const Term_* make_number_term(std::string_view digits,
                                size_t width,
                                int base);
  // Quantifies `body` over `vars`, the first outermost. Pops nothing.
  const Term_* make_quantifier_term(bool forall,
                                    const TermList& vars,
                                    const Term_* body);

  // ------------------------------------------------------------------
  // Bindings and bound variables.
  // ------------------------------------------------------------------

  void push_let_namespace();
  // Removes the names of the innermost namespace.
  void pop_let_namespace();
  // - Throws: ParserInterface::error "symbol `x' already defined" for a
  //   let name that is a declared symbol or a definition, or that the
  //   namespace binds already (function arguments skip the first test).
  void define_let_binding(std::string_view name,
                          const Term_* term,
                          bool is_function_argument);
  void push_bound_variable(std::string_view name, const Term_* var);
  // - Throws: ParserInterface::error when fewer than n are bound.
  void pop_bound_variables(size_t n);
  // Drops every let namespace and bound variable (after a failed command).
  void clear_scopes();

  // Global definitions (define-fun, :named). `params` are the variables
  // that stand for the parameters in `body`.
  // - Throws: ParserInterface::error "symbol `x' already defined" when the
  //   name is bound already.
  void define_binding(std::string_view name, const Term_* term);
  void define_binding(std::string_view name,
                      const TermList& params,
                      const Term_* body);
  // Returns: whether a global definition of that name existed.
  bool undefine_binding(std::string_view name);
  // Returns: whether the name has a global definition.
  bool has_binding(std::string_view name) const;

  // ------------------------------------------------------------------
  // Declarations.
  // ------------------------------------------------------------------

  // - Throws: ParserInterface::error "`f' is a built-in function" or
  //   "`f' is already defined"; TermManager errors for a name declared
  //   with another type. A name declared again with the same type gives
  //   the same symbol. Our extensions of the standard (pi, exp, ~, ...)
  //   are no built-ins here: a declaration of that name replaces ours.
  const Symbol* declare_function(std::string_view name, const Type* type);
  bool is_builtin(std::string_view name) const;

  // Appends the terms the parser holds (definitions, open bindings) to
  // `out`, for a collection that must keep them.
  void collect_terms_to_keep(TermList& out) const;

 private:
  // Names like `-2' whose declaration was refused: the script means a
  // symbol by them, so they no longer read as the lenient numbers.
  std::set<std::string, std::less<>> d_refused_number_names;
  struct NameStack;
  struct Definition;

  const Term_* apply_binding(std::string_view name,
                             const Type* sort,
                             TermArgs args,
                             bool* found);
  const Term_* apply_definition(const Definition& d,
                                std::string_view name,
                                const Type* sort,
                                TermArgs args);
  const Term_* apply_symbol(std::string_view name,
                            const Type* sort,
                            TermArgs args);
  const Term_* instantiate(const Definition& d, TermArgs args);
  const Term_* make_indexed(std::string_view name,
                            const Type* sort,
                            IndexArgs indices,
                            TermArgs args);
  const Symbol* find_user_symbol(std::string_view name) const;
  void drop_extension_binding(std::string_view name);
  void define_builtin(std::string_view name, const Term_* term);
  NameStack* name_stack(hsh::HashMap<std::string_view, NameStack*>& table,
                        std::string_view name);

  TermManager* d_tm;

  // Let bindings and function parameters: each name's stack of terms, and
  // the names of the open namespaces separated by null marks.
  hsh::HashMap<std::string_view, NameStack*> d_lets;
  std::vector<NameStack*> d_let_names;
  // Variables bound by quantifiers, and the order they were bound in.
  hsh::HashMap<std::string_view, NameStack*> d_bound;
  std::vector<NameStack*> d_bound_names;
  std::vector<std::unique_ptr<NameStack>> d_stacks;
  // Number of open let namespaces; each binding records the one it was
  // made in, so a duplicate in one namespace is found in one probe.
  uint32_t d_let_depth = 0;
  uint64_t d_stamp = 0;

  // Global definitions, owned here: a pop of the interpreter deletes
  // them one by one.
  hsh::HashMap<std::string_view, Definition*> d_defs;

  // Scratch of one application of a declared symbol.
  TermList d_scratch;
};

}  // namespace zenlo

#endif
