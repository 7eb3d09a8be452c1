#include "file_blocks.h"

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace board_check {

namespace {

class Handle {
 public:
  // O_NONBLOCK: a pipe that takes the file's place meanwhile must not be waited for.
  explicit Handle(const char* path) : number_(::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
  ~Handle() {
    if (isOpen()) ::close(number_);
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  bool isOpen() const { return number_ >= 0; }
  ssize_t read(char* bytes, std::size_t size) const {
    for (;;) {
      const ssize_t taken = ::read(number_, bytes, size);
      if (taken >= 0 || errno != EINTR) return taken;
    }
  }

 private:
  int number_;
};

ReadFailure systemFailure() {
  const int error = errno;
  return {ReadFailure::Kind::kNotGiven, std::generic_category().message(error)};
}

std::optional<ReadFailure> requireRegularFile(const char* path) {
  struct stat found = {};
  if (::stat(path, &found) < 0) {
    ReadFailure failure = systemFailure();
    const bool leadsNowhere = errno == ENOENT || errno == ELOOP;
    if (leadsNowhere) failure.kind = ReadFailure::Kind::kNoFile;
    return failure;
  }
  if (S_ISREG(found.st_mode)) return std::nullopt;
  return ReadFailure{ReadFailure::Kind::kNoFile, "it is no regular file"};
}

}  // namespace

std::optional<ReadFailure> readBlocks(const std::filesystem::path& path,
                                      const std::function<bool(std::string_view block)>& consume) {
  if (auto failure = requireRegularFile(path.c_str())) return failure;
  const Handle file(path.c_str());
  if (!file.isOpen()) return systemFailure();
  const auto block = std::make_unique<char[]>(kBlockSize);
  for (;;) {
    const ssize_t taken = file.read(block.get(), kBlockSize);
    if (taken < 0) return systemFailure();
    if (taken == 0) return std::nullopt;
    if (!consume({block.get(), static_cast<std::size_t>(taken)})) return std::nullopt;
  }
}

}  // namespace board_check
