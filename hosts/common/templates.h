// Recognition of utterances by the recorded examples nearest to them.

#ifndef ORV_HOSTS_COMMON_TEMPLATES_H
#define ORV_HOSTS_COMMON_TEMPLATES_H

#include <cstdint>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "common/audio.h"
#include "common/featurechain.h"
#include "common/frames.h"

namespace orv {

struct MatchOptions {
  std::int32_t band = 8;  // frames by which the band of the time warping is widened, 1 or more
  double slope = 2;       // the longer of two utterances lasts at most so many times the other; 1 to 2
  double beam = std::numeric_limits<float>::max();  // of the summed distance; 0 or more
  double trimDb = 40;  // what is quieter than the loudest 10 ms by more is cut off the ends; 0: nothing

  // Throws Error if one is out of range.
  void check() const;
};

struct Match {
  std::string name;
  std::filesystem::path file;  // the nearest template of this name
  float distance = 0;
};

// The distance of two utterances is that of the library's time warping, divided by the frames of the longer
// one, each of which it counts once: the mean Euclidean distance of a frame to the one it is aligned with.
//
// A band that is widened by a frame or more, and lengths that do not differ more than twofold, keep the
// warping from running out of its band before its end, where it would report what it had summed until then.
class Templates {
 public:
  // Recordings of another sample rate than the first template's are converted, or else refused.
  Templates(const FeatureOptions &features, const MatchOptions &options, bool resample = true);

  // A template, named after its file without folder and extension.
  void add(const Recording &recording);

  // The names by their nearest template, nearest name first, of equal ones the first in the alphabet. A name
  // none of whose templates can be aligned with the recording is left out.
  std::vector<Match> match(const Recording &recording);

 private:
  struct Template {
    std::string name;
    std::filesystem::path file;
    Frames frames;
  };

  Frames framesOf(const Recording &recording);
  std::optional<float> distance(const Frames &a, const Frames &b) const;

  FeatureOptions features_;
  MatchOptions options_;
  bool resamples_;
  std::optional<FeatureChain> chain_;
  std::vector<Template> templates_;
};

}  // namespace orv

#endif
