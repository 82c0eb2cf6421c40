// Failures of every layer derive from Exception, which carries one message.
// The C interface catches Exception at each exported function and turns it
// into the function's error value; the command-line driver prints it.
//
// Each component that can fail declares a nested `error` class with
// ZENLO_DECLARE_ERROR so that handlers can tell the layers apart while the
// message stays in one place.
#ifndef ZENLO_BASE_EXCEPTION_H
#define ZENLO_BASE_EXCEPTION_H

#include <exception>
#include <string>
#include <utility>

namespace zenlo {

class Exception : public std::exception {
 public:
  explicit Exception(std::string msg) : d_msg(std::move(msg)) {}

  const char* what() const noexcept override { return d_msg.c_str(); }

  const std::string& message() const { return d_msg; }

 private:
  std::string d_msg;
};

// A request that Zenlo understands but does not serve: a command or a
// service still to be built. It is no failure of the caller's input, and
// callers tell it apart by its type, never by its text: the SMT-LIB
// interpreter answers `unsupported`, so that the test runners can count a
// refusal as a refusal.
class Unsupported : public Exception {
 public:
  explicit Unsupported(std::string msg) : Exception(std::move(msg)) {}
};

}  // namespace zenlo

// Declares `struct error` nested in a class, derived from zenlo::Exception
// (or from another error class given as Base).
#define ZENLO_DECLARE_ERROR_FROM(Base)                        \
  struct error : public Base {                                \
    explicit error(std::string msg) : Base(std::move(msg)) {} \
  }

#define ZENLO_DECLARE_ERROR ZENLO_DECLARE_ERROR_FROM(::zenlo::Exception)

#endif
