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

}  // namespace

// A new file beside the target, removed again unless it is renamed to it.
class OutputFile::Stream::Aside {
 public:
  Aside(fs::path file, fs::path target)
      : file_(std::move(file)), target_(std::move(target)), name_(target_.string() + ".XXXXXX") {
    fd_ = mkstemp(name_.data());
    if (fd_ < 0) fail();
  }
  Aside(const Aside &) = delete;
  Aside &operator=(const Aside &) = delete;
  ~Aside() {
    if (fd_ >= 0) close(fd_);
    if (!renamed_) unlink(name_.c_str());
  }

  int descriptor() const { return fd_; }

  void append(std::string_view contents) const {
    write(contents, [this](std::string_view rest) { return ::write(fd_, rest.data(), rest.size()); });
  }

  void overwrite(std::uint64_t at, std::string_view contents) const {
    auto offset = static_cast<off_t>(at);
    write(contents, [&](std::string_view rest) {
      const ssize_t count = pwrite(fd_, rest.data(), rest.size(), offset);
      if (count > 0) offset += count;
      return count;
    });
  }

  void read(std::uint64_t at, void *bytes, std::size_t count) const {
    auto *to = static_cast<char *>(bytes);
    while (count > 0) {
      const ssize_t some = pread(fd_, to, count, static_cast<off_t>(at));
      if (some == 0) errno = EIO;
      if (some == 0 || (some < 0 && errno != EINTR)) fail();
      if (some < 0) continue;
      to += some;
      at += static_cast<std::uint64_t>(some);
      count -= static_cast<std::size_t>(some);
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

  template <class Write>
  void write(std::string_view contents, Write some) const {
    while (!contents.empty()) {
      const ssize_t count = some(contents);
      if (count < 0 && errno != EINTR) fail();
      if (count > 0) contents.remove_prefix(static_cast<std::size_t>(count));
    }
  }

  const fs::path file_, target_;
  std::string name_;
  int fd_ = -1;
  bool renamed_ = false;
};

OutputFile::Stream::Stream(std::unique_ptr<Aside> aside) : aside_(std::move(aside)) {}
OutputFile::Stream::~Stream() = default;
OutputFile::Stream::Stream(Stream &&) noexcept = default;
OutputFile::Stream &OutputFile::Stream::operator=(Stream &&) noexcept = default;
void OutputFile::Stream::append(std::string_view contents) { aside_->append(contents); }
void OutputFile::Stream::overwrite(std::uint64_t at, std::string_view contents) {
  aside_->overwrite(at, contents);
}
void OutputFile::Stream::read(std::uint64_t at, void *bytes, std::size_t count) const {
  aside_->read(at, bytes, count);
}
int OutputFile::Stream::descriptor() const { return aside_->descriptor(); }
void OutputFile::Stream::commit() { aside_->commit(); }

OutputFile::Stream OutputFile::stream() const {
  return Stream(std::make_unique<Stream::Aside>(file_, target_));
}

OutputFile::OutputFile(const fs::path &file) : file_(file) {
  std::error_code failure;
  target_ = fs::weakly_canonical(file, failure);
  if (failure) throw Error(file, "cannot be written: " + failure.message());
  const auto status = fs::status(target_, failure);
  if (fs::exists(status)) {
    if (!fs::is_regular_file(status)) throw Error(file, "cannot be written: not a regular file");
    if (access(target_.c_str(), W_OK) != 0) throw Error(file, reason(errno));
  }
  stream();  // removed at once
}

void OutputFile::write(std::string_view contents) const {
  Stream aside = stream();
  aside.append(contents);
  aside.commit();
}

}  // namespace orv
