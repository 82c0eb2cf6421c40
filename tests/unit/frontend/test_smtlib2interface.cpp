// The SMT-LIB 2 command interpreter on small scripts: exact answers,
// errors and recovery, :print-success, :status, scopes, options and info,
// reset. Every sat answer of a Boolean script is checked against the
// engine's assignment of the declared atoms.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <unordered_map>
#include <vector>

#include "dpll/dpllsolver.h"
#include "env/environment.h"
#include "frontend/smtlib2interface.h"
#include "frontend/smtlib2model.h"
#include "support/bool_formulas.h"

namespace zenlo {
namespace {

// The environment's backtrack points are not served yet; this interpreter
// counts levels itself, so that the scoping of names can be tested on its
// own.
class ScopedInterface : public SmtLib2Interface {
 public:
  using SmtLib2Interface::SmtLib2Interface;

  int sat_answers = 0;
  int checked_models = 0;

  void check_sat() override {
    SmtLib2Interface::check_sat();
    if (response().text == "sat") {
      ++sat_answers;
      check_model();
    }
  }

 protected:
  void push_backtrack_point(Environment*) override { ++d_levels; }

  void pop_backtrack_point(Environment*) override {
    if (d_levels == 0) {
      throw Environment::error("no backtrack points to pop");
    }
    --d_levels;
  }

 private:
  // Every assertion must hold under the engine's values of the declared
  // Boolean constants (an atom the engine never saw counts as false).
  void check_model() {
    Environment& env = *get_environment();
    TermManager& tm = env.get_term_manager();
    DpllSolver* dpll = env.get_dpll_solver();
    std::unordered_map<const Term_*, bool> values;
    for (const auto& entry : tm.get_signature()) {
      const Symbol* s = entry.second;
      if (s->get_arity() == 0 && tm.is_bool_type(s->get_type())
          && !tm.is_interpreted(s)) {
        const Term_* atom = tm.make_constant(s);
        dpll::Var v = dpll->proxy_for_term(atom);
        values[atom] =
            v != dpll::var_Undef && dpll->get_model_value(v) == l_True;
      }
    }
    for (const Term_* f : env.assertion_stack()) {
      if (f != nullptr) {
        EXPECT_TRUE(zenlo_test::evaluate(tm, f, values)) << f->to_str();
      }
    }
    ++checked_models;
  }

  int d_levels = 0;
};

struct Outcome {
  std::string out;
  std::string diag;
  int sat_answers = 0;
  int checked_models = 0;
};

Outcome run(const std::string& script, bool show_model = false) {
  Configuration config;
  std::ostringstream out, diag;
  ScopedInterface iface(&config, nullptr, out, diag);
  std::istringstream in(script);
  EXPECT_EQ(iface.solve(in, show_model, 0, 0), 0);
  Outcome r{out.str(), diag.str(), iface.sat_answers, iface.checked_models};
  EXPECT_EQ(r.sat_answers, r.checked_models);
  return r;
}

std::string output(const std::string& script) {
  return run(script).out;
}

const char* const kAB =
    "(declare-fun a () Bool)(declare-fun b () Bool)"
    "(assert (or a b))(assert (not a))\n";

// ---------------------------------------------------------------------------
// Answers and their forms
// ---------------------------------------------------------------------------

TEST(SmtLib2InterfaceTest, OnlyQueriesAnswerWithoutPrintSuccess) {
  Outcome r = run(std::string(kAB) + "(check-sat)(assert (not b))(check-sat)");
  EXPECT_EQ(r.out, "sat\nunsat\n");
  EXPECT_EQ(r.checked_models, 1);
  EXPECT_EQ(output("(set-option :print-success true)(set-logic QF_UF)"
                   "(declare-const p Bool)(assert (xor p (not p)))"
                   "(check-sat)(set-option :print-success false)(exit)"
                   "(check-sat)"),
            "success\nsuccess\nsuccess\nsuccess\nsat\n");
}

TEST(SmtLib2InterfaceTest, BooleanConnectivesDecideCorrectly) {
  // Each pair: a formula over p q r and its answer.
  const std::pair<const char*, const char*> cases[] = {
      {"(=> p q) p (not q)", "unsat"},
      {"(= p q r) p (not r)", "unsat"},
      {"(distinct p q) (distinct q r) (distinct p r)", "unsat"},
      {"(ite p q r) (not q)", "sat"},
      {"(xor p q r)", "sat"},
      {"(let ((s (and p q))) (and s (not p)))", "unsat"},
      {"(! (or p q) :named n) (not p)", "sat"},
  };
  for (const auto& [formulas, answer] : cases) {
    std::string script =
        "(declare-const p Bool)(declare-const q Bool)"
        "(declare-const r Bool)(assert (and true "
        + std::string(formulas) + "))(check-sat)";
    EXPECT_EQ(output(script), std::string(answer) + "\n") << formulas;
  }
}

TEST(SmtLib2InterfaceTest, EchoPrintsTheStringWithoutQuotes) {
  EXPECT_EQ(output("(echo \"x\")(echo \"say \"\"hi\"\"\")(echo \"\")"),
            "x\nsay \"hi\"\n\n");
  EXPECT_EQ(output("(echo \"a\" \"b\")(echo a)"),
            "(error \"invalid numer of arguments for `echo' command\")\n"
            "(error \"the argument of `echo' must be a string\")\n");
}

// ---------------------------------------------------------------------------
// Errors and recovery
// ---------------------------------------------------------------------------

TEST(SmtLib2InterfaceTest, ErrorsAnswerAndTheScriptGoesOn) {
  std::string out = output(
      "(set-option :print-success true)\n"
      "(declare-fun a () Bool)\n"
      "(assert (and a b))\n"
      "(assert (let ((x a)) (and x y)))\n"
      "(assert x)\n"
      "(foo)\n"
      "(assert (not (not a))) )\n"
      "(check-sat)\n");
  EXPECT_EQ(
      out,
      "success\nsuccess\n"
      "(error \"unknown symbol: b (line: 3)\")\n"
      "(error \"unknown symbol: y (line: 4)\")\n"
      // The let of line 4 is gone with its command.
      "(error \"unknown symbol: x (line: 5)\")\n"
      "(error \"unknown command: foo\")\n"
      "success\n"
      "(error \"syntax error, unexpected ')', expecting '(' (line: 7)\")\n"
      // Three assertions were refused, so sat would be a guess.
      "unknown\n");
}

TEST(SmtLib2InterfaceTest, RefusedAssertionsHoldBackSatUntilPopped) {
  std::string out = output(
      "(declare-fun a () Bool)\n"
      "(push 1)\n"
      "(assert (and a b))\n"
      "(check-sat)\n"
      "(get-info :reason-unknown)\n"
      "(pop 1)\n"
      "(check-sat)\n"
      "(assert (and a c))\n"
      "(assert (not a))\n"
      "(assert a)\n"
      "(check-sat)\n");
  EXPECT_EQ(out,
            "(error \"unknown symbol: b (line: 3)\")\n"
            "unknown\n"
            "( :reason-unknown \"an assertion was refused: unknown symbol: b\" "
            ")\n"
            "sat\n"
            "(error \"unknown symbol: c (line: 8)\")\n"
            // Unsat of what was kept is unsat of what was meant.
            "unsat\n");
}

TEST(SmtLib2InterfaceTest, FailedDeclarationsLeaveNoTrace) {
  EXPECT_EQ(
      output("(declare-fun f (Bool) Bool)(declare-fun x () Int)"
             "(declare-fun x () Bool)(define-fun y () Bool 1)"
             "(declare-const y Int)(assert (< x y))(assert (< y x))"
             "(check-sat)"),
      "(error \"Functions with Bool arguments not supported (line: 1)\")\n"
      "(error \"A symbol with name `x' already exists, with type: Int "
      "(line: 1)\")\n"
      "(error \"the body of `y' has type Int, but Bool was declared "
      "(line: 1)\")\n"
      "unsat\n");
}

TEST(SmtLib2InterfaceTest, UndecidedAtomsAnswerUnknownWithAReason) {
  std::string out = output(
      "(get-info :reason-unknown)"
      "(declare-fun x () (_ FloatingPoint 8 24))(assert (fp.isNaN x))"
      "(check-sat)(get-info :reason-unknown)(assert false)(check-sat)"
      "(get-info :reason-unknown)");
  EXPECT_EQ(out,
            "(error \"no reason to give: the last check did not answer "
            "unknown\")\n"
            "unknown\n"
            "( :reason-unknown \"no enabled theory solver handles "
            "`x' of type <FP, 8:23, >\" )\n"
            "unsat\n"
            "(error \"no reason to give: the last check did not answer "
            "unknown\")\n");
}

TEST(SmtLib2InterfaceTest, StatusIsComparedWithDefiniteAnswers) {
  std::string out = output(std::string(kAB)
                           + "(set-info :status unsat)(check-sat)(check-sat)"
                             "(set-info :status sat)(check-sat)"
                             "(set-info :status maybe)(get-info :status)"
                             "(declare-const x (_ FloatingPoint 8 24))"
                             "(assert (fp.isNaN x))"
                             "(set-info :status unsat)(check-sat)");
  EXPECT_EQ(out,
            "(error \"expected status was unsat, got sat instead\")\n"
            "(error \"expected status was unsat, got sat instead\")\n"
            "sat\n"
            "(error \"bad value `maybe' for :status info\")\n"
            "( :status sat )\n"
            "unknown\n");
}

TEST(SmtLib2InterfaceTest, QueriesWithoutAModel) {
  EXPECT_EQ(output(std::string(kAB)
                   + "(get-value (a))(get-model)(get-assignment)"
                     "(check-sat)(get-value (a))(assert b)(get-model)"
                     "(.internal-parse-terms (a))"),
            "(error \"model not available\")\n"
            "(error \"model not available\")\n"
            "(error \"model not available\")\n"
            "sat\nunsupported\n"
            "(error \"model not available\")\n"
            "(error \"unsupported command: .internal-parse-terms\")\n");
  EXPECT_EQ(output("(get-proof)(get-assertions)(get-unsat-core)"
                   "(get-interpolant (g))(check-allsat ())(get-objectives)"),
            "unsupported\nunsupported\nunsupported\nunsupported\n"
            "unsupported\nunsupported\n");
}

// ---------------------------------------------------------------------------
// Scopes
// ---------------------------------------------------------------------------

TEST(SmtLib2InterfaceTest, PopUndeclaresWhatThePushedLevelsDeclared) {
  std::string out = output(
      "(declare-const a Bool)(push 1)(declare-const x Bool)"
      "(define-fun d () Bool (not a))(declare-sort U 0)(push 2)"
      "(assert (! a :named n))(pop 3)"
      "(declare-const x Int)(declare-sort U 1)(define-fun d () Int 0)"
      "(declare-const n Bool)(assert (and a n))(check-sat)(pop 1)(pop 0)");
  EXPECT_EQ(out,
            "sat\n(error \"no backtrack points to pop\")\n"
            "(error \"invalid argument in push\")\n");
  EXPECT_EQ(output("(set-option :global-declarations true)(push 1)"
                   "(declare-const x Bool)(pop 1)(declare-const x Int)"
                   "(get-option :global-declarations)"),
            "(error \"A symbol with name `x' already exists, with type: Bool "
            "(line: 1)\")\ntrue\n");
}

TEST(SmtLib2InterfaceTest, ResetAssertionsDropsAssertionsAndNames) {
  EXPECT_EQ(output("(declare-const a Bool)(assert a)(assert (not a))"
                   "(check-sat)(reset-assertions)(declare-const a Int)"
                   "(declare-const b Bool)(assert b)(check-sat)"),
            "unsat\nsat\n");
}

TEST(SmtLib2InterfaceTest, ResetStartsAFreshProblemWithTheSameSettings) {
  EXPECT_EQ(output("(set-option :print-success true)(set-logic QF_UF)"
                   "(declare-const a Bool)(assert (not a))(reset)"
                   "(set-logic QF_LIA)(declare-const a Int)"
                   "(set-option :produce-models true)"),
            "success\nsuccess\nsuccess\nsuccess\nsuccess\nsuccess\nsuccess\n"
            "(error \"too late for setting :produce-models\")\n");
}

// ---------------------------------------------------------------------------
// Options and info
// ---------------------------------------------------------------------------

TEST(SmtLib2InterfaceTest, OptionsAreSetReadAndRefusedTooLate) {
  std::string out = output(
      "(get-option :produce-models)(set-option :produce-models true)"
      "(get-option :produce-models)(set-option :timeout 1.5)"
      "(get-option :timeout)(set-option :timeout none)(get-option :timeout)"
      "(set-option :timeout -1.0)(set-option :verbosity 9)"
      "(get-option :verbosity)(set-option :config \"dpll.restart_initial=77\")"
      "(set-option :config \"nonsense\")(set-option :dpll.restart_strategy 1)"
      "(set-option :printer.model_as_formula true)(set-option :no-such 1)"
      "(get-option :no-such)(set-logic QF_UF)(set-logic QF_UF)"
      "(get-option :dpll.restart_initial)(get-option :dpll.restart_strategy)"
      "(get-option :printer.model_as_formula)"
      // Right after set-logic nothing is lost by building anew.
      "(set-option :produce-models false)(get-option :produce-models)"
      "(declare-const q Bool)(set-option :random-seed 3)"
      "(set-option :global-decls true)(set-option :config \"verbosity=1\")");
  EXPECT_EQ(out,
            "false\ntrue\n1.5\nnone\n"
            "(error \"invalid value for :timeout option\")\n"
            "2\n"
            "(error \"bad value for :config option: nonsense\")\n"
            "unsupported\nunsupported\n"
            "(error \"set-logic is invalid at this point\")\n"
            "77\n1\ntrue\nfalse\n"
            "(error \"too late for setting :random-seed\")\n"
            "(error \"too late for setting :global-declarations\")\n"
            "(error \"too late for setting :config\")\n");
}

TEST(SmtLib2InterfaceTest, InfoAnswers) {
  std::string out = output(
      "(get-info :name)(get-info :error-behavior)(get-info :foo)"
      "(set-info :foo |two words|)(get-info :foo)"
      "(set-info :smt-lib-version 2.6)(get-info :smt-lib-version)"
      "(get-info :assertion-stack-levels)(push 2)"
      "(get-info :assertion-stack-levels)");
  EXPECT_EQ(out,
            "( :name \"Zenlo\" )\n( :error-behavior continued-execution )\n"
            "unsupported\n( :foo \"two words\" )\n( :smt-lib-version 2.6 )\n"
            "( :assertion-stack-levels 0 )\n"
            // The levels are the environment's, which this test's
            // interpreter does not open.
            "( :assertion-stack-levels 0 )\n");
  std::string stats = output(
      "(declare-const a Bool)(assert a)(check-sat)"
      "(get-info :all-statistics)");
  EXPECT_EQ(stats.rfind("sat\n( :cnf-variables 1\n  :cnf-literals ", 0), 0u)
      << stats;
  EXPECT_NE(stats.find("\n  :sat-conflicts 0\n"), std::string::npos);
  EXPECT_NE(stats.find("\n  :memory-mb "), std::string::npos);
}

TEST(SmtLib2InterfaceTest, RegularOutputChannelCanBeAFile) {
  std::string path = ::testing::TempDir() + "zenlo_channel.txt";
  std::remove(path.c_str());
  std::string out = output("(echo \"before\")(set-option :regular-output-channel \""
                           + path + "\")(echo \"after\")"
                           "(get-option :regular-output-channel)"
                           "(set-option :diagnostic-output-channel "
                           "\"/nonexistent/dir/x\")");
  EXPECT_EQ(out, "before\n");
  std::ifstream f(path);
  std::stringstream text;
  text << f.rdbuf();
  EXPECT_EQ(text.str(),
            "after\n\"" + path + "\"\n(error \"Impossible to open "
            "`/nonexistent/dir/x' as :diagnostic-output-channel\")\n");
  std::remove(path.c_str());
}

// ---------------------------------------------------------------------------
// Limits
// ---------------------------------------------------------------------------

// Pigeons into one hole fewer: hard for a resolution-based engine.
std::string pigeon_script(int holes) {
  std::ostringstream s;
  auto v = [](int p, int h) {
    return "v" + std::to_string(p) + "_" + std::to_string(h);
  };
  for (int p = 0; p <= holes; ++p) {
    s << "(assert (or";
    for (int h = 0; h < holes; ++h) {
      s << " " << v(p, h);
    }
    s << "))\n";
  }
  for (int h = 0; h < holes; ++h) {
    for (int p = 0; p <= holes; ++p) {
      for (int q = p + 1; q <= holes; ++q) {
        s << "(assert (or (not " << v(p, h) << ") (not " << v(q, h) << ")))\n";
      }
    }
  }
  std::string decls;
  for (int p = 0; p <= holes; ++p) {
    for (int h = 0; h < holes; ++h) {
      decls += "(declare-const " + v(p, h) + " Bool)";
    }
  }
  return decls + "\n" + s.str();
}

TEST(SmtLib2InterfaceTest, TimeoutAnswersUnknownAndTheNextCheckRuns) {
  std::string out = output("(set-option :timeout 0.2)" + pigeon_script(11)
                           + "(check-sat)(get-info :reason-unknown)"
                             "(assert false)(check-sat)");
  EXPECT_EQ(out, "unknown\n( :reason-unknown timeout )\nunsat\n");
}

// ---------------------------------------------------------------------------
// Texts of models and of check-sat with a model
// ---------------------------------------------------------------------------

TEST(SmtLib2ModelTextTest, FunctionsNestTheirPointsAndEndInADefault) {
  TermManager tm;
  SmtLib2TermPrinter printer(&tm, nullptr);
  const Type* i = tm.get_integer_type();
  const Type* r = tm.get_real_type();
  const Term_* x = tm.make_constant(tm.make_symbol("x", r));
  const Symbol* f = tm.make_symbol("f", tm.get_function_type({i, r}, r));
  auto n = [&](int k) { return tm.make_number(QNumber(k)); };
  std::vector<ModelAssignment> model = {
      {tm.make_uninterpreted_function(f, {n(1), n(2)}), n(3)},
      {x, n(-4)},
      {tm.make_uninterpreted_function(f, {n(5), n(6)}), n(7)},
  };
  std::vector<std::string> entries = model_define_funs(tm, printer, model);
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0], "(define-fun x () Real (to_real (- 4)))");
  EXPECT_EQ(entries[1],
            "(define-fun f ((?X1 Int) (?X2 Real)) Real (ite (and (= ?X1 1) "
            "(= ?X2 (to_real 2))) (to_real 3) (ite (and (= ?X1 5) "
            "(= ?X2 (to_real 6))) (to_real 7) (to_real 3))))");
}

TEST(SmtLib2ModelTextTest, ResponsesPrintInTheirListForms) {
  std::ostringstream out;
  SmtLib2Response r;
  r.kind = SmtLib2Response::Kind::CheckSat;
  r.text = "sat";
  r.show_model = true;
  r.pairs = {{"a", "true"}, {"(f 1)", "2"}};
  r.print(out, false, false);
  r.kind = SmtLib2Response::Kind::Values;
  r.print(out, false, false);
  r.print(out, false, true);
  r.kind = SmtLib2Response::Kind::Model;
  r.items = {"(define-fun a () Bool true)"};
  r.print(out, false, false);
  r.set_error("bad \"x\"");
  r.print(out, true, false);
  EXPECT_EQ(out.str(),
            "sat\n( (a true)\n  ((f 1) 2) )\n"
            "( (a true)\n  ((f 1) 2) )\n"
            "(and\n  (= a true)\n  (= (f 1) 2)\n)\n"
            "(model\n  (define-fun a () Bool true)\n)\n"
            "(error \"bad \"\"x\"\"\")\n");
}

TEST(SmtLib2InterfaceTest, ModelOptionReportsAMissingModelBelowTheAnswer) {
  Outcome r = run(std::string(kAB) + "(check-sat)(assert a)(check-sat)", true);
  EXPECT_EQ(r.out, "sat\n(error \"model generation not enabled\")\nunsat\n");
}

}  // namespace
}  // namespace zenlo
