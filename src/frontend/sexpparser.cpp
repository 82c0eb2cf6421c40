// The S-expression reader: a tokenizer over the text and a stack of open
// lists, so nesting costs heap, not call stack.
#include <cstdio>

#include "frontend/sexp.h"
#include "zenlo.h"

namespace zenlo {

namespace {

enum class Tok { Open, Close, Dot, Symbol, End };

class Tokenizer {
 public:
  explicit Tokenizer(const std::string& text) : d_text(text) {}

  Tok next();

  const std::string& text() const { return d_token; }

 private:
  void skip_blanks();
  void read_delimited(char close);

  const std::string& d_text;
  size_t d_pos = 0;
  std::string d_token;
};

void Tokenizer::skip_blanks() {
  while (d_pos < d_text.size()) {
    char c = d_text[d_pos];
    if (c == ';') {
      while (d_pos < d_text.size() && d_text[d_pos] != '\n') {
        ++d_pos;
      }
    } else if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      ++d_pos;
    } else {
      return;
    }
  }
}

// A quoted symbol or a string, delimiters kept.
void Tokenizer::read_delimited(char close) {
  d_token += d_text[d_pos++];
  while (d_pos < d_text.size() && d_text[d_pos] != close) {
    d_token += d_text[d_pos++];
  }
  if (d_pos == d_text.size()) {
    throw SexpParser::error(std::string("unterminated ")
                            + (close == '"' ? "string" : "quoted symbol"));
  }
  d_token += d_text[d_pos++];
}

Tok Tokenizer::next() {
  skip_blanks();
  d_token.clear();
  if (d_pos == d_text.size()) {
    return Tok::End;
  }
  char c = d_text[d_pos];
  if (c == '(' || c == ')') {
    ++d_pos;
    return c == '(' ? Tok::Open : Tok::Close;
  }
  if (c == '|' || c == '"') {
    read_delimited(c);
    return Tok::Symbol;
  }
  while (d_pos < d_text.size()) {
    c = d_text[d_pos];
    if (c == '(' || c == ')' || c == ';' || c == ' ' || c == '\t' || c == '\r'
        || c == '\n') {
      break;
    }
    d_token += c;
    ++d_pos;
  }
  return d_token == "." ? Tok::Dot : Tok::Symbol;
}

// An open list: its elements, its dotted tail, and whether it is an
// annotation (! e :key value ...).
struct Open {
  std::vector<Sexp> elems;
  Sexp tail;
  int dot_state = 0;  // 0 no dot, 1 tail expected, 2 tail read
  bool annotated = false;
};

}  // namespace

Sexp SexpParser::parse(const std::string& text) {
  Tokenizer tok(text);
  std::vector<Open> stack;
  Sexp result;
  auto make_sym = [this](const std::string& s) {
    uint32_t id = d_m.intern(s);
    return d_hash_consed ? d_m.sh_sym(id) : d_m.sym(id);
  };
  auto make_cons = [this](const Sexp& a, const Sexp& b) {
    return d_hash_consed ? d_m.sh_cons(a, b) : d_m.cons(a, b);
  };
  for (;;) {
    Tok t = tok.next();
    if (zenlo_sexp_parser_debug != 0) {
      std::fprintf(stderr,
                   "sexp: token %d `%s'\n",
                   static_cast<int>(t),
                   tok.text().c_str());
    }
    Sexp value;
    if (t == Tok::End) {
      if (!stack.empty()) {
        throw error("missing ')'");
      }
      return result.is_null() ? d_m.nil() : result;
    }
    if (t == Tok::Open) {
      stack.emplace_back();
      continue;
    }
    if (t == Tok::Dot) {
      if (stack.empty() || stack.back().elems.empty()
          || stack.back().dot_state != 0 || stack.back().annotated) {
        throw error("unexpected '.'");
      }
      stack.back().dot_state = 1;
      continue;
    }
    if (t == Tok::Symbol) {
      if (!stack.empty() && stack.back().elems.empty() && tok.text() == "!"
          && !stack.back().annotated) {
        stack.back().annotated = true;
        continue;
      }
      value = make_sym(tok.text());
    } else {
      if (stack.empty()) {
        throw error("unexpected ')'");
      }
      Open o = std::move(stack.back());
      stack.pop_back();
      if (o.dot_state == 1) {
        throw error("missing expression after '.'");
      }
      if (o.annotated) {
        if (o.elems.empty() || o.elems.size() % 2 != 1) {
          throw error("bad annotation");
        }
        for (size_t i = 1; i < o.elems.size(); i += 2) {
          o.elems[0]->add_annotation(o.elems[i], o.elems[i + 1]);
        }
        value = o.elems[0];
      } else {
        value = o.dot_state == 2 ? o.tail : d_m.nil();
        for (size_t i = o.elems.size(); i-- > 0;) {
          value = make_cons(o.elems[i], value);
        }
      }
    }
    // A finished expression goes to the open list, or is the result.
    if (stack.empty()) {
      if (!result.is_null()) {
        throw error("more than one expression");
      }
      result = value;
    } else if (stack.back().dot_state == 1) {
      stack.back().tail = value;
      stack.back().dot_state = 2;
    } else if (stack.back().dot_state == 2) {
      throw error("more than one expression after '.'");
    } else {
      stack.back().elems.push_back(value);
    }
  }
}

}  // namespace zenlo
