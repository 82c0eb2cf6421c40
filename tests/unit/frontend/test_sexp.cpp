// S-expressions: reading and printing, annotations, hash-consing, list and
// association functions, matching, and long or deep trees freed and walked
// without recursion.
#include <gtest/gtest.h>

#include <string>

#include "frontend/sexp.h"

namespace zenlo {
namespace {

class SexpTest : public ::testing::Test {
 protected:
  Sexp read(const std::string& text, bool shared = false) {
    return sexp::from_string(m, text, shared);
  }

  std::string str(const Sexp& s) { return sexp::to_string(m, s); }

  SexpManager m;
};

TEST_F(SexpTest, ReadsAndPrintsListsPairsAndAtoms) {
  EXPECT_EQ(str(read("(a (b c) () |x y| \"s t\" . d)")),
            "(a (b c) nil |x y| \"s t\" . d)");
  EXPECT_EQ(str(read("  ; nothing\n")), "nil");
  EXPECT_EQ(str(read("(a . (b . nil))")), "(a b)");
  EXPECT_EQ(str(read("sym")), "sym");
  for (const char* bad : {"(a",
                          ")",
                          "(a . )",
                          "(. a)",
                          "(a . b c)",
                          "a b",
                          "|open",
                          "(! a :k)"}) {
    EXPECT_THROW(read(bad), SexpParser::error) << bad;
  }
}

TEST_F(SexpTest, AnnotationsAndHashConsing) {
  Sexp s = read("(! (f x) :pos 1 :tag (a b))");
  EXPECT_EQ(str(s), "(f x)");
  Sexp key = m.make_symbol(":tag");
  ASSERT_TRUE(s->has_annotation(key));
  EXPECT_EQ(str(s->get_annotation(key)), "(a b)");
  s->add_annotation(key, m.make_symbol("c"));
  EXPECT_EQ(str(s->get_annotation(key)), "c");
  s->del_annotation(m.make_symbol(":pos"));
  EXPECT_FALSE(s->has_annotation(m.make_symbol(":pos")));
  Sexp c = sexp::copy(m, s);
  EXPECT_NE(c, s);
  EXPECT_EQ(sexp::cmp(m, c, s), 0);
  EXPECT_TRUE(c->has_annotation(key));
  s->clear_annotations();
  EXPECT_FALSE(s->has_annotation(key));
  // Hash-consed reading shares equal subtrees.
  Sexp h = read("((a b) (a b))", true);
  EXPECT_EQ(sexp::list_nth(m, h, 0), sexp::list_nth(m, h, 1));
  EXPECT_EQ(read("(a b)", true), sexp::list_nth(m, h, 0));
  EXPECT_NE(read("(a b)"), read("(a b)"));
}

TEST_F(SexpTest, ListAndAssociationFunctions) {
  Sexp l = read("(a b c)");
  EXPECT_TRUE(sexp::is_list(m, l));
  EXPECT_FALSE(sexp::is_list(m, read("(a . b)")));
  EXPECT_EQ(sexp::list_length(m, l), 3u);
  EXPECT_EQ(str(sexp::list_nth(m, l, 2)), "c");
  EXPECT_EQ(str(sexp::list_push(m, l, m.make_symbol("z"))), "(z a b c)");
  EXPECT_EQ(str(sexp::list_pop(m, l)), "(b c)");
  EXPECT_EQ(str(sexp::list_reverse(m, l)), "(c b a)");
  EXPECT_EQ(str(sexp::list_append(m, l, read("(d)"))), "(a b c d)");
  EXPECT_EQ(str(sexp::list_revappend(m, l, read("(d)"))), "(c b a d)");
  EXPECT_LT(sexp::cmp(m, read("(a b)"), read("(a c)")), 0);
  EXPECT_LT(sexp::cmp(m, read("z"), read("(a)")), 0);
  Sexp al = read("((x . 1) (y . 2))");
  EXPECT_TRUE(sexp::is_assoc(m, al));
  EXPECT_EQ(str(sexp::find_assoc(m, al, m.make_symbol("y"))), "2");
  EXPECT_TRUE(sexp::find_assoc(m, al, m.make_symbol("w")).is_null());
  al = sexp::add_assoc(m, al, m.make_symbol("w"), m.make_symbol("3"));
  al = sexp::del_assoc(m, al, m.make_symbol("x"));
  EXPECT_EQ(str(al), "((w . 3) (y . 2))");
}

TEST_F(SexpTest, MatchingBindsVariablesConsistently) {
  SexpMatcher matcher(m, {m.make_symbol("?x")});
  matcher.add_var(m.make_symbol("?y"));
  EXPECT_TRUE(
      matcher.match(read("(f ?x (g ?y ?x))"), read("(f (h 1) (g 2 (h 1)))")));
  EXPECT_EQ(str(matcher.get(m.make_symbol("?x"))), "(h 1)");
  EXPECT_EQ(str(matcher.get(m.make_symbol("?y"))), "2");
  SexpMatcher other(m, {m.make_symbol("?x")});
  EXPECT_FALSE(other.match(read("(f ?x ?x)"), read("(f 1 2)")));
  EXPECT_TRUE(other.get(m.make_symbol("?x")).is_null());
  other.put(m.make_symbol("?x"), m.make_symbol("1"));
  EXPECT_TRUE(other.match(read("(f ?x)"), read("(f 1)")));
  other.erase(m.make_symbol("?x"));
  EXPECT_TRUE(other.get(m.make_symbol("?x")).is_null());
}

TEST_F(SexpTest, LongAndDeepTreesCostNoStack) {
  std::string text = "(";
  for (int k = 0; k < 200000; ++k) {
    text += "a ";
  }
  text += ")";
  Sexp l = read(text);
  EXPECT_EQ(sexp::list_length(m, l), 200000u);
  std::string deep = std::string(200000, '(') + std::string(200000, ')');
  Sexp d = read(deep);
  EXPECT_EQ(sexp::cmp(m, d, sexp::copy(m, d)), 0);
  EXPECT_EQ(str(d).size(), 2 * 199999u + 3);  // the innermost () is nil
  l = Sexp();  // frees half a million nodes iteratively
  d = Sexp();
}

}  // namespace
}  // namespace zenlo
