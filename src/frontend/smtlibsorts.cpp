// Sort names of SMT-LIB 2 scripts, and the instantiation of sorts with
// parameters.
#include "frontend/smtlibsorts.h"

#include <utility>

#include "frontend/smtlibtermparser.h"

namespace zenlo {

using perror = ParserInterface::error;

// ----------------------------------------------------------------------
// ParametricType
// ----------------------------------------------------------------------

SmtLib2AbstractParser::ParametricType::ParametricType(
    TermManager* tm, const Type* pattern, std::vector<const Type*> params)
    : d_tm(tm), d_pattern(pattern), d_params(std::move(params)) {}

const Type* SmtLib2AbstractParser::ParametricType::instantiate(
    const SortList& args) {
  hsh::HashMap<const Type*, const Type*> map;
  for (size_t i = 0; i < d_params.size() && i < args.size(); ++i) {
    map.insert(d_params[i], args[i]);
  }
  return instantiate(map);
}

// Rebuilds the pattern bottom-up with an explicit stack; a component that
// no parameter reaches is kept as it is.
const Type* SmtLib2AbstractParser::ParametricType::instantiate(
    const hsh::HashMap<const Type*, const Type*>& map) {
  hsh::HashMap<const Type*, const Type*> done = map;
  std::vector<std::pair<const Type*, bool>> stack{{d_pattern, false}};
  std::vector<const Type*> comps;
  while (!stack.empty()) {
    const Type* t = stack.back().first;
    if (done.contains(t) || t->is_simple()) {
      if (!done.contains(t)) {
        done.insert(t, t);
      }
      stack.pop_back();
      continue;
    }
    if (!stack.back().second) {
      stack.back().second = true;
      for (const Type* c : t->get_components()) {
        stack.emplace_back(c, false);
      }
      continue;
    }
    stack.pop_back();
    comps.clear();
    for (const Type* c : t->get_components()) {
      comps.push_back(*done.get(c));
    }
    done.insert(t, rebuild(t, comps));
  }
  return *done.get(d_pattern);
}

const Type* SmtLib2AbstractParser::ParametricType::rebuild(
    const Type* t, const std::vector<const Type*>& comps) {
  if (comps == t->get_components()) {
    return t;
  }
  if (d_tm->is_array_type(t)) {
    return d_tm->get_array_type(comps[1], comps[2]);
  }
  return d_tm->get_universe().make_type(comps);
}

// ----------------------------------------------------------------------
// SmtLibSorts
// ----------------------------------------------------------------------

struct SmtLibSorts::Entry {
  std::string name;
  const Type* type = nullptr;  // a sort without parameters
  std::unique_ptr<ParametricType> parametric;
  bool builtin = false;
};

namespace {

// Names the store uses for its own type constructors; a user sort of one
// of these names would be the constructor itself.
bool is_reserved_sort_name(std::string_view name) {
  return name == "Array" || name == "BitVec" || name == "FloatingPoint"
         || name == "FP" || name == "FPRounding";
}

}  // namespace

SmtLibSorts::SmtLibSorts(TermManager* tm) : d_tm(tm) {
  const std::pair<const char*, const Type*> builtin[] = {
      {"Bool", tm->get_bool_type()},
      {"Real", tm->get_real_type()},
      {"Int", tm->get_integer_type()},
      {"RoundingMode", tm->get_fprounding_type()},
      {"Float16", tm->get_fp_type(5, 10)},
      {"Float32", tm->get_fp_type(8, 23)},
      {"Float64", tm->get_fp_type(11, 52)},
      {"Float128", tm->get_fp_type(15, 112)},
  };
  for (const auto& b : builtin) {
    auto e = std::make_unique<Entry>();
    e->type = b.second;
    e->builtin = true;
    add(b.first, std::move(e));
  }
}

SmtLibSorts::~SmtLibSorts() {
  for (auto& e : d_sorts) {
    delete e.second;
  }
}

SmtLibSorts::Entry* SmtLibSorts::find(std::string_view name) const {
  Entry* const* e = d_sorts.get(name);
  return e == nullptr ? nullptr : *e;
}

void SmtLibSorts::add(const std::string& name, std::unique_ptr<Entry> entry) {
  if (find(name) != nullptr || is_reserved_sort_name(name)) {
    throw perror("sort " + name + " already declared");
  }
  entry->name = name;
  Entry* e = entry.release();
  d_sorts.insert(std::string_view(e->name), e);
}

bool SmtLibSorts::is_declared(std::string_view name) const {
  return find(name) != nullptr;
}

bool SmtLibSorts::undeclare_sort(std::string_view name) {
  Entry* e = find(name);
  if (e == nullptr || e->builtin) {
    return false;
  }
  d_sorts.erase(name);
  delete e;
  return true;
}

// The type that stands for a define-sort parameter: a simple type whose
// name no script can reach through the sort table.
const Type* SmtLibSorts::placeholder(std::string_view name) {
  return d_tm->get_simple_type("`sort-parameter " + std::string(name) + "`");
}

const Type* SmtLibSorts::make_sort(std::string_view name) {
  for (size_t i = d_params.size(); i-- > 0;) {
    if (d_params[i].first == name) {
      return d_params[i].second;
    }
  }
  Entry* e = find(name);
  if (e == nullptr) {
    throw perror("undeclared sort " + std::string(name));
  }
  if (e->parametric != nullptr) {
    if (e->parametric->num_params() != 0) {
      throw perror("wrong number of parameters for sort " + std::string(name));
    }
    return e->parametric->get_pattern();
  }
  return e->type;
}

const Type* SmtLibSorts::make_sort(std::string_view name,
                                   const std::vector<std::string>& indices) {
  std::vector<std::string_view> views(indices.begin(), indices.end());
  std::vector<size_t> n;
  for (size_t k = 0; k < views.size(); ++k) {
    n.push_back(SymbolHandler::check_idx_int(name, views, k));
  }
  if (name == "BitVec" && n.size() == 1) {
    return d_tm->get_bv_type(n[0]);
  }
  if (name == "FloatingPoint" && n.size() == 2 && n[1] > 0) {
    return d_tm->get_fp_type(n[0], n[1] - 1);
  }
  std::string msg = "Unknown indexed sort " + std::string(name);
  for (const std::string& s : indices) {
    msg += " " + s;
  }
  throw perror(msg);
}

const Type* SmtLibSorts::make_parametric_sort(std::string_view name,
                                              const SortList& sorts) {
  std::string n(name);
  if (name == "Array") {
    if (sorts.size() != 2) {
      throw perror("wrong number of parameters for sort Array");
    }
    return d_tm->get_array_type(sorts[0], sorts[1]);
  }
  Entry* e = find(name);
  if (e == nullptr) {
    throw perror("undeclared sort " + n);
  }
  if (e->parametric == nullptr || e->parametric->num_params() == 0) {
    throw perror("sort " + n + " is not parametric");
  }
  if (e->parametric->num_params() != sorts.size()) {
    throw perror("wrong number of parameters for sort " + n);
  }
  return e->parametric->instantiate(sorts);
}

const Type* SmtLibSorts::make_function_sort(const SortList& sorts) {
  if (sorts.size() == 1) {
    return sorts[0];
  }
  SortList args(sorts.begin(), sorts.end() - 1);
  return d_tm->get_function_type(args, sorts.back());
}

void SmtLibSorts::declare_sort(const std::string& name, size_t arity) {
  auto e = std::make_unique<Entry>();
  if (arity == 0) {
    e->type = d_tm->get_simple_type(name);
  } else {
    std::vector<const Type*> comps{d_tm->get_simple_type(name)};
    std::vector<const Type*> params;
    for (size_t i = 0; i < arity; ++i) {
      params.push_back(placeholder(name + " " + std::to_string(i)));
      comps.push_back(params.back());
    }
    const Type* pattern = d_tm->get_universe().make_type(comps);
    e->parametric =
        std::make_unique<ParametricType>(d_tm, pattern, std::move(params));
  }
  add(name, std::move(e));
}

void SmtLibSorts::declare_enum_sort(const std::string& name,
                                    const std::vector<std::string>& values) {
  if (find(name) != nullptr || is_reserved_sort_name(name)) {
    throw perror("sort " + name + " already declared");
  }
  auto e = std::make_unique<Entry>();
  e->type = d_tm->get_enum_type(name, values);
  add(name, std::move(e));
}

void SmtLibSorts::define_sort(const std::string& name,
                              const std::vector<std::string>& params,
                              const Type* body) {
  auto e = std::make_unique<Entry>();
  if (params.empty()) {
    e->type = body;
  } else {
    std::vector<const Type*> ps;
    for (const std::string& p : params) {
      ps.push_back(placeholder(p));
    }
    e->parametric = std::make_unique<ParametricType>(d_tm, body, std::move(ps));
  }
  add(name, std::move(e));
}

void SmtLibSorts::push_sort_parameters(const std::vector<std::string>& names) {
  d_params.emplace_back(std::string(), nullptr);  // the mark of this scope
  for (const std::string& n : names) {
    d_params.emplace_back(n, placeholder(n));
  }
}

void SmtLibSorts::pop_sort_parameters() {
  while (!d_params.empty() && d_params.back().second != nullptr) {
    d_params.pop_back();
  }
  if (!d_params.empty()) {
    d_params.pop_back();
  }
}

}  // namespace zenlo
