#include "base/optparse.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <ostream>
#include <sstream>

namespace zenlo {

namespace {

std::string compose_error(const std::string& msg,
                          const std::string& name,
                          const std::string& value,
                          const std::string& raw) {
  return msg + ": " + name + ", value: " + value
         + ", command-line: " + (raw.empty() ? name + "=" + value : raw);
}

// Decimal digits with an optional '-' when `allow_minus`; the value must
// fit a long. Leading '+', blanks and an empty text are refused.
bool parse_integer(const std::string& text, bool allow_minus, long& out) {
  size_t i = 0;
  bool negative = false;
  if (allow_minus && !text.empty() && text[0] == '-') {
    negative = true;
    i = 1;
  }
  if (i == text.size()) {
    return false;
  }
  unsigned long magnitude = 0;
  const unsigned long limit =
      negative ? static_cast<unsigned long>(LONG_MAX) + 1 : LONG_MAX;
  for (; i < text.size(); ++i) {
    if (!std::isdigit(static_cast<unsigned char>(text[i]))) {
      return false;
    }
    unsigned long digit = static_cast<unsigned long>(text[i] - '0');
    if (magnitude > (limit - digit) / 10) {
      return false;
    }
    magnitude = magnitude * 10 + digit;
  }
  out = negative ? static_cast<long>(0 - magnitude)
                 : static_cast<long>(magnitude);
  return true;
}

// The standard conversion, but over the whole text and to a finite value:
// "1.5x" or "nan" in a configuration is a mistake, not a number.
bool parse_float(const std::string& text, double& out) {
  if (text.empty() || std::isspace(static_cast<unsigned char>(text[0]))) {
    return false;
  }
  errno = 0;
  char* end = nullptr;
  double v = std::strtod(text.c_str(), &end);
  if (*end != '\0' || errno == ERANGE || !std::isfinite(v)) {
    return false;
  }
  out = v;
  return true;
}

// Stores `value` into the value fields of `into` as `opt` reads it.
// Returns: false when the text is not a value of the option's kind.
bool parse_value(const OptionParser::Option& opt,
                 const std::string& value,
                 OptionParser::Option& into) {
  using Kind = OptionParser::Kind;
  switch (opt.kind) {
    case Kind::Bool:
      if (value != "true" && value != "false") {
        return false;
      }
      into.bool_value = (value == "true");
      return true;
    case Kind::Int: return parse_integer(value, false, into.int_value);
    case Kind::SignedInt: return parse_integer(value, true, into.int_value);
    case Kind::Float: return parse_float(value, into.float_value);
    case Kind::Str: into.str_value = value; return true;
    case Kind::Flag: return value.empty();
    case Kind::Enum:
      if (std::find(opt.enum_values.begin(), opt.enum_values.end(), value)
          == opt.enum_values.end()) {
        return false;
      }
      into.str_value = value;
      return true;
  }
  return false;
}

std::string lowercase(std::string s) {
  for (char& c : s) {
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return s;
}

}  // namespace

OptionParser::OptionParser(OptionBoolStyle style) : d_style(style) {}

void OptionParser::add_option(const std::string& name,
                              Kind kind,
                              const std::string& help,
                              int min,
                              int max) {
  Option opt;
  opt.name = name;
  opt.kind = kind;
  opt.help = help;
  opt.min = min;
  opt.max = max;
  opt.group = d_cur_group;
  d_options[name] = std::move(opt);
}

void OptionParser::add_enum_value(const std::string& name,
                                  const std::string& value) {
  Option* opt = find(name);
  if (opt != nullptr && opt->kind == Kind::Enum) {
    opt->enum_values.push_back(value);
  }
}

void OptionParser::del_option(const std::string& name) {
  d_options.erase(name);
}

void OptionParser::set_cur_help_group(const std::string& title) {
  auto it = std::find(d_groups.begin(), d_groups.end(), title);
  if (it == d_groups.end()) {
    d_groups.push_back(title);
    it = d_groups.end() - 1;
  }
  d_cur_group = static_cast<int>(it - d_groups.begin());
}

OptionParser::Option* OptionParser::find(const std::string& name) {
  auto it = d_options.find(name);
  return it == d_options.end() ? nullptr : &it->second;
}

void OptionParser::parse_option(const std::string& name,
                                const std::string& value,
                                int priority,
                                const std::string& raw) {
  Option* opt = find(name);
  if (opt == nullptr) {
    throw error(compose_error("unknown option", name, value, raw));
  }
  // Parse into a scratch copy: a value that loses on priority must still
  // be checked, and must not leave a trace.
  Option parsed = *opt;
  if (!parse_value(*opt, value, parsed)) {
    throw error(compose_error("bad value for option", name, value, raw));
  }
  if (opt->set && priority > opt->priority) {
    return;
  }
  parsed.set = true;
  parsed.priority = priority;
  *opt = std::move(parsed);
}

void OptionParser::parse_args(int argc,
                              const char* const* argv,
                              std::vector<std::string>& positional,
                              int priority) {
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i] == nullptr ? std::string() : argv[i];
    bool plus = d_style == OptionBoolStyle::PlusMinus && arg.size() > 1
                && arg[0] == '+';
    if ((arg.size() < 2 || arg[0] != '-') && !plus) {
      positional.push_back(arg);
      continue;
    }
    if (parse_arg(arg, priority) == "help") {
      return;
    }
  }
}

// One "-name[=value]" argument, with the Boolean spellings of the style.
// Returns: the name of the option set.
std::string OptionParser::parse_arg(const std::string& arg, int priority) {
  size_t start = (arg.compare(0, 2, "--") == 0) ? 2 : 1;
  size_t eq = arg.find('=', start);
  std::string name = arg.substr(start, eq - start);
  std::string value = eq == std::string::npos ? "" : arg.substr(eq + 1);
  const Option* opt = get_option(name);
  bool has_value = eq != std::string::npos;
  if (opt == nullptr && !has_value && d_style == OptionBoolStyle::NoPrefix
      && name.compare(0, 3, "no_") == 0) {
    const Option* positive = get_option(name.substr(3));
    if (positive != nullptr && positive->kind == Kind::Bool) {
      parse_option(name.substr(3), "false", priority, arg);
      return name.substr(3);
    }
  }
  if (opt != nullptr && opt->kind == Kind::Bool) {
    if (d_style == OptionBoolStyle::PlusMinus && !has_value) {
      value = arg[0] == '+' ? "true" : "false";
    } else if (d_style == OptionBoolStyle::NoPrefix && !has_value) {
      value = "true";
    }
    value = lowercase(value);
  }
  parse_option(name, value, priority, arg);
  return name;
}

bool OptionParser::has_option(const std::string& name) const {
  return d_options.count(name) > 0;
}

const OptionParser::Option* OptionParser::get_option(
    const std::string& name) const {
  auto it = d_options.find(name);
  return it == d_options.end() ? nullptr : &it->second;
}

bool OptionParser::get_bool_option(const std::string& name, bool& out) const {
  const Option* opt = get_option(name);
  if (opt == nullptr || !opt->set || opt->kind != Kind::Bool) {
    return false;
  }
  out = opt->bool_value;
  return true;
}

bool OptionParser::get_int_option(const std::string& name, long& out) const {
  const Option* opt = get_option(name);
  if (opt == nullptr || !opt->set
      || (opt->kind != Kind::Int && opt->kind != Kind::SignedInt)) {
    return false;
  }
  out = opt->int_value;
  return true;
}

bool OptionParser::get_float_option(const std::string& name,
                                    double& out) const {
  const Option* opt = get_option(name);
  if (opt == nullptr || !opt->set || opt->kind != Kind::Float) {
    return false;
  }
  out = opt->float_value;
  return true;
}

bool OptionParser::get_str_option(const std::string& name,
                                  std::string& out) const {
  const Option* opt = get_option(name);
  if (opt == nullptr || !opt->set
      || (opt->kind != Kind::Str && opt->kind != Kind::Enum)) {
    return false;
  }
  out = opt->str_value;
  return true;
}

bool OptionParser::get_flag_option(const std::string& name) const {
  const Option* opt = get_option(name);
  return opt != nullptr && opt->set && opt->kind == Kind::Flag;
}

std::vector<std::string> OptionParser::get_options_set() const {
  std::vector<std::string> names;
  for (const auto& entry : d_options) {
    if (entry.second.set) {
      names.push_back(entry.first);
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string OptionParser::get_option_help(const std::string& name) const {
  const Option* opt = get_option(name);
  return opt == nullptr ? std::string() : opt->help;
}

void OptionParser::set_option_help(const std::string& name,
                                   const std::string& help) {
  Option* opt = find(name);
  if (opt != nullptr) {
    opt->help = help;
  }
}

void OptionParser::reset() {
  for (auto& entry : d_options) {
    Option& opt = entry.second;
    opt.set = false;
    opt.priority = 0;
    opt.bool_value = false;
    opt.int_value = 0;
    opt.float_value = 0;
    opt.str_value.clear();
  }
}

std::string OptionParser::option_label(const Option& opt) const {
  if (opt.kind == Kind::Bool) {
    switch (d_style) {
      case OptionBoolStyle::NoPrefix: return " -[no_]" + opt.name;
      case OptionBoolStyle::PlusMinus: return " (+|-)" + opt.name;
      case OptionBoolStyle::Value: return " -" + opt.name + "=BOOL";
    }
  }
  static const char* const suffix[] = {
      "=BOOL", "=INT", "=INT", "=FLOAT", "=STR", "", "=ENUM"};
  return " -" + opt.name + suffix[static_cast<int>(opt.kind)];
}

namespace {

// Appends the words of `text` to `line`, breaking before a word that would
// pass `width` and starting each new line with `indent` blanks.
void write_wrapped(std::ostream& out,
                   std::string line,
                   const std::string& text,
                   int indent,
                   int width) {
  std::istringstream words(text);
  std::string word;
  bool fresh_line = false;
  while (words >> word) {
    if (!fresh_line
        && line.size() + 1 + word.size() > static_cast<size_t>(width)) {
      out << line << '\n';
      line.assign(static_cast<size_t>(indent), ' ');
      fresh_line = true;
    }
    if (!fresh_line) {
      line += ' ';
    }
    line += word;
    fresh_line = false;
  }
  out << line << '\n';
}

}  // namespace

void OptionParser::print_help(std::ostream& out,
                              int indent,
                              int enum_indent,
                              int width) const {
  for (size_t g = 0; g < d_groups.size(); ++g) {
    std::vector<const Option*> members;
    for (const auto& entry : d_options) {
      if (entry.second.group == static_cast<int>(g)) {
        members.push_back(&entry.second);
      }
    }
    if (members.empty()) {
      continue;
    }
    std::sort(
        members.begin(), members.end(), [](const Option* a, const Option* b) {
          return a->name < b->name;
        });
    out << '\n' << d_groups[g] << '\n';
    for (const Option* opt : members) {
      write_wrapped(out, option_label(*opt) + " :", opt->help, indent, width);
      if (opt->kind == Kind::Enum) {
        std::string pad(static_cast<size_t>(enum_indent), ' ');
        out << pad << "Possible values:";
        for (const std::string& v : opt->enum_values) {
          out << '\n' << pad << "- " << v;
        }
        out << '\n';
      }
    }
  }
}

}  // namespace zenlo
