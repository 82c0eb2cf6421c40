#include "base/configurationsetter.h"

#include <climits>
#include <istream>
#include <ostream>
#include <sstream>

#include "base/optiontable.h"

namespace zenlo {

namespace {

// The built-in configuration text, read by load_default. It sets nothing
// today; settings per logic would go here as sections.
const char* const zenlo_default_config[] = {
    "# default configuration settings (empty)\n",
    nullptr,
};

const char* const kBlanks = " \t\r\n\f\v";

std::string strip(const std::string& s) {
  size_t begin = s.find_first_not_of(kBlanks);
  if (begin == std::string::npos) {
    return std::string();
  }
  size_t end = s.find_last_not_of(kBlanks);
  return s.substr(begin, end - begin + 1);
}

OptionParser::error bad_format() {
  return OptionParser::error("bad format of configuration file");
}

std::string section_key(const std::string& name) {
  return name == "default" ? std::string() : name;
}

// "[a, b]" names the sections a and b.
std::vector<std::string> parse_header(const std::string& line) {
  if (line.size() < 2 || line.back() != ']') {
    throw bad_format();
  }
  std::string inner = strip(line.substr(1, line.size() - 2));
  if (inner.empty()) {
    throw bad_format();
  }
  std::vector<std::string> names;
  std::istringstream parts(inner);
  std::string part;
  while (std::getline(parts, part, ',')) {
    part = strip(part);
    if (part.empty()) {
      throw bad_format();
    }
    names.push_back(section_key(part));
  }
  if (inner.back() == ',') {
    throw bad_format();  // getline drops a trailing empty part
  }
  return names;
}

std::vector<std::string> split_sections(const std::string& text) {
  if (strip(text) == "ALL") {
    return {};
  }
  std::vector<std::string> names;
  std::istringstream parts(text);
  std::string part;
  while (std::getline(parts, part, ',')) {
    names.push_back(strip(part));
  }
  if (names.empty()) {
    names.emplace_back();
  }
  return names;
}

// Copies the parsed value of one option into its field, when it was set.
struct FieldCopier {
  const OptionParser& parser;
  const OptionDef& def;
  Configuration& config;

  [[noreturn]] void out_of_range() const {
    throw OptionParser::error("invalid value for option " + def.name);
  }

  template <class T>
  void check(T v, T lowest, T highest) const {
    if (v < lowest || v > highest || v < def.range.min || v > def.range.max) {
      out_of_range();
    }
  }

  void operator()(bool& (*field)(Configuration&)) const {
    parser.get_bool_option(def.name, field(config));
  }

  void operator()(int& (*field)(Configuration&)) const {
    long v;
    if (parser.get_int_option(def.name, v)) {
      check<long>(v, INT_MIN, INT_MAX);
      field(config) = static_cast<int>(v);
    }
  }

  void operator()(long& (*field)(Configuration&)) const {
    long v;
    if (parser.get_int_option(def.name, v)) {
      check<long>(v, LONG_MIN, LONG_MAX);
      field(config) = v;
    }
  }

  void operator()(double& (*field)(Configuration&)) const {
    double v;
    if (parser.get_float_option(def.name, v)) {
      check<double>(v, -HUGE_VAL, HUGE_VAL);
      field(config) = v;
    }
  }

  void operator()(std::string& (*field)(Configuration&)) const {
    parser.get_str_option(def.name, field(config));
  }
};

// Hands the value of one field to the printer of a dump.
struct FieldPrinter {
  ConfigEntryPrinter& printer;
  std::ostream& out;
  const OptionDef& def;
  Configuration& config;

  void operator()(bool& (*field)(Configuration&)) const {
    printer.print_bool(out, def.name, field(config));
  }

  void operator()(int& (*field)(Configuration&)) const {
    printer.print_int(out, def.name, field(config));
  }

  void operator()(long& (*field)(Configuration&)) const {
    printer.print_int(out, def.name, field(config));
  }

  void operator()(double& (*field)(Configuration&)) const {
    printer.print_float(out, def.name, field(config));
  }

  void operator()(std::string& (*field)(Configuration&)) const {
    printer.print_string(out, def.name, field(config));
  }
};

OptionParser::Kind kind_of(const OptionDef& def) {
  static_assert(std::variant_size_v<OptionDef::Field> == 5,
                "one kind per field type");
  static const OptionParser::Kind kinds[] = {OptionParser::Kind::Bool,
                                             OptionParser::Kind::Int,
                                             OptionParser::Kind::Int,
                                             OptionParser::Kind::Float,
                                             OptionParser::Kind::Str};
  return kinds[def.field.index()];
}

}  // namespace

// ---------------------------------------------------------------------------
// Entry printers

ConfigEntryPrinter::~ConfigEntryPrinter() = default;

void ConfigEntryPrinter::print_bool(std::ostream& out,
                                    const std::string& name,
                                    bool v) {
  out << name << " = " << (v ? "true" : "false") << '\n';
}

void ConfigEntryPrinter::print_int(std::ostream& out,
                                   const std::string& name,
                                   long v) {
  out << name << " = " << v << '\n';
}

void ConfigEntryPrinter::print_unsigned(std::ostream& out,
                                        const std::string& name,
                                        unsigned long v) {
  out << name << " = " << v << '\n';
}

void ConfigEntryPrinter::print_float(std::ostream& out,
                                     const std::string& name,
                                     double v) {
  out << name << " = " << v << '\n';
}

void ConfigEntryPrinter::print_string(std::ostream& out,
                                      const std::string& name,
                                      const std::string& v) {
  out << name << " = " << v << '\n';
}

ConfigFileEntryPrinter::ConfigFileEntryPrinter(std::string prefix)
    : d_prefix(std::move(prefix)) {}

void ConfigFileEntryPrinter::print_bool(std::ostream& out,
                                        const std::string& name,
                                        bool v) {
  out << d_prefix;
  ConfigEntryPrinter::print_bool(out, name, v);
}

void ConfigFileEntryPrinter::print_int(std::ostream& out,
                                       const std::string& name,
                                       long v) {
  out << d_prefix;
  ConfigEntryPrinter::print_int(out, name, v);
}

void ConfigFileEntryPrinter::print_unsigned(std::ostream& out,
                                            const std::string& name,
                                            unsigned long v) {
  out << d_prefix;
  ConfigEntryPrinter::print_unsigned(out, name, v);
}

void ConfigFileEntryPrinter::print_float(std::ostream& out,
                                         const std::string& name,
                                         double v) {
  out << d_prefix;
  ConfigEntryPrinter::print_float(out, name, v);
}

void ConfigFileEntryPrinter::print_string(std::ostream& out,
                                          const std::string& name,
                                          const std::string& v) {
  out << d_prefix;
  ConfigEntryPrinter::print_string(out, name, v);
}

// ---------------------------------------------------------------------------
// Options and files

ConfigurationSetter::ConfigurationSetter() : d_parser(OptionBoolStyle::Value) {}

ConfigurationSetter::~ConfigurationSetter() = default;

void ConfigurationSetter::initialize_options() {
  for (const OptionGroup& group : option_table()) {
    d_parser.set_cur_help_group(group.title);
    for (const OptionDef& def : group.options) {
      d_parser.add_option(def.name, kind_of(def), def.help);
    }
  }
}

void ConfigurationSetter::load(std::istream& in, int priority) {
  // Collected apart and merged at the end, so that a file failing halfway
  // leaves the setter as it was.
  std::map<std::string, std::vector<OptEntry>> loaded;
  std::vector<std::string> current{std::string()};
  std::string line;
  while (std::getline(in, line)) {
    line = strip(line);
    if (line.empty() || line[0] == '#') {
      continue;
    }
    if (line[0] == '[') {
      current = parse_header(line);
      continue;
    }
    size_t eq = line.find('=');
    if (eq == std::string::npos) {
      throw bad_format();
    }
    std::string key = strip(line.substr(0, eq));
    if (key.empty()) {
      throw bad_format();
    }
    std::string value = strip(line.substr(eq + 1));
    for (const std::string& name : current) {
      loaded[name].push_back(OptEntry{key, value, priority});
    }
  }
  for (auto& entry : loaded) {
    std::vector<OptEntry>& into = d_sections[entry.first];
    into.insert(into.end(), entry.second.begin(), entry.second.end());
  }
}

void ConfigurationSetter::load_default() {
  std::string text;
  for (const char* const* part = zenlo_default_config; *part != nullptr;
       ++part) {
    text += *part;
  }
  std::istringstream in(text);
  load(in, kDefaultPriority);
}

void ConfigurationSetter::set_option(const std::string& name,
                                     const std::string& value,
                                     int priority) {
  d_parser.parse_option(name, value, priority);
}

void ConfigurationSetter::set_active_config(const std::string& name) {
  d_active = section_key(name);
}

const std::vector<ConfigurationSetter::OptEntry>* ConfigurationSetter::section(
    const std::string& name) const {
  auto it = d_sections.find(section_key(name));
  return it == d_sections.end() ? nullptr : &it->second;
}

void ConfigurationSetter::parse_active_config() {
  std::vector<std::string> errors;
  auto apply = [&](const std::string& name) {
    const std::vector<OptEntry>* entries = section(name);
    if (entries == nullptr) {
      return;
    }
    for (const OptEntry& e : *entries) {
      try {
        set_option(e.name, e.value, e.priority);
      } catch (const OptionParser::error& err) {
        errors.push_back(err.message());
      }
    }
  };
  apply(std::string());
  if (!d_active.empty()) {
    apply(d_active);
  }
  if (!errors.empty()) {
    std::string msg = std::to_string(errors.size())
                      + " error(s) while parsing the configuration file:";
    for (const std::string& e : errors) {
      msg += "\n" + e;
    }
    throw warning(msg);
  }
}

// ---------------------------------------------------------------------------
// The record

void ConfigurationSetter::update_config(Configuration& config) {
  std::string pending;
  try {
    parse_active_config();
  } catch (const warning& w) {
    pending = w.message();
  }
  copy_options(config);
  apply_dependencies(config);
  if (!pending.empty()) {
    throw warning(pending);
  }
}

void ConfigurationSetter::copy_options(Configuration& config) const {
  for (const OptionGroup& group : option_table()) {
    for (const OptionDef& def : group.options) {
      std::visit(FieldCopier{d_parser, def, config}, def.field);
    }
  }
  for (const OptionDef& def : unregistered_options()) {
    std::visit(FieldCopier{d_parser, def, config}, def.field);
  }
  std::string sections;
  if (d_parser.get_str_option("debug.log_sections", sections)) {
    config.log_sections = split_sections(sections);
  }
}

// Settings that others need in order to work. They are applied after the
// options, so they win over an explicit setting of the option they change.
void ConfigurationSetter::apply_dependencies(Configuration& config) const {
  if (config.interpolation) {
    config.proof_generation = true;
    config.preprocessor.toplevel_propagation = false;
  }
  if (config.bool_model_generation) {
    config.preprocessor.toplevel_propagation = false;
  }
  if (config.unsat_core_generation != 0) {
    config.preprocessor.toplevel_propagation = false;
    if (config.unsat_core_generation == 1) {
      config.proof_generation = true;
    } else if (config.unsat_core_generation == 2) {
      config.dpll.store_tlemmas = true;
    }
  }
}

void ConfigurationSetter::dump(const Configuration& config,
                               std::ostream& out) const {
  ConfigFileEntryPrinter printer;
  dump(config, out, printer);
}

void ConfigurationSetter::dump(const Configuration& config,
                               std::ostream& out,
                               const std::string& section) const {
  if (!section.empty()) {
    out << "[" << section << "]\n";
  }
  dump(config, out);
}

void ConfigurationSetter::dump(const Configuration& config,
                               std::ostream& out,
                               ConfigEntryPrinter& printer) const {
  // The field accessors serve reading and writing alike; nothing is
  // written through them here.
  Configuration& fields = const_cast<Configuration&>(config);
  for (const OptionGroup& group : option_table()) {
    for (const OptionDef& def : group.options) {
      if (def.dumped) {
        std::visit(FieldPrinter{printer, out, def, fields}, def.field);
      }
    }
  }
}

}  // namespace zenlo
