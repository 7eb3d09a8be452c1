#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace VelWhiteBoard {

/// Sets an environment variable, or takes it out, and puts the old state back at the end of the
/// scope.
class ScopedVariable {
 public:
  ScopedVariable(std::string name, const std::optional<std::string>& value)
      : name_(std::move(name)) {
    if (const char* old = std::getenv(name_.c_str())) previous_ = old;
    put(value);
  }
  ~ScopedVariable() { put(previous_); }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  void put(const std::optional<std::string>& value) {
    if (value) {
      ::setenv(name_.c_str(), value->c_str(), 1);
    } else {
      ::unsetenv(name_.c_str());
    }
  }

  std::string name_;
  std::optional<std::string> previous_;
};

}  // namespace VelWhiteBoard
