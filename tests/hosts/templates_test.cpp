// Codebooks, mixtures that start from them, and recognition by templates.

#include <algorithm>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <xtensor/xnpy.hpp>
#include <xtensor/xtensor.hpp>

#include "common/endpoints.h"
#include "common/framesample.h"
#include "hosts/support.h"

namespace orv::test {
namespace {

using Matrix = xt::xtensor<float, 2>;

class Templates : public Hosts {
 protected:
  Matrix load(const std::string &name) { return xt::load_npy<float>((folder / name).string()); }

  // Sounds of so many samples each, in silence. Each letter is a tone of its own in some noise.
  void speak(const std::string &name, const std::string &sounds, std::size_t len, unsigned seed,
             std::size_t silence = 2000) {
    const auto hiss = noise(silence * 2 + sounds.size() * len, 0.2f, seed);
    std::vector<float> samples;
    for (const float h : hiss) samples.push_back(0.0002f * h);
    for (std::size_t n = 0; n < sounds.size() * len; ++n) {
      const float hertz = 300.0f + 280.0f * static_cast<float>(sounds[n / len] - 'a');
      samples[silence + n] =
          0.3f * std::sin(2 * 3.14159265f * hertz * static_cast<float>(n % 8000) / 8000) + 0.1f * hiss[n];
    }
    writeWav(folder / name, samples);
  }

  nlohmann::json match(const std::string &arguments) {
    const Outcome outcome = run("match --json " + arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return nlohmann::json::parse(outcome.out);
  }
  double distance(const std::string &arguments) {
    return match(arguments)["utterances"][0]["best"][0]["distance"];
  }
};

TEST_F(Templates, CodebooksReportTheDistortionTheyHave) {
  makeVoices(3);
  for (const char *name : {"a", "b", "c"})
    ASSERT_EQ(run("features colour/deeper/" + std::string(name) + ".wav -o " + name + ".npy").status, 0);
  const Matrix frames = xt::concatenate(xt::xtuple(load("a.npy"), load("b.npy"), load("c.npy")), 0);
  for (const std::string options :
       {"--size 1", "--size 8", "--size 8 --method count", "--size 8 --weighted"}) {
    const Outcome grown = run("codebook -o book --json colour " + options);
    ASSERT_EQ(grown.status, 0) << grown.err;
    const auto json = nlohmann::json::parse(grown.out);
    const Matrix book = load("book");
    EXPECT_EQ(json["size"], book.shape(0));
    EXPECT_EQ(json["frames"], frames.shape(0));
    EXPECT_EQ(json["recordings"], 3);
    const std::vector<double> weights = json["weights"];
    double best = 0;
    for (std::size_t r = 0; r < frames.shape(0); ++r) {
      double nearest = std::numeric_limits<double>::infinity();
      for (std::size_t c = 0; c < book.shape(0); ++c) {
        double sum = 0;
        for (std::size_t j = 0; j < book.shape(1); ++j)
          sum += weights[j] * std::pow(static_cast<double>(frames(r, j) - book(c, j)), 2);
        nearest = std::min(nearest, sum);
      }
      best += nearest / static_cast<double>(frames.shape(0));
    }
    // The tree may miss the nearest vector, but not often.
    EXPECT_GE(json["distortion"], best * 0.9999) << options;
    EXPECT_LE(json["distortion"], best * 1.1) << options;
    // With weights a single vector leaves a variance of one of each value; eight leave much less.
    if (options.ends_with("weighted")) {
      EXPECT_LT(json["distortion"], 0.8 * 39);
    }
    const std::string bytes = readFile(folder / "book");
    run("codebook -o book colour " + options);
    EXPECT_TRUE(readFile(folder / "book") == bytes) << options;
  }
  const auto bounded = run("codebook -o book --size 8 --frames 20 colour loud");
  EXPECT_EQ(bounded.out.find("8 vectors of 39 values, from 20 of the 288 frames of 6 recordings\n"), 0u)
      << bounded.out;
}

TEST(FrameSamples, DrawFromAllThatGoesBy) {
  FrameSample sample(400);
  Frames block;
  for (int b = 0; b < 40; ++b) {
    block.resize(40, 3);
    for (std::size_t r = 0; r < 40; ++r)
      std::fill_n(block.row(r), 3, static_cast<float>(40 * b + static_cast<int>(r)));
    sample.add(block);
    if (b == 9) {
      EXPECT_EQ(sample.frames().row(399)[2], 399);  // nothing is dropped before it must be
    }
  }
  EXPECT_EQ(sample.seen(), 1600u);
  ASSERT_EQ(sample.frames().rows, 400u);
  std::set<float> kept;
  std::vector<int> quarters(4);
  for (std::size_t r = 0; r < 400; ++r) {
    EXPECT_EQ(sample.frames().row(r)[0], sample.frames().row(r)[2]);
    kept.insert(sample.frames().row(r)[0]);
    ++quarters[static_cast<std::size_t>(sample.frames().row(r)[0] / 400)];
  }
  EXPECT_EQ(kept.size(), 400u);
  for (const int quarter : quarters) EXPECT_NEAR(quarter, 100, 30);
}

TEST_F(Templates, MixturesStartFromClusters) {
  makeVoices(6);
  const std::string train = "train --components 8 --hold-out 3/3 ";
  const Outcome grown = run(train + "-o model --init codebook colour loud");
  ASSERT_EQ(grown.status, 0) << grown.err;
  EXPECT_NE(grown.out.find("loud: 8 components, pass 1:"), std::string::npos) << grown.out;
  EXPECT_EQ(grown.out.find("1 components"), std::string::npos) << grown.out;
  // It starts above one Gaussian.
  const Outcome one = run("train --components 1 --hold-out 3/3 -o single loud");
  const auto first = [](const std::string &out) {
    return std::stod(out.substr(out.find("log-likelihood ", out.find("\nloud: ")) + 15));
  };
  EXPECT_GT(first(grown.out), first("\n" + one.out) + 1);
  const auto json = nlohmann::json::parse(run("evaluate model colour loud --json --held-out").out);
  EXPECT_EQ(json["accuracy"], 1.0);
  const std::string model = readFile(folder / "model");
  run(train + "-o again --init codebook colour loud");
  EXPECT_TRUE(readFile(folder / "again") == model);
}

TEST_F(Templates, WordsAreFoundWhateverTheirSpeed) {
  speak("words/abc.wav", "abc", 1600, 1, 0);
  speak("words/bca.wav", "bca", 1600, 2, 0);
  speak("words/more/cab.wav", "cab", 1600, 3, 0);
  speak("fast/abc.wav", "abc", 1100, 4);
  speak("slow/bca.wav", "bca", 2300, 5, 1000);
  speak("other/fgh.wav", "fgh", 1600, 6);
  speak("short/abc.wav", "abc", 600, 7);
  const auto json = match("--templates words fast/abc.wav slow/bca.wav words/more/cab.wav other/fgh.wav");
  const auto &found = json["utterances"];
  ASSERT_EQ(found.size(), 4u);
  EXPECT_EQ(found[0]["name"], "abc");
  EXPECT_EQ(found[1]["name"], "bca");
  EXPECT_EQ(found[2]["best"][0]["template"], "words/more/cab.wav");
  EXPECT_EQ(found[2]["best"][0]["distance"], 0.0);
  double farthest = 0;
  for (const auto &utterance : found) {
    ASSERT_EQ(utterance["best"].size(), 3u);
    EXPECT_LE(utterance["best"][0]["distance"], utterance["best"][1]["distance"]);
    EXPECT_LE(utterance["best"][1]["distance"], utterance["best"][2]["distance"]);
    farthest = std::max(farthest, utterance["best"][0]["distance"].get<double>());
  }
  EXPECT_EQ(found[3]["best"][0]["distance"], farthest);

  // Distances are those of a frame: lengths do not count.
  const double fast = distance("--templates words fast/abc.wav"),
               slow = distance("--templates words slow/bca.wav");
  EXPECT_LT(std::max(fast, slow), 1.5 * std::min(fast, slow));
  // Silence counts unless it is cut off.
  EXPECT_GT(distance("--templates words slow/bca.wav --trim 0"), 1.2 * slow);

  const std::string between = std::to_string((farthest + std::max(fast, slow)) / 2);
  const Outcome text =
      run("match --templates words --best 1 --reject " + between + " fast/abc.wav other/fgh.wav");
  EXPECT_EQ(text.out.find("fast/abc.wav: abc, distances abc "), 0u) << text.out << text.err;
  EXPECT_NE(text.out.find("\nother/fgh.wav: none, distances "), std::string::npos) << text.out;
  // A template too short or too long is passed over.
  EXPECT_EQ(match("--templates words short/abc.wav")["utterances"][0]["best"].size(), 0u);
  EXPECT_EQ(run("match --templates words --slope 1.2 short/abc.wav").out, "short/abc.wav: none\n");
  EXPECT_EQ(match("--templates words --slope 1.2 fast/abc.wav")["utterances"][0]["name"], nullptr);
  // A beam may lose the best path, and finds no better one; a wider band may find one.
  EXPECT_GE(distance("--templates words --beam 0 fast/abc.wav"), fast);
  EXPECT_LE(distance("--templates words --band 30 fast/abc.wav"), fast);
  // Names of several voices; the nearer example counts.
  const auto both = match("--templates words --templates fast --names abc,bca fast/abc.wav")["utterances"][0];
  ASSERT_EQ(both["best"].size(), 2u);
  EXPECT_EQ(both["best"][0]["template"], "fast/abc.wav");
  EXPECT_EQ(both["best"][0]["distance"], 0.0);
}

TEST(Endpoints, SilenceIsCutToAMargin) {
  Recording recording{"", 8000, std::vector<float>(8000, 0.001f)};
  std::fill_n(recording.samples.begin() + 3200, 800, 0.5f);
  Recording same = recording;
  trimSilence(same, 60, 100);
  EXPECT_EQ(same.samples.size(), 8000u);
  Recording most = recording;
  trimSilence(most, 40, 5000);
  EXPECT_EQ(most.samples.size(), 5000u);
  trimSilence(recording, 40, 100);
  ASSERT_EQ(recording.samples.size(), 800u + 2 * 240);
  EXPECT_EQ(recording.samples[239], 0.001f);
  EXPECT_EQ(recording.samples[240], 0.5f);
}

TEST_F(Templates, EveryFaultGetsOneLine) {
  makeVoices(1);
  writeFile(folder / "old", "old");
  writeWav(folder / "silent/a.wav", std::vector<float>(8000));
  for (const char *name : {"wide.wav", "mixed/b.wav"}) writeWav(folder / name, noise(9000, 0.5f, 1), 16000);
  const struct {
    const char *arguments, *complaint;
  } faults[] = {
      {"codebook -o old none", "none: no such folder"},
      {"codebook -o none/old loud", "none/old: cannot be written"},
      {"codebook -o old silent", "silent/a.wav: is silent"},
      {"codebook -o old silent --skip-unusable", "silent: holds no usable recordings"},
      {"codebook -o old loud --size 0", "the size of the codebook is not within 1 to 16383"},
      {"codebook -o old loud --size 16384", "the size of the codebook is not within 1 to 16383"},
      {"codebook -o old loud --size 49", "a codebook of 49 vectors needs as many frames; there are 48"},
      {"codebook -o old loud --frames 7 --size 8",
       "a codebook of 8 vectors needs as many frames; there are 7"},
      {"codebook -o old loud --frames 0", "the number of frames is not within 1 to"},
      {"codebook -o old loud --method even", "even"},
      {"train -o old loud --init luck", "luck"},
      {"match loud/a.wav", "--templates is required"},
      {"match --templates loud", "files is required"},
      {"match --templates none loud/a.wav", "none: no such folder"},
      {"match --templates silent loud/a.wav", "silent/a.wav: is silent"},
      {"match --templates silent --skip-unusable loud/a.wav", "silent: holds no usable recordings"},
      {"match --templates loud silent/a.wav", "silent/a.wav: is silent"},
      {"match --templates loud --no-resample wide.wav", "wide.wav: is sampled at 16000 Hz"},
      {"codebook -o old loud mixed --no-resample", "mixed/b.wav: is sampled at 16000 Hz"},
      {"match --templates loud --names a,b loud/a.wav", "no template is called 'b'"},
      {"match --templates loud --best 0 loud/a.wav", "fewer than one name"},
      {"match --templates loud --reject -1 loud/a.wav", "the distance of rejection is below 0"},
      {"match --templates loud --band 0 loud/a.wav", "a band widened by less than a frame"},
      {"match --templates loud --slope 2.1 loud/a.wav", "the slope is not within 1 to 2"},
      {"match --templates loud --slope nan loud/a.wav", "the slope is not within 1 to 2"},
      {"match --templates loud --beam -1 loud/a.wav", "the beam is below 0"},
      {"match --templates loud --trim -1 loud/a.wav", "the level of silence"},
  };
  for (const auto &fault : faults) {
    const Outcome outcome = run(fault.arguments);
    EXPECT_GT(outcome.status, 0) << fault.arguments;
    EXPECT_EQ(outcome.out, "") << fault.arguments;
    EXPECT_NE(outcome.err.find(fault.complaint), std::string::npos) << fault.arguments << "\n" << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_EQ(readFile(folder / "old"), "old") << fault.arguments;
  }
}

}  // namespace
}  // namespace orv::test
