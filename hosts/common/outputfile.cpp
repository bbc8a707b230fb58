#include "common/outputfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "common/error.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

std::string reason(int error) { return std::string("cannot be written: ") + std::strerror(error); }

// A new file beside the target, removed again unless it is renamed to it.
class Aside {
 public:
  Aside(const fs::path &file, const fs::path &target)
      : file_(file), target_(target), name_(target.string() + ".XXXXXX") {
    fd_ = mkstemp(name_.data());
    if (fd_ < 0) fail();
  }
  Aside(const Aside &) = delete;
  Aside &operator=(const Aside &) = delete;
  ~Aside() {
    if (fd_ >= 0) close(fd_);
    if (!renamed_) unlink(name_.c_str());
  }

  void write(std::string_view contents) const {
    while (!contents.empty()) {
      const ssize_t count = ::write(fd_, contents.data(), contents.size());
      if (count < 0 && errno != EINTR) fail();
      if (count > 0) contents.remove_prefix(static_cast<std::size_t>(count));
    }
  }

  void commit() {
    struct stat old {};
    const mode_t mask = umask(0);
    umask(mask);
    const mode_t mode = stat(target_.c_str(), &old) == 0 ? old.st_mode & 07777 : 0666 & ~mask;
    if (fchmod(fd_, mode) != 0 || fsync(fd_) != 0) fail();
    const int fd = std::exchange(fd_, -1);
    if (close(fd) != 0 || rename(name_.c_str(), target_.c_str()) != 0) fail();
    renamed_ = true;
  }

 private:
  [[noreturn]] void fail() const { throw Error(file_, reason(errno)); }

  const fs::path &file_;
  const fs::path &target_;
  std::string name_;
  int fd_ = -1;
  bool renamed_ = false;
};

}  // namespace

OutputFile::OutputFile(const fs::path &file) : file_(file) {
  std::error_code failure;
  target_ = fs::weakly_canonical(file, failure);
  if (failure) throw Error(file, "cannot be written: " + failure.message());
  const auto status = fs::status(target_, failure);
  if (fs::exists(status)) {
    if (!fs::is_regular_file(status)) throw Error(file, "cannot be written: not a regular file");
    if (access(target_.c_str(), W_OK) != 0) throw Error(file, reason(errno));
  }
  const Aside probe(file_, target_);
}

void OutputFile::write(std::string_view contents) const {
  Aside aside(file_, target_);
  aside.write(contents);
  aside.commit();
}

}  // namespace orv
