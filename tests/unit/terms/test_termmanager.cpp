// The term store: sharing, symbol choice, numbers, parametric families,
// the exact failure messages, and collection.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "terms/termmanager.h"

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

class TermManagerTest : public ::testing::Test {
 protected:
  const Term_* var(const char* name, const Type* t) {
    return tm.make_constant(tm.make_symbol(name, t));
  }

  const Type* bv(size_t w) { return tm.get_bv_type(w); }

  TermManager tm;
  const Type* b = tm.get_bool_type();
  const Type* r = tm.get_real_type();
  const Type* i = tm.get_integer_type();
};

TEST_F(TermManagerTest, SharesEqualTermsAndNumbersThemInOrder) {
  EXPECT_EQ(tm.make_true()->get_id(), 1u);
  EXPECT_EQ(tm.make_false()->get_id(), 2u);
  const Term_* p = var("p", b);
  const Term_* q = var("q", b);
  const Term_* pq = tm.make_and(p, q);
  EXPECT_EQ(tm.make_and(p, q), pq);
  EXPECT_EQ(tm.make_constant(tm.find_symbol("p")), p);
  // Without a simplifier the store keeps the order it is given.
  EXPECT_NE(tm.make_and(q, p), pq);
  EXPECT_LT(p->get_id(), q->get_id());
  EXPECT_LT(q->get_id(), pq->get_id());
  EXPECT_EQ(pq->get_child(0), p);
  EXPECT_EQ(pq->get_arity(), 2u);
  EXPECT_EQ(pq->to_str(), "(`and` p q)");
  EXPECT_EQ(pq->to_shallow_str(), "(`and` _ _)");
}

TEST_F(TermManagerTest, ChoosesIntSymbolsOnlyForTwoIntArguments) {
  const Term_* x = var("x", i);
  const Term_* y = var("y", i);
  const Term_* z = var("z", r);
  EXPECT_EQ(tm.make_plus(x, z)->get_symbol()->get_name(), "`+_rat`");
  EXPECT_EQ(tm.make_plus(x, z)->get_type(), r);
  EXPECT_EQ(tm.make_plus(x, y)->get_type(), i);
  EXPECT_EQ(tm.make_leq(x, y)->get_symbol()->get_name(), "`<=_int`");
  EXPECT_EQ(tm.make_times(z, x)->get_symbol()->get_name(), "`*_rat`");
  EXPECT_EQ(tm.make_equal(x, y)->get_symbol()->get_name(), "`=_int`");
  EXPECT_EQ(tm.make_equal(x, z)->get_symbol()->get_name(), "`=_rat`");
  EXPECT_EQ(tm.make_equal(z, x)->get_symbol()->get_name(), "`=_rat`");
  const Term_* p = var("p", b);
  EXPECT_EQ(tm.make_term_ite(p, x, z)->get_type(), r);
  EXPECT_EQ(tm.make_term_ite(p, x, y)->get_type(), i);
  EXPECT_EQ(tm.make_eq(p, p)->get_symbol(), tm.get_iff_symbol());
  EXPECT_EQ(tm.get_tag(tm.make_eq(x, y)->get_symbol()), SymbolTag::EQ);
  EXPECT_EQ(tm.make_floor(z)->get_type(), i);
  EXPECT_EQ(tm.make_divide(x, y)->get_type(), r);
}

TEST_F(TermManagerTest, NumbersOfOneValueAreOneTerm) {
  const Term_* three = tm.make_number(3);
  EXPECT_EQ(tm.make_number(QNumber(6, 2)), three);
  EXPECT_EQ(three->get_type(), i);
  EXPECT_EQ(three->to_str(), "3");
  const Term_* q = tm.make_number(QNumber(3, 4));
  EXPECT_EQ(q->get_type(), r);
  EXPECT_EQ(q->to_str(), "3/4");
  QNumber v;
  ASSERT_TRUE(tm.is_number(q->get_symbol(), &v));
  EXPECT_EQ(v, QNumber(3, 4));
  EXPECT_TRUE(tm.is_interpreted(three->get_symbol()));
  EXPECT_FALSE(tm.is_constant(three->get_symbol()));
  const Term_* n = tm.make_bv_number(5, 8);
  EXPECT_EQ(tm.make_bv_number("101", 8, 2), n);
  EXPECT_EQ(tm.make_bv_number("05", 8, 16), n);
  EXPECT_EQ(n->to_str(), "5_8");
  EXPECT_NE(tm.make_bv_number(5, 16), n);
  EXPECT_EQ(tm.get_number_value(n), QNumber(5));
}

TEST_F(TermManagerTest, NumberNameTakenByAnotherTypeFails) {
  tm.make_symbol("3", b);
  EXPECT_EQ(error_of([&] { tm.make_number(3); }),
            "a symbol for 3 already exists, but it has the wrong type: Bool");
}

TEST_F(TermManagerTest, BitVectorNumbersAreCheckedOrWrapped) {
  EXPECT_EQ(error_of([&] { tm.make_bv_number(256, 8); }),
            "the number 256 doesn't fit in 8 bits");
  EXPECT_EQ(error_of([&] { tm.make_bv_number(-1, 8); }),
            "can't make a bv number from a negative number: -1");
  EXPECT_EQ(error_of([&] { tm.make_bv_number(QNumber(1, 2), 8); }),
            "can't make a bv number from a fractional number: 1/2");
  EXPECT_EQ(error_of([&] { tm.make_fp_bits_number(-3, 8, 23); }),
            "can't make a FP number from a negative number: -3");
  tm.enable_typechecking(false);
  EXPECT_EQ(tm.make_bv_number(-1, 8), tm.make_bv_number(255, 8));
  EXPECT_EQ(tm.make_bv_number(257, 8), tm.make_bv_number(1, 8));
}

TEST_F(TermManagerTest, FloatNumbersGoThroughTheirBits) {
  const Term_* rne = tm.make_fp_rounding_mode(RoundingMode::NearestEven);
  const Term_* one = tm.make_fp_rat_number(1, 8, 23, rne);
  EXPECT_EQ(one->to_str(), "1065353216_8_23");  // 0x3f800000
  EXPECT_EQ(tm.make_fp_bits_number(1065353216, 8, 23), one);
  EXPECT_EQ(tm.make_fp_plus_inf(8, 23)->to_str(), "2139095040_8_23");
  EXPECT_EQ(tm.make_fp_minus_inf(8, 23)->to_str(), "4286578688_8_23");
  EXPECT_EQ(tm.make_fp_nan(8, 23)->to_str(), "2143289344_8_23");
  EXPECT_EQ(tm.make_fp_nan(8, 23), tm.make_fp_nan(8, 23));
  EXPECT_EQ(error_of([&] { tm.make_fp_rat_number(1, 8, 23, one); }),
            "unsupported rounding mode: 1065353216_8_23");
}

TEST_F(TermManagerTest, ParametricSymbolsAreMemoisedWithTheirParameters) {
  const Term_* x = var("x", bv(8));
  const Term_* y = var("y", bv(8));
  const Term_* s = tm.make_bv_add(x, y);
  EXPECT_EQ(s->get_symbol(), tm.make_bv_add_symbol(8));
  EXPECT_EQ(s->get_symbol()->get_name(), "`bvadd_8`");
  size_t w = 0;
  EXPECT_TRUE(tm.is_bv_add(s->get_symbol(), &w));
  EXPECT_EQ(w, 8u);
  EXPECT_FALSE(tm.is_bv_sub(s->get_symbol(), &w));
  const Term_* e = tm.make_bv_extract(5, 2, x);
  size_t msb = 0, lsb = 0;
  ASSERT_TRUE(tm.is_bv_extract(e->get_symbol(), &msb, &lsb, &w));
  EXPECT_EQ(msb * 100 + lsb * 10 + w, 528u);
  EXPECT_EQ(e->get_symbol()->get_name(), "`bvextract_5_2_8`");
  EXPECT_TRUE(tm.is_bv_type(e->get_type(), &w));
  EXPECT_EQ(w, 4u);
  EXPECT_EQ(tm.make_bv_concat(x, e)->get_type(), bv(12));
  EXPECT_EQ(tm.make_bv_zext(4, x)->get_type(), bv(12));
  EXPECT_EQ(tm.make_bv_ult(x, y)->get_type(), b);
  EXPECT_EQ(tm.make_bv_comp(x, y)->get_type(), bv(1));
  // Width 1: the whole range is legal.
  const Term_* bit = var("bit", bv(1));
  EXPECT_EQ(tm.make_bv_extract(0, 0, bit)->get_type(), bv(1));
  const Term_* n = tm.make_int_modular_congruence(7, var("k", i), var("l", i));
  QNumber mod;
  ASSERT_TRUE(tm.is_int_mod_congr(n->get_symbol(), &mod));
  EXPECT_EQ(mod, QNumber(7));
}

TEST_F(TermManagerTest, FloatAndArrayFamilies) {
  const Type* f = tm.get_fp_type(8, 23);
  const Term_* a = var("a", f);
  const Term_* rm = tm.make_fp_rounding_mode(RoundingMode::Zero);
  const Term_* c = tm.make_fp_cast(11, 52, rm, a);
  size_t e1 = 0, m1 = 0, e2 = 0, m2 = 0;
  ASSERT_TRUE(tm.is_fp_cast(c->get_symbol(), &e1, &m1, &e2, &m2));
  EXPECT_EQ(std::vector<size_t>({e1, m1, e2, m2}),
            std::vector<size_t>({8, 23, 11, 52}));
  EXPECT_EQ(c->get_symbol()->get_name(), "`fpcast_8_23_11_52`");
  EXPECT_EQ(tm.make_fp_as_ieeebv(a)->get_type(), bv(32));
  EXPECT_EQ(tm.make_fp_as_ieeebv(a)->get_symbol()->get_name(),
            "`fpasbv_8_23_32`");
  EXPECT_EQ(tm.make_fp_from_ieeebv(8, 23, var("w", bv(32)))->get_type(), f);
  EXPECT_EQ(tm.make_fp_to_sbv(16, rm, a)->get_type(), bv(16));
  EXPECT_EQ(tm.make_fp_add(rm, a, a)->get_type(), f);
  EXPECT_EQ(tm.make_fp_isnan(a)->get_type(), b);
  const Type* arr = tm.get_array_type(i, r);
  const Term_* m = var("m", arr);
  const Term_* rd = tm.make_array_read(m, tm.make_number(1));
  EXPECT_EQ(rd->get_symbol()->get_name(), "`read_int_rat`");
  EXPECT_EQ(rd->get_type(), r);
  EXPECT_EQ(tm.make_array_write(m, var("j", i), rd)->get_type(), arr);
  EXPECT_EQ(tm.make_array_const(arr, tm.make_number(0))->get_type(), arr);
  const Type* it = nullptr;
  EXPECT_TRUE(tm.is_array_read(rd->get_symbol(), &it));
  EXPECT_EQ(it, i);
}

TEST_F(TermManagerTest, TypeChecksFailWithTheirMessages) {
  const Term_* p = var("p", b);
  const Term_* x = var("x", i);
  const Term_* u = var("u", bv(8));
  const Term_* v = var("v", bv(4));
  EXPECT_EQ(error_of([&] { tm.make_and(p, x); }),
            "type error. term x has type Int, but Bool was expected. "
            "(make_and)");
  EXPECT_EQ(error_of([&] { tm.make_bv_and(u, v); }),
            "type error. term v has type <BitVec, 4, >, but <BitVec, 8, > "
            "was expected. (make_bv_and)");
  EXPECT_EQ(error_of([&] { tm.make_term(tm.get_and_symbol(), {p}); }),
            "wrong arity for symbol `and`. expected 2, got 1");
  EXPECT_EQ(error_of([&] { tm.make_term(tm.get_not_symbol(), {x}); }),
            "type error. term x has type Int, but Bool was expected. (`not`)");
  EXPECT_EQ(error_of([&] { tm.make_bv_add(x, u); }),
            "type error. term x is not a bit vector");
  EXPECT_EQ(error_of([&] { tm.make_bv_not(x); }),
            "type error. term x is not a bit-vector");
  EXPECT_EQ(error_of([&] { tm.make_bv_extract(2, 3, u); }),
            "bv extraction of an empty range: [2:3]");
  EXPECT_EQ(error_of([&] { tm.make_bv_extract(8, 3, u); }),
            "range too large in bv extraction. arg has width 8, but range is "
            "[8:3]");
  EXPECT_EQ(error_of([&] { tm.make_fp_neg(u); }),
            "type error. term u is not a FP");
  EXPECT_EQ(error_of([&] { tm.make_int_from_ubv(x); }),
            "type error. term x is not a BV");
  EXPECT_EQ(error_of([&] { tm.make_fp_from_ieeebv(8, 23, u); }),
            "type error. term u is not of the correct BV type");
  EXPECT_EQ(error_of([&] { tm.make_array_read(x, x); }),
            "type error. term x is not an array");
  EXPECT_EQ(error_of([&] { tm.make_array_const(i, x); }),
            "type error. type Int is not an array");
  EXPECT_EQ(error_of([&] { tm.make_forall(x, p); }),
            "type error. term x is not a variable");
  EXPECT_EQ(error_of([&] { tm.make_equal(p, p); }),
            "Equality arguments can't be Boolean");
  EXPECT_EQ(error_of([&] { tm.make_term_ite(p, p, p); }),
            "Term-ITE arguments can't be Boolean");
  EXPECT_EQ(error_of([&] { tm.get_supertype(i, b); }),
            "unrelated types: Int and Bool");
  EXPECT_EQ(tm.get_supertype(i, r), r);
}

TEST_F(TermManagerTest, DeclarationsFailWithTheirMessages) {
  EXPECT_EQ(error_of([&] { tm.make_symbol("", b); }), "Empty name for symbol");
  EXPECT_EQ(error_of([&] { tm.make_symbol("`x", b); }),
            "Symbols can't start with the \"`\" character");
  EXPECT_EQ(error_of([&] { tm.make_symbol("'x", b); }),
            "Symbols can't start with the \"'\" character");
  tm.make_symbol("x", i);
  EXPECT_EQ(tm.make_symbol("x", i), tm.find_symbol("x"));
  EXPECT_EQ(error_of([&] { tm.make_symbol("x", r); }),
            "A symbol with name `x' already exists, with type: Int");
  EXPECT_EQ(error_of([&] { tm.get_signature().remove_symbol("nope"); }),
            "No symbol with name `nope' is present");
  EXPECT_EQ(error_of([&] { tm.make_named_variable("1x", i); }),
            "Variable names can't start with a number");
  const Type* fn = tm.get_function_type({i}, i);
  EXPECT_EQ(error_of([&] { tm.make_fresh_variable(fn); }),
            "Higher-order variables are not supported");
  EXPECT_EQ(error_of([&] { tm.get_function_type({b}, i); }),
            "Functions with Bool arguments not supported");
  EXPECT_EQ(error_of([&] { tm.get_function_type({fn}, i); }),
            "Higher-order functions not supported");
  EXPECT_EQ(error_of([&] { tm.get_array_type(i, b); }),
            "Arrays with Bool as argument are not supported");
  EXPECT_EQ(error_of([&] { tm.get_array_type(fn, i); }),
            "Arrays with functions as arguments are not supported");
  EXPECT_EQ(error_of([&] { tm.get_compound_type({fn}); }),
            "Higher-order compound types not supported");
  tm.set_forbid_bool_args(false);
  EXPECT_EQ(tm.get_function_type({b}, i)->get_num_components(), 3u);
  EXPECT_EQ(tm.get_array_type(i, b)->to_str(), "<Array, Int, Bool, >");
}

TEST_F(TermManagerTest, TypeUniverseFailsWithItsMessages) {
  const Type* arr = tm.get_array_type(i, r);
  EXPECT_EQ(error_of([&] { arr->get_name(); }), "Not a simple type!");
  EXPECT_EQ(error_of([&] { i->get_component(0); }), "Int is a simple type");
  EXPECT_EQ(error_of([&] { arr->get_component(3); }),
            "<Array, Int, Real, > has not enough components");
  TypeUniverse& u = tm.get_universe();
  const Type* s = tm.get_simple_type("S");
  EXPECT_EQ(error_of([&] { u.set_subtype(u.get_application_type(), s); }),
            "the special application type can't occur in the subtype "
            "relation");
  EXPECT_EQ(error_of([&] { u.set_subtype(s, i); }),
            "Int is already a subtype of another type");
  EXPECT_EQ(error_of([&] { u.set_subtype(i, r); }), "Int is a subtype of Real");
  EXPECT_TRUE(tm.is_subtype(tm.get_array_type(i, i), arr));
  EXPECT_FALSE(tm.is_subtype(arr, tm.get_array_type(i, i)));
}

TEST_F(TermManagerTest, FloatWidthsUnderTwoNeedTypeCheckingOff) {
  EXPECT_EQ(error_of([&] { tm.get_fp_type(1, 5); }),
            "too small exponent and/or mantissa width for FP numbers: 1, 5 "
            "(min is 2, 2)");
  tm.enable_typechecking(false);
  size_t e = 0, m = 0;
  EXPECT_TRUE(tm.is_fp_type(tm.get_fp_type(1, 5), &e, &m));
  EXPECT_EQ(e, 1u);
}

TEST_F(TermManagerTest, EnumTypesAndFiniteDomains) {
  const Type* c = tm.get_enum_type("Color", {"red", "green"});
  EXPECT_EQ(tm.get_enum_type("Color", {"red", "green"}), c);
  EXPECT_EQ(error_of([&] { tm.get_enum_type("Color", {"red"}); }),
            "enum type `Color' already declared, but with different domain");
  EXPECT_EQ(error_of([&] { tm.get_enum_type("Int", {"a"}); }),
            "type `Int' already declared");
  EXPECT_EQ(error_of([&] {
              tm.get_enum_type("Shade", {"blue", "red"});
            }),
            "symbol `red' already declared");
  EXPECT_EQ(tm.get_simple_type("Shade", true), nullptr);
  const Symbol* red = tm.find_symbol("red");
  EXPECT_TRUE(tm.is_enum_value(red));
  EXPECT_TRUE(tm.is_interpreted(red));
  EXPECT_EQ(tm.make_constant(red)->get_type(), c);
  QNumber n;
  ASSERT_TRUE(tm.is_finite_domain_type(c, &n));
  EXPECT_EQ(n, QNumber(2));
  ASSERT_TRUE(tm.is_finite_domain_type(bv(70), &n));
  EXPECT_EQ(n, BVNumber::pow2(70));
  ASSERT_TRUE(tm.is_finite_domain_type(tm.get_fp_type(5, 10), &n));
  EXPECT_EQ(n, QNumber(65536));
  ASSERT_TRUE(tm.is_finite_domain_type(tm.get_fprounding_type(), &n));
  EXPECT_EQ(n, QNumber(4));
  EXPECT_FALSE(tm.is_finite_domain_type(i, &n));
}

TEST_F(TermManagerTest, ClassifiesSymbols) {
  const Term_* x = var("x", i);
  const Symbol* f = tm.make_symbol("f", tm.get_function_type({i}, i));
  const Term_* fx = tm.make_uninterpreted_function(f, {x});
  const Term_* v = tm.make_named_variable("x", i);
  EXPECT_TRUE(tm.is_constant(x->get_symbol()));
  EXPECT_TRUE(tm.is_uninterpreted_function(f));
  EXPECT_FALSE(tm.is_interpreted(f));
  EXPECT_EQ(fx->get_type(), i);
  EXPECT_TRUE(tm.is_variable(v->get_symbol()));
  EXPECT_EQ(v->get_symbol()->get_name(), "'x");
  EXPECT_EQ(tm.make_named_variable("x", i)->get_symbol()->get_name(), "'x_0");
  EXPECT_TRUE(tm.is_interpreted(tm.get_and_symbol()));
  EXPECT_TRUE(tm.is_interpreted(tm.make_pi()->get_symbol()));
  EXPECT_EQ(tm.get_tag(tm.get_rounding_symbol(RoundingMode::Zero)),
            SymbolTag::UNKNOWN);
  const Term_* q = tm.make_forall(v, tm.make_leq(v, x));
  EXPECT_TRUE(tm.is_forall(q->get_symbol()));
  EXPECT_EQ(SymbolTag::to_str(SymbolTag::BV_ZEXT), "SymbolTag::BV_ZEXT");
}

TEST_F(TermManagerTest, UnusedSymbolNamesSkipTakenSuffixes) {
  tm.make_symbol("n", i);
  tm.make_symbol("n_0", i);
  EXPECT_EQ(tm.get_unused_symbol_name("n"), "n_1");
  EXPECT_EQ(tm.make_unique_symbol("n", r)->get_name(), "n_1");
  EXPECT_EQ(tm.get_unused_symbol_name("free"), "free");
}

TEST_F(TermManagerTest, ShallowLiteralsStayShort) {
  const Term_* x = var("x", i);
  const Term_* p = var("p", b);
  const Term_* ite = tm.make_term_ite(p, x, x);
  EXPECT_EQ(tm.to_shallow_str_literal(tm.make_and(p, p)), "(`and` _ _)");
  EXPECT_EQ(tm.to_shallow_str_literal(ite),
            "(`ite_int`<" + std::to_string(ite->get_id()) + "> _ _ _)");
  EXPECT_EQ(tm.to_shallow_str_literal(tm.make_leq(tm.make_plus(x, x), x)),
            "(`<=_int` (`+_int` x x) x)");
  const Term_* deep = x;
  for (int k = 0; k < 12; ++k) {
    deep = tm.make_floor(deep);
  }
  std::string s = tm.to_shallow_str_literal(deep);
  EXPECT_NE(s.find("(`floor` _)"), std::string::npos);
  EXPECT_EQ(s.find(" x"), std::string::npos);
}

// ----------------------------------------------------------------------
// Collection
// ----------------------------------------------------------------------

TEST_F(TermManagerTest, CollectionKeepsTrueFalseAndRestartsIds) {
  const Term_* x = var("x", i);
  tm.make_plus(x, tm.make_number(7));
  tm.make_bv_add(var("u", bv(8)), var("v", bv(8)));
  tm.gc({}, {}, {});
  EXPECT_EQ(tm.num_terms(), 2u);
  EXPECT_EQ(tm.make_true()->get_id(), 1u);
  EXPECT_EQ(tm.make_false()->get_id(), 2u);
  const Term_* y = var("y", i);
  EXPECT_EQ(y->get_id(), 3u);
  // Memo tables forgot the dead terms and symbols; making them again works.
  EXPECT_EQ(tm.make_number(7)->to_str(), "7");
  const Term_* u = var("u", bv(8));
  EXPECT_EQ(tm.make_bv_add(u, u)->get_symbol()->get_name(), "`bvadd_8`");
}

TEST_F(TermManagerTest, CollectionKeepsWhatRootsReach) {
  const Term_* x = var("x", i);
  const Term_* sum = tm.make_plus(x, tm.make_number(7));
  const Term_* wide = tm.make_uninterpreted_function(
      tm.make_symbol("g", tm.get_function_type({i, i, i, i, i}, i)),
      {x, x, x, x, x});
  tm.make_uninterpreted_function(tm.find_symbol("g"), {sum, x, x, x, x});
  tm.gc({sum}, {}, {});
  EXPECT_EQ(tm.num_terms(), 5u);  // true, false, x, 7, sum
  EXPECT_EQ(tm.make_plus(x, tm.make_number(7)), sum);
  EXPECT_LT(tm.make_number(7)->get_id(), sum->get_id());
  (void)wide;  // an arity-5 node: freed to the heap by the collection
  EXPECT_EQ(tm.find_symbol("g"), nullptr);
}

TEST_F(TermManagerTest, DroppedSymbolsReviveUntilTheNextCollection) {
  const Symbol* x = tm.make_symbol("x", i);
  uint64_t id = x->get_id();
  tm.gc({}, {}, {});
  EXPECT_EQ(tm.find_symbol("x"), nullptr);
  EXPECT_EQ(tm.make_symbol("x", i), x);
  EXPECT_EQ(x->get_id(), id);
  const Symbol* y = tm.make_symbol("y", i);
  tm.gc({}, {}, {});
  const Symbol* y2 = tm.make_symbol("y", r);
  EXPECT_EQ(y2->get_type(), r);
  EXPECT_NE(y2, y);
  // A symbol kept as a root survives with its type.
  const Symbol* f = tm.make_symbol("f", tm.get_function_type({bv(8)}, i));
  tm.gc({}, {f}, {});
  EXPECT_EQ(tm.find_symbol("f"), f);
  EXPECT_TRUE(tm.is_bv_type(f->get_arg_type(0)));
  EXPECT_EQ(tm.get_bv_type(8), f->get_arg_type(0));
}

}  // namespace
}  // namespace zenlo
