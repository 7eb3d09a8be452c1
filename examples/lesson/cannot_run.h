// The one way in which the program gives up before it has a result.
#pragma once

#include <stdexcept>

namespace lesson {

/// Something outside the lesson stands in the way: a missing file, an unwritable folder. The text
/// is a sentence for the user; the program prints it and ends with status 2.
class CannotRun : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace lesson
