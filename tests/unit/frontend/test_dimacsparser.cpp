#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "frontend/dimacsparser.h"
#include "terms/termmanager.h"

namespace zenlo {
namespace {

class DimacsParserTest : public ::testing::Test {
 protected:
  const Term_* parse(const std::string& text) {
    std::istringstream in(text);
    return parser.parse(in);
  }

  std::string error_of(const std::string& text) {
    try {
      parse(text);
    } catch (const ParserInterface::error& e) {
      return e.message();
    }
    return "no error";
  }

  TermManager tm;
  DimacsParser parser{&tm};
};

TEST_F(DimacsParserTest, BuildsTheConjunctionOfClauses) {
  const Term_* f = parse("c first\np cnf 3 2\n1 -3 0 c after\n\n 2 0\n");
  const Term_* x1 = parser.get_term(1);
  const Term_* x2 = parser.get_term(2);
  const Term_* x3 = parser.get_term(3);
  EXPECT_EQ(f, tm.make_and(tm.make_or(x1, tm.make_not(x3)), x2));
  EXPECT_EQ(x1->get_symbol()->get_name(), ".1");
}

TEST_F(DimacsParserTest, NoClauseGivesNullAndEmptyClauseFalse) {
  EXPECT_EQ(parse("p cnf 4 0\nc nothing\n"), nullptr);
  EXPECT_EQ(parse("0\n"), tm.make_false());
}

TEST_F(DimacsParserTest, VariableNamesAvoidDeclaredSymbols) {
  tm.make_symbol(".7", tm.get_bool_type());
  tm.make_symbol(".7_", tm.get_real_type());
  EXPECT_EQ(parser.get_term(7)->get_symbol()->get_name(), ".7__");
  // A number far beyond the others does not allocate a table of its size.
  EXPECT_EQ(parser.get_term(2000000000)->get_symbol()->get_name(),
            ".2000000000");
  EXPECT_EQ(parser.get_term(2000000000), parser.get_term(2000000000));
}

TEST_F(DimacsParserTest, MalformedInputIsReported) {
  EXPECT_EQ(error_of("1 2"), "syntax error");
  EXPECT_EQ(error_of("1 2 0\n-1 --2 0\n"), "syntax error");
  EXPECT_EQ(error_of("1 2147483648 0\n"), "syntax error");
  EXPECT_EQ(error_of("p cnf\n"), "error parsing header");
  EXPECT_EQ(error_of("p c n f 2 1\n"), "error parsing header");
  EXPECT_EQ(error_of("1 0\nx\n"), "unexpected character: x");
  // The clause count of the header is not checked.
  EXPECT_EQ(error_of("p   cnf 2 99\n1 0\n"), "no error");
}

}  // namespace
}  // namespace zenlo
