// Test-only reader of DIMACS CNF text: the header "p cnf V C", clauses of
// non-zero integers ended by 0, comment lines starting with 'c', and the
// '%' end marker of the SATLIB files.
#ifndef ZENLO_TESTS_UNIT_DIMACS_LOADER_H
#define ZENLO_TESTS_UNIT_DIMACS_LOADER_H

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace zenlo_test {

struct Cnf {
  int num_vars = 0;
  std::vector<std::vector<int>> clauses;
};

inline Cnf parse_dimacs(std::istream& in) {
  Cnf cnf;
  std::string line;
  std::vector<int> clause;
  while (std::getline(in, line)) {
    std::istringstream ls(line);
    std::string first;
    if (!(ls >> first) || first[0] == 'c') {
      continue;
    }
    if (first[0] == '%') {
      break;
    }
    if (first == "p") {
      std::string fmt;
      int num_clauses = 0;
      ls >> fmt >> cnf.num_vars >> num_clauses;
      continue;
    }
    std::istringstream all(line);
    int lit;
    while (all >> lit) {
      if (lit == 0) {
        cnf.clauses.push_back(clause);
        clause.clear();
      } else {
        if (std::abs(lit) > cnf.num_vars) {
          throw std::runtime_error("literal beyond the declared variables");
        }
        clause.push_back(lit);
      }
    }
  }
  if (!clause.empty()) {
    cnf.clauses.push_back(clause);
  }
  return cnf;
}

inline Cnf load_dimacs(const std::string& path) {
  std::ifstream in(path);
  if (!in) {
    throw std::runtime_error("cannot open " + path);
  }
  return parse_dimacs(in);
}

}  // namespace zenlo_test

#endif
