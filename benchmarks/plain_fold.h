// The baseline of everything that takes pieces in: a plain program without log, files or rules.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include <simdjson.h>

namespace benchmarks {

/// Parses pieces and folds their positions, by identifier. The least that any program must do.
class PlainFold {
 public:
  void take(const std::string& text);

 private:
  simdjson::dom::parser parser_;
  std::vector<char> buffer_;
  std::unordered_map<std::string, std::vector<double>> strokes_;
};

}  // namespace benchmarks
