// Inside the SMT-LIB 2 reader: the state that survives between commands
// (Reader: stacks whose capacity is reused, so a long script allocates
// only while its terms grow deeper than before) and the reading of one
// command (Grammar). Only the reader's own files include this header.
#ifndef ZENLO_FRONTEND_SMTLIB2GRAMMAR_H
#define ZENLO_FRONTEND_SMTLIB2GRAMMAR_H

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frontend/smtlib2abstractparser.h"

namespace zenlo {

struct SmtLib2AbstractParser::Reader {
  enum class FrameKind : uint8_t {
    Apply,        // (f args...): collecting arguments
    LetBindings,  // (let ((x t)...): collecting binding terms
    LetBody,      // the body of a let, its names defined
    Quantifier,   // the body of a forall or exists
    Annotation,   // (! t attributes...): t being read
  };

  // A term under construction. Names and indices live in `names`, as
  // offsets, so a frame holds no string of its own.
  struct Frame {
    FrameKind kind;
    bool forall;
    uint32_t name_off;
    uint32_t name_len;
    uint32_t names_mark;  // names.size() when the frame began
    uint32_t idx_base;    // first (offset, length) of its indices or names
    uint32_t idx_count;
    uint32_t arg_base;  // first argument (or binding term, or variable)
    const Type* sort;   // the sort an "as" asked for
  };

  struct SortFrame {
    uint32_t name_off;
    uint32_t name_len;
    uint32_t names_mark;
    uint32_t sort_base;
  };

  std::vector<Frame> frames;
  std::vector<const Term_*> args;
  std::string names;
  std::vector<std::pair<uint32_t, uint32_t>> idx;
  std::vector<std::string_view> idx_views;
  std::vector<SortFrame> sort_frames;
  std::vector<const Type*> sorts;
  std::vector<std::string> idx_strings;
  AttributeList attributes;
  TermList vars;

  // Scopes opened through the parser's operations and not closed yet;
  // after a failure they are closed again in this order.
  size_t open_lets = 0;
  size_t open_vars = 0;
  bool open_function = false;
  bool open_sort_params = false;

  // Set once the command is read and its own operation runs.
  bool acting = false;

  SmtLib2Scanner* scanner = nullptr;

  void clear_stacks();
};

class SmtLib2AbstractParser::Grammar {
 public:
  using Frame = Reader::Frame;
  using FrameKind = Reader::FrameKind;

  Grammar(SmtLib2AbstractParser& parser, Reader& reader)
      : d_p(parser), d_r(reader), d_sc(*reader.scanner) {}

  // The command after its "(".
  void read_command();
  // One term from its first token; iterative.
  const Term_* read_term();
  // One sort from its first token; iterative.
  const Type* read_sort();
  // One s-expression from its first token, as source text.
  void read_verbatim(std::string& out);

  std::string read_verbatim() {
    std::string s;
    read_verbatim(s);
    return s;
  }

  // Closes what the failed command left open (see Reader).
  void unwind();

  [[noreturn]] void syntax_error(const char* expecting = nullptr);

 private:
  // Token helpers: each consumes one token and fails on another kind.
  void expect(Token t);
  const std::string& expect_symbol();
  const std::string& expect_numeral();

  void expect_close() { expect(Token::RParen); }

  bool at_close() { return d_sc.peek() == Token::RParen; }

  bool is_word(const char* w) const {
    return d_sc.token() == Token::Symbol && !d_sc.quoted() && d_sc.text() == w;
  }

  static bool is_reserved(std::string_view s);
  size_t read_count(size_t missing);

  // Terms.
  const Term_* start_term();
  const Term_* start_compound();
  const Term_* reduce(const Term_* value);
  const Term_* feed(Reader::Frame& f, const Term_* value);
  const Term_* finish_apply(Reader::Frame& f);
  const Term_* finish_let_bindings(Reader::Frame& f);
  const Term_* finish_quantifier(Reader::Frame& f, const Term_* body);
  const Term_* finish_annotation(Reader::Frame& f, const Term_* body);
  void begin_let();
  void begin_let_binding(Reader::Frame& f);
  void begin_quantifier(bool forall);
  void read_identifier(Reader::Frame& f);
  const Term_* read_qualified_atom();
  void read_indices(Reader::Frame& f);
  IndexArgs index_views(const Reader::Frame& f);
  std::string_view frame_name(const Reader::Frame& f) const;
  void push_frame(Reader::FrameKind kind);
  void pop_frame();
  void read_attributes(AttributeList& out);

  // Sorts.
  const Type* start_sort();
  const Type* reduce_sort(const Type* value, size_t base);

  // Verbatim texts.
  void append_atom(std::string& out);

  // Commands, one function each.
  void dispatch(const std::string& name);
  void cmd_set_logic();
  void cmd_declare_sort();
  void cmd_declare_enum_sort();
  void cmd_define_sort();
  void cmd_declare_fun(bool constant);
  void cmd_define_fun(bool constant);
  void read_define_fun_params(TermList& params);
  void cmd_check_sat();
  void cmd_push_pop(bool push);
  void cmd_assert();
  void cmd_set_option();
  void cmd_set_info();
  void cmd_get_info();
  void cmd_get_value();
  void cmd_get_interpolant();
  void cmd_term_list_command(int which);
  void cmd_objective(int which);
  void cmd_load_objective_model();
  void cmd_echo_get_option_reset(const std::string& name);
  void cmd_generic(const std::string& name);
  void read_opt_attributes(OptAttributes& out);
  void read_term_list(TermList& out, bool allow_empty);
  void read_verbatim_list(std::vector<std::string>& out, bool allow_empty);
  std::string read_info_argument();
  void no_arguments();

  SmtLib2AbstractParser& d_p;
  Reader& d_r;
  SmtLib2Scanner& d_sc;
};

}  // namespace zenlo

#endif
