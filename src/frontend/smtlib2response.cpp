#include "frontend/smtlib2response.h"

namespace zenlo {

namespace {

// "( a\n  b\n  c )": the list form of every multi-line answer.
template <class F>
void print_list(std::ostream& out, size_t n, F&& item) {
  out << "( ";
  for (size_t i = 0; i < n; ++i) {
    if (i > 0) {
      out << "\n  ";
    }
    item(i);
  }
  out << " )";
}

}  // namespace

std::string smtlib_string(const std::string& text) {
  std::string out = "\"";
  for (char c : text) {
    out += c;
    if (c == '"') {
      out += '"';
    }
  }
  out += '"';
  return out;
}

void SmtLib2Response::clear() {
  kind = Kind::Success;
  text.clear();
  pairs.clear();
  items.clear();
  show_model = false;
  model_error.clear();
}

void SmtLib2Response::set_error(std::string message) {
  clear();
  kind = Kind::Error;
  text = std::move(message);
}

void SmtLib2Response::print(std::ostream& out,
                            bool print_success,
                            bool values_as_formula) const {
  switch (kind) {
    case Kind::Success:
      if (!print_success) {
        return;
      }
      out << "success";
      break;
    case Kind::Error: out << "(error " << smtlib_string(text) << ")"; break;
    case Kind::Unsupported: out << "unsupported"; break;
    case Kind::CheckSat: print_check_sat(out); break;
    case Kind::Info:
      print_list(out, pairs.size(), [&](size_t i) {
        out << pairs[i].first << ' ' << pairs[i].second;
      });
      break;
    case Kind::Values: print_values(out, values_as_formula); break;
    case Kind::Model:
      out << "(model";
      for (const std::string& entry : items) {
        out << "\n  " << entry;
      }
      out << "\n)";
      break;
    case Kind::TermList:
      print_list(out, items.size(), [&](size_t i) { out << items[i]; });
      break;
    case Kind::Term:
    case Kind::Text: out << text; break;
  }
  out << std::endl;
}

void SmtLib2Response::print_check_sat(std::ostream& out) const {
  out << text;
  if (!show_model) {
    return;
  }
  out << '\n';
  if (!model_error.empty()) {
    out << "(error " << smtlib_string(model_error) << ")";
    return;
  }
  if (pairs.empty()) {
    out << "( )";
    return;
  }
  for (size_t i = 0; i < pairs.size(); ++i) {
    out << (i == 0 ? "( (" : "\n  (") << pairs[i].first << ' '
        << pairs[i].second << ')';
  }
  out << " )";
}

void SmtLib2Response::print_values(std::ostream& out, bool as_formula) const {
  if (!as_formula) {
    print_list(out, pairs.size(), [&](size_t i) {
      out << '(' << pairs[i].first << ' ' << pairs[i].second << ')';
    });
    return;
  }
  out << "(and";
  for (const auto& [term, value] : pairs) {
    out << "\n  (= " << term << ' ' << value << ')';
  }
  out << "\n)";
}

}  // namespace zenlo
