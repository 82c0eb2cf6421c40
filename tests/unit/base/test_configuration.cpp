#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "base/configuration.h"
#include "base/configurationsetter.h"
#include "base/optparse.h"

using namespace zenlo;

namespace {

std::string error_of(const std::function<void()>& f) {
  try {
    f();
  } catch (const Exception& e) {
    return e.message();
  }
  return "(no error)";
}

struct Setter : public ConfigurationSetter {
  Setter() { initialize_options(); }

  void load_text(const std::string& text, int priority = kFilePriority) {
    std::istringstream in(text);
    load(in, priority);
  }

  std::string dumped(const Configuration& c) const {
    std::ostringstream out;
    dump(c, out);
    return out.str();
  }
};

}  // namespace

// ---------------------------------------------------------------------------
// OptionParser

TEST(OptionParser, PriorityKeepsTheStrongerValueAndChecksTheLoser) {
  OptionParser p(OptionBoolStyle::Value);
  p.add_option("n", OptionParser::Kind::Int, "");
  long v = -1;
  EXPECT_FALSE(p.get_int_option("n", v));
  p.parse_option("n", "5", 2);
  p.parse_option("n", "7", 0);
  p.parse_option("n", "9", 2);  // weaker: ignored
  ASSERT_TRUE(p.get_int_option("n", v));
  EXPECT_EQ(v, 7);
  p.parse_option("n", "8", 0);  // equal priority: the later one
  p.get_int_option("n", v);
  EXPECT_EQ(v, 8);
  // A malformed value fails even though it would lose.
  EXPECT_EQ(error_of([&] { p.parse_option("n", "x", 5); }),
            "bad value for option: n, value: x, command-line: n=x");
}

TEST(OptionParser, ValuesByKind) {
  OptionParser p(OptionBoolStyle::Value);
  using K = OptionParser::Kind;
  p.add_option("i", K::Int, "");
  p.add_option("s", K::SignedInt, "");
  p.add_option("f", K::Float, "");
  p.add_option("b", K::Bool, "");
  p.add_option("e", K::Enum, "");
  p.add_enum_value("e", "lazy");
  for (const char* bad : {"-1", "+1", "", " 1", "1x", "99999999999999999999"}) {
    EXPECT_THROW(p.parse_option("i", bad, 0), OptionParser::error) << bad;
  }
  p.parse_option("s", "-12", 0);
  long v = 0;
  p.get_int_option("s", v);
  EXPECT_EQ(v, -12);
  for (const char* bad : {"1.5x", "nan", "inf", "", "1e999"}) {
    EXPECT_THROW(p.parse_option("f", bad, 0), OptionParser::error) << bad;
  }
  p.parse_option("f", "2.5e-1", 0);
  double d = 0;
  p.get_float_option("f", d);
  EXPECT_EQ(d, 0.25);
  EXPECT_THROW(p.parse_option("b", "TRUE", 0), OptionParser::error);
  EXPECT_THROW(p.parse_option("b", "1", 0), OptionParser::error);
  EXPECT_THROW(p.parse_option("e", "eager", 0), OptionParser::error);
  p.parse_option("e", "lazy", 0);
  std::string s;
  EXPECT_TRUE(p.get_str_option("e", s));
  EXPECT_EQ(s, "lazy");
  // Getters of another kind see nothing.
  bool b;
  EXPECT_FALSE(p.get_bool_option("s", b));
  EXPECT_FALSE(p.get_int_option("missing", v));
}

TEST(OptionParser, CommandLineArguments) {
  OptionParser p(OptionBoolStyle::Value);
  using K = OptionParser::Kind;
  p.add_option("b", K::Bool, "");
  p.add_option("help", K::Flag, "");
  p.add_option("n", K::Int, "");
  const char* argv[] = {"zenlo", "-b=TRUE", "in.smt2", "-", "-help", "-bad=1"};
  std::vector<std::string> positional;
  p.parse_args(6, argv, positional);
  bool b = false;
  EXPECT_TRUE(p.get_bool_option("b", b) && b);  // lowercased
  EXPECT_TRUE(p.get_flag_option("help"));
  EXPECT_EQ(positional, (std::vector<std::string>{"in.smt2", "-"}));

  OptionParser q(OptionBoolStyle::Value);
  q.add_option("n", K::Int, "");
  const char* bad[] = {"zenlo", "-m=1"};
  EXPECT_EQ(error_of([&] { q.parse_args(2, bad, positional); }),
            "unknown option: m, value: 1, command-line: -m=1");
  const char* novalue[] = {"zenlo", "-n"};
  EXPECT_EQ(error_of([&] { q.parse_args(2, novalue, positional); }),
            "bad value for option: n, value: , command-line: -n");
}

TEST(OptionParser, OtherBooleanStyles) {
  using K = OptionParser::Kind;
  std::vector<std::string> positional;
  bool b = true;
  OptionParser no(OptionBoolStyle::NoPrefix);
  no.add_option("x", K::Bool, "");
  no.add_option("y", K::Bool, "");
  const char* argv1[] = {"zenlo", "-no_x", "-y"};
  no.parse_args(3, argv1, positional);
  EXPECT_TRUE(no.get_bool_option("x", b) && !b);
  EXPECT_TRUE(no.get_bool_option("y", b) && b);

  OptionParser pm(OptionBoolStyle::PlusMinus);
  pm.add_option("x", K::Bool, "");
  pm.add_option("y", K::Bool, "");
  const char* argv2[] = {"zenlo", "-x", "+y"};
  pm.parse_args(3, argv2, positional);
  EXPECT_TRUE(pm.get_bool_option("x", b) && !b);
  EXPECT_TRUE(pm.get_bool_option("y", b) && b);
  EXPECT_TRUE(positional.empty());
}

TEST(OptionParser, HelpIsGroupedSortedAndWrapped) {
  OptionParser p(OptionBoolStyle::Value);
  using K = OptionParser::Kind;
  p.set_cur_help_group("Second:");
  p.add_option("zeta", K::Bool, "Last in its group.");
  p.add_option("alpha", K::Float, "First in its group.");
  p.set_cur_help_group("Mode:");
  p.add_option(
      "mode", K::Enum, std::string(30, 'w') + " " + std::string(60, 'v'));
  p.add_enum_value("mode", "a");
  p.add_enum_value("mode", "b");
  std::ostringstream out;
  p.print_help(out, 4, 2);
  EXPECT_EQ(out.str(),
            "\nSecond:\n"
            " -alpha=FLOAT : First in its group.\n"
            " -zeta=BOOL : Last in its group.\n"
            "\nMode:\n"
            " -mode=ENUM : " + std::string(30, 'w') + "\n    "
                + std::string(60, 'v') + "\n"
            "  Possible values:\n  - a\n  - b\n");
}

// ---------------------------------------------------------------------------
// Configuration files

TEST(ConfigurationSetter, CommentsOnlyGiveTheDefaults) {
  Setter s;
  s.load_text("# nothing\n\n   # indented comment\r\n");
  Configuration c;
  s.update_config(c);
  EXPECT_EQ(s.dumped(c), s.dumped(Configuration()));
}

TEST(ConfigurationSetter, SectionsAndCommaHeaders) {
  Setter s;
  s.load_text(
      "verbosity = 1\n"
      "[QF_LRA, QF_LIA]\n"
      "theory.la.split_rat_eq=false\n"
      "[default]\n"
      "random_seed = 7\n"
      "[QF_BV]\n"
      "  theory.bv.eager   =  false  \n");
  ASSERT_NE(s.section("QF_LRA"), nullptr);
  ASSERT_NE(s.section("QF_LIA"), nullptr);
  EXPECT_EQ(s.section("QF_LIA")->at(0).name, "theory.la.split_rat_eq");
  EXPECT_EQ(s.section("default")->size(), 2u);  // the unnamed section
  EXPECT_EQ(s.section("QF_BV")->at(0).value, "false");

  s.set_active_config("QF_LIA");
  Configuration c;
  s.update_config(c);
  EXPECT_EQ(c.verbosity, 1);
  EXPECT_EQ(c.random_seed, 7);
  EXPECT_FALSE(c.theory.la.split_rat_eq);
  EXPECT_TRUE(c.theory.bv.eager);  // another logic's section
}

TEST(ConfigurationSetter, MalformedLinesFailAndKeepNothing) {
  for (const char* bad :
       {"[QF_LRA\n", "[ ]\n", "[a,,b]\n", "[a,]\n", "= 1\n", "verbosity\n"}) {
    Setter s;
    std::string text = std::string("random_seed = 3\n") + bad;
    EXPECT_EQ(error_of([&] { s.load_text(text); }),
              "bad format of configuration file")
        << bad;
    EXPECT_EQ(s.section(""), nullptr) << bad;
  }
}

TEST(ConfigurationSetter, DirectSettingBeatsFileWhateverTheOrder) {
  Setter s;
  s.set_option("verbosity", "2");
  s.load_text("verbosity = 1\n[QF_UF]\nrandom_seed = 5\n");
  s.load_text("random_seed = 6\n", ConfigurationSetter::kDefaultPriority);
  s.set_active_config("QF_UF");
  s.set_option("random_seed", "4");
  Configuration c;
  s.update_config(c);
  EXPECT_EQ(c.verbosity, 2);
  EXPECT_EQ(c.random_seed, 4);

  // A file beats the built-in text, and the active section the unnamed one.
  Setter t;
  t.load_text("random_seed = 6\n", ConfigurationSetter::kDefaultPriority);
  t.load_text("[QF_UF]\nrandom_seed = 5\n[default]\nrandom_seed = 8\n");
  t.set_active_config("QF_UF");
  t.update_config(c);
  EXPECT_EQ(c.random_seed, 5);
}

TEST(ConfigurationSetter, DependenciesWinOverExplicitSettings) {
  Setter s;
  s.set_option("preprocessor.toplevel_propagation", "true");
  s.set_option("proof_generation", "false");
  s.set_option("interpolation", "true");
  Configuration c;
  s.update_config(c);
  EXPECT_FALSE(c.preprocessor.toplevel_propagation);
  EXPECT_TRUE(c.proof_generation);

  Setter cores;
  cores.set_option("unsat_core_generation", "2");
  Configuration d;
  cores.update_config(d);
  EXPECT_FALSE(d.preprocessor.toplevel_propagation);
  EXPECT_TRUE(d.dpll.store_tlemmas);
  EXPECT_FALSE(d.proof_generation);

  Setter boolmodels;
  boolmodels.set_option("bool_model_generation", "true");
  Configuration e;
  boolmodels.update_config(e);
  EXPECT_FALSE(e.preprocessor.toplevel_propagation);
  EXPECT_FALSE(e.proof_generation);
}

TEST(ConfigurationSetter, RangesAreCheckedWhenTheRecordIsFilled) {
  struct Case {
    const char* name;
    const char* value;
    bool ok;
  };

  for (const Case& k :
       {Case{"verbosity", "3", false},
        Case{"verbosity", "2", true},
        Case{"dpll.branching_random_frequency", "1.5", false},
        Case{"dpll.branching_random_frequency", "1.0", true},
        Case{"theory.fp.dpll.branching_random_frequency", "1.01", false},
        Case{"dpll.preprocessor.elimination_phase", "0", false},
        Case{"preprocessor.simplification", "64", false},
        Case{"dpll.restart_initial", "4294967296", false}}) {
    Setter s;
    s.set_option(k.name, k.value);  // accepted here in every case
    Configuration c;
    std::string err = error_of([&] { s.update_config(c); });
    EXPECT_EQ(
        err,
        k.ok ? "(no error)" : std::string("invalid value for option ") + k.name)
        << k.name << "=" << k.value;
  }
}

TEST(ConfigurationSetter, FileErrorsAreCollectedAsOneWarning) {
  Setter s;
  s.load_text("no.such.option = 1\nverbosity = 1\nmodel_generation = yes\n");
  Configuration c;
  try {
    s.update_config(c);
    FAIL() << "no warning";
  } catch (const ConfigurationSetter::warning& w) {
    EXPECT_EQ(w.message(),
              "2 error(s) while parsing the configuration file:\n"
              "unknown option: no.such.option, value: 1, command-line: "
              "no.such.option=1\n"
              "bad value for option: model_generation, value: yes, "
              "command-line: model_generation=yes");
  }
  EXPECT_EQ(c.verbosity, 1);  // the record is complete all the same
}

TEST(ConfigurationSetter, HiddenOptionsNeedRegistering) {
  Setter s;
  EXPECT_THROW(s.set_option("debug.log_sections", "DPLL"), OptionParser::error);
  EXPECT_THROW(s.set_option("shallow_incrementality", "true"),
               OptionParser::error);

  s.parser().add_option("debug.log_sections", OptionParser::Kind::Str, "");
  s.parser().add_option("shallow_incrementality", OptionParser::Kind::Bool, "");
  s.set_option("debug.log_sections", "DPLL, EUF_SOLVER");
  s.set_option("shallow_incrementality", "true");
  Configuration c;
  s.update_config(c);
  EXPECT_EQ(c.log_sections, (std::vector<std::string>{"DPLL", "EUF_SOLVER"}));
  EXPECT_TRUE(c.shallow_incrementality);
  s.set_option("debug.log_sections", "ALL");
  s.update_config(c);
  EXPECT_TRUE(c.log_sections.empty());
}

TEST(ConfigurationSetter, DumpRoundTripsThroughLoad) {
  Setter s;
  s.set_option("verbosity", "2");
  s.set_option("printer.defines_prefix", ".def");
  s.set_option("theory.fp.dpll.restart_geometric_factor", "1.25");
  s.set_option("theory.bv.lazydpll.ghost_filtering", "true");
  s.set_option("theory.na.div_by_zero_mode", "0");  // not in the dump
  Configuration c;
  s.update_config(c);
  std::string text = s.dumped(c);
  EXPECT_NE(text.find("\ntheory.fp.dpll.restart_geometric_factor = 1.25\n"),
            std::string::npos);
  EXPECT_NE(text.find("\ndpll.branching_random_frequency = 0.001\n"),
            std::string::npos);
  for (const char* hidden : {"allow_bool_function_args",
                             "debug.api_call_trace_filename",
                             "theory.la.interpolation_laz_split_mixed_eq",
                             "theory.euf.low_priority",
                             "theory.na.div_by_zero_mode"}) {
    EXPECT_EQ(text.find(std::string(hidden) + " ="), std::string::npos);
  }

  Setter t;
  std::ostringstream sectioned;
  s.dump(c, sectioned, "QF_FP");
  t.load_text(sectioned.str());
  t.set_active_config("QF_FP");
  Configuration d;
  t.update_config(d);
  EXPECT_EQ(t.dumped(d), text);
  EXPECT_EQ(d.printer.defines_prefix, ".def");
}
