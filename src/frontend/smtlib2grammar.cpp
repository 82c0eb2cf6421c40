// The commands of SMT-LIB 2, one reading function each, and the driver
// that runs one command per call, turns failures into located errors and
// closes the scopes a failed command left open.
#include "frontend/smtlib2grammar.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "base/terminationtest.h"
#include "terms/hashtable.h"
#include "zenlo.h"

extern "C" {
int zenlo_smtlib2_parser_debug = 0;
}

namespace zenlo {

namespace {

enum class Cmd {
  SetLogic,
  DeclareSort,
  DeclareEnumSort,
  DefineSort,
  DeclareFun,
  DeclareConst,
  DefineFun,
  DefineConst,
  Push,
  Pop,
  Assert,
  CheckSat,
  GetAssertions,
  GetUnsatCore,
  GetProof,
  SetOption,
  GetInfo,
  SetInfo,
  GetAssignment,
  GetModel,
  GetValue,
  Exit,
  GetInterpolant,
  CheckAllsat,
  CheckSatAssumptions,
  GetUnsatAssumptions,
  ResetAssertions,
  InternalParseTerms,
  Minimize,
  Maximize,
  Minmax,
  Maxmin,
  AssertSoft,
  GetObjectives,
  LoadObjectiveModel,
  Echo,
  GetOption,
  Reset,
};

using CommandTable = hsh::HashMap<std::string_view, Cmd>;

const CommandTable& command_table() {
  static const CommandTable table = [] {
    CommandTable t;
    const std::pair<const char*, Cmd> entries[] = {
        {"set-logic", Cmd::SetLogic},
        {"declare-sort", Cmd::DeclareSort},
        {"declare-enum-sort", Cmd::DeclareEnumSort},
        {"define-sort", Cmd::DefineSort},
        {"declare-fun", Cmd::DeclareFun},
        {"declare-const", Cmd::DeclareConst},
        {"define-fun", Cmd::DefineFun},
        {"define-const", Cmd::DefineConst},
        {"push", Cmd::Push},
        {"pop", Cmd::Pop},
        {"assert", Cmd::Assert},
        {"check-sat", Cmd::CheckSat},
        {"get-assertions", Cmd::GetAssertions},
        {"get-unsat-core", Cmd::GetUnsatCore},
        {"get-proof", Cmd::GetProof},
        {"set-option", Cmd::SetOption},
        {"get-info", Cmd::GetInfo},
        {"set-info", Cmd::SetInfo},
        {"get-assignment", Cmd::GetAssignment},
        {"get-model", Cmd::GetModel},
        {"get-value", Cmd::GetValue},
        {"exit", Cmd::Exit},
        {"get-interpolant", Cmd::GetInterpolant},
        {"check-allsat", Cmd::CheckAllsat},
        {"check-sat-assumptions", Cmd::CheckSatAssumptions},
        {"check-sat-assuming", Cmd::CheckSatAssumptions},
        {"get-unsat-assumptions", Cmd::GetUnsatAssumptions},
        {"reset-assertions", Cmd::ResetAssertions},
        {".internal-parse-terms", Cmd::InternalParseTerms},
        {"minimize", Cmd::Minimize},
        {"maximize", Cmd::Maximize},
        {"minmax", Cmd::Minmax},
        {"maxmin", Cmd::Maxmin},
        {"assert-soft", Cmd::AssertSoft},
        {"get-objectives", Cmd::GetObjectives},
        {"load-objective-model", Cmd::LoadObjectiveModel},
        {"echo", Cmd::Echo},
        {"get-option", Cmd::GetOption},
        {"reset", Cmd::Reset},
    };
    for (const auto& e : entries) {
      t.insert(e.first, e.second);
    }
    return t;
  }();
  return table;
}

std::string describe(const SmtLib2Scanner& sc) {
  switch (sc.token()) {
    case Token::Symbol: return "symbol `" + sc.text() + "'";
    case Token::Keyword: return "keyword `" + sc.text() + "'";
    case Token::Numeral:
    case Token::Decimal:
      return std::string(token_name(sc.token())) + " `" + sc.text() + "'";
    case Token::Binary: return "binary constant `#b" + sc.text() + "'";
    case Token::Hex: return "hexadecimal constant `#x" + sc.text() + "'";
    default: return token_name(sc.token());
  }
}

// The content of a string in its source form "...".
std::string unquote_string(const std::string& text) {
  std::string out;
  for (size_t i = 1; i + 1 < text.size(); ++i) {
    out += text[i];
    if (text[i] == '"') {
      ++i;
    }
  }
  return out;
}

// Keeps a nesting level of the reader for the duration of one call.
class LevelGuard {
 public:
  explicit LevelGuard(size_t& level) : d_level(level) { ++d_level; }

  ~LevelGuard() { --d_level; }

  LevelGuard(const LevelGuard&) = delete;
  LevelGuard& operator=(const LevelGuard&) = delete;

 private:
  size_t& d_level;
};

// Messages of the term store quote terms, and a number's text can be
// huge; a message stays readable.
ParserInterface::error located(const std::string& msg, int line) {
  constexpr size_t kMaxMessage = 2000;
  std::string text =
      msg.size() <= kMaxMessage ? msg : msg.substr(0, kMaxMessage) + "...";
  return ParserInterface::error(text + " (line: " + std::to_string(line) + ")",
                                line);
}

}  // namespace

// ----------------------------------------------------------------------
// The driver
// ----------------------------------------------------------------------

SmtLib2AbstractParser::SmtLib2AbstractParser() = default;

SmtLib2AbstractParser::~SmtLib2AbstractParser() = default;

SmtLib2AbstractParser::Reader& SmtLib2AbstractParser::reader() {
  while (d_readers.size() <= d_level) {
    d_readers.push_back(std::make_unique<Reader>());
  }
  return *d_readers[d_level];
}

int SmtLib2AbstractParser::current_line() const {
  if (d_level == 0) {
    return 0;
  }
  const Reader& r = *d_readers[d_level - 1];
  return r.scanner == nullptr ? 0 : r.scanner->line();
}

void SmtLib2AbstractParser::fail(const std::string& message) {
  handle_error(message);
  throw ParserInterface::error(message);
}

void SmtLib2AbstractParser::assertion_refused(const std::string&) {}

void SmtLib2AbstractParser::handle_error(const std::string& message) {
  throw ParserInterface::error(message);
}

bool SmtLib2AbstractParser::parse_command(SmtLib2Scanner& scanner) {
  Reader& r = reader();
  LevelGuard guard(d_level);
  r.scanner = &scanner;
  r.clear_stacks();
  r.acting = false;
  Grammar g(*this, r);
  try {
    scanner.reset_depth();
    Token t = scanner.next();
    if (t == Token::End) {
      return false;
    }
    if (t != Token::LParen) {
      g.syntax_error("'('");
    }
    g.read_command();
  } catch (const TerminationTest::terminated&) {
    g.unwind();
    throw;
  } catch (const ParserInterface::error& e) {
    g.unwind();
    if (e.line != 0) {
      throw;
    }
    throw located(e.message(), scanner.line());
  } catch (const Exception& e) {
    g.unwind();
    if (r.acting) {
      throw;
    }
    throw located(e.message(), scanner.line());
  }
  return true;
}

void SmtLib2AbstractParser::skip_command(SmtLib2Scanner& scanner) {
  while (scanner.depth() > 0 && !scanner.at_end()) {
    try {
      scanner.next();
    } catch (const ParserInterface::error&) {
      // Bad text inside a command that is skipped anyway.
    }
  }
}

void SmtLib2AbstractParser::parse_nested(const std::string& text) {
  std::istringstream in(text);
  SmtLib2Scanner scanner(in);
  while (parse_command(scanner)) {
  }
}

const Term_* SmtLib2AbstractParser::parse_single_term(SmtLib2Scanner& scanner) {
  Reader& r = reader();
  LevelGuard guard(d_level);
  r.scanner = &scanner;
  r.clear_stacks();
  r.acting = false;
  Grammar g(*this, r);
  try {
    const Term_* t = g.read_term();
    if (scanner.next() != Token::End) {
      g.syntax_error("end of input");
    }
    return t;
  } catch (const ParserInterface::error& e) {
    g.unwind();
    if (e.line != 0) {
      throw;
    }
    throw located(e.message(), scanner.line());
  } catch (const Exception& e) {
    g.unwind();
    throw located(e.message(), scanner.line());
  }
}

void SmtLib2AbstractParser::echo(const std::string& text) {
  std::string quoted = "\"";
  for (char c : text) {
    quoted += c;
    if (c == '"') {
      quoted += '"';
    }
  }
  generic_command("echo", std::vector<std::string>{quoted + "\""});
}

void SmtLib2AbstractParser::get_option(const std::string& key) {
  generic_command("get-option", std::vector<std::string>{key});
}

void SmtLib2AbstractParser::reset() {
  generic_command("reset");
}

namespace {
// |1| and || are names with their bars (see the scanner).
bool keeps_bars(std::string_view text) {
  if (text.size() < 2 || text.front() != '|' || text.back() != '|') {
    return false;
  }
  std::string_view inner = text.substr(1, text.size() - 2);
  return inner.empty() || is_number_name(inner);
}
}  // namespace

std::string unquote_symbol(std::string_view text) {
  if (text.size() < 2 || text.front() != '|' || text.back() != '|'
      || keeps_bars(text)) {
    return std::string(text);
  }
  std::string out;
  for (size_t i = 1; i + 1 < text.size(); ++i) {
    if (text[i] == '\\' && text[i + 1] == '|' && i + 2 < text.size()) {
      ++i;
    }
    out += text[i];
  }
  return out;
}

bool is_command_name(std::string_view name) {
  return command_table().contains(name) || name == "declare-datatypes"
         || name == "define-fun-rec" || name == "define-funs-rec";
}

std::string quote_symbol(std::string_view name) {
  static const char* const reserved[] = {
      "as", "_", "let", "!", "forall", "exists", "par", "match"};
  if (keeps_bars(name)) {
    return std::string(name);
  }
  bool simple = !name.empty() && !(name[0] >= '0' && name[0] <= '9');
  for (char c : name) {
    bool ok = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')
              || (c >= '0' && c <= '9');
    for (const char* p = "~!@$%^&*_-+=<>.?/"; !ok && *p != '\0'; ++p) {
      ok = c == *p;
    }
    simple = simple && ok;
  }
  for (const char* r : reserved) {
    simple = simple && name != r;
  }
  if (simple || name.empty()) {
    return std::string(name);
  }
  std::string out = "|";
  for (char c : name) {
    if (c == '|') {
      out += '\\';
    }
    out += c;
  }
  return out + "|";
}

// ----------------------------------------------------------------------
// Shared pieces of the grammar
// ----------------------------------------------------------------------

void SmtLib2AbstractParser::Grammar::syntax_error(const char* expecting) {
  std::string msg = "syntax error, unexpected " + describe(d_sc);
  if (expecting != nullptr) {
    msg += std::string(", expecting ") + expecting;
  }
  d_p.fail(msg);
}

void SmtLib2AbstractParser::Grammar::expect(Token t) {
  if (d_sc.next() != t) {
    syntax_error(token_name(t));
  }
}

const std::string& SmtLib2AbstractParser::Grammar::expect_symbol() {
  expect(Token::Symbol);
  return d_sc.text();
}

const std::string& SmtLib2AbstractParser::Grammar::expect_numeral() {
  expect(Token::Numeral);
  return d_sc.text();
}

// An optional numeral, `missing` when absent.
size_t SmtLib2AbstractParser::Grammar::read_count(size_t missing) {
  if (d_sc.peek() != Token::Numeral) {
    return missing;
  }
  d_sc.next();
  errno = 0;
  unsigned long long n = std::strtoull(d_sc.text().c_str(), nullptr, 10);
  if (errno == ERANGE) {
    d_p.fail("numeral too large: " + d_sc.text());
  }
  return static_cast<size_t>(n);
}

void SmtLib2AbstractParser::Grammar::unwind() {
  try {
    for (; d_r.open_lets > 0; --d_r.open_lets) {
      d_p.pop_let_namespace(false);
    }
    if (d_r.open_function) {
      d_r.open_function = false;
      d_p.pop_let_namespace(true);
    }
    if (d_r.open_vars > 0) {
      size_t n = d_r.open_vars;
      d_r.open_vars = 0;
      d_p.pop_bound_variables(n);
    }
    if (d_r.open_sort_params) {
      d_r.open_sort_params = false;
      d_p.pop_sort_parameters();
    }
  } catch (const Exception&) {
    // The first failure is the one to report.
  }
  d_r.open_lets = 0;
  d_r.open_vars = 0;
  d_r.clear_stacks();
}

void SmtLib2AbstractParser::Grammar::read_term_list(TermList& out,
                                                    bool allow_empty) {
  expect(Token::LParen);
  while (!at_close() || (out.empty() && !allow_empty)) {
    out.push_back(read_term());
  }
  d_sc.next();
}

void SmtLib2AbstractParser::Grammar::read_verbatim_list(
    std::vector<std::string>& out, bool allow_empty) {
  while (!at_close() || (out.empty() && !allow_empty)) {
    out.push_back(read_verbatim());
  }
  d_sc.next();
}

// An info argument: the text of an atom (a string's content), or the
// source text of a list; empty when none is given.
std::string SmtLib2AbstractParser::Grammar::read_info_argument() {
  Token t = d_sc.peek();
  if (t == Token::RParen) {
    return std::string();
  }
  if (t == Token::LParen) {
    return read_verbatim();
  }
  d_sc.next();
  if (t == Token::Keyword || t == Token::End || t == Token::Comma) {
    syntax_error("a value");
  }
  std::string s;
  if (t == Token::String || t == Token::Symbol) {
    s = d_sc.text();
  } else {
    append_atom(s);
  }
  return s;
}

// ----------------------------------------------------------------------
// Commands
// ----------------------------------------------------------------------

void SmtLib2AbstractParser::Grammar::read_command() {
  if (d_sc.next() != Token::Symbol) {
    syntax_error("a command name");
  }
  std::string name = d_sc.text();
  if (zenlo_smtlib2_parser_debug != 0) {
    std::fprintf(
        stderr, "smtlib2: (%s ...) at line %d\n", name.c_str(), d_sc.line());
  }
  if (d_sc.quoted()) {
    cmd_generic(name);
    return;
  }
  dispatch(name);
}

void SmtLib2AbstractParser::Grammar::no_arguments() {
  expect_close();
  d_r.acting = true;
}

void SmtLib2AbstractParser::Grammar::dispatch(const std::string& name) {
  const Cmd* c = command_table().get(name);
  if (c == nullptr) {
    cmd_generic(name);
    return;
  }
  SmtLib2AbstractParser& p = d_p;
  switch (*c) {
    case Cmd::SetLogic: return cmd_set_logic();
    case Cmd::DeclareSort: return cmd_declare_sort();
    case Cmd::DeclareEnumSort: return cmd_declare_enum_sort();
    case Cmd::DefineSort: return cmd_define_sort();
    case Cmd::DeclareFun: return cmd_declare_fun(false);
    case Cmd::DeclareConst: return cmd_declare_fun(true);
    case Cmd::DefineFun: return cmd_define_fun(false);
    case Cmd::DefineConst: return cmd_define_fun(true);
    case Cmd::Push: return cmd_push_pop(true);
    case Cmd::Pop: return cmd_push_pop(false);
    case Cmd::Assert: return cmd_assert();
    case Cmd::CheckSat: return cmd_check_sat();
    case Cmd::GetAssertions: return no_arguments(), p.get_assertions();
    case Cmd::GetUnsatCore: return no_arguments(), p.get_unsat_core();
    case Cmd::GetProof: return no_arguments(), p.get_proof();
    case Cmd::SetOption: return cmd_set_option();
    case Cmd::GetInfo: return cmd_get_info();
    case Cmd::SetInfo: return cmd_set_info();
    case Cmd::GetAssignment: return no_arguments(), p.get_assignment();
    case Cmd::GetModel: return no_arguments(), p.get_model();
    case Cmd::GetValue: return cmd_get_value();
    case Cmd::Exit: return no_arguments(), p.exit();
    case Cmd::GetInterpolant: return cmd_get_interpolant();
    case Cmd::CheckAllsat:
    case Cmd::CheckSatAssumptions:
    case Cmd::InternalParseTerms:
      return cmd_term_list_command(static_cast<int>(*c));
    case Cmd::GetUnsatAssumptions:
      return no_arguments(), p.get_unsat_assumptions();
    case Cmd::ResetAssertions: return no_arguments(), p.reset_assertions();
    case Cmd::Minimize:
    case Cmd::Maximize:
    case Cmd::Minmax:
    case Cmd::Maxmin:
    case Cmd::AssertSoft: return cmd_objective(static_cast<int>(*c));
    case Cmd::GetObjectives: return no_arguments(), p.get_objectives();
    case Cmd::LoadObjectiveModel: return cmd_load_objective_model();
    case Cmd::Echo:
    case Cmd::GetOption:
    case Cmd::Reset: return cmd_echo_get_option_reset(name);
  }
}

void SmtLib2AbstractParser::Grammar::cmd_set_logic() {
  std::string name = expect_symbol();
  no_arguments();
  d_p.set_logic(name);
}

void SmtLib2AbstractParser::Grammar::cmd_declare_sort() {
  std::string name = expect_symbol();
  size_t arity = read_count(0);
  no_arguments();
  d_p.declare_sort(name, arity);
}

void SmtLib2AbstractParser::Grammar::cmd_declare_enum_sort() {
  std::string name = expect_symbol();
  std::vector<std::string> values;
  expect(Token::LParen);
  do {
    values.push_back(expect_symbol());
  } while (!at_close());
  d_sc.next();
  no_arguments();
  d_p.declare_enum_sort(name, values);
}

void SmtLib2AbstractParser::Grammar::cmd_define_sort() {
  std::string name = expect_symbol();
  std::vector<std::string> params;
  expect(Token::LParen);
  while (!at_close()) {
    params.push_back(expect_symbol());
  }
  d_sc.next();
  d_p.push_sort_parameters(params);
  d_r.open_sort_params = true;
  const Type* sort = read_sort();
  d_r.open_sort_params = false;
  d_p.pop_sort_parameters();
  no_arguments();
  d_p.define_sort(name, params, sort);
}

void SmtLib2AbstractParser::Grammar::cmd_declare_fun(bool constant) {
  std::string name = expect_symbol();
  SortList sorts;
  if (!constant) {
    expect(Token::LParen);
    while (!at_close()) {
      sorts.push_back(read_sort());
    }
    d_sc.next();
  }
  sorts.push_back(read_sort());
  const Type* type = d_p.make_function_sort(sorts);
  no_arguments();
  d_p.declare_function(name, type);
}

void SmtLib2AbstractParser::Grammar::cmd_define_fun(bool constant) {
  std::string name = expect_symbol();
  TermList params;
  if (!constant) {
    expect(Token::LParen);
    if (!at_close()) {
      d_p.push_let_namespace(true);
      d_r.open_function = true;
      read_define_fun_params(params);
    }
    d_sc.next();
  }
  const Type* sort = read_sort();
  const Term_* body = read_term();
  expect_close();
  if (d_r.open_function) {
    d_r.open_function = false;
    d_p.pop_let_namespace(true);
  }
  d_r.acting = true;
  if (params.empty()) {
    d_p.define_function(name, sort, body);
  } else {
    d_p.define_function(name, params, sort, body);
  }
}

// ( SYMBOL sort )... up to the closing parenthesis, which stays unread.
void SmtLib2AbstractParser::Grammar::read_define_fun_params(TermList& params) {
  do {
    expect(Token::LParen);
    std::string pname = expect_symbol();
    const Type* sort = read_sort();
    expect_close();
    const Term_* var = d_p.make_fresh_variable(sort);
    d_p.define_let_binding(pname, var, true);
    params.push_back(var);
  } while (!at_close());
}

// (check-sat t...) with terms, as some solvers accept it, is
// check-sat-assuming.
void SmtLib2AbstractParser::Grammar::cmd_check_sat() {
  TermList terms;
  while (!at_close()) {
    terms.push_back(read_term());
  }
  no_arguments();
  if (terms.empty()) {
    d_p.check_sat();
  } else {
    d_p.check_sat_assumptions(terms);
  }
}

void SmtLib2AbstractParser::Grammar::cmd_push_pop(bool push) {
  size_t n = read_count(1);
  no_arguments();
  if (push) {
    d_p.push(n);
  } else {
    d_p.pop(n);
  }
}

void SmtLib2AbstractParser::Grammar::cmd_assert() {
  try {
    const Term_* t = read_term();
    no_arguments();
    d_p.assert_formula(t);
  } catch (const TerminationTest::terminated&) {
    throw;
  } catch (const Exception& e) {
    d_p.assertion_refused(e.message());
    throw;
  }
}

void SmtLib2AbstractParser::Grammar::cmd_set_option() {
  if (d_sc.next() != Token::Keyword) {
    syntax_error("a keyword");
  }
  std::string key = d_sc.text();
  Token t = d_sc.next();
  std::string value = d_sc.text();
  if (t != Token::Numeral && t != Token::Decimal && t != Token::Symbol
      && t != Token::String) {
    syntax_error("a value");
  }
  no_arguments();
  if (t == Token::Numeral) {
    d_p.set_option(key, std::strtol(value.c_str(), nullptr, 10));
  } else if (t == Token::Decimal) {
    d_p.set_option(key, std::strtod(value.c_str(), nullptr));
  } else if (t == Token::Symbol && (value == "true" || value == "false")) {
    d_p.set_option(key, value == "true" ? 1L : 0L);
  } else if (t == Token::Symbol && value == "none") {
    d_p.set_option(key, 0.0);
  } else {
    d_p.set_option(key, value);
  }
}

void SmtLib2AbstractParser::Grammar::cmd_set_info() {
  if (d_sc.next() != Token::Keyword) {
    syntax_error("a keyword");
  }
  std::string key = d_sc.text();
  std::string value = read_info_argument();
  no_arguments();
  d_p.set_info(key, value);
}

void SmtLib2AbstractParser::Grammar::cmd_get_info() {
  if (d_sc.next() != Token::Keyword) {
    syntax_error("a keyword");
  }
  std::string key = d_sc.text();
  no_arguments();
  d_p.get_info(key);
}

void SmtLib2AbstractParser::Grammar::cmd_get_value() {
  std::vector<std::string> texts;
  expect(Token::LParen);
  read_verbatim_list(texts, false);
  no_arguments();
  d_p.get_value(texts);
}

void SmtLib2AbstractParser::Grammar::cmd_get_interpolant() {
  std::vector<std::string> texts;
  expect(Token::LParen);
  read_verbatim_list(texts, true);
  no_arguments();
  d_p.get_interpolant(texts);
}

void SmtLib2AbstractParser::Grammar::cmd_term_list_command(int which) {
  Cmd c = static_cast<Cmd>(which);
  TermList terms;
  read_term_list(terms, c != Cmd::InternalParseTerms);
  no_arguments();
  if (c == Cmd::CheckAllsat) {
    d_p.check_allsat(terms);
  } else if (c == Cmd::CheckSatAssumptions) {
    d_p.check_sat_assumptions(terms);
  } else {
    d_p.internal_set_parsed_terms(terms);
  }
}

void SmtLib2AbstractParser::Grammar::cmd_objective(int which) {
  Cmd c = static_cast<Cmd>(which);
  TermList terms;
  do {
    terms.push_back(read_term());
  } while ((c == Cmd::Minmax || c == Cmd::Maxmin) && !at_close()
           && d_sc.peek() != Token::Keyword);
  OptAttributes attrs;
  read_opt_attributes(attrs);
  no_arguments();
  switch (c) {
    case Cmd::Minimize: return d_p.push_minimize(terms[0], attrs);
    case Cmd::Maximize: return d_p.push_maximize(terms[0], attrs);
    case Cmd::Minmax: return d_p.push_minmax(terms, attrs);
    case Cmd::Maxmin: return d_p.push_maxmin(terms, attrs);
    default: return d_p.assert_soft_formula(terms[0], attrs);
  }
}

void SmtLib2AbstractParser::Grammar::read_opt_attributes(OptAttributes& out) {
  while (d_sc.peek() == Token::Keyword) {
    d_sc.next();
    std::string key = d_sc.text();
    if (key == ":id") {
      out.id = expect_symbol();
    } else if (key == ":signed") {
      out.is_signed = true;
    } else if (key == ":weight") {
      out.weight = read_term();
    } else if (key == ":dweight") {
      out.dweight = read_term();
    } else {
      syntax_error("':id', ':signed', ':weight' or ':dweight'");
    }
  }
}

void SmtLib2AbstractParser::Grammar::cmd_load_objective_model() {
  std::string value = read_info_argument();
  no_arguments();
  d_p.load_objective_model(value);
}

// (echo "text"), (get-option :key) and (reset) have operations of their
// own; other forms of these names go to generic_command.
void SmtLib2AbstractParser::Grammar::cmd_echo_get_option_reset(
    const std::string& name) {
  std::vector<std::string> texts;
  read_verbatim_list(texts, true);
  d_r.acting = true;
  if (name == "echo" && texts.size() == 1 && texts[0][0] == '"') {
    d_p.echo(unquote_string(texts[0]));
  } else if (name == "get-option" && texts.size() == 1 && texts[0][0] == ':') {
    d_p.get_option(texts[0]);
  } else if (name == "reset" && texts.empty()) {
    d_p.reset();
  } else if (texts.empty()) {
    d_p.generic_command(name);
  } else {
    d_p.generic_command(name, texts);
  }
}

void SmtLib2AbstractParser::Grammar::cmd_generic(const std::string& name) {
  std::vector<std::string> texts;
  read_verbatim_list(texts, true);
  d_r.acting = true;
  if (texts.empty()) {
    d_p.generic_command(name);
  } else {
    d_p.generic_command(name, texts);
  }
}

}  // namespace zenlo
