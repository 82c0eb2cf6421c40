#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "driver/cmdline.h"

using namespace zenlo;

namespace {

// Parses `args` (without the program name) and returns the error text, or
// "" when parsing went through.
std::string parse(CmdLine& cmd, std::vector<const char*> args) {
  args.insert(args.begin(), "zenlo");
  try {
    cmd.parse(static_cast<int>(args.size()), args.data());
  } catch (const Exception& e) {
    return e.message();
  }
  return "";
}

}  // namespace

TEST(CmdLine, DriverSettings) {
  std::ostringstream out;
  CmdLine cmd(out);
  EXPECT_EQ(parse(cmd,
                  {"-input=dimacs",
                   "-model",
                   "-stats",
                   "-gc_period=5",
                   "-timeout=10",
                   "-unsat_core_tool=/bin/mus",
                   "-verbosity=1",
                   "in.cnf"}),
            "");
  EXPECT_EQ(cmd.get_mode(), CmdLine::Mode::Dimacs);
  EXPECT_EQ(cmd.get_input_file(), "in.cnf");
  EXPECT_TRUE(cmd.model_enabled() && cmd.get_config().model_generation);
  EXPECT_TRUE(cmd.stats_enabled());
  EXPECT_EQ(cmd.get_gc_period(), 5u);
  EXPECT_EQ(cmd.get_timeout(), 10u);
  EXPECT_EQ(cmd.get_mem_limit_mb(), 0u);
  EXPECT_EQ(cmd.get_ext_unsat_core_extractor(), "/bin/mus");
  EXPECT_EQ(cmd.get_config().verbosity, 1);
  EXPECT_FALSE(cmd.show_version());
  EXPECT_TRUE(out.str().empty());
}

TEST(CmdLine, Errors) {
  std::ostringstream out;
  CmdLine a(out);
  EXPECT_EQ(parse(a, {"a.smt2", "b.smt2"}), "more than 1 filename given");
  CmdLine b(out);
  EXPECT_EQ(parse(b, {"-input=fzn"}), "unknown input format `fzn'");
  CmdLine c(out);
  EXPECT_EQ(parse(c, {"-dump_config=/nonexistent/dir/x.cfg"}),
            "Unable to open `/nonexistent/dir/x.cfg' for writing");
  CmdLine d(out);
  EXPECT_EQ(parse(d, {"-gc_period=4294967296"}),
            "invalid value for option gc_period");
  CmdLine e(out);
  EXPECT_EQ(parse(e, {"-help", "a", "b", "-input=fzn"}), "");
  EXPECT_EQ(e.get_mode(), CmdLine::Mode::Help);
}

TEST(CmdLine, ConfigFileUnderCommandLineSettings) {
  std::string path = ::testing::TempDir() + "zenlo_cmdline_test.cfg";
  {
    std::ofstream f(path);
    f << "verbosity = 2\nrandom_seed = 17\n[QF_BV]\nrandom_seed = 3\n";
  }
  std::ostringstream out;
  CmdLine cmd(out);
  std::string config = "-config=" + path;
  EXPECT_EQ(parse(cmd, {config.c_str(), "-verbosity=1", "-dump_config=-"}), "");
  EXPECT_EQ(cmd.get_config().verbosity, 1);  // the command line wins
  EXPECT_EQ(cmd.get_config().random_seed, 17);
  EXPECT_NE(out.str().find("verbosity = 1\n"), std::string::npos);
  EXPECT_NE(out.str().find("random_seed = 17\n"), std::string::npos);

  // A logic selected later, as a front end does after reading the input.
  cmd.set_active_config("QF_BV");
  cmd.update_config(cmd.get_config());
  EXPECT_EQ(cmd.get_config().random_seed, 3);
  std::remove(path.c_str());
}
