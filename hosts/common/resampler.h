// Other sample rates for recordings.

#ifndef ORV_HOSTS_COMMON_RESAMPLER_H
#define ORV_HOSTS_COMMON_RESAMPLER_H

#include <filesystem>
#include <memory>
#include <span>
#include <vector>

#include "common/outputfile.h"
#include "orvsr/types.h"

namespace orv {

// The three settings that the library's documentation names.
enum class Quality { fast, medium, best };

// One channel on its way from one rate to another.
class Resampler {
 public:
  // Throws Error if the rates are further apart than a factor of 256.
  Resampler(int from, int to, Quality quality);

  // Appends what the samples give; `end` says that no more will come.
  void convert(std::span<const float> samples, bool end, std::vector<float> &out);

 private:
  struct Release {
    void operator()(OrvsResampleFixedState_32f *state) const;
    void operator()(OrvsResampleState_32f *state) const;
  };

  double ratio_;
  // One of the two: exact filters for each phase where these are not too many.
  std::unique_ptr<OrvsResampleFixedState_32f, Release> fixed_;
  std::unique_ptr<OrvsResampleState_32f, Release> free_;
};

std::vector<float> resampled(std::span<const float> samples, int from, int to, Quality quality);

// Converts all channels of a recording block by block, in memory that does not grow with its length. The
// format of the output is that which its name ends in; the encoding of samples is kept where that format has
// it. Throws Error for what cannot be read, converted or written; the output then stays as it was.
void resampleFile(const std::filesystem::path &input, const std::filesystem::path &output, int rate,
                  Quality quality);

}  // namespace orv

#endif
