// Feature matrices as NumPy files.

#ifndef ORV_HOSTS_COMMON_NPY_H
#define ORV_HOSTS_COMMON_NPY_H

#include <cstdint>
#include <functional>
#include <string>

#include "common/frames.h"
#include "common/outputfile.h"

namespace orv {

// The contents of a .npy file: rows x width values in single precision.
std::string npy(const Frames &frames);

// The same, row by row into a file whose number of rows shows at the end.
class NpyStream {
 public:
  NpyStream(const OutputFile &file, std::int32_t width);
  void append(const float *row);
  std::uint64_t rows() const { return rows_; }
  // Changes every row that has been appended.
  void change(const std::function<void(float *row)> &how);
  // Completes the header and commits the file.
  void commit();

 private:
  std::string header() const;
  void writeWaiting();

  OutputFile::Stream stream_;
  std::int32_t width_;
  std::uint64_t rows_ = 0;
  std::string waiting_;  // rows that are still to be written
};

}  // namespace orv

#endif
