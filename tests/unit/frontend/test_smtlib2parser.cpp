// The SMT-LIB 2 reader: tokens, the meaning of every built-in symbol (the
// derived ones checked by evaluation on constants), sorts, bindings,
// errors with their lines, recovery after a bad command, and depth.
#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "frontend/smtlib2parser.h"

namespace zenlo {
namespace {

template <class F>
std::string error_of(F f) {
  try {
    f();
  } catch (const Exception& e) {
    return e.message();
  }
  return "<no error>";
}

// A library client that also records the commands it is given, so the
// contract of the reader can be checked.
class Recorder : public SmtLib2Parser {
 public:
  using SmtLib2Parser::SmtLib2Parser;
  std::vector<std::string> log;

  void push(size_t n) override { log.push_back("push " + std::to_string(n)); }

  void check_sat() override { log.push_back("check-sat"); }

  void check_sat_assumptions(const TermList& t) override {
    log.push_back("assuming " + std::to_string(t.size()));
  }

  void set_option(const std::string& k, const std::string& v) override {
    log.push_back("option " + k + " string " + v);
  }

  void set_option(const std::string& k, long v) override {
    log.push_back("option " + k + " int " + std::to_string(v));
  }

  void set_option(const std::string& k, double v) override {
    log.push_back("option " + k + " double " + std::to_string(v));
  }

  void get_value(const std::vector<std::string>& texts) override {
    std::string s = "get-value";
    for (const std::string& t : texts) {
      s += " [" + t + "]";
    }
    log.push_back(s);
  }

  void echo(const std::string& text) override { log.push_back("echo " + text); }

  void get_option(const std::string& k) override {
    log.push_back("get-option " + k);
  }

  void reset() override { log.push_back("reset"); }

  void generic_command(const std::string& n) override {
    log.push_back("generic " + n);
  }

  void generic_command(const std::string& n,
                       const std::vector<std::string>& texts) override {
    log.push_back("generic " + n + " " + std::to_string(texts.size()));
  }
};

class SmtLib2ParserTest : public ::testing::Test {
 protected:
  // Reads a script; returns its assertions.
  TermList script(const std::string& text) {
    std::istringstream in(text);
    return parser.parse_list(in);
  }

  const Term_* term(const std::string& text) {
    std::istringstream in(text);
    return parser.parse_term(in);
  }

  const Term_* var(const char* name, const Type* t) {
    return tm.make_constant(tm.make_symbol(name, t));
  }

  const Term_* num(long n) { return tm.make_number(n); }

  TermManager tm;
  Recorder parser{&tm};
  const Type* i = tm.get_integer_type();
  const Type* r = tm.get_real_type();
  const Type* b = tm.get_bool_type();
};

// ----------------------------------------------------------------------
// Tokens
// ----------------------------------------------------------------------

std::vector<std::string> tokens(const std::string& text) {
  std::istringstream in(text);
  SmtLib2Scanner sc(in);
  std::vector<std::string> out;
  for (Token t = sc.next(); t != Token::End; t = sc.next()) {
    out.push_back(std::string(token_name(t)) + ":" + sc.text()
                  + (sc.quoted() ? ":q" : "") + "@"
                  + std::to_string(sc.line()));
  }
  return out;
}

TEST(SmtLib2ScannerTest, ClassifiesRunsAsNumbersOrSymbols) {
  EXPECT_EQ(tokens("007 1.5 -5 1e5 1. a.b"),
            (std::vector<std::string>{"numeral:007@1",
                                      "decimal:1.5@1",
                                      "symbol:-5@1",
                                      "symbol:1e5@1",
                                      "symbol:1.@1",
                                      "symbol:a.b@1"}));
  EXPECT_EQ(tokens("#b0101 #xfF :named , _x !y"),
            (std::vector<std::string>{"binary constant:0101@1",
                                      "hexadecimal constant:fF@1",
                                      "keyword::named@1",
                                      "',':@1",
                                      "symbol:_x@1",
                                      "symbol:!y@1"}));
}

TEST(SmtLib2ScannerTest, QuotesCommentsAndLines) {
  EXPECT_EQ(tokens("; c\n|a b| |x\\|y|\n\"s \"\"q\"\"\nt\" |\nz|\n(x)"),
            (std::vector<std::string>{"symbol:a b:q@2",
                                      "symbol:x|y:q@2",
                                      "string:s \"q\"\nt@3",
                                      "symbol:\nz:q@4",
                                      "'(':@6",
                                      "symbol:x@6",
                                      "')':@6"}));
}

TEST(SmtLib2ScannerTest, BadTextIsAnErrorNotACrash) {
  EXPECT_EQ(error_of([] { tokens("(a {b}"); }), "unrecognized text: {b}");
  EXPECT_EQ(error_of([] { tokens("#b012"); }), "unrecognized text: #b012");
  EXPECT_EQ(error_of([] { tokens("#q"); }), "unrecognized text: #q");
  EXPECT_EQ(error_of([] { tokens("\x01\xff"); }),
            "unrecognized text: \\x01\\xff");
  EXPECT_EQ(error_of([] { tokens("\"abc"); }), "unterminated string literal");
  EXPECT_EQ(error_of([] { tokens("|abc"); }), "unterminated quoted symbol");
  EXPECT_EQ(error_of([] { tokens(": x"); }), "unrecognized text: :");
}

// ----------------------------------------------------------------------
// Core and arithmetic
// ----------------------------------------------------------------------

TEST_F(SmtLib2ParserTest, CoreSymbolsReachTheirTerms) {
  script(
      "(declare-fun p () Bool) (declare-fun q () Bool)"
      "(declare-fun |s| () Bool)");
  const Term_* p = var("p", b);
  const Term_* q = var("q", b);
  const Term_* s = var("s", b);
  EXPECT_EQ(term("|p|"), p);
  EXPECT_EQ(term("(=> p q s)"),
            tm.make_or(tm.make_not(p), tm.make_or(tm.make_not(q), s)));
  EXPECT_EQ(term("(= p q s)"),
            tm.make_and(tm.make_iff(p, q), tm.make_iff(q, s)));
  EXPECT_EQ(term("(xor p q s)"),
            tm.make_not(tm.make_iff(tm.make_not(tm.make_iff(p, q)), s)));
  EXPECT_EQ(term("(nand p q)"), tm.make_not(tm.make_and(p, q)));
  EXPECT_EQ(term("(and p q s)"), tm.make_and(tm.make_and(p, q), s));
  EXPECT_EQ(term("(or p)"), p);
  EXPECT_EQ(term("(ite p q s)"),
            tm.make_and(tm.make_or(tm.make_not(p), q), tm.make_or(p, s)));
  EXPECT_EQ(term("(distinct p q s)"),
            tm.make_and(tm.make_and(tm.make_not(tm.make_iff(p, q)),
                                    tm.make_not(tm.make_iff(p, s))),
                        tm.make_not(tm.make_iff(q, s))));
  EXPECT_EQ(term("(! p :named n1)"), p);
  EXPECT_EQ(term("n1"), p);
}

TEST_F(SmtLib2ParserTest, ArithmeticSymbolsReachTheirTerms) {
  script(
      "(declare-fun x () Int) (declare-fun y () Int)"
      "(declare-fun z () Int) (declare-fun u () Real)");
  const Term_* x = var("x", i);
  const Term_* y = var("y", i);
  const Term_* z = var("z", i);
  const Term_* u = var("u", r);
  const Term_* minus_one = num(-1);
  EXPECT_EQ(term("(- 5)"), num(-5));
  EXPECT_EQ(term("(- 2.5)"), tm.make_number(QNumber(-5, 2)));
  EXPECT_EQ(term("(/ 1 3)"), tm.make_number(QNumber(1, 3)));
  EXPECT_EQ(term("(- x)"), tm.make_times(minus_one, x));
  EXPECT_EQ(term("(- x y z)"),
            tm.make_plus(tm.make_plus(x, tm.make_times(minus_one, y)),
                         tm.make_times(minus_one, z)));
  EXPECT_EQ(term("(- x 1)"), tm.make_plus(x, minus_one));
  EXPECT_EQ(term("(= x y z)"),
            tm.make_and(tm.make_equal(x, y), tm.make_equal(y, z)));
  EXPECT_EQ(term("(< x y)"), tm.make_not(tm.make_leq(y, x)));
  EXPECT_EQ(term("(> x y)"), tm.make_not(tm.make_leq(x, y)));
  EXPECT_EQ(term("(>= x y z)"),
            tm.make_and(tm.make_leq(y, x), tm.make_leq(z, y)));
  EXPECT_EQ(term("(distinct x y z)"),
            tm.make_and(tm.make_and(tm.make_not(tm.make_equal(x, y)),
                                    tm.make_not(tm.make_equal(x, z))),
                        tm.make_not(tm.make_equal(y, z))));
  EXPECT_EQ(term("(to_real x)"), x);
  EXPECT_EQ(term("(to_int u)"), tm.make_floor(u));
  EXPECT_EQ(term("(is_int u)"), tm.make_equal(u, tm.make_floor(u)));
  EXPECT_EQ(term("((_ divisible 3) x)"),
            tm.make_int_modular_congruence(QNumber(3), x, num(0)));
  EXPECT_EQ(term("(~ x)"), tm.make_times(minus_one, x));
  EXPECT_EQ(term("-7"), num(-7));
  EXPECT_EQ(term("(* x 2.0)"), tm.make_times(x, num(2)));
  EXPECT_EQ(term("(exp (sin (log (asin (pow u pi)))))"),
            tm.make_exp(tm.make_sin(
                tm.make_log(tm.make_asin(tm.make_pow(u, tm.make_pi()))))));
}

// A small evaluator of ground terms, enough to check the expansions of the
// derived operators against their definitions.
class Evaluator {
 public:
  explicit Evaluator(TermManager& tm) : d_tm(tm) {}

  QNumber eval(const Term_* t) {
    QNumber v;
    if (d_tm.is_number(t->get_symbol(), &v)) {
      return v;
    }
    std::vector<QNumber> a;
    for (const Term_* c : *t) {
      a.push_back(eval(c));
    }
    return apply(t, a);
  }

 private:
  QNumber apply(const Term_* t, const std::vector<QNumber>& a) {
    size_t w = 0, hi = 0, lo = 0;
    const Symbol* s = t->get_symbol();
    d_tm.is_bv_type(t->get_child(0)->get_type(), &w);
    QNumber m = w > 0 ? BVNumber::pow2(w) : QNumber(1);
    auto b = [](bool x) { return QNumber(x ? 1 : 0); };
    switch (d_tm.get_tag(s)) {
      case SymbolTag::NOT: return b(a[0].is_zero());
      case SymbolTag::AND: return b(!a[0].is_zero() && !a[1].is_zero());
      case SymbolTag::OR: return b(!a[0].is_zero() || !a[1].is_zero());
      case SymbolTag::IFF:
      case SymbolTag::EQ: return b(a[0] == a[1]);
      case SymbolTag::ITE: return a[0].is_zero() ? a[2] : a[1];
      case SymbolTag::PLUS: return a[0] + a[1];
      case SymbolTag::TIMES: return a[0] * a[1];
      case SymbolTag::DIVIDE: return a[0] / a[1];
      case SymbolTag::FLOOR: return a[0].floor();
      case SymbolTag::LEQ: return b(a[0] <= a[1]);
      case SymbolTag::BV_NEG: return BVNumber::neg(w, a[0]);
      case SymbolTag::BV_NOT: return m - 1 - a[0];
      case SymbolTag::BV_ADD: return BVNumber::trim(a[0] + a[1], w);
      case SymbolTag::BV_UREM:
        return a[1].is_zero() ? a[0] : a[0] - (a[0] / a[1]).floor() * a[1];
      case SymbolTag::BV_COMP: return b(a[0] == a[1]);
      case SymbolTag::BV_AND: return bitwise(BVNumber::bit_and_l, a);
      case SymbolTag::BV_OR: return bitwise(BVNumber::bit_or_l, a);
      case SymbolTag::BV_XOR: return bitwise(BVNumber::bit_xor_l, a);
      case SymbolTag::BV_CONCAT: {
        size_t w2 = 0;
        d_tm.is_bv_type(t->get_child(1)->get_type(), &w2);
        return a[0] * BVNumber::pow2(w2) + a[1];
      }
      case SymbolTag::BV_EXTRACT:
        d_tm.is_bv_extract(s, &hi, &lo);
        return BVNumber::trim((a[0] / BVNumber::pow2(lo)).floor(), hi - lo + 1);
      default: ADD_FAILURE() << "no evaluation of " << t->to_shallow_str();
    }
    return QNumber();
  }

  static QNumber bitwise(void (*op)(const QNumber&, const QNumber&, QNumber&),
                         const std::vector<QNumber>& a) {
    QNumber r;
    op(a[0], a[1], r);
    return r;
  }

  TermManager& d_tm;
};

std::string lit4(long v) {
  std::string s = "#b";
  for (int k = 3; k >= 0; --k) {
    s += ((v >> k) & 1) != 0 ? '1' : '0';
  }
  return s;
}

TEST_F(SmtLib2ParserTest, DerivedBitVectorOperatorsMeanTheirDefinitions) {
  Evaluator ev(tm);
  auto sgn = [](long v) { return v >= 8 ? v - 16 : v; };
  for (long s = 0; s < 16; ++s) {
    for (long t = 0; t < 16; ++t) {
      std::string args = " " + lit4(s) + " " + lit4(t) + ")";
      // Signed remainder with the sign of the divisor; s for t = 0.
      long ss = sgn(s), st = sgn(t);
      long want = t == 0 ? s : ((ss % st) + st) % st;
      if (t != 0 && ss % st == 0) {
        want = 0;
      }
      want = (want + 16) % 16;
      EXPECT_EQ(ev.eval(term("(bvsmod" + args)), QNumber(want))
          << s << " " << t;
      EXPECT_EQ(ev.eval(term("(bvxnor" + args)), QNumber(15 - (s ^ t)));
      EXPECT_EQ(ev.eval(term("(bvnand" + args)), QNumber(15 - (s & t)));
      EXPECT_EQ(ev.eval(term("(bvnor" + args)), QNumber(15 - (s | t)));
    }
    EXPECT_EQ(ev.eval(term("(bvredor " + lit4(s) + ")")), QNumber(s != 0));
    EXPECT_EQ(ev.eval(term("(bvredand " + lit4(s) + ")")), QNumber(s == 15));
    EXPECT_EQ(ev.eval(term("((_ repeat 3) " + lit4(s) + ")")),
              QNumber(s * 256 + s * 16 + s));
  }
}

TEST_F(SmtLib2ParserTest, IntegerDivisionIsEuclidean) {
  Evaluator ev(tm);
  auto lit = [](long v) {
    return v < 0 ? "(- " + std::to_string(-v) + ")" : std::to_string(v);
  };
  for (long a = -9; a <= 9; ++a) {
    for (long d = -4; d <= 4; ++d) {
      if (d == 0) {
        continue;
      }
      long q = a / d, m = a % d;
      if (m < 0) {
        m += d > 0 ? d : -d;
        q = (a - m) / d;
      }
      std::string args = " " + lit(a) + " " + lit(d) + ")";
      EXPECT_EQ(ev.eval(term("(div" + args)), QNumber(q)) << a << " div " << d;
      EXPECT_EQ(ev.eval(term("(mod" + args)), QNumber(m)) << a << " mod " << d;
    }
    EXPECT_EQ(ev.eval(term("(abs " + lit(a) + ")")), QNumber(a < 0 ? -a : a));
  }
}

// ----------------------------------------------------------------------
// Bit-vectors, floats, arrays
// ----------------------------------------------------------------------

TEST_F(SmtLib2ParserTest, BitVectorSymbolsReachTheirTerms) {
  script("(declare-fun a () (_ BitVec 8)) (declare-fun c () (_ BitVec 8))");
  const Term_* a = var("a", tm.get_bv_type(8));
  const Term_* c = var("c", tm.get_bv_type(8));
  EXPECT_EQ(term("(_ bv10 32)"), tm.make_bv_number(QNumber(10), 32));
  EXPECT_EQ(term("(_ bv300 8)"), tm.make_bv_number(QNumber(44), 8));
  EXPECT_EQ(term("#x0f"), tm.make_bv_number(QNumber(15), 8));
  EXPECT_EQ(error_of([&] { term("(_ bv0 0)"); }),
            "unknown indexed symbol: bv0 (line: 1)");
  EXPECT_EQ(term("(bvugt a c)"), tm.make_bv_ult(c, a));
  EXPECT_EQ(term("(bvsge a c)"), tm.make_bv_sle(c, a));
  EXPECT_EQ(term("(bvadd a c a)"), tm.make_bv_add(tm.make_bv_add(a, c), a));
  EXPECT_EQ(term("(bvshl a c)"), tm.make_bv_lshl(a, c));
  EXPECT_EQ(term("((_ extract 7 4) a)"), tm.make_bv_extract(7, 4, a));
  EXPECT_EQ(term("((_ zero_extend 2) a)"), tm.make_bv_zext(2, a));
  EXPECT_EQ(term("((_ rotate_right 3) a)"), tm.make_bv_ror(3, a));
  EXPECT_EQ(term("(concat a c)"), tm.make_bv_concat(a, c));
  EXPECT_EQ(term("((_ int2bv 8) (bv2nat a))"),
            tm.make_int_to_bv(8, tm.make_int_from_ubv(a)));
  EXPECT_EQ(term("(sbv_to_int a)"), tm.make_int_from_sbv(a));
  EXPECT_EQ(error_of([&] { term("(bvsub a c a)"); }),
            "ERROR: bvsub takes exactly 2 arguments (3 given) (line: 1)");
  EXPECT_EQ(error_of([&] { term("((_ extract 7) a)"); }),
            "ERROR: extract takes exactly 2 indices (1 given) (line: 1)");
}

TEST_F(SmtLib2ParserTest, FloatingPointSymbolsReachTheirTerms) {
  script(
      "(declare-fun f () Float32) (declare-fun g () (_ FloatingPoint 8 24))"
      "(declare-fun rm () RoundingMode) (declare-fun v () (_ BitVec 32))");
  const Type* f32 = tm.get_fp_type(8, 23);
  const Term_* f = var("f", f32);
  const Term_* g = var("g", f32);
  const Term_* rm = var("rm", tm.get_fprounding_type());
  const Term_* v = var("v", tm.get_bv_type(32));
  const Term_* rne = tm.make_fp_rounding_mode(RoundingMode::NearestEven);
  EXPECT_EQ(term("(fp.add RNE f g)"), tm.make_fp_add(rne, f, g));
  EXPECT_EQ(term("(fp.gt f g)"), tm.make_fp_lt(g, f));
  EXPECT_EQ(term("(fp.leq f g f)"),
            tm.make_and(tm.make_fp_le(f, g), tm.make_fp_le(g, f)));
  EXPECT_EQ(term("(fp.sqrt rm f)"), tm.make_fp_sqrt(rm, f));
  EXPECT_EQ(term("(fp #b0 #b01111111 #b00000000000000000000000)"),
            tm.make_fp_rat_number(QNumber(1), 8, 23, rne));
  EXPECT_EQ(
      term("((_ to_fp 8 24) RTZ 0.5)"),
      tm.make_fp_rat_number(
          QNumber(1, 2), 8, 23, tm.make_fp_rounding_mode(RoundingMode::Zero)));
  EXPECT_EQ(term("((_ to_fp 8 24) v)"), tm.make_fp_from_ieeebv(8, 23, v));
  EXPECT_EQ(term("((_ to_fp 8 24) #x3f800000)"),
            term("(fp #b0 #x7f #b0"
                 "0000000000000000000000)"));
  EXPECT_EQ(term("((_ to_fp 11 53) rm f)"), tm.make_fp_cast(11, 52, rm, f));
  EXPECT_EQ(term("((_ to_fp 8 24) rm v)"), tm.make_fp_from_sbv(8, 23, rm, v));
  EXPECT_EQ(term("((_ to_fp_unsigned 8 24) rm v)"),
            tm.make_fp_from_ubv(8, 23, rm, v));
  EXPECT_EQ(term("((_ fp.to_sbv 16) rm f)"), tm.make_fp_to_sbv(16, rm, f));
  EXPECT_EQ(term("(_ NaN 8 24)"), tm.make_fp_nan(8, 23));
  EXPECT_EQ(term("(_ -oo 8 24)"), tm.make_fp_minus_inf(8, 23));
  EXPECT_EQ(term("(_ -zero 8 24)"),
            tm.make_fp_bits_number(BVNumber::pow2(31), 8, 23));
  EXPECT_EQ(term("(fp.isSubnormal f)"), tm.make_fp_issubnormal(f));
  EXPECT_EQ(error_of([&] { term("((_ to_fp 8 24) RNE f g)"); }),
            "ERROR: to_fp takes 1 or 2 arguments (3 given) (line: 1)");
}

TEST_F(SmtLib2ParserTest, ArraysAndConstantArrays) {
  script("(declare-fun m () (Array Int Int)) (declare-fun k () Int)");
  const Type* arr = tm.get_array_type(i, i);
  const Term_* m = var("m", arr);
  const Term_* k = var("k", i);
  EXPECT_EQ(term("(select (store m k 1) k)"),
            tm.make_array_read(tm.make_array_write(m, k, num(1)), k));
  EXPECT_EQ(term("((as const (Array Int Int)) 0)"),
            tm.make_array_const(arr, num(0)));
  EXPECT_EQ(error_of([&] { term("(const 0)"); }).substr(0, 25),
            "ERROR: const needs a sort");
}

// ----------------------------------------------------------------------
// Sorts
// ----------------------------------------------------------------------

TEST_F(SmtLib2ParserTest, SortsDeclaredDefinedAndIndexed) {
  script(
      "(declare-sort U 0) (declare-sort Pair 2)"
      "(define-sort Mem (X) (Array X X)) (define-sort Word () (_ BitVec 16))"
      "(declare-fun p () (Pair U Int)) (declare-fun m () (Mem Word))"
      "(declare-fun h () Float16) (declare-fun d () (_ FloatingPoint 11 53))");
  const Type* u = tm.get_simple_type("U", true);
  ASSERT_NE(u, nullptr);
  EXPECT_EQ(tm.find_symbol("p")->get_type(),
            tm.get_compound_type({tm.get_simple_type("Pair"), u, i}));
  EXPECT_EQ(tm.find_symbol("m")->get_type(),
            tm.get_array_type(tm.get_bv_type(16), tm.get_bv_type(16)));
  EXPECT_EQ(tm.find_symbol("h")->get_type(), tm.get_fp_type(5, 10));
  EXPECT_EQ(tm.find_symbol("d")->get_type(), tm.get_fp_type(11, 52));
  auto decl = [&](const std::string& sort) {
    return error_of([&] { script("(declare-fun z () " + sort + ")"); });
  };
  EXPECT_EQ(decl("V"), "undeclared sort V (line: 1)");
  EXPECT_EQ(decl("(Array Int)"),
            "wrong number of parameters for sort Array (line: 1)");
  EXPECT_EQ(decl("(Int Int)"), "sort Int is not parametric (line: 1)");
  EXPECT_EQ(decl("Pair"), "wrong number of parameters for sort Pair (line: 1)");
  EXPECT_EQ(decl("(Pair U)"),
            "wrong number of parameters for sort Pair (line: 1)");
  EXPECT_EQ(decl("(_ Foo 3 4)"), "Unknown indexed sort Foo 3 4 (line: 1)");
  EXPECT_EQ(error_of([&] { script("(declare-sort U 0)"); }),
            "sort U already declared (line: 1)");
}

// ----------------------------------------------------------------------
// Bindings
// ----------------------------------------------------------------------

TEST_F(SmtLib2ParserTest, DefinitionsAreInstantiatedWithTheirArguments) {
  script(
      "(declare-fun x () Int)"
      "(define-fun sq ((a Int)) Int (* a a))"
      "(define-fun half ((v Real)) Real (/ v 2))"
      "(define-const two Int 2)");
  const Term_* x = var("x", i);
  EXPECT_EQ(term("(sq x)"), tm.make_times(x, x));
  EXPECT_EQ(term("two"), num(2));
  // An Int argument of a Real parameter: the same term as written out.
  EXPECT_EQ(term("(half 3)"), term("(/ 3 2)"));
  EXPECT_EQ(term("(half 3)"), tm.make_number(QNumber(3, 2)));
  EXPECT_EQ(error_of([&] { term("(sq x x)"); }),
            "wrong number of arguments for symbol `sq' (line: 1)");
  EXPECT_EQ(error_of([&] { term("(two 1)"); }),
            "wrong number of arguments for symbol `two' (line: 1)");
  EXPECT_EQ(error_of([&] { term("(sq true)"); }),
            "type error. argument 1 of `sq' has type Bool, but Int was "
            "expected (line: 1)");
  EXPECT_EQ(error_of([&] { script("(define-fun sq () Int 1)"); }),
            "symbol `sq' already defined (line: 1)");
  EXPECT_EQ(error_of([&] { script("(define-fun bad () Bool 1)"); }),
            "the body of `bad' has type Int, but Bool was declared (line: 1)");
}

TEST_F(SmtLib2ParserTest, LetBindsInParallelAndShadows) {
  script("(declare-fun p () Bool) (declare-fun q () Bool)");
  const Term_* p = var("p", b);
  const Term_* q = var("q", b);
  // The second binding reads the outer a.
  EXPECT_EQ(term("(let ((a p)) (let ((a q) (c a)) (and a c)))"),
            tm.make_and(q, p));
  EXPECT_EQ(term("(let ((a p)) (and (let ((a q)) a) a))"), tm.make_and(q, p));
  // A declared name is shadowed too, and comes back after the let.
  EXPECT_EQ(term("(let ((p q)) p)"), q);
  EXPECT_EQ(term("(and (let ((p q) (q p)) (or p (not q))) p)"),
            term("(and (or q (not p)) p)"));
  EXPECT_EQ(error_of([&] { term("(let ((a p) (a q)) a)"); }),
            "symbol `a' already defined (line: 1)");
  // A failed term leaves no binding behind.
  EXPECT_EQ(error_of([&] { term("(let ((z p)) (and z undeclared))"); }),
            "unknown symbol: undeclared (line: 1)");
  EXPECT_EQ(error_of([&] { term("z"); }), "unknown symbol: z (line: 1)");
  EXPECT_EQ(term("(let ((z q)) z)"), q);
}

TEST_F(SmtLib2ParserTest, QuantifiedVariablesShadowDefinitions) {
  TermList f = script(
      "(define-fun x () Int 5)"
      "(assert (forall ((x Int) (y Bool)) (and y (exists ((x Int)) (< x "
      "0)))))");
  ASSERT_EQ(f.size(), 1u);
  const Term_* q = f[0];
  ASSERT_TRUE(tm.is_forall(q->get_symbol()));
  const Term_* inner = q->get_child(1);
  ASSERT_TRUE(tm.is_forall(inner->get_symbol()));
  const Term_* ex = inner->get_child(1)->get_child(1);
  ASSERT_TRUE(tm.is_exists(ex->get_symbol()));
  // (< x 0) is about the innermost x, not the definition 5.
  const Term_* lt = ex->get_child(1);
  EXPECT_EQ(lt, tm.make_not(tm.make_leq(num(0), ex->get_child(0))));
  EXPECT_NE(ex->get_child(0), q->get_child(0));
  EXPECT_EQ(term("x"), num(5));
}

TEST_F(SmtLib2ParserTest, NamesAndAnnotations) {
  TermList f = script(
      "(declare-fun p () Bool) (declare-fun q () Bool)"
      "(assert (! (and p q) :named both :interpolation-group g1))"
      "(assert (! p :pattern ((f x) (_ bv1 2)) :weird))"
      "(assert both)");
  ASSERT_EQ(f.size(), 3u);
  EXPECT_EQ(f[2], f[0]);
  ASSERT_EQ(parser.get_named_terms().size(), 1u);
  EXPECT_EQ(parser.get_named_terms()[0].name, "both");
  TermList annotated = parser.get_annotated_terms();
  ASSERT_EQ(annotated.size(), 2u);
  EXPECT_LT(annotated[0]->get_id(), annotated[1]->get_id());
  const AttributeList* a = parser.get_annotations(f[1]);
  ASSERT_NE(a, nullptr);
  ASSERT_EQ(a->size(), 2u);
  EXPECT_EQ((*a)[0].key, ":pattern");
  EXPECT_EQ((*a)[0].value, "((f x) (_ bv1 2))");
  EXPECT_EQ((*a)[1].key, ":weird");
  EXPECT_EQ((*a)[1].value, "");
  EXPECT_EQ(error_of([&] { script("(assert (! q :named both))"); }),
            "name `both' already used (line: 1)");
  EXPECT_EQ(error_of([&] { script("(assert (! q :named p))"); }),
            "name `p' already used (line: 1)");
}

TEST_F(SmtLib2ParserTest, DeclarationsAndBuiltInNames) {
  EXPECT_EQ(error_of([&] { script("(declare-fun and () Bool)"); }),
            "`and' is a built-in function (line: 1)");
  EXPECT_EQ(error_of([&] { script("(declare-fun RNE () Bool)"); }),
            "`RNE' is already defined (line: 1)");
  // A name that reads as a number is refused unquoted; quoted, it keeps
  // its bars and is no number.
  EXPECT_EQ(error_of([&] { script("(declare-fun -3 () Int)"); }),
            "`-3' is reserved for numbers (line: 1)");
  script("(declare-fun |-3| () Int) (declare-fun || () Int)");
  EXPECT_EQ(term("|-3|"), var("|-3|", i));
  EXPECT_NE(term("|-3|"), num(-3));
  EXPECT_EQ(term("||"), var("||", i));
  // Our extensions give way to a script's own symbols.
  script("(declare-fun pi () Int) (declare-fun ~ (Int) Int)");
  EXPECT_EQ(term("pi"), var("pi", i));
  EXPECT_EQ(term("(~ pi)")->get_symbol(), tm.find_symbol("~"));
  // Also for a later reader on the same store.
  SmtLib2Parser later(&tm);
  std::istringstream in("(assert (= pi 3))");
  EXPECT_EQ(later.parse_list(in).size(), 1u);
  // A declaration with the same type is the same symbol.
  script("(declare-fun k () Int) (declare-fun k () Int)");
  EXPECT_NE(
      error_of([&] { script("(declare-fun k () Bool)"); }).find("(line: 1)"),
      std::string::npos);
}

// ----------------------------------------------------------------------
// Commands
// ----------------------------------------------------------------------

TEST_F(SmtLib2ParserTest, CommandsReachTheirOperations) {
  script(
      "(set-option :x none) (set-option :y 12) (set-option :z 0.5)"
      "(set-option :w true) (set-option :v \"s\") (set-option :u sym)"
      "(check-sat) (check-sat-assuming (true false)) (check-sat true)"
      "(push) (push 3) (get-value ((f x) |a b| ( ) \"q\"\"\" (_ bv5 8)))"
      "(echo \"hi \"\"there\"\"\") (get-option :produce-models) (reset)"
      "(gc) (foo 1 (2))");
  EXPECT_EQ(parser.log,
            (std::vector<std::string>{"option :x double 0.000000",
                                      "option :y int 12",
                                      "option :z double 0.500000",
                                      "option :w int 1",
                                      "option :v string s",
                                      "option :u string sym",
                                      "check-sat",
                                      "assuming 2",
                                      "assuming 1",
                                      "push 1",
                                      "push 3",
                                      "get-value [(f x)] [|a b|] [()] "
                                      "[\"q\"\"\"] [(_ bv5 8)]",
                                      "echo hi \"there\"",
                                      "get-option :produce-models",
                                      "reset",
                                      "generic gc",
                                      "generic foo 2"}));
}

TEST_F(SmtLib2ParserTest, LibraryClientCollectsAndRefuses) {
  std::istringstream in(
      "(set-logic QF_LIA) (set-info :status unsat) (declare-fun x () Int)"
      "(assert (> x 0)) (check-sat) (get-model) (assert (< x 0)) (exit)"
      "(assert false)");
  SmtLib2Parser p(&tm);
  const Term_* f = p.parse(in);
  const Term_* x = tm.make_constant(tm.find_symbol("x"));
  EXPECT_EQ(f,
            tm.make_and(tm.make_and(tm.make_true(),
                                    tm.make_not(tm.make_leq(x, num(0)))),
                        tm.make_not(tm.make_leq(num(0), x))));
  EXPECT_EQ(p.get_logic(), "QF_LIA");
  EXPECT_EQ(p.get_status(), ParserInterface::Status::Unsat);
  auto read = [&](const std::string& text) {
    return error_of([&] {
      SmtLib2Parser q(&tm);
      std::istringstream s(text);
      q.parse(s);
    });
  };
  EXPECT_EQ(read("\n(pop 1)"), "unsupported command: pop (line: 2)");
  EXPECT_EQ(read("(minimize x)"), "unsupported command: minimize (line: 1)");
  EXPECT_EQ(read("(declare-datatypes ((T 0)) (((c))))"),
            "unsupported command: declare-datatypes (line: 1)");
  EXPECT_EQ(read("(assert x)"),
            "assert of a term that is not a formula: x (line: 1)");
  EXPECT_EQ(read("(declare-fun y () Int) (set-logic QF_LIA)"),
            "set-logic is invalid at this point (line: 1)");
}

TEST_F(SmtLib2ParserTest, SyntaxErrorsNameTheTokenAndLine) {
  auto read = [&](const std::string& text) {
    return error_of([&] { script(text); });
  };
  EXPECT_EQ(read("(assert\n(and true\n"),
            "syntax error, unexpected end of input, expecting a term "
            "(line: 3)");
  EXPECT_EQ(read("(assert (f))"),
            "syntax error, unexpected ')', expecting a term (line: 1)");
  EXPECT_EQ(read(")"), "syntax error, unexpected ')', expecting '(' (line: 1)");
  EXPECT_EQ(read("(assert (let () true))"),
            "syntax error, unexpected ')', expecting '(' (line: 1)");
  EXPECT_EQ(read("(assert true true)"),
            "syntax error, unexpected symbol `true', expecting ')' (line: 1)");
  EXPECT_EQ(read("(assert (as x))"),
            "syntax error, unexpected ')', expecting a sort (line: 1)");
  EXPECT_EQ(read("(assert {)"), "unrecognized text: { (line: 1)");
  EXPECT_EQ(read("(declare-fun x (Int Int) Int) (assert (= (x 1 2) 2))"),
            "<no error>");
  EXPECT_EQ(read("(assert (x 1 2 3))").substr(0, 29),
            "wrong arity for symbol x. exp");
  EXPECT_EQ(read("(assert (and 1 true))").substr(0, 11), "type error.");
  EXPECT_EQ(read("(assert x)"), "symbol `x' has non-zero arity (line: 1)");
}

// The interpreter's loop: after a failed command the reader skips to the
// next one, and the scopes the failure left open are closed.
TEST_F(SmtLib2ParserTest, ReadingGoesOnAfterABadCommand) {
  std::istringstream in(
      "(declare-fun p () Bool)\n"
      "(assert (let ((a p)) (and a (bad (nested deeper)))))\n"
      "(assert (let ((a p)) a))\n"
      "(assert (forall ((v Int)) (and (> v 0) oops)))\n"
      "(assert (exists ((w Int)) (> w 0)))\n"
      "(assert (\"str\" p)) (check-sat) ) (check-sat)\n");
  SmtLib2Scanner sc(in);
  std::vector<std::string> errors;
  for (;;) {
    try {
      if (!parser.parse_command(sc)) {
        break;
      }
    } catch (const ParserInterface::error& e) {
      errors.push_back(e.message());
      parser.skip_command(sc);
    }
  }
  EXPECT_EQ(errors,
            (std::vector<std::string>{
                "unknown symbol: deeper (line: 2)",
                "unknown symbol: oops (line: 4)",
                "syntax error, unexpected string, expecting a symbol (line: "
                "6)",
                "syntax error, unexpected ')', expecting '(' (line: 6)"}));
  EXPECT_EQ(parser.log, (std::vector<std::string>{"check-sat", "check-sat"}));
  EXPECT_EQ(parser.get_named_terms().size(), 0u);
}

TEST_F(SmtLib2ParserTest, NestingDepthCostsNoStack) {
  const int depth = 1000000;
  std::string text = "(declare-fun p () Bool)(assert ";
  for (int k = 0; k < depth; ++k) {
    text += "(not ";
  }
  text += "p" + std::string(depth, ')') + ")";
  TermList f = script(text);
  ASSERT_EQ(f.size(), 1u);
  const Term_* t = f[0];
  int n = 0;
  for (; tm.get_tag(t->get_symbol()) == SymbolTag::NOT; t = t->get_child(0)) {
    ++n;
  }
  EXPECT_EQ(n, depth);
  // Deep lets and deep verbatim texts too.
  std::string lets = "(assert ";
  for (int k = 0; k < 100000; ++k) {
    lets += "(let ((a" + std::to_string(k) + " p)) ";
  }
  lets += "p" + std::string(100000, ')') + ")";
  EXPECT_EQ(script(lets).size(), 1u);
  std::string deep_value =
      "(get-value (" + std::string(depth, '(') + std::string(depth, ')') + "))";
  EXPECT_EQ(script(deep_value).size(), 0u);
  std::string sort;
  for (int k = 0; k < 2000; ++k) {
    sort += "(Array Int ";
  }
  sort += "Int" + std::string(2000, ')');
  EXPECT_EQ(error_of([&] { script("(declare-fun q () " + sort + ")"); }),
            "sort nested too deeply (more than 1000 levels) (line: 1)");
}

TEST_F(SmtLib2ParserTest, NestedParsesReadTextsInTheirOwnScope) {
  // What get-value does: the texts come back as ".internal-parse-terms".
  class Client : public Recorder {
   public:
    using Recorder::Recorder;
    TermList parsed;

    void get_value(const std::vector<std::string>& texts) override {
      std::string cmd = "(.internal-parse-terms (";
      for (const std::string& t : texts) {
        cmd += t + " ";
      }
      parse_nested(cmd + "\n))");
    }

    void internal_set_parsed_terms(const TermList& terms) override {
      parsed = terms;
    }
  };

  Client c(&tm);
  std::istringstream in(
      "(declare-fun x () Int) (get-value ((+ x 1) x ; comment\n))");
  c.parse_list(in);
  const Term_* x = tm.make_constant(tm.find_symbol("x"));
  EXPECT_EQ(c.parsed, (TermList{tm.make_plus(x, num(1)), x}));
  std::istringstream bad("(get-value ((+ x y)))");
  EXPECT_EQ(error_of([&] { c.parse_list(bad); }),
            "unknown symbol: y (line: 1)");
}

}  // namespace
}  // namespace zenlo
