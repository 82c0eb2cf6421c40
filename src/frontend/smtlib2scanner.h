// The tokens of SMT-LIB 2 text. The scanner pulls characters from a
// stream in blocks of what the stream has at hand, so a script typed on a
// terminal is read command by command, and a file goes by in large blocks.
// It knows nothing of the grammar except parentheses, which it counts so
// that a reader can skip to the end of a command that failed.
//
// Reserved words are plain symbols here: the grammar recognises them, and
// only when they were written without bars, so `|assert|` stays a name.
// The text of a quoted symbol is its name without the bars, except where
// that name would read as a number (|1|, |-2|) or is empty: those keep
// their bars. A string's is its content with doubled quotes merged.
#ifndef ZENLO_FRONTEND_SMTLIB2SCANNER_H
#define ZENLO_FRONTEND_SMTLIB2SCANNER_H

#include <cstdint>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace zenlo {

// Returns: whether `s` is how the term store names a number ("5", "-1/2",
//   "5_8" for a bit-vector, "5_8_23" for a float).
bool is_number_name(std::string_view s);

enum class Token : uint8_t {
  LParen,
  RParen,
  Symbol,   // simple or quoted
  Keyword,  // with its colon
  Numeral,
  Decimal,  // digits "." digits
  Binary,   // the digits after "#b"
  Hex,      // the digits after "#x"
  String,
  Comma,  // accepted by no rule: a syntax error with a clear text
  End,
};

// Returns: a name of the kind for messages ("symbol", "')'", ...).
const char* token_name(Token t);

class SmtLib2Scanner {
 public:
  // Requires: `in` outlives the scanner.
  explicit SmtLib2Scanner(std::istream& in);
  SmtLib2Scanner(const SmtLib2Scanner&) = delete;
  SmtLib2Scanner& operator=(const SmtLib2Scanner&) = delete;

  // Reads the next token; its text, flags and line are then current.
  // - Throws: ParserInterface::error for text that is no token, after
  //   consuming it; for an unterminated string or quoted symbol, after
  //   consuming the input.
  Token next();

  // The token next() would return, without consuming it.
  Token peek();

  Token token() const { return d_cur.kind; }

  const std::string& text() const { return d_cur.text; }

  bool quoted() const { return d_cur.quoted; }

  // The line of the current token, counted from 1.
  int line() const { return d_cur.line; }

  // Opening minus closing parentheses consumed so far (never below 0).
  int depth() const { return d_depth; }

  void reset_depth() { d_depth = 0; }

  // Whether the input is exhausted: a token End was read or peeked.
  bool at_end() const { return d_eof; }

 private:
  struct Tok {
    Token kind = Token::End;
    bool quoted = false;
    int line = 1;
    std::string text;
  };

  void scan(Tok& t);
  void scan_run(Tok& t, int first);
  void scan_string(Tok& t);
  void scan_quoted(Tok& t);
  void scan_hash(Tok& t);
  void classify_run(Tok& t);
  [[noreturn]] void unrecognized(Tok& t, std::string text);
  void skip_blanks();

  // Character access; -1 is the end of the input.
  int peek_char() {
    if (d_pos == d_end && !fill()) {
      return -1;
    }
    return static_cast<unsigned char>(d_buf[d_pos]);
  }

  int get_char() {
    int c = peek_char();
    if (c >= 0) {
      ++d_pos;
    }
    return c;
  }

  bool fill();

  std::istream& d_in;
  std::vector<char> d_buf;
  size_t d_pos = 0;
  size_t d_end = 0;
  int d_line = 1;
  int d_depth = 0;
  bool d_has_peek = false;
  bool d_eof = false;
  Tok d_cur;
  Tok d_peek;
};

}  // namespace zenlo

#endif
