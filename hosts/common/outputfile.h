// Outputs that appear whole or not at all.

#ifndef ORV_HOSTS_COMMON_OUTPUTFILE_H
#define ORV_HOSTS_COMMON_OUTPUTFILE_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>

namespace orv {

// A file that is written aside, in the same folder, and then renamed, so that a failure at any moment leaves
// what stood there. Throws Error when the file cannot be written: already on construction where this can be
// known, so that nobody trains for an hour to learn it.
class OutputFile {
 public:
  explicit OutputFile(const std::filesystem::path &file);
  void write(std::string_view contents) const;

  // A file whose contents come in pieces. It takes its place with commit(), and is gone without.
  class Stream {
   public:
    ~Stream();
    Stream(Stream &&) noexcept;
    Stream &operator=(Stream &&) noexcept;

    void append(std::string_view contents);
    // Writes over what begins so many bytes from the start.
    void overwrite(std::uint64_t at, std::string_view contents);
    // Bytes that have been written, from so many behind the start.
    void read(std::uint64_t at, void *bytes, std::size_t count) const;
    // For libraries that write by themselves; it stays open until commit().
    int descriptor() const;
    void commit();

   private:
    friend class OutputFile;
    class Aside;
    explicit Stream(std::unique_ptr<Aside> aside);
    std::unique_ptr<Aside> aside_;
  };
  Stream stream() const;

 private:
  std::filesystem::path file_;    // as given, for messages
  std::filesystem::path target_;  // behind symbolic links
};

}  // namespace orv

#endif
