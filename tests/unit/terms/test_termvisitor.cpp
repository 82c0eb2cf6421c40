// Whole-term operations: the visitor, substitution, copying between stores,
// free variables, and every walk on terms a million levels deep.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "terms/termmanager.h"
#include "terms/termvisitor.h"

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

// Records the walk as "+name" (preorder) and "-name" (postorder).
class Recorder : public TermVisitorCallback {
 public:
  VisitResult visit(const Term_* t, bool preorder) override {
    const std::string& name = t->get_symbol()->get_name();
    trace.push_back((preorder ? "+" : "-") + name);
    if (preorder && name == stop_at) {
      return VisitResult::Abort;
    }
    if (preorder && name == skip_at) {
      return VisitResult::Skip;
    }
    return VisitResult::Process;
  }

  std::vector<std::string> trace;
  std::string stop_at;
  std::string skip_at;
};

class TermWalkTest : public ::testing::Test {
 protected:
  const Term_* var(const char* name, const Type* t) {
    return tm.make_constant(tm.make_symbol(name, t));
  }

  TermManager tm;
  const Type* b = tm.get_bool_type();
  const Type* i = tm.get_integer_type();
  const Type* r = tm.get_real_type();
};

TEST_F(TermWalkTest, VisitsChildrenBeforeParentsAndSharedTermsOnce) {
  const Term_* x = var("x", i);
  const Term_* y = var("y", i);
  const Term_* t = tm.make_plus(tm.make_plus(x, y), x);
  Recorder rec;
  TermVisitor<Recorder> v(tm, rec);
  EXPECT_TRUE(v.visit(t));
  // The last child is walked first; x is walked once.
  EXPECT_EQ(rec.trace,
            std::vector<std::string>({"+`+_int`",
                                      "+x",
                                      "-x",
                                      "+`+_int`",
                                      "+y",
                                      "-y",
                                      "-`+_int`",
                                      "-`+_int`"}));
  Recorder all;
  TermVisitor<Recorder> uncached(tm, all, false);
  uncached.visit(t);
  EXPECT_EQ(all.trace.size(), 10u);  // x walked twice
}

TEST_F(TermWalkTest, AbortAndSkipLeaveNoMarksBehind) {
  const Term_* x = var("x", i);
  const Term_* fx = tm.make_floor(tm.make_plus(x, x));
  Recorder rec;
  rec.stop_at = "`+_int`";
  {
    TermVisitor<Recorder> v(tm, rec);
    EXPECT_FALSE(v.visit(fx));
  }
  Recorder again;
  again.skip_at = "`+_int`";
  TermVisitor<Recorder> v(tm, again);
  EXPECT_TRUE(v.visit(fx));
  EXPECT_EQ(again.trace,
            std::vector<std::string>(
                {"+`floor`", "+`+_int`", "-`+_int`", "-`floor`"}));
}

TEST_F(TermWalkTest, SubstitutesAllAtOnceThroughMakeTerm) {
  const Term_* x = var("x", i);
  const Term_* y = var("y", i);
  const Term_* t = tm.make_leq(tm.make_plus(x, y), x);
  const Term_* swapped = tm.substitute(t, TermList{x, y}, TermList{y, x});
  EXPECT_EQ(swapped, tm.make_leq(tm.make_plus(y, x), y));
  TermMap map;
  tm.substitute(t, TermList{x}, TermList{tm.make_number(2)}, map);
  EXPECT_EQ(map.size(), 1u);
  EXPECT_EQ(error_of([&] { tm.substitute(t, TermList{x}, TermList{}); }),
            "Incompatible arguments to substitute");
  const Term_* z = var("z", r);
  EXPECT_EQ(error_of([&] { tm.substitute(t, TermList{x}, TermList{z}); }),
            "substitution between terms of incompatible types");
  // Unchecked, an Int may become a Real; checking comes back afterwards.
  const Term_* u = tm.substitute(t, TermList{x}, TermList{z}, false);
  EXPECT_EQ(u->get_child(1), z);
  EXPECT_TRUE(tm.typechecking_enabled());
  // A key is replaced whole, not descended into.
  const Term_* sum = t->get_child(0);
  EXPECT_EQ(tm.substitute(t, TermList{sum, x}, TermList{y, y}),
            tm.make_leq(y, y));
}

TEST_F(TermWalkTest, ExistentialQuantificationBindsFirstVariableOutermost) {
  const Term_* x = var("x", i);
  const Term_* y = var("y", i);
  const Term_* body = tm.make_leq(x, y);
  EXPECT_EQ(tm.existentially_quantify(body, {}), body);
  const Term_* q = tm.existentially_quantify(body, {x, y});
  ASSERT_TRUE(tm.is_exists(q->get_symbol()));
  EXPECT_EQ(q->get_child(0)->get_symbol()->get_name(), "'x");
  const Term_* inner = q->get_child(1);
  EXPECT_EQ(inner->get_child(0)->get_symbol()->get_name(), "'y");
  EXPECT_EQ(inner->get_child(1),
            tm.make_leq(q->get_child(0), inner->get_child(0)));
  FreeVariableMap fv = tm.get_free_variable_map(q);
  EXPECT_TRUE(fv.get(q).empty());
  EXPECT_EQ(fv.get(inner), TermList{q->get_child(0)});
  EXPECT_TRUE(fv.is_free_in(q->get_child(0), inner->get_child(1)));
  EXPECT_EQ(fv.get(inner->get_child(1)).size(), 2u);
}

TEST_F(TermWalkTest, CopiesTermsOfEveryTheoryBetweenStores) {
  const Type* bv8 = tm.get_bv_type(8);
  const Type* f32 = tm.get_fp_type(8, 23);
  const Type* color = tm.get_enum_type("Color", {"red", "green"});
  const Term_* u = var("u", bv8);
  const Term_* a = var("a", f32);
  const Term_* m = var("m", tm.get_array_type(i, r));
  const Term_* rm = tm.make_fp_rounding_mode(RoundingMode::PlusInf);
  const Term_* v = tm.make_fresh_variable(i);
  TermList parts = {
      tm.make_bv_ult(tm.make_bv_add(u, tm.make_bv_number(3, 8)),
                     tm.make_bv_extract(7, 0, tm.make_bv_zext(4, u))),
      tm.make_fp_lt(tm.make_fp_add(rm, a, tm.make_fp_nan(8, 23)), a),
      tm.make_equal(tm.make_array_read(m, tm.make_number(1)),
                    tm.make_number(QNumber(1, 3))),
      tm.make_equal(var("c", color), tm.make_constant(tm.find_symbol("green"))),
      tm.make_forall(v, tm.make_int_modular_congruence(5, v, var("k", i))),
  };
  const Term_* t = parts[0];
  for (size_t k = 1; k < parts.size(); ++k) {
    t = tm.make_and(t, parts[k]);
  }
  TermManager other;
  const Term_* c = other.copy_term(tm, t);
  EXPECT_EQ(c->to_str(), t->to_str());
  EXPECT_EQ(tm.copy_term(other, c), t);
  EXPECT_EQ(tm.copy_term(tm, t), t);
  size_t w = 0;
  const Term_* cu =
      c->get_child(0)->get_child(0)->get_child(0)->get_child(0)->get_child(0);
  EXPECT_TRUE(other.is_bv_add(cu->get_symbol(), &w));
  EXPECT_EQ(w, 8u);
  EXPECT_TRUE(other.is_enum_type(other.get_simple_type("Color", true)));
  TermMap seed;
  seed.insert(u, u);
  EXPECT_EQ(tm.copy_term_with_subst(tm, u, seed), u);
}

// ----------------------------------------------------------------------
// A million levels through every walk
// ----------------------------------------------------------------------

class Counter : public TermVisitorCallback {
 public:
  VisitResult visit(const Term_*, bool preorder) override {
    count += preorder ? 1 : 0;
    return VisitResult::Process;
  }

  size_t count = 0;
};

constexpr int kDepth = 1000000;

TEST(DeepTerms, MillionNestedNotsThroughEveryWalk) {
  auto tm = std::make_unique<TermManager>();
  const Term_* p = tm->make_constant(tm->make_symbol("p", tm->get_bool_type()));
  const Term_* t = p;
  for (int k = 0; k < kDepth; ++k) {
    t = tm->make_not(t);
  }
  Counter c;
  TermVisitor<Counter>(*tm, c).visit(t);
  EXPECT_EQ(c.count, static_cast<size_t>(kDepth) + 1);
  const Term_* q = tm->make_constant(tm->make_symbol("q", tm->get_bool_type()));
  const Term_* s = tm->substitute(t, TermList{p}, TermList{q});
  EXPECT_EQ(s->get_child(0)->get_child(0)->get_arity(), 1u);
  std::string text = s->to_str();
  EXPECT_EQ(text.size(), kDepth * std::string("(`not` )").size() + 1);
  TermManager other;
  const Term_* copy = other.copy_term(*tm, s);
  EXPECT_EQ(copy->get_id(), static_cast<uint64_t>(kDepth) + 3);
  FreeVariableMap fv = tm->get_free_variable_map(t);
  EXPECT_EQ(fv.size(), static_cast<size_t>(kDepth) + 1);
  tm->gc({s}, {}, {});
  EXPECT_EQ(tm->num_terms(), static_cast<size_t>(kDepth) + 3);
  tm->gc({}, {}, {});
  EXPECT_EQ(tm->num_terms(), 2u);
  tm.reset();
}

TEST(DeepTerms, MillionNestedSumsBuildAndDie) {
  auto tm = std::make_unique<TermManager>();
  const Term_* x = tm->make_constant(tm->make_symbol("x", tm->get_real_type()));
  const Term_* t = x;
  for (int k = 0; k < kDepth; ++k) {
    t = tm->make_plus(t, tm->make_number(k % 7));
  }
  const Term_* y = tm->make_constant(tm->make_symbol("y", tm->get_real_type()));
  const Term_* s = tm->substitute(t, TermList{x}, TermList{y});
  EXPECT_NE(s, t);
  Counter c;
  TermVisitor<Counter>(*tm, c).visit(s);
  EXPECT_EQ(c.count, static_cast<size_t>(kDepth) + 1 + 7);
  tm.reset();  // destruction walks nothing recursively
}

}  // namespace
}  // namespace zenlo
