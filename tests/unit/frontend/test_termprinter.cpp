// The SMT-LIB 2 printers: exact texts of the small cases, and for terms of
// every theory a print/parse round trip that must give the very same term
// (terms are hash-consed), in both forms of definitions and for values.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "frontend/smtlib2parser.h"
#include "frontend/termprinter.h"

namespace zenlo {
namespace {

class TermPrinterTest : public ::testing::Test {
 protected:
  TermList read(const std::string& text) {
    SmtLib2Parser p(&tm);
    std::istringstream in(text);
    return p.parse_list(in);
  }

  std::string formula(const Term_* t, const Configuration::Printer* c) {
    std::ostringstream out;
    SmtLib2TermPrinter p(&tm, c);
    p.print_formula(out, t);
    return out.str();
  }

  std::string script(const TermList& ts, bool defines) {
    std::ostringstream out;
    SmtLib2TermPrinter p(&tm, &cfg, defines);
    p.print_terms(out, ts);
    return out.str();
  }

  std::string atom(const Term_* t, const Configuration::Printer* c) {
    SmtLib2TermPrinter p(&tm, c);
    return p.atom_to_string(t);
  }

  // Prints the assertions both ways and as values, and reads each back.
  void expect_round_trip(const TermList& ts) {
    for (bool defines : {false, true}) {
      std::string text = script(ts, defines);
      EXPECT_EQ(read(text), ts) << text;
    }
    // Values name sorts the script declares: read them after it.
    std::istringstream decls(script(ts, false));
    SmtLib2Parser p(&tm);
    p.parse_list(decls);
    for (const Term_* t : ts) {
      std::istringstream in(atom(t, &cfg));
      EXPECT_EQ(p.parse_term(in), t) << atom(t, &cfg);
    }
  }

  const Term_* var(const char* name, const Type* t) {
    return tm.make_constant(tm.make_symbol(name, t));
  }

  TermManager tm;
  Configuration::Printer cfg;
};

TEST_F(TermPrinterTest, SmallFormulasPrintExactly) {
  const Term_* x = var("x", tm.get_bool_type());
  EXPECT_EQ(formula(x, nullptr),
            "(set-info :source |printed by Zenlo|)\n"
            "(declare-fun x () Bool)\n"
            "(assert\n"
            "x)\n");
  const Term_* y = var("y", tm.get_bool_type());
  const Term_* shared = tm.make_and(x, y);
  const Term_* f = tm.make_or(shared, tm.make_not(shared));
  std::string s = std::to_string(shared->get_id());
  std::string n = std::to_string(f->get_id() - 1);
  std::string o = std::to_string(f->get_id());
  EXPECT_EQ(formula(f, nullptr),
            "(set-info :source |printed by Zenlo|)\n"
            "(declare-fun x () Bool)\n"
            "(declare-fun y () Bool)\n"
            "(assert\n"
            "(let ((.def_"
                + s + " (and x y)))\n(let ((.def_" + n + " (not .def_" + s
                + ")))\n(let ((.def_" + o + " (or .def_" + s + " .def_" + n
                + ")))\n.def_" + o + "))))\n");
  cfg.defines_prefix = "p";
  EXPECT_NE(formula(shared, &cfg).find("(let ((p" + s + " (and x y)))"),
            std::string::npos);
  // A label that a user symbol already has is lengthened.
  var(("p" + s).c_str(), tm.get_bool_type());
  EXPECT_NE(formula(shared, &cfg).find("(let ((p" + s + "_ (and x y)))"),
            std::string::npos);
  SmtLib2TermPrinter single(&tm, nullptr);
  std::ostringstream out;
  single.print_term(out, tm.make_not(shared));
  EXPECT_EQ(out.str(),
            "(let ((.def_" + s + " (and x y))) (let ((.def_"
                + std::to_string(tm.make_not(shared)->get_id()) + " (not .def_"
                + s + "))) .def_"
                + std::to_string(tm.make_not(shared)->get_id()) + "))");
}

TEST_F(TermPrinterTest, NamesAndNumbersHaveTheirSyntax) {
  using P = SmtLibTermPrinter;
  EXPECT_EQ(P::to_smtlib("a b"), "|a b|");
  EXPECT_EQ(P::to_smtlib("a|b"), "|a\\|b|");
  EXPECT_EQ(P::to_smtlib("1x"), "|1x|");
  EXPECT_EQ(P::to_smtlib("x!1.y"), "x!1.y");
  EXPECT_EQ(P::to_smtlib("let"), "|let|");
  EXPECT_EQ(P::to_smtlib(""), "");
  SmtLib2TermPrinter p(&tm, nullptr);
  EXPECT_EQ(p.to_smtlib(QNumber(-1, 2)), "(- (/ 1 2))");
  EXPECT_EQ(p.to_smtlib(QNumber(42)), "42");
  const Term_* five8 = tm.make_bv_number(QNumber(5), 8);
  const Term_* five6 = tm.make_bv_number(QNumber(5), 6);
  EXPECT_EQ(atom(five8, nullptr), "#b00000101");
  EXPECT_EQ(atom(five8, &cfg), "(_ bv5 8)");
  cfg.bv_number_format = 1;
  EXPECT_EQ(SmtLib2TermPrinter(&tm, &cfg).atom_to_string(five8), "#b00000101");
  cfg.bv_number_format = 2;
  EXPECT_EQ(SmtLib2TermPrinter(&tm, &cfg).atom_to_string(five8), "#x05");
  EXPECT_EQ(SmtLib2TermPrinter(&tm, &cfg).atom_to_string(five6), "#b000101");
  // An Int where a Real is expected: a decimal literal, else to_real.
  const Term_* u = var("u", tm.get_real_type());
  const Term_* k = var("k", tm.get_integer_type());
  EXPECT_EQ(atom(tm.make_plus(u, tm.make_number(-3)), nullptr),
            "(+ u (- 3.0))");
  EXPECT_EQ(atom(tm.make_plus(u, k), nullptr), "(+ u (to_real k))");
}

TEST_F(TermPrinterTest, FloatsPrintExactlyInEveryFormat) {
  const Term_* rne = tm.make_fp_rounding_mode(RoundingMode::NearestEven);
  TermList values = {
      tm.make_fp_bits_number(QNumber(0), 8, 23),
      tm.make_fp_bits_number(BVNumber::pow2(31), 8, 23),
      tm.make_fp_plus_inf(8, 23),
      tm.make_fp_minus_inf(11, 52),
      tm.make_fp_nan(5, 10),
      tm.make_fp_bits_number(QNumber(0x7fc00001), 8, 23),  // another NaN
      tm.make_fp_bits_number(QNumber(1), 11, 52),          // subnormal
      tm.make_fp_rat_number(QNumber(-7, 3), 8, 23, rne),
      tm.make_fp_rat_number(QNumber(1, 10), 15, 112, rne),
  };
  for (int format = 0; format < 3; ++format) {
    cfg.fp_number_format = format;
    for (const Term_* v : values) {
      SmtLib2Parser p(&tm);
      std::istringstream in(atom(v, &cfg));
      EXPECT_EQ(p.parse_term(in), v) << format << ": " << atom(v, &cfg);
    }
  }
  cfg.fp_number_format = 1;
  EXPECT_EQ(atom(values[2], &cfg), "(_ +oo 8 24)");
  EXPECT_EQ(atom(values[7], &cfg),
            "(fp #b1 #b10000000 #b00101010101010101010101)");
  cfg.fp_number_format = 2;
  EXPECT_EQ(atom(values[1], &cfg), "(_ -zero 8 24)");
  EXPECT_EQ(atom(tm.make_fp_rat_number(QNumber(-3, 4), 8, 23, rne), &cfg),
            "((_ to_fp 8 24) RNE (- 0.75))");
}

TEST_F(TermPrinterTest, EveryTheoryRoundTrips) {
  TermList ts = read(R"(
    (declare-sort U 0) (declare-sort Set 1) (declare-enum-sort Color (red green))
    (declare-fun p () Bool) (declare-fun |odd name| (Int Real) Int)
    (declare-fun x () Int) (declare-fun r () Real) (declare-fun u () U)
    (declare-fun s () (Set U)) (declare-fun t () (Set U)) (declare-fun c () Color)
    (declare-fun a () (_ BitVec 8)) (declare-fun m () (Array Int (_ BitVec 8)))
    (declare-fun f () Float32) (declare-fun g () Float64)
    (declare-fun rm () RoundingMode)
    (assert (and p (=> p (not p)) (xor p p) (ite p (< x 2) (= x 3))))
    (assert (= (|odd name| x 1.5) (div x 3) (mod x (- 5)) (abs x)))
    (assert (< (+ r (* 2 r) (- r) (/ r 3)) (to_real (to_int r)) 0.25 (- 0.5)))
    (assert (and (is_int r) ((_ divisible 7) x) (distinct x 1 2)))
    (assert (and (= u u) (= s t) (= c (as red Color)) (= c green)))
    (assert (= (exp (sin (log (asin (pow r pi))))) r))
    (assert (bvult (bvadd a #x01) (bvmul (bvudiv a a) (bvurem a a)
                   (bvsdiv a a) (bvsrem a a) (bvsmod a a))))
    (assert (bvsle (concat ((_ extract 3 0) a) ((_ extract 7 4) a))
                   ((_ rotate_left 3) ((_ rotate_right 2) (bvnot (bvneg a))))))
    (assert (= ((_ zero_extend 4) a) ((_ sign_extend 4) (bvor a (bvand a
               (bvxor a (bvshl a (bvlshr a (bvashr a #b00000011)))))))))
    (assert (= (bvcomp a a) ((_ extract 0 0) ((_ repeat 2) (bvsub a (_ bv3 8))))))
    (assert (= ((_ extract 0 0) ((_ to_bv 8) (+ (ubv_to_int a) (sbv_to_int a))))
               (bvredor a) (bvredand a)))
    (assert (= (select (store m x a) 0) (select ((as const (Array Int
               (_ BitVec 8))) #xff) x)))
    (assert (fp.leq (fp.add rm f f) (fp.sub RTZ f f) (fp.mul RTP f f)
                    (fp.div RTN f f) (fp.sqrt rm f) (fp.roundToIntegral rm f)
                    (fp.min f f) (fp.max f (fp.neg (fp.abs f)))))
    (assert (and (fp.isNaN f) (fp.isInfinite f) (fp.isZero f) (fp.isNormal f)
                 (fp.isSubnormal f) (fp.isPositive f) (fp.isNegative f)
                 (fp.eq f f) (fp.lt f ((_ to_fp 8 24) rm g))))
    (assert (= ((_ to_fp 11 53) rm a) ((_ to_fp_unsigned 11 53) rm a)
               ((_ to_fp 11 53) ((_ zero_extend 56) a)) g
               ((_ to_fp 11 53) RNE 0.1) (fp #b0 #b00000000001 ((_ extract 51 0)
               ((_ zero_extend 44) a)))))
    (assert (= ((_ fp.to_sbv 8) rm f) ((_ fp.to_ubv 8) rm f)
               ((_ extract 7 0) (fp.as_ieee_bv f))))
  )");
  ASSERT_EQ(ts.size(), 16u);
  expect_round_trip(ts);
  cfg.bv_number_format = 2;
  cfg.fp_number_format = 2;
  expect_round_trip(ts);
}

TEST_F(TermPrinterTest, QuantifiedFormulasPrintInBothForms) {
  TermList ts = read(
      "(declare-fun q (Int) Bool)"
      "(assert (forall ((v Int) (w Int)) (or (q (+ v w)) (not (q (+ v w))) "
      "(exists ((z Int)) (q z)))))");
  ASSERT_EQ(ts.size(), 1u);
  // Reading makes fresh bound variables: the same formula up to their
  // names comes back.
  for (bool defines : {false, true}) {
    std::string text = script(ts, defines);
    TermList back = read(text);
    ASSERT_EQ(back.size(), 1u) << text;
    const Term_* f = back[0];
    ASSERT_TRUE(tm.is_forall(f->get_symbol())) << text;
    ASSERT_TRUE(tm.is_forall(f->get_child(1)->get_symbol())) << text;
    EXPECT_EQ(f->get_child(0)->get_type(), tm.get_integer_type());
  }
  // Shared subterms with free variables are functions of them.
  EXPECT_NE(script(ts, true).find("((v Int) (w Int)) Int (+ v w))"),
            std::string::npos);
  EXPECT_EQ(script(ts, false).find("define-fun"), std::string::npos);
}

TEST_F(TermPrinterTest, AnnotationsAndTrailers) {
  TermList ts = read(
      "(declare-fun p () Bool) (declare-fun q () Bool)"
      "(assert (and p q)) (assert p)");
  TermAnnotations notes;
  notes[ts[1]].push_back({":named", "pee"});
  SmtLib2TermPrinter printer(&tm, &cfg, false, &notes);
  std::ostringstream out;
  printer.print_terms(out, ts, {":named |both of them|", ""});
  SmtLib2Parser back(&tm);
  std::istringstream in(out.str());
  EXPECT_EQ(back.parse_list(in), ts) << out.str();
  // p is named where it first occurs, inside the first assertion.
  ASSERT_EQ(back.get_named_terms().size(), 2u) << out.str();
  EXPECT_EQ(back.get_named_terms()[0].name, "pee");
  EXPECT_EQ(back.get_named_terms()[0].term, ts[1]);
  EXPECT_EQ(back.get_named_terms()[1].name, "both of them");
  EXPECT_EQ(back.get_named_terms()[1].term, ts[0]);
  std::ostringstream bad;
  EXPECT_THROW(printer.print_terms(bad, {tm.make_number(1)}),
               TermPrinter::error);
}

TEST_F(TermPrinterTest, DeepTermsPrintWithoutRecursion) {
  const Term_* t = var("deep", tm.get_bool_type());
  for (int k = 0; k < 100000; ++k) {
    t = tm.make_not(t);
  }
  std::string text = script({t}, false);
  EXPECT_EQ(read(text), (TermList{t}));
  std::string value = atom(t, nullptr);
  EXPECT_EQ(value.size(), 100000 * 6 + 4);
}

}  // namespace
}  // namespace zenlo
