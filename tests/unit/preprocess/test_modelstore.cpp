// The model store, through the environment that fills it: values of terms
// the search never met, function tables that agree with evaluation,
// abstract values of uninterpreted sorts, and models that a handle keeps
// across later checks.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "base/configuration.h"
#include "env/environment.h"
#include "preprocess/modelstore.h"
#include "terms/termmanager.h"

namespace zenlo {
namespace {

class ModelStoreTest : public ::testing::Test {
 protected:
  ModelStoreTest() : env(make_config()), tm(env.get_term_manager()) {
    u = tm.get_simple_type("U");
  }

  static Configuration make_config() {
    Configuration c;
    c.model_generation = true;
    return c;
  }

  const Term_* constant(const std::string& name, const Type* t) {
    return tm.make_constant(tm.make_symbol(name, t));
  }

  const Term_* app(const Symbol* f, const Term_* a) {
    return tm.make_uninterpreted_function(f, {a});
  }

  Environment env;
  TermManager& tm;
  const Type* u = nullptr;
};

TEST_F(ModelStoreTest, AssertedFormulasAndUnseenTermsEvaluate) {
  const Term_* a = constant("a", u);
  const Term_* b = constant("b", u);
  const Term_* c = constant("c", u);
  const Symbol* f = tm.make_symbol("f", tm.get_function_type({u}, u));
  env.assert_formula(tm.make_equal(app(f, a), b));
  env.assert_formula(tm.make_not(tm.make_equal(a, b)));
  ASSERT_EQ(env.check(), 1);
  EXPECT_EQ(env.get_model_value(tm.make_equal(app(f, a), b)), tm.make_true());
  EXPECT_EQ(env.get_model_value(tm.make_equal(a, b)), tm.make_false());
  // c and f(c) were never asserted: they still get values, and f's table
  // answers for f(c) as it answers for every point it does not list.
  const Term_* vc = env.get_model_value(c);
  ASSERT_NE(vc, nullptr);
  const Term_* vfc = env.get_model_value(app(f, c));
  ASSERT_NE(vfc, nullptr);
  EXPECT_EQ(env.get_model_value(app(f, c)), vfc) << "asked twice, same value";
  ModelStore* m = env.get_model(true);
  ASSERT_NE(m, nullptr);
  EXPECT_TRUE(m->is_good_model_value(vc));
  EXPECT_TRUE(m->debug_check().empty());
  ModelStore::release(m);
}

TEST_F(ModelStoreTest, AbstractValuesAreDistinctPerClass) {
  const Term_* x = constant("x", u);
  const Term_* y = constant("y", u);
  const Term_* z = constant("z", u);
  env.assert_formula(tm.make_not(tm.make_equal(x, y)));
  env.assert_formula(tm.make_not(tm.make_equal(y, z)));
  env.assert_formula(tm.make_equal(x, z));
  ASSERT_EQ(env.check(), 1);
  const Term_* vx = env.get_model_value(x);
  const Term_* vy = env.get_model_value(y);
  EXPECT_EQ(env.get_model_value(z), vx);
  EXPECT_NE(vx, vy);
  EXPECT_EQ(vx->get_symbol()->get_name()[0], '@');
  EXPECT_EQ(vy->get_symbol()->get_name()[0], '@');
}

TEST_F(ModelStoreTest, BooleanArgumentsOfFunctionsTakeTheirFormulasValues) {
  tm.set_forbid_bool_args(false);
  const Type* boolean = tm.get_bool_type();
  const Term_* p = constant("p", boolean);
  const Term_* q = constant("q", boolean);
  const Symbol* g = tm.make_symbol("g", tm.get_function_type({boolean}, u));
  const Term_* gp = app(g, p);
  const Term_* gq = app(g, q);
  env.assert_formula(p);
  env.assert_formula(tm.make_not(q));
  env.assert_formula(tm.make_not(tm.make_equal(gp, gq)));
  ASSERT_EQ(env.check(), 1);
  EXPECT_EQ(env.get_model_value(app(g, tm.make_true())),
            env.get_model_value(gp));
  EXPECT_EQ(env.get_model_value(app(g, tm.make_and(p, tm.make_not(q)))),
            env.get_model_value(gp));
  EXPECT_NE(env.get_model_value(gp), env.get_model_value(gq));
}

TEST_F(ModelStoreTest, AHandleKeepsItsModelAcrossLaterChecks) {
  const Term_* a = constant("a", u);
  const Term_* b = constant("b", u);
  env.push_backtrack_point();
  env.assert_formula(tm.make_equal(a, b));
  ASSERT_EQ(env.check(), 1);
  ModelStore* kept = env.get_model(true);
  ASSERT_NE(kept, nullptr);
  const Term_* before = kept->get_value(tm.make_equal(a, b));
  env.pop_backtrack_point();
  env.assert_formula(tm.make_not(tm.make_equal(a, b)));
  ASSERT_EQ(env.check(), 1);
  EXPECT_EQ(kept->get_value(tm.make_equal(a, b)), before);
  EXPECT_EQ(before, tm.make_true());
  EXPECT_EQ(env.get_model_value(tm.make_equal(a, b)), tm.make_false());
  ModelStore::release(kept);
}

}  // namespace
}  // namespace zenlo
