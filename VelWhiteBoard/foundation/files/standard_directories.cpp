#include "VelWhiteBoard/foundation/files/standard_directories.h"

#include <string_view>

#include "VelWhiteBoard/foundation/files/file_system.h"

namespace VelWhiteBoard {
namespace {

constexpr std::string_view kDocumentsKey = "XDG_DOCUMENTS_DIR";
constexpr std::string_view kHomeReference = "$HOME";
constexpr std::string_view kBlanksInALine = " \t\r";

// The desktop writes ten lines. A larger file is not read to its end.
constexpr std::size_t kLargestUserDirectoriesFile = 1024 * 1024;

// An absolute path in normal form; absent for any other string.
std::optional<std::string> absolute(const std::optional<std::string>& path) {
  if (!path || !path->starts_with('/')) return std::nullopt;
  return std::string(withoutTrailingSeparators(*path));
}

std::optional<std::string> homeDirectory(const UserEnvironment& environment) {
  const std::optional<std::string> home = absolute(environment.variable("HOME"));
  return home ? home : absolute(environment.accountHome());
}

// The base directory of a variable, or its default under the home directory.
std::optional<std::string> baseDirectory(const UserEnvironment& environment, const char* variable,
                                         std::string_view underHome) {
  if (auto given = absolute(environment.variable(variable))) return given;
  const std::optional<std::string> home = homeDirectory(environment);
  if (!home) return std::nullopt;
  return appendPathComponent(*home, underHome);
}

void skipBlanks(std::string_view& text) {
  const std::size_t end = text.find_first_not_of(kBlanksInALine);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end);
}

bool skipWord(std::string_view& text, std::string_view expected) {
  if (!text.starts_with(expected)) return false;
  text.remove_prefix(expected.size());
  return true;
}

// The contents of a shell's double quotes, escapes resolved; absent when they are not closed.
std::optional<std::string> quoted(std::string_view text) {
  std::string value;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') return value;
    if (text[i] == '\\' && ++i == text.size()) break;
    value += text[i];
  }
  return std::nullopt;
}

// The path in one line `XDG_DOCUMENTS_DIR="$HOME/Documents"`; absent for any other line. The file
// looks like a shell script but is never executed: a value is absolute or begins with $HOME.
std::optional<std::string> documentsInLine(std::string_view line,
                                           const std::optional<std::string>& home) {
  skipBlanks(line);
  if (!skipWord(line, kDocumentsKey)) return std::nullopt;
  skipBlanks(line);
  if (!skipWord(line, "=")) return std::nullopt;
  skipBlanks(line);
  if (!skipWord(line, "\"")) return std::nullopt;
  const bool underHome = skipWord(line, kHomeReference);
  const std::optional<std::string> path = quoted(line);
  if (!path || path->find('\0') != std::string::npos) return std::nullopt;
  if (!underHome) return absolute(path);
  // "$HOMEWORK" is another variable. "$HOME" alone is how a user says that there is no such folder.
  if (!home || !(path->empty() || path->front() == '/')) return std::nullopt;
  return std::string(withoutTrailingSeparators(appendPathComponent(*home, *path)));
}

// The last line that gives a path wins, as it would in a shell.
std::optional<std::string> documentsInFile(const std::string& path,
                                           const std::optional<std::string>& home) {
  std::string text;
  const FileResult result = FileSystem::current().read(path, [&text](std::string_view block) {
    text.append(block);
    return text.size() <= kLargestUserDirectoriesFile;
  });
  if (!result || text.size() > kLargestUserDirectoriesFile) return std::nullopt;
  std::optional<std::string> documents;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : line.size());
    if (auto found = documentsInLine(line, home)) documents = std::move(found);
  }
  return documents;
}

std::optional<std::string> documentsDirectory(const UserEnvironment& environment) {
  const std::optional<std::string> home = homeDirectory(environment);
  if (const auto configuration = baseDirectory(environment, "XDG_CONFIG_HOME", ".config")) {
    const std::string file = appendPathComponent(*configuration, "user-dirs.dirs");
    if (auto documents = documentsInFile(file, home)) return documents;
  }
  if (!home) return std::nullopt;
  return appendPathComponent(*home, "Documents");
}

std::optional<std::string> placeOf(StandardDirectory directory,
                                   const UserEnvironment& environment) {
  switch (directory) {
    case StandardDirectory::kDocuments:
      return documentsDirectory(environment);
    case StandardDirectory::kLibrary:
      return baseDirectory(environment, "XDG_DATA_HOME", ".local/share");
    case StandardDirectory::kCaches:
      return baseDirectory(environment, "XDG_CACHE_HOME", ".cache");
  }
  return std::nullopt;
}

}  // namespace

std::vector<std::string> standardDirectories(StandardDirectory directory,
                                             const UserEnvironment& environment) {
  std::vector<std::string> places;
  if (auto place = placeOf(directory, environment)) places.push_back(std::move(*place));
  return places;
}

std::string temporaryDirectory(const UserEnvironment& environment) {
  return absolute(environment.variable("TMPDIR")).value_or("/tmp");
}

}  // namespace VelWhiteBoard
