// The iterative reading of terms, sorts and verbatim texts.
//
// A term is read by a loop over two steps: start_term reads the tokens
// that open a term and either returns a finished term (an atom, a
// qualified identifier) or pushes a frame for a compound one; reduce then
// gives each finished term to the frame on top, which either asks for its
// next subterm or completes and becomes the finished term of the frame
// below. No step calls itself, so depth costs heap, never stack.
#include <string>

#include "frontend/smtlib2grammar.h"

namespace zenlo {

namespace {

// Terms may nest without bound; sorts may not, since the term store walks
// types recursively. No script of this world nests sorts this deep.
constexpr size_t kMaxSortDepth = 1000;

}  // namespace

void SmtLib2AbstractParser::Reader::clear_stacks() {
  frames.clear();
  args.clear();
  names.clear();
  idx.clear();
  sort_frames.clear();
  sorts.clear();
}

bool SmtLib2AbstractParser::Grammar::is_reserved(std::string_view s) {
  return s == "as" || s == "_" || s == "let" || s == "!" || s == "forall"
         || s == "exists";
}

std::string_view SmtLib2AbstractParser::Grammar::frame_name(
    const Frame& f) const {
  return std::string_view(d_r.names).substr(f.name_off, f.name_len);
}

void SmtLib2AbstractParser::Grammar::push_frame(FrameKind kind) {
  Frame f;
  f.kind = kind;
  f.forall = false;
  f.name_off = static_cast<uint32_t>(d_r.names.size());
  f.name_len = 0;
  f.names_mark = f.name_off;
  f.idx_base = static_cast<uint32_t>(d_r.idx.size());
  f.idx_count = 0;
  f.arg_base = static_cast<uint32_t>(d_r.args.size());
  f.sort = nullptr;
  d_r.frames.push_back(f);
}

void SmtLib2AbstractParser::Grammar::pop_frame() {
  const Frame& f = d_r.frames.back();
  d_r.names.resize(f.names_mark);
  d_r.idx.resize(f.idx_base);
  d_r.args.resize(f.arg_base);
  d_r.frames.pop_back();
}

const Term_* SmtLib2AbstractParser::Grammar::read_term() {
  size_t base = d_r.frames.size();
  for (;;) {
    const Term_* value = start_term();
    while (value != nullptr) {
      if (d_r.frames.size() == base) {
        return value;
      }
      value = feed(d_r.frames.back(), value);
    }
  }
}

// Returns: the term, or null when a frame was pushed and its first
// subterm is to be read next.
const Term_* SmtLib2AbstractParser::Grammar::start_term() {
  Token t = d_sc.next();
  const std::string& s = d_sc.text();
  switch (t) {
    case Token::Numeral:
    case Token::Decimal: return d_p.make_number_term(s);
    case Token::Binary: return d_p.make_number_term(s, s.size(), 2);
    case Token::Hex: return d_p.make_number_term(s, 4 * s.size(), 16);
    case Token::Symbol:
      if (!d_sc.quoted() && is_reserved(s)) {
        syntax_error();
      }
      return d_p.make_term(s, nullptr);
    case Token::LParen: return start_compound();
    default: syntax_error("a term");
  }
}

const Term_* SmtLib2AbstractParser::Grammar::start_compound() {
  Token t = d_sc.next();
  if (t == Token::LParen) {
    // ((_ f i...) args...) or ((as f sort) args...)
    push_frame(FrameKind::Apply);
    d_sc.next();
    if (is_word("_")) {
      read_indices(d_r.frames.back());
    } else if (is_word("as")) {
      read_identifier(d_r.frames.back());
      d_r.frames.back().sort = read_sort();
      expect_close();
    } else {
      syntax_error("'_' or 'as'");
    }
    if (at_close()) {
      d_sc.next();
      syntax_error("a term");
    }
    return nullptr;
  }
  if (t != Token::Symbol) {
    syntax_error("a symbol");
  }
  if (!d_sc.quoted() && is_reserved(d_sc.text())) {
    const std::string& w = d_sc.text();
    if (w == "!") {
      push_frame(FrameKind::Annotation);
      return nullptr;
    }
    if (w == "let") {
      begin_let();
      return nullptr;
    }
    if (w == "forall" || w == "exists") {
      begin_quantifier(w == "forall");
      return nullptr;
    }
    return read_qualified_atom();
  }
  push_frame(FrameKind::Apply);
  Frame& f = d_r.frames.back();
  d_r.names += d_sc.text();
  f.name_len = static_cast<uint32_t>(d_sc.text().size());
  if (at_close()) {
    d_sc.next();
    syntax_error("a term");
  }
  return nullptr;
}

// (_ f i...) or (as f sort) standing alone, after its first word.
const Term_* SmtLib2AbstractParser::Grammar::read_qualified_atom() {
  push_frame(FrameKind::Apply);
  Frame& f = d_r.frames.back();
  if (is_word("_")) {
    read_indices(f);
  } else {
    read_identifier(f);
    f.sort = read_sort();
    expect_close();
  }
  const Term_* r = f.idx_count > 0
                       ? d_p.make_term(frame_name(f), f.sort, index_views(f))
                       : d_p.make_term(frame_name(f), f.sort);
  pop_frame();
  return r;
}

// The identifier after "as": a symbol or (_ f i...).
void SmtLib2AbstractParser::Grammar::read_identifier(Frame& f) {
  Token t = d_sc.next();
  if (t == Token::LParen) {
    d_sc.next();
    if (!is_word("_")) {
      syntax_error("'_'");
    }
    read_indices(f);
    return;
  }
  if (t != Token::Symbol || (!d_sc.quoted() && is_reserved(d_sc.text()))) {
    syntax_error("a symbol");
  }
  f.name_off = static_cast<uint32_t>(d_r.names.size());
  d_r.names += d_sc.text();
  f.name_len = static_cast<uint32_t>(d_sc.text().size());
}

// After "_": the symbol, one or more numerals, and ")".
void SmtLib2AbstractParser::Grammar::read_indices(Frame& f) {
  const std::string& name = expect_symbol();
  f.name_off = static_cast<uint32_t>(d_r.names.size());
  d_r.names += name;
  f.name_len = static_cast<uint32_t>(name.size());
  f.idx_base = static_cast<uint32_t>(d_r.idx.size());
  do {
    const std::string& n = expect_numeral();
    d_r.idx.emplace_back(static_cast<uint32_t>(d_r.names.size()),
                         static_cast<uint32_t>(n.size()));
    d_r.names += n;
  } while (!at_close());
  d_sc.next();
  f.idx_count = static_cast<uint32_t>(d_r.idx.size() - f.idx_base);
}

IndexArgs SmtLib2AbstractParser::Grammar::index_views(const Frame& f) {
  d_r.idx_views.clear();
  std::string_view all(d_r.names);
  for (uint32_t k = 0; k < f.idx_count; ++k) {
    const auto& p = d_r.idx[f.idx_base + k];
    d_r.idx_views.push_back(all.substr(p.first, p.second));
  }
  return IndexArgs(d_r.idx_views.data(), d_r.idx_views.size());
}

// Gives a finished subterm to the frame on top.
// Returns: the frame's own term when it completed (and was popped), null
// when it waits for its next subterm.
const Term_* SmtLib2AbstractParser::Grammar::feed(Frame& f,
                                                  const Term_* value) {
  switch (f.kind) {
    case FrameKind::Apply:
      d_r.args.push_back(value);
      if (!at_close()) {
        return nullptr;
      }
      d_sc.next();
      return finish_apply(f);
    case FrameKind::LetBindings:
      d_r.args.push_back(value);
      expect_close();
      if (at_close()) {
        d_sc.next();
        return finish_let_bindings(f);
      }
      begin_let_binding(f);
      return nullptr;
    case FrameKind::LetBody:
      expect_close();
      d_p.pop_let_namespace(false);
      --d_r.open_lets;
      pop_frame();
      return value;
    case FrameKind::Quantifier: return finish_quantifier(f, value);
    case FrameKind::Annotation: return finish_annotation(f, value);
  }
  return nullptr;
}

const Term_* SmtLib2AbstractParser::Grammar::finish_apply(Frame& f) {
  TermArgs args(d_r.args.data() + f.arg_base, d_r.args.size() - f.arg_base);
  const Term_* r = f.idx_count > 0 ? d_p.make_term(
                       frame_name(f), f.sort, index_views(f), args)
                                   : d_p.make_term(frame_name(f), f.sort, args);
  pop_frame();
  return r;
}

// After "let": "(", then the first binding.
void SmtLib2AbstractParser::Grammar::begin_let() {
  push_frame(FrameKind::LetBindings);
  expect(Token::LParen);
  expect(Token::LParen);
  begin_let_binding(d_r.frames.back());
}

// After the "(" of a binding: its name.
void SmtLib2AbstractParser::Grammar::begin_let_binding(Frame& f) {
  if (f.idx_count > 0) {
    expect(Token::LParen);
  }
  const std::string& name = expect_symbol();
  d_r.idx.emplace_back(static_cast<uint32_t>(d_r.names.size()),
                       static_cast<uint32_t>(name.size()));
  d_r.names += name;
  ++f.idx_count;
}

// All binding terms are read: the names become visible together, and the
// body is next.
const Term_* SmtLib2AbstractParser::Grammar::finish_let_bindings(Frame& f) {
  d_p.push_let_namespace(false);
  ++d_r.open_lets;
  std::string_view all(d_r.names);
  for (uint32_t k = 0; k < f.idx_count; ++k) {
    const auto& p = d_r.idx[f.idx_base + k];
    d_p.define_let_binding(
        all.substr(p.first, p.second), d_r.args[f.arg_base + k], false);
  }
  d_r.args.resize(f.arg_base);
  f.kind = FrameKind::LetBody;
  return nullptr;
}

// After "forall" or "exists": the variables, each announced at once.
void SmtLib2AbstractParser::Grammar::begin_quantifier(bool forall) {
  push_frame(FrameKind::Quantifier);
  d_r.frames.back().forall = forall;
  expect(Token::LParen);
  do {
    expect(Token::LParen);
    std::string name = expect_symbol();
    const Type* sort = read_sort();
    expect_close();
    const Term_* var = d_p.make_named_variable(name, sort);
    d_p.push_bound_variable(name, var);
    ++d_r.open_vars;
    d_r.args.push_back(var);
  } while (!at_close());
  d_sc.next();
}

const Term_* SmtLib2AbstractParser::Grammar::finish_quantifier(
    Frame& f, const Term_* body) {
  expect_close();
  d_r.vars.assign(d_r.args.begin() + f.arg_base, d_r.args.end());
  const Term_* r = f.forall ? d_p.make_forall_term(d_r.vars, body)
                            : d_p.make_exists_term(d_r.vars, body);
  d_p.pop_bound_variables(d_r.vars.size());
  d_r.open_vars -= d_r.vars.size();
  pop_frame();
  return r;
}

const Term_* SmtLib2AbstractParser::Grammar::finish_annotation(
    Frame&, const Term_* body) {
  if (d_sc.peek() != Token::Keyword) {
    d_sc.next();
    syntax_error("a keyword");
  }
  read_attributes(d_r.attributes);
  const Term_* r = d_p.annotate_term(body, d_r.attributes);
  pop_frame();
  return r;
}

// KEYWORD [value] ... up to and including ")".
void SmtLib2AbstractParser::Grammar::read_attributes(AttributeList& out) {
  out.clear();
  while (!at_close()) {
    if (d_sc.next() != Token::Keyword) {
      syntax_error("a keyword");
    }
    out.push_back(Attribute{d_sc.text(), std::string()});
    Token t = d_sc.peek();
    if (t != Token::Keyword && t != Token::RParen) {
      read_verbatim(out.back().value);
    }
  }
  d_sc.next();
}

// ----------------------------------------------------------------------
// Sorts
// ----------------------------------------------------------------------

const Type* SmtLib2AbstractParser::Grammar::read_sort() {
  size_t base = d_r.sort_frames.size();
  for (;;) {
    const Type* value = start_sort();
    if (value == nullptr) {
      continue;
    }
    value = reduce_sort(value, base);
    if (value != nullptr) {
      return value;
    }
  }
}

const Type* SmtLib2AbstractParser::Grammar::start_sort() {
  Token t = d_sc.next();
  if (t == Token::Symbol) {
    if (!d_sc.quoted() && is_reserved(d_sc.text())) {
      syntax_error("a sort");
    }
    return d_p.make_sort(d_sc.text());
  }
  if (t != Token::LParen) {
    syntax_error("a sort");
  }
  const std::string& name = expect_symbol();
  if (name == "_" && !d_sc.quoted()) {
    std::string indexed = expect_symbol();
    std::vector<std::string>& idx = d_r.idx_strings;
    idx.clear();
    do {
      idx.push_back(expect_numeral());
    } while (!at_close());
    d_sc.next();
    return d_p.make_sort(indexed, idx);
  }
  if (d_r.sort_frames.size() >= kMaxSortDepth) {
    d_p.fail("sort nested too deeply (more than "
             + std::to_string(kMaxSortDepth) + " levels)");
  }
  Reader::SortFrame f;
  f.name_off = static_cast<uint32_t>(d_r.names.size());
  f.name_len = static_cast<uint32_t>(name.size());
  f.names_mark = f.name_off;
  f.sort_base = static_cast<uint32_t>(d_r.sorts.size());
  d_r.names += name;
  d_r.sort_frames.push_back(f);
  return nullptr;
}

// Returns: the finished sort when every frame above `base` completed, or
// null when a frame waits for its next parameter.
const Type* SmtLib2AbstractParser::Grammar::reduce_sort(const Type* value,
                                                        size_t base) {
  while (d_r.sort_frames.size() > base) {
    Reader::SortFrame& f = d_r.sort_frames.back();
    d_r.sorts.push_back(value);
    if (!at_close()) {
      return nullptr;
    }
    d_sc.next();
    SortList params(d_r.sorts.begin() + f.sort_base, d_r.sorts.end());
    std::string name = d_r.names.substr(f.name_off, f.name_len);
    d_r.sorts.resize(f.sort_base);
    d_r.names.resize(f.names_mark);
    d_r.sort_frames.pop_back();
    value = d_p.make_parametric_sort(name, params);
  }
  return value;
}

// ----------------------------------------------------------------------
// Verbatim texts: the source of an s-expression with single blanks
// ----------------------------------------------------------------------

void SmtLib2AbstractParser::Grammar::read_verbatim(std::string& out) {
  int depth = 0;
  bool blank = false;
  do {
    Token t = d_sc.next();
    if (t == Token::LParen) {
      out += blank ? " (" : "(";
      ++depth;
      blank = false;
      continue;
    }
    if (t == Token::RParen) {
      if (depth == 0) {
        syntax_error();
      }
      out += ')';
      --depth;
    } else if (t == Token::End || t == Token::Comma) {
      syntax_error();
    } else {
      if (blank) {
        out += ' ';
      }
      append_atom(out);
    }
    blank = true;
  } while (depth > 0);
}

void SmtLib2AbstractParser::Grammar::append_atom(std::string& out) {
  const std::string& s = d_sc.text();
  switch (d_sc.token()) {
    case Token::Symbol: out += d_sc.quoted() ? quote_symbol(s) : s; return;
    case Token::Binary: out += "#b" + s; return;
    case Token::Hex: out += "#x" + s; return;
    case Token::String:
      out += '"';
      for (char c : s) {
        out += c;
        if (c == '"') {
          out += '"';
        }
      }
      out += '"';
      return;
    default: out += s; return;
  }
}

}  // namespace zenlo
