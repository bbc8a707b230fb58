#include "common/voiceplot.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <numbers>
#include <sstream>
#include <vector>

#include "common/error.h"
#include "common/featurechain.h"
#include "orvsr/frontend.h"

namespace orv {
namespace {

constexpr std::size_t kMostPoints = 4000, kMostColumns = 1200;
constexpr std::int32_t kBands = 128;
constexpr double kWindowSeconds = 0.006;  // short enough to show single periods of a voice
constexpr float kRangeDb = 60;

// Rows of log energies in linear bands up to half the sample rate, in dB below the loudest.
struct Spectrogram {
  double hop = 0;  // seconds
  std::vector<float> values;
};

Spectrogram spectrogram(const Recording &recording) {
  const auto rate = static_cast<float>(recording.sampleRate);
  const auto window = static_cast<std::size_t>(std::lround(kWindowSeconds * recording.sampleRate));
  std::size_t transform = 4 * static_cast<std::size_t>(kBands);
  while (transform < window) transform *= 2;
  OrvsFBankState_32f *state = nullptr;
  std::int32_t order = 0;
  const float low = rate / static_cast<float>(transform), high = rate / 2;
  require(orvsMelLinFBankInitAlloc_32f(&state, &order, static_cast<std::int32_t>(transform), rate, low, high,
                                       kBands, high, kBands, 1127.0f, 700.0f,
                                       orvFBankBinWeights | orvFBankFromSamples),
          "orvsMelLinFBankInitAlloc_32f");
  const std::unique_ptr<OrvsFBankState_32f, OrvStatus (*)(OrvsFBankState_32f *)> bank(state,
                                                                                      orvsFBankFree_32f);

  const auto &x = recording.samples;
  const std::size_t columns = std::min(kMostColumns, x.size() / std::max<std::size_t>(window / 3, 1) + 1);
  const double hop = static_cast<double>(x.size()) / static_cast<double>(columns);
  std::vector<float> frame(transform);
  Spectrogram result{hop / recording.sampleRate, std::vector<float>(columns * kBands)};
  for (std::size_t c = 0; c < columns; ++c) {
    const auto middle = static_cast<std::ptrdiff_t>((static_cast<double>(c) + 0.5) * hop);
    for (std::size_t i = 0; i < window; ++i) {
      const auto at = middle - static_cast<std::ptrdiff_t>(window / 2) + static_cast<std::ptrdiff_t>(i);
      const bool inside = at >= 0 && at < static_cast<std::ptrdiff_t>(x.size());
      const double phase =
          2 * std::numbers::pi * (static_cast<double>(i) + 0.5) / static_cast<double>(window);
      frame[i] =
          inside ? x[static_cast<std::size_t>(at)] * static_cast<float>(32768 * (0.5 - 0.5 * std::cos(phase)))
                 : 0;
    }
    require(orvsEvalFBank_32f(frame.data(), result.values.data() + c * kBands, bank.get()),
            "orvsEvalFBank_32f");
  }
  logFloored(result.values, 1e-3f);
  const float loudest = *std::max_element(result.values.begin(), result.values.end());
  constexpr float kDecibels = 8.6858896f;  // 20 / ln 10
  for (float &v : result.values) v = std::max((v - loudest) * kDecibels, -kRangeDb);
  return result;
}

void writeWave(std::ostream &out, const Recording &recording) {
  const auto &x = recording.samples;
  const std::size_t group = std::max<std::size_t>(1, x.size() / kMostPoints);
  out << "$wave << END\n";
  for (std::size_t i = 0; i < x.size(); i += group) {
    const auto [least, most] =
        std::minmax_element(x.begin() + static_cast<std::ptrdiff_t>(i),
                            x.begin() + static_cast<std::ptrdiff_t>(std::min(x.size(), i + group)));
    out << static_cast<double>(i) / recording.sampleRate << ' ' << *least << ' ' << *most << '\n';
  }
  out << "END\n";
}

std::string script(const Recording &recording, std::span<const PitchFrame> track, bool vector) {
  const Spectrogram picture = spectrogram(recording);
  std::ostringstream out;
  writeWave(out, recording);
  out << "$bands << END\n";
  for (std::size_t c = 0; c * kBands < picture.values.size(); ++c) {
    for (std::size_t b = 0; b < kBands; ++b) out << std::lround(picture.values[c * kBands + b]) << ' ';
    out << '\n';
  }
  out << "END\n$pitch << END\n";
  double top = 100;
  for (const PitchFrame &frame : track) {
    // An empty line ends a stretch of the curve.
    if (frame.f0 > 0)
      out << frame.seconds << ' ' << frame.f0 << '\n';
    else
      out << '\n';
    top = std::max(top, 1.2 * frame.f0);
  }
  out << "END\n";
  out << "set terminal " << (vector ? "svg" : "pngcairo") << " size 1200,900 font 'sans,11'\n"
      << "set multiplot\nset lmargin at screen 0.08\nset rmargin at screen 0.97\nunset key\n"
      << "set xrange [0:" << recording.seconds() << "]\nset tics out\n"
      << "set tmargin at screen 0.97\nset bmargin at screen 0.76\nset format x ''\nset ylabel 'amplitude'\n"
      << "plot $wave using 1:2:3 with filledcurves lc rgb '#204060', $wave using 1:2 with lines lw 0.5 lc "
         "rgb '#204060'\n"
      << "set tmargin at screen 0.74\nset bmargin at screen 0.34\nset ylabel 'frequency (kHz)'\nunset "
         "colorbox\n"
      << "set palette defined (0 'white', 1 'black')\nset cbrange [" << -kRangeDb << ":0]\n"
      << "set yrange [0:" << recording.sampleRate / 2000.0 << "]\n"
      << "plot $bands matrix using (($2+0.5)*" << picture.hop << "):(($1+0.5)*"
      << recording.sampleRate / 2000.0 / kBands << "):3 with image\n"
      << "set tmargin at screen 0.32\nset bmargin at screen 0.08\nset format x '%g'\nset xlabel 'time (s)'\n"
      << "set ylabel 'pitch (Hz)'\nset yrange [0:" << top << "]\nset grid\n"
      << "plot $pitch with linespoints pt 7 ps 0.3 lc rgb '#b02020'\nunset multiplot\n";
  return out.str();
}

// A file that is gone when the program is done with it.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string &contents) {
    std::string name = (std::filesystem::temp_directory_path() / "orv.XXXXXX").string();
    const int descriptor = mkstemp(name.data());
    if (descriptor < 0)
      throw Error("no temporary file can be made in " + std::filesystem::temp_directory_path().string());
    name_ = name;
    FILE *file = fdopen(descriptor, "w");
    const bool written = std::fwrite(contents.data(), 1, contents.size(), file) == contents.size();
    if (std::fclose(file) != 0 || !written) {
      std::filesystem::remove(name_);
      throw Error(name_, "cannot be written");
    }
  }
  ~TemporaryFile() { std::filesystem::remove(name_); }
  TemporaryFile(const TemporaryFile &) = delete;
  TemporaryFile &operator=(const TemporaryFile &) = delete;
  const std::string &name() const { return name_; }

 private:
  std::string name_;
};

}  // namespace

void checkPicture(const std::filesystem::path &file) {
  if (file.extension() != ".png" && file.extension() != ".svg")
    throw Error(file, "is neither a .png nor a .svg file");
}

std::string drawVoice(const Recording &recording, std::span<const PitchFrame> track,
                      const std::filesystem::path &file) {
  checkPicture(file);
  const TemporaryFile commands(script(recording, track, file.extension() == ".svg"));
  FILE *pipe = popen(("gnuplot '" + commands.name() + "' 2>/dev/null").c_str(), "r");
  if (pipe == nullptr) throw Error("gnuplot cannot be started");
  std::string picture;
  std::array<char, 65536> block;
  for (std::size_t n; (n = std::fread(block.data(), 1, block.size(), pipe)) > 0;)
    picture.append(block.data(), n);
  if (pclose(pipe) != 0 || picture.empty())
    throw Error("gnuplot, which draws the picture, is not installed or failed");
  return picture;
}

}  // namespace orv
