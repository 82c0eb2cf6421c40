// The SMT-LIB 2 scanner: a hand-written maximal-munch lexer over a block
// buffer. Each token kind is read by one small function; a character class
// table keeps the inner loops to one load and one test per character.
#include "frontend/smtlib2scanner.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <utility>

#include "frontend/parserinterface.h"

namespace zenlo {

namespace {

constexpr size_t kBlock = 1 << 16;

// Characters that may stand in a simple symbol: letters, digits and
// ~ ! @ $ % ^ & * _ - + = < > . ? /
struct SymbolChars {
  bool table[256] = {};

  constexpr SymbolChars() {
    for (int c = 'a'; c <= 'z'; ++c) {
      table[c] = true;
    }
    for (int c = 'A'; c <= 'Z'; ++c) {
      table[c] = true;
    }
    for (int c = '0'; c <= '9'; ++c) {
      table[c] = true;
    }
    const char* extra = "~!@$%^&*_-+=<>.?/";
    for (const char* p = extra; *p != '\0'; ++p) {
      table[static_cast<unsigned char>(*p)] = true;
    }
  }
};

constexpr SymbolChars kSymbolChars;

bool is_symbol_char(int c) {
  return c >= 0 && kSymbolChars.table[c];
}

bool is_digit(int c) {
  return c >= '0' && c <= '9';
}

bool is_blank(int c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Messages quote bad bytes readably: a run of binary garbage must not
// produce a message that is itself garbage.
std::string printable(const std::string& text) {
  std::string out;
  for (unsigned char c : text) {
    if (c >= 0x20 && c < 0x7f) {
      out += static_cast<char>(c);
    } else {
      char buf[8];
      std::snprintf(buf, sizeof buf, "\\x%02x", c);
      out += buf;
    }
  }
  return out;
}

}  // namespace

const char* token_name(Token t) {
  switch (t) {
    case Token::LParen: return "'('";
    case Token::RParen: return "')'";
    case Token::Symbol: return "symbol";
    case Token::Keyword: return "keyword";
    case Token::Numeral: return "numeral";
    case Token::Decimal: return "decimal";
    case Token::Binary: return "binary constant";
    case Token::Hex: return "hexadecimal constant";
    case Token::String: return "string";
    case Token::Comma: return "','";
    case Token::End: return "end of input";
  }
  return "token";
}

SmtLib2Scanner::SmtLib2Scanner(std::istream& in) : d_in(in), d_buf(kBlock) {}

// Takes what the stream has buffered, or waits for at least one character:
// a terminal's input is handed over line by line, never held back until a
// block is full.
bool SmtLib2Scanner::fill() {
  std::streambuf* sb = d_in.rdbuf();
  if (sb == nullptr) {
    return false;
  }
  d_pos = 0;
  d_end = 0;
  std::streamsize avail = sb->in_avail();
  if (avail <= 0) {
    int c = sb->sbumpc();
    if (c == std::char_traits<char>::eof()) {
      return false;
    }
    d_buf[d_end++] = static_cast<char>(c);
    avail = sb->in_avail();
  }
  if (avail > 0) {
    size_t want = std::min(static_cast<size_t>(avail), kBlock - d_end);
    d_end += static_cast<size_t>(
        sb->sgetn(d_buf.data() + d_end, static_cast<std::streamsize>(want)));
  }
  return d_end > 0;
}

Token SmtLib2Scanner::next() {
  if (d_has_peek) {
    std::swap(d_cur, d_peek);
    d_has_peek = false;
  } else {
    scan(d_cur);
  }
  if (d_cur.kind == Token::LParen) {
    ++d_depth;
  } else if (d_cur.kind == Token::RParen && d_depth > 0) {
    --d_depth;
  }
  return d_cur.kind;
}

Token SmtLib2Scanner::peek() {
  if (!d_has_peek) {
    scan(d_peek);
    d_has_peek = true;
  }
  return d_peek.kind;
}

void SmtLib2Scanner::skip_blanks() {
  for (;;) {
    int c = peek_char();
    if (c == '\n') {
      ++d_line;
    } else if (c == ';') {
      while (c >= 0 && c != '\n') {
        ++d_pos;
        c = peek_char();
      }
      continue;
    } else if (!is_blank(c)) {
      return;
    }
    ++d_pos;
  }
}

void SmtLib2Scanner::scan(Tok& t) {
  skip_blanks();
  t.line = d_line;
  t.quoted = false;
  t.text.clear();
  int c = get_char();
  switch (c) {
    case -1:
      t.kind = Token::End;
      d_eof = true;
      return;
    case '(': t.kind = Token::LParen; return;
    case ')': t.kind = Token::RParen; return;
    case ',': t.kind = Token::Comma; return;
    case '"': scan_string(t); return;
    case '|': scan_quoted(t); return;
    case '#': scan_hash(t); return;
    default: break;
  }
  if (c == ':' || is_symbol_char(c)) {
    scan_run(t, c);
    return;
  }
  std::string bad(1, static_cast<char>(c));
  // The whole run up to a delimiter goes into one message, so binary
  // garbage costs one error per word rather than one per byte.
  for (c = peek_char(); c >= 0 && !is_blank(c) && c != '(' && c != ')'
                        && c != '"' && c != '|' && c != ';';
       c = peek_char()) {
    bad += static_cast<char>(c);
    ++d_pos;
  }
  unrecognized(t, bad);
}

void SmtLib2Scanner::unrecognized(Tok& t, std::string text) {
  t.text.clear();
  throw ParserInterface::error("unrecognized text: " + printable(text));
}

void SmtLib2Scanner::scan_run(Tok& t, int first) {
  t.text += static_cast<char>(first);
  for (;;) {
    if (d_pos == d_end && !fill()) {
      break;
    }
    // Scan the buffered block directly: this loop reads most of the input.
    size_t start = d_pos;
    while (d_pos < d_end
           && kSymbolChars.table[static_cast<unsigned char>(d_buf[d_pos])]) {
      ++d_pos;
    }
    t.text.append(d_buf.data() + start, d_pos - start);
    if (d_pos < d_end) {
      break;
    }
  }
  if (first == ':') {
    if (t.text.size() == 1) {
      unrecognized(t, ":");
    }
    t.kind = Token::Keyword;
    return;
  }
  classify_run(t);
}

// A run of symbol characters is a numeral when it is all digits, a decimal
// when it is digits "." digits, and a symbol otherwise ("-5", "1e5" and
// "1." included).
void SmtLib2Scanner::classify_run(Tok& t) {
  const std::string& s = t.text;
  t.kind = Token::Symbol;
  if (!is_digit(s[0])) {
    return;
  }
  size_t i = 0;
  while (i < s.size() && is_digit(s[i])) {
    ++i;
  }
  if (i == s.size()) {
    t.kind = Token::Numeral;
    return;
  }
  if (s[i] != '.' || i + 1 == s.size()) {
    return;
  }
  size_t j = i + 1;
  while (j < s.size() && is_digit(s[j])) {
    ++j;
  }
  if (j == s.size()) {
    t.kind = Token::Decimal;
  }
}

void SmtLib2Scanner::scan_string(Tok& t) {
  t.kind = Token::String;
  for (;;) {
    int c = get_char();
    if (c < 0) {
      throw ParserInterface::error("unterminated string literal");
    }
    if (c == '"') {
      if (peek_char() != '"') {
        return;
      }
      ++d_pos;
    } else if (c == '\n') {
      ++d_line;
    }
    t.text += static_cast<char>(c);
  }
}

void SmtLib2Scanner::scan_quoted(Tok& t) {
  t.kind = Token::Symbol;
  t.quoted = true;
  for (;;) {
    int c = get_char();
    if (c < 0) {
      throw ParserInterface::error("unterminated quoted symbol");
    }
    if (c == '|') {
      // The term store names numbers by their value, so |1| keeps its bars
      // as part of its name; so does the empty name.
      if (t.text.empty() || is_number_name(t.text)) {
        t.text = "|" + t.text + "|";
      }
      return;
    }
    if (c == '\\' && peek_char() == '|') {
      c = get_char();
    } else if (c == '\n') {
      ++d_line;
    }
    t.text += static_cast<char>(c);
  }
}

void SmtLib2Scanner::scan_hash(Tok& t) {
  int base = peek_char();
  if (base != 'b' && base != 'x') {
    std::string bad = "#";
    if (base >= 0 && !is_blank(base)) {
      bad += static_cast<char>(get_char());
    }
    unrecognized(t, bad);
  }
  ++d_pos;
  t.kind = base == 'b' ? Token::Binary : Token::Hex;
  for (int c = peek_char(); is_symbol_char(c); c = peek_char()) {
    t.text += static_cast<char>(c);
    ++d_pos;
  }
  bool ok = !t.text.empty();
  for (char c : t.text) {
    bool digit = base == 'b' ? (c == '0' || c == '1') : std::isxdigit(c) != 0;
    ok = ok && digit;
  }
  if (!ok) {
    unrecognized(t, std::string("#") + static_cast<char>(base) + t.text);
  }
}

// The term store names numbers by their value ("5", "-1/2", "5_8" for a
// bit-vector, "5_8_23" for a float); a user symbol of such a name would
// be taken for the number.
bool is_number_name(std::string_view s) {
  size_t i = s.size() > 1 && s[0] == '-' ? 1 : 0;
  size_t digits = 0, seps = 0;
  char sep = 0;
  for (; i < s.size(); ++i) {
    if (s[i] >= '0' && s[i] <= '9') {
      ++digits;
    } else if ((s[i] == '/' || s[i] == '_') && digits > 0
               && (sep == 0 || sep == s[i])) {
      sep = s[i];
      ++seps;
      digits = 0;
    } else {
      return false;
    }
  }
  return digits > 0 && (sep != '/' || seps == 1);
}

}  // namespace zenlo
