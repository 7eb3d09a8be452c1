// What the user reads at the end.
#pragma once

#include <iosfwd>
#include <string>

#include "other_clients.h"
#include "verifier.h"

namespace lesson {

/// A table with one line a page and one of sums, then one sentence that says whether every page
/// came back equal, and what is different if not.
void printTable(std::ostream& out, const Verification& verification);

/// One sentence on another client's board, and one for each difference.
/// @param who how the client is called.
void printAgreement(std::ostream& out, const std::string& who, const Agreement& agreement);

}  // namespace lesson
