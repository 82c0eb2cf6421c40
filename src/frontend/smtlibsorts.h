// The sorts of an SMT-LIB 2 script: the built-in sort names, the sorts a
// script declares or defines, and the parameters of a define-sort while
// its body is read. Both the library client and the command interpreter
// keep one, so that sort declarations mean the same in both; the
// interpreter also removes sorts again at a pop.
#ifndef ZENLO_FRONTEND_SMTLIBSORTS_H
#define ZENLO_FRONTEND_SMTLIBSORTS_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/smtlib2abstractparser.h"
#include "terms/hashtable.h"
#include "terms/termmanager.h"

namespace zenlo {

class SmtLibSorts {
 public:
  using ParametricType = SmtLib2AbstractParser::ParametricType;

  // Requires: `tm` outlives the table.
  // After: Bool, Int, Real, RoundingMode and Float16, Float32, Float64,
  //   Float128 are known.
  explicit SmtLibSorts(TermManager* tm);
  ~SmtLibSorts();
  SmtLibSorts(const SmtLibSorts&) = delete;
  SmtLibSorts& operator=(const SmtLibSorts&) = delete;

  // All failures are ParserInterface::error with the texts "undeclared
  // sort S", "wrong number of parameters for sort S", "sort S is not
  // parametric", "Unknown indexed sort S i..." and "parse error".
  const Type* make_sort(std::string_view name);
  const Type* make_sort(std::string_view name,
                        const std::vector<std::string>& indices);
  const Type* make_parametric_sort(std::string_view name,
                                   const SortList& sorts);
  const Type* make_function_sort(const SortList& sorts);

  // - Throws: ParserInterface::error "sort S already declared" when the
  //   name is taken in this table.
  void declare_sort(const std::string& name, size_t arity);
  void declare_enum_sort(const std::string& name,
                         const std::vector<std::string>& values);
  // `body` was read with the placeholders of push_sort_parameters(params).
  void define_sort(const std::string& name,
                   const std::vector<std::string>& params,
                   const Type* body);
  void push_sort_parameters(const std::vector<std::string>& names);
  void pop_sort_parameters();

  // Removes a declared or defined sort. Returns: whether it existed.
  bool undeclare_sort(std::string_view name);
  bool is_declared(std::string_view name) const;

 private:
  struct Entry;

  Entry* find(std::string_view name) const;
  void add(const std::string& name, std::unique_ptr<Entry> entry);
  const Type* placeholder(std::string_view name);

  TermManager* d_tm;
  hsh::HashMap<std::string_view, Entry*> d_sorts;
  // The define-sort parameters in scope: name and placeholder type.
  std::vector<std::pair<std::string, const Type*>> d_params;
};

}  // namespace zenlo

#endif
