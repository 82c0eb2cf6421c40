#include "frontend/smtlib2model.h"

#include <algorithm>
#include <sstream>

namespace zenlo {

namespace {

// "(?X1 Int) (?X2 Bool)"
std::string parameter_list(SmtLibTermPrinter& printer, const Symbol* s) {
  std::string out;
  for (size_t i = 0; i < s->get_arity(); ++i) {
    if (i > 0) {
      out += ' ';
    }
    out += "(?X" + std::to_string(i + 1) + " "
           + printer.to_smtlib(s->get_arg_type(i)) + ")";
  }
  return out;
}

// "(ite (and (= ?X1 a) (= ?X2 b)) r " for one point of a function.
void append_point(TermManager& tm,
                  SmtLibTermPrinter& printer,
                  std::ostream& out,
                  const ModelAssignment& point) {
  const Term_* app = point.first;
  const Symbol* s = app->get_symbol();
  out << "(ite (and";
  for (size_t i = 0; i < app->get_arity(); ++i) {
    out << " (= ?X" << i + 1 << ' ';
    print_value(tm, printer, out, app->get_child(i), s->get_arg_type(i));
    out << ')';
  }
  out << ") ";
  print_value(tm, printer, out, point.second, s->get_output_type());
  out << ' ';
}

// The entry of one symbol; `points` are its pairs, in the model's order.
std::string define_fun(TermManager& tm,
                       SmtLibTermPrinter& printer,
                       const Symbol* s,
                       const std::vector<ModelAssignment>& points) {
  std::ostringstream out;
  out << "(define-fun " << printer.to_smtlib(s) << " ("
      << parameter_list(printer, s) << ") "
      << printer.to_smtlib(s->get_output_type()) << ' ';
  if (s->get_arity() == 0) {
    print_value(tm, printer, out, points.front().second, s->get_output_type());
    out << ')';
    return out.str();
  }
  // The first point's value closes the table: it is the value the model
  // gives to every point it does not list, so get-value agrees.
  for (const ModelAssignment& point : points) {
    append_point(tm, printer, out, point);
  }
  print_value(tm, printer, out, points.front().second, s->get_output_type());
  out << std::string(points.size(), ')') << ')';
  return out.str();
}

}  // namespace

void print_value(TermManager& tm,
                 SmtLibTermPrinter& printer,
                 std::ostream& out,
                 const Term_* value,
                 const Type* type) {
  bool widen = tm.is_real_type(type) && tm.is_integer_type(value->get_type());
  if (widen) {
    out << "(to_real ";
  }
  printer.print_atom(out, value);
  if (widen) {
    out << ')';
  }
}

std::string value_text(TermManager& tm,
                       SmtLibTermPrinter& printer,
                       const Term_* value,
                       const Type* type) {
  std::ostringstream out;
  print_value(tm, printer, out, value, type);
  return out.str();
}

std::vector<std::string> model_define_funs(
    TermManager& tm,
    SmtLibTermPrinter& printer,
    const std::vector<ModelAssignment>& model) {
  // Group the points by symbol; a stable sort keeps each function's
  // points in the model's order.
  std::vector<ModelAssignment> sorted = model;
  std::stable_sort(sorted.begin(),
                   sorted.end(),
                   [](const ModelAssignment& a, const ModelAssignment& b) {
                     return a.first->get_symbol()->get_id()
                            < b.first->get_symbol()->get_id();
                   });
  std::vector<std::string> out;
  std::vector<ModelAssignment> points;
  for (size_t i = 0; i < sorted.size(); ++i) {
    points.push_back(sorted[i]);
    const Symbol* s = sorted[i].first->get_symbol();
    if (i + 1 == sorted.size() || sorted[i + 1].first->get_symbol() != s) {
      out.push_back(define_fun(tm, printer, s, points));
      points.clear();
    }
  }
  return out;
}

}  // namespace zenlo
