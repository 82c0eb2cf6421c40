#include "frontend/dimacsinterface.h"

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

#include "frontend/dimacsparser.h"
#include "preprocess/dpllclausesink.h"

namespace zenlo {

namespace {

// The engine's clause sink with a memo from term id to engine variable.
// DIMACS literals are plain constants, met many times each; the memo saves
// the proxy table lookup and the problem-variable marking on every
// occurrence after the first. Safe because this road never pops a
// backtrack point, so a variable once made stays.
class DimacsClauseSink final : public DpllClauseSink {
 public:
  DimacsClauseSink(TermManager* tm, DpllSolver* dpll)
      : DpllClauseSink(tm, dpll, nullptr, false) {}

  dpll::Var create_label(const Term_* t) override { return var_of(t); }

  void add_literal(const Term_* t, bool negated) override {
    ++d_literals;
    d_buffer.push_back(dpll::mk_lit(var_of(t), negated));
  }

 private:
  dpll::Var var_of(const Term_* t) {
    uint64_t id = t->get_id();
    if (id >= d_var.size()) {
      d_var.resize(std::max<size_t>(id + 1, 2 * d_var.size()), dpll::var_Undef);
    }
    if (d_var[id] == dpll::var_Undef) {
      d_var[id] = proxy(t);
    }
    return d_var[id];
  }

  std::vector<dpll::Var> d_var;
};

}  // namespace

DimacsInterface::DimacsInterface(const Configuration& config, std::ostream& out)
    : d_config(config), d_out(out), d_logger(&out) {
  d_logger.set_line_prefix("c ");
  d_logger.set_verbosity(d_config.verbosity);
  bool any = false;
  for (const std::string& s : d_config.log_sections) {
    if (!s.empty()) {
      d_logger.enable_section(s);
      any = true;
    }
  }
  if (!any) {
    d_logger.enable_all_sections();
  }
  d_dpll = std::make_unique<DpllSolver>(&d_config.dpll, &d_config);
  d_dpll->set_logger(&d_logger, d_config.verbosity >= 3 ? "DPLL" : "");
}

DimacsInterface::~DimacsInterface() = default;

int DimacsInterface::solve(std::istream& in,
                           bool show_model,
                           uint64_t timeout_sec,
                           uint64_t mem_limit_mb) {
  DimacsParser parser(&d_tm);
  {
    DimacsClauseSink sink(&d_tm, d_dpll.get());
    parser.read(in, sink);
  }
  TimeMemLimitTest limits(timeout_sec, mem_limit_mb << 20);
  if (limits.active()) {
    d_dpll->set_termination_test(&limits);
  }
  int status = 0;
  try {
    bool sat = d_dpll->solve();
    d_out << (sat ? "s SATISFIABLE" : "s UNSATISFIABLE") << '\n';
    if (show_model && sat) {
      print_model(parser);
    }
  } catch (const Exception& e) {
    d_out << "c " << e.message() << '\n' << "s UNKNOWN" << '\n';
    status = 1;
  }
  d_dpll->set_termination_test(nullptr);
  d_out.flush();
  return status;
}

// One "v" line with the value of every variable of the file, in the order
// of the engine's variables. The numbers printed are the file's own, so
// the line can be checked against the file even when the variables were
// not declared in order.
void DimacsInterface::print_model(const DimacsParser& parser) {
  std::vector<std::pair<dpll::Var, int>> vars;
  parser.for_each_variable([&](int n, const Term_* t) {
    dpll::Var v = d_dpll->proxy_for_term(t);
    if (v != dpll::var_Undef && !d_dpll->get_model_value(v).is_undef()) {
      vars.emplace_back(v, n);
    }
  });
  std::sort(vars.begin(), vars.end());
  std::string line = "v";
  char buf[16];
  for (const auto& [v, n] : vars) {
    bool negative = d_dpll->get_model_value(v) == l_False;
    std::snprintf(buf, sizeof buf, negative ? " -%d" : " %d", n);
    line += buf;
  }
  line += " 0\n";
  d_out << line;
}

void DimacsInterface::print_stats(std::ostream& out,
                                  double cpu_seconds,
                                  uint64_t mem_bytes) {
  const DpllSolver::Stats& s = d_dpll->stats();
  char cpu[64];
  char mem[64];
  std::snprintf(cpu, sizeof cpu, "%.3f", cpu_seconds);
  std::snprintf(
      mem, sizeof mem, "%.3f", static_cast<double>(mem_bytes) / (1 << 20));
  out << "c Statistics:\n"
      << "c restarts: " << s.restarts << '\n'
      << "c decisions: " << s.decisions << " (" << s.random_decisions
      << " random)\n"
      << "c propagations: " << s.propagations << " (" << s.theory_propagations
      << " theory)\n"
      << "c watched clauses visited: " << s.watched_visits << " ("
      << s.binary_watched_visits << " binary)\n"
      << "c conflicts: " << s.conflicts << '\n'
      << "c\n"
      << "c CPU Time: " << cpu << " s\n"
      << "c Memory used: " << mem << " MB\n";
  out.flush();
}

void DimacsInterface::print_error(std::ostream& out,
                                  const std::string& message) {
  out << "c ERROR: " << message << std::endl;
}

}  // namespace zenlo
