// Runs the CDCL engine alone on a DIMACS CNF file, so that it can be timed
// against other SAT solvers on the same input. Prints the usual result line
// ("s SATISFIABLE" / "s UNSATISFIABLE") and exits with 10 or 20; every model
// is checked against the input before it is reported.
//
//   sat_engine_main [-model] [-stats] [-restart=N] FILE
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "base/configuration.h"
#include "dpll/dpllsolver.h"

namespace {

struct Cnf {
  int num_vars = 0;
  std::vector<std::vector<int>> clauses;
};

bool read_file(const char* path, std::string& out) {
  FILE* f = std::fopen(path, "rb");
  if (f == nullptr) {
    return false;
  }
  char buf[1 << 16];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) {
    out.append(buf, n);
  }
  std::fclose(f);
  return true;
}

// Reads "p cnf" files; comment lines start with 'c', '%' ends the input.
bool parse(const std::string& text, Cnf& cnf, std::string& err) {
  const char* p = text.c_str();
  std::vector<int> clause;
  while (*p != '\0') {
    while (*p == ' ' || *p == '\t' || *p == '\r' || *p == '\n') {
      ++p;
    }
    if (*p == 'c') {
      while (*p != '\0' && *p != '\n') {
        ++p;
      }
    } else if (*p == 'p') {
      if (std::sscanf(p, "p cnf %d", &cnf.num_vars) != 1) {
        err = "bad header line";
        return false;
      }
      while (*p != '\0' && *p != '\n') {
        ++p;
      }
    } else if (*p == '%') {
      break;
    } else if (*p != '\0') {
      char* end;
      long lit = std::strtol(p, &end, 10);
      if (end == p || std::labs(lit) > cnf.num_vars) {
        err = "bad literal";
        return false;
      }
      p = end;
      if (lit == 0) {
        cnf.clauses.push_back(clause);
        clause.clear();
      } else {
        clause.push_back(static_cast<int>(lit));
      }
    }
  }
  if (!clause.empty()) {
    cnf.clauses.push_back(clause);
  }
  return true;
}

bool model_ok(const zenlo::DpllSolver& s, const Cnf& cnf) {
  for (const auto& cl : cnf.clauses) {
    bool sat = false;
    for (int d : cl) {
      zenlo::lbool v = s.get_model_value(std::abs(d) - 1);
      sat = sat || v == zenlo::lbool::from_bool(d > 0);
    }
    if (!sat) {
      return false;
    }
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  bool print_model = false;
  bool print_stats = false;
  const char* path = nullptr;
  zenlo::Configuration::Dpll config;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "-model") == 0) {
      print_model = true;
    } else if (std::strcmp(argv[i], "-stats") == 0) {
      print_stats = true;
    } else if (std::strncmp(argv[i], "-restart=", 9) == 0) {
      config.restart_strategy = std::atoi(argv[i] + 9);
    } else {
      path = argv[i];
    }
  }
  std::string text;
  if (path == nullptr || !read_file(path, text)) {
    std::fprintf(stderr, "usage: sat_engine_main [-model] [-stats] FILE\n");
    return 1;
  }
  Cnf cnf;
  std::string err;
  if (!parse(text, cnf, err)) {
    std::fprintf(stderr, "error: %s in `%s'\n", err.c_str(), path);
    return 1;
  }
  auto start = std::chrono::steady_clock::now();
  zenlo::DpllSolver solver(&config);
  for (int v = 0; v < cnf.num_vars; ++v) {
    solver.new_var();
  }
  std::vector<zenlo::dpll::Lit> lits;
  for (const auto& cl : cnf.clauses) {
    lits.clear();
    for (int d : cl) {
      lits.push_back(zenlo::dpll::mk_lit(std::abs(d) - 1, d < 0));
    }
    solver.add_clause_inplace(lits);
  }
  bool sat = solver.solve();
  double secs =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start)
          .count();
  if (print_stats) {
    for (const auto& [name, value] : solver.get_stats()) {
      std::printf("c %s %s\n", name.c_str(), value.c_str());
    }
    std::printf("c :time %.3f\n", secs);
  }
  if (sat && !model_ok(solver, cnf)) {
    std::printf("c model check failed\n");
    return 1;
  }
  std::printf(sat ? "s SATISFIABLE\n" : "s UNSATISFIABLE\n");
  if (sat && print_model) {
    std::printf("v");
    for (int v = 0; v < cnf.num_vars; ++v) {
      bool t = solver.get_model_value(v) == zenlo::l_True;
      std::printf(" %d", t ? v + 1 : -(v + 1));
    }
    std::printf(" 0\n");
  }
  return sat ? 10 : 20;
}
