// A folder of its own for each test, recordings made up for it, and the program orv run in it.

#ifndef ORV_TESTS_HOSTS_SUPPORT_H
#define ORV_TESTS_HOSTS_SUPPORT_H

#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace orv::test {

namespace fs = std::filesystem;

inline std::string readFile(const fs::path &file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

inline void writeFile(const fs::path &file, const std::string &contents) {
  std::ofstream(file, std::ios::binary) << contents;
}

inline void writeWav(const fs::path &file, const std::vector<float> &samples, int rate = 8000,
                     int channels = 1) {
  fs::create_directories(file.parent_path());
  SF_INFO info{};
  info.samplerate = rate;
  info.channels = channels;
  info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
  SNDFILE *out = sf_open(file.c_str(), SFM_WRITE, &info);
  ASSERT_NE(out, nullptr) << file;
  sf_write_float(out, samples.data(), static_cast<sf_count_t>(samples.size()));
  sf_close(out);
}

// Noise through one pole: dull for a pole near 1, shrill for one near -1.
inline std::vector<float> noise(std::size_t len, float pole, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<float> samples(len);
  float last = 0;
  for (float &sample : samples) {
    const float white = static_cast<float>(random() >> 8) / 8388608.0f - 1;
    sample = last = pole * last + 0.1f * white;
  }
  return samples;
}

struct Outcome {
  int status = -1;
  std::string out, err;
};

// The program stands beside the tests.
inline fs::path program() { return fs::read_symlink("/proc/self/exe").parent_path() / "orv"; }

class Hosts : public ::testing::Test {
 protected:
  Hosts() {
    std::string name = (fs::temp_directory_path() / "orv_test.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) std::abort();
    folder = name;
  }
  ~Hosts() override { fs::remove_all(folder); }

  // Runs orv in the test's folder. What a run writes to standard output and error is kept out of that folder.
  Outcome run(const std::string &arguments, const std::string &errors = "") {
    const std::string aside = folder.string() + ".streams";
    const std::string command = "cd '" + folder.string() + "' && '" + program().string() + "' >'" + aside +
                                ".out' 2>'" + (errors.empty() ? aside + ".err" : errors) + "' " + arguments;
    const int status = std::system(command.c_str());
    Outcome outcome{WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(aside + ".out"),
                    errors.empty() ? readFile(aside + ".err") : ""};
    fs::remove(aside + ".out");
    fs::remove(aside + ".err");
    return outcome;
  }

  // Two classes that cannot be mistaken, of so many recordings of half a second each: one changes its colour,
  // the other its loudness. (A lasting difference in either is taken away by mean normalisation.)
  void makeVoices(int recordings) {
    for (int i = 0; i < recordings; ++i) {
      const auto seed = static_cast<unsigned>(i);
      const std::string name = std::string(1, static_cast<char>('a' + i)) + ".wav";
      auto colour = noise(4000, 0.9f, seed), loudness = noise(4000, 0.5f, 100 + seed);
      const auto shrill = noise(4000, -0.9f, 200 + seed);
      for (std::size_t n = 0; n < colour.size(); ++n) {
        if (n / 800 % 2 != 0) {
          colour[n] = shrill[n];
          loudness[n] *= 0.02f;
        }
      }
      writeWav(folder / "colour/deeper" / name, colour);
      writeWav(folder / "loud" / name, loudness);
    }
  }

  fs::path folder;
};

}  // namespace orv::test

#endif
