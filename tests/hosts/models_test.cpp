#include <zlib.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "common/error.h"
#include "common/model.h"
#include "common/shortlist.h"
#include "common/trainer.h"
#include "hosts/support.h"

namespace orv::test {
namespace {

Frames sample(std::size_t rows, std::int32_t width, unsigned seed) {
  std::mt19937 random(seed);
  const auto normal = [&] {  // close enough: the sum of twelve uniform numbers
    double sum = -6;
    for (int i = 0; i < 12; ++i) sum += static_cast<double>(random()) / 4294967296.0;
    return sum;
  };
  Frames frames;
  frames.resize(rows, width);
  for (std::size_t r = 0; r < rows; ++r) {
    const double side = random() % 4 == 0 ? 3 : -1;  // a quarter of the rows about 3, the others about -1
    for (std::int32_t j = 0; j < width; ++j)
      frames.row(r)[j] = static_cast<float>(side + (j + 1) * 0.5 * normal());
  }
  return frames;
}

double plainScore(const Mixture &mixture, const Frames &frames) {
  double total = 0;
  for (std::size_t r = 0; r < frames.rows; ++r) {
    double sum = 0;
    for (std::size_t m = 0; m < mixture.weights.size(); ++m) {
      double exponent = std::log(mixture.weights[m]);
      for (std::int32_t j = 0; j < frames.width; ++j) {
        const double v = mixture.variances.row(m)[j], d = frames.row(r)[j] - mixture.means.row(m)[j];
        exponent -= 0.5 * (std::log(2 * M_PI * v) + d * d / v);
      }
      sum += std::exp(exponent);
    }
    total += std::log(sum);
  }
  return total / static_cast<double>(frames.rows);
}

// Classes of four Gaussians each, about points of their own.
Model randomModel() {
  Model model;
  std::mt19937 random(3);
  for (int c = 0; c < 3; ++c) {
    Mixture mixture(4, 5);
    for (std::size_t m = 0; m < 4; ++m)
      for (std::size_t j = 0; j < 5; ++j) {
        mixture.means.row(m)[j] = static_cast<float>(random() % 400) / 100 - 2;
        mixture.variances.row(m)[j] = 1 + static_cast<float>(random() % 100) / 100;
      }
    mixture.prepare();
    model.classes.push_back({"class", mixture});
  }
  return model;
}

TEST(Shortlists, OfAllGaussiansGiveTheFullScoreAndShorterOnesALower) {
  const Model model = randomModel();
  const Frames frames = sample(500, 5, 4);
  const auto all = Shortlists(model, 4).scores(frames), one = Shortlists(model, 1).scores(frames);
  ASSERT_EQ(all.size(), 3U);
  for (std::size_t c = 0; c < 3; ++c) {
    EXPECT_NEAR(all[c], plainScore(model.classes[c].mixture, frames), 1e-5);
    EXPECT_LT(one[c], all[c]);
    EXPECT_GT(
        one[c],
        all[c] - 1.5);  // the best of four is within ln 4 of their sum, where the centroid tells which it is
  }
}

TEST(Trainer, FindsTheComponentsThatMadeTheData) {
  const Frames frames = sample(20000, 5, 1);
  TrainingOptions options;
  options.components = 2;
  options.passes = 200;
  options.leastGain = 1e-6;
  const auto floors = varianceFloors({frames}, 0.001);
  std::vector<double> gains[3];
  Mixture mixture =
      trainMixture(frames, floors, options, [&](std::int32_t n, std::int32_t pass, double logLikelihood) {
        ASSERT_LE(n, 2);
        ASSERT_EQ(static_cast<std::size_t>(pass), gains[n].size() + 1);
        gains[n].push_back(logLikelihood);
      });
  const std::size_t far = mixture.means.row(0)[0] > 1 ? 0 : 1, near = 1 - far;
  EXPECT_NEAR(mixture.weights[far], 0.25, 0.01);
  for (std::int32_t j = 0; j < 5; ++j) {
    const double deviation = (j + 1) * 0.5;
    EXPECT_NEAR(mixture.means.row(near)[j], -1, 0.05 * deviation + 0.02);
    EXPECT_NEAR(mixture.means.row(far)[j], 3, 0.1 * deviation + 0.02);
    EXPECT_NEAR(mixture.variances.row(near)[j], deviation * deviation, 0.06 * deviation * deviation);
  }
  for (const auto &passes : gains) EXPECT_TRUE(std::is_sorted(passes.begin(), passes.end()));
  EXPECT_NEAR(gains[2].back(), plainScore(mixture, frames), 1e-5);
  EXPECT_NEAR(mixture.score(frames), plainScore(mixture, frames), 1e-5);
}

TEST(Trainer, NeverReportsAFallAndKeepsTheBestAmongFloorsAndFewFrames) {
  // Floors as large as the variances themselves, components without frames of their own, and gains down to
  // nothing.
  for (unsigned seed = 0; seed < 6; ++seed) {
    Frames frames = sample(40 + 300 * seed, 3, seed);
    if (seed % 2 == 0) std::fill(frames.values.begin(), frames.values.begin() + 60, 7.0f);
    TrainingOptions options;
    options.components = 23;
    options.passes = 60;
    options.leastGain = 0;
    std::int32_t size = 0;
    double last = 0;
    const auto floors = varianceFloors({frames}, seed < 3 ? 0.3 : 0.0);
    const Mixture mixture =
        trainMixture(frames, floors, options, [&](std::int32_t n, std::int32_t, double now) {
          if (n == size) {
            EXPECT_GE(now, last);
          }
          size = n;
          last = now;
        });
    EXPECT_EQ(mixture.components(), std::min(23, static_cast<int>(frames.rows / 10)));
    EXPECT_NEAR(plainScore(mixture, frames), last, 2e-5);
    for (std::size_t m = 0; m < mixture.weights.size(); ++m) {
      for (std::size_t j = 0; j < 3; ++j)
        EXPECT_GE(mixture.variances.row(m)[j], static_cast<float>(floors[j]));
    }
  }
}

class Models : public Hosts {
 protected:
  Models() {
    model.sampleRate = 8000;
    model.features.cepstra = 1;
    model.features.lowHz = 100.25;
    model.heldOut = Fold::parse("2/5");
    model.transform.kind = TransformKind::lda;
    model.transform.mean = {1.5f, 2, 3, -4, 5, 6};
    model.transform.matrix.resize(5, 6);
    for (std::size_t r = 0; r < 5; ++r)
      for (std::size_t j = 0; j < 6; ++j)
        model.transform.matrix.row(r)[j] = static_cast<float>(r) / 3 - static_cast<float>(j);
    Mixture mixture(2, 5);
    mixture.weights = {0.3, 0.7};
    for (std::size_t i = 0; i < mixture.means.values.size(); ++i) {
      mixture.means.values[i] = 0.1f * static_cast<float>(i);
      mixture.variances.values[i] = 1 / 3.0f + static_cast<float>(i);
    }
    mixture.prepare();
    model.classes = {{"one", mixture}, {"two \xc3\xa9", mixture}};
  }

  std::string complaint(const std::string &contents) {
    writeFile(folder / "model", contents);
    try {
      loadModel(folder / "model");
    } catch (const Error &error) {
      return error.what();
    }
    return "none";
  }

  Model model;
};

TEST_F(Models, ComeBackAsTheyWereStored) {
  const std::string contents = encode(model);
  writeFile(folder / "model", contents);
  const Model loaded = loadModel(folder / "model");
  EXPECT_TRUE(encode(loaded) == contents);
  EXPECT_EQ(loaded.classes[1].name, "two \xc3\xa9");
  EXPECT_EQ(loaded.classes[1].mixture.constants, model.classes[1].mixture.constants);
  EXPECT_EQ(loaded.features.lowHz, 100.25);
  EXPECT_EQ(loaded.heldOut.text(), "2/5");
  EXPECT_EQ(loaded.transform.mean, model.transform.mean);
  EXPECT_EQ(loaded.transform.matrix.row(4)[5], model.transform.matrix.row(4)[5]);
}

TEST_F(Models, AreRefusedWhenDamagedAnywhere) {
  const std::string contents = encode(model);
  for (std::size_t i = 0; i < contents.size(); ++i) {
    std::string damaged = contents;
    damaged[i] = static_cast<char>(damaged[i] ^ (1 << (i % 8)));
    ASSERT_NE(complaint(damaged), "none") << "byte " << i;
    if (i % 7 == 0) {
      ASSERT_NE(complaint(contents.substr(0, i)), "none") << "cut at " << i;
    }
  }
  EXPECT_NE(complaint(contents + '\0').find("damaged"), std::string::npos);
  EXPECT_NE(complaint(contents.substr(0, contents.size() - 1)).find("damaged"), std::string::npos);
}

TEST_F(Models, AreRefusedWhenForeignOrOfValuesOutOfRange) {
  using Json = nlohmann::ordered_json;
  const auto pack = [](const Json &body, int version) {
    const auto bytes = Json::to_cbor(body);
    char sum[9];
    std::snprintf(sum, sizeof sum, "%08lx", crc32_z(0, bytes.data(), bytes.size()));
    std::string file;
    Json::to_cbor(
        Json{{"format", "orv-model"}, {"version", version}, {"crc32", sum}, {"model", Json::binary(bytes)}},
        file);
    return file;
  };
  const std::string contents = encode(model);
  const Json outer = Json::from_cbor(contents);
  const Json body = Json::from_cbor(outer.at("model").get_binary());
  ASSERT_TRUE(pack(body, 2) == contents);

  const std::string file = (folder / "model").string();
  EXPECT_EQ(complaint(pack(body, 3)), file + ": is a model of version 3; this program reads versions 1 to 2");
  EXPECT_EQ(complaint(pack(body, 0)), file + ": is a model of version 0; this program reads versions 1 to 2");
  // Version 1 had no transform.
  Json old = body;
  old.erase("transform");
  EXPECT_EQ(complaint(pack(old, 2)), file + ": is a damaged model");
  for (Json &one : old["classes"])
    for (const char *rows : {"means", "variances"})
      for (Json &row : one[rows]) row.push_back(1);
  EXPECT_EQ(complaint(pack(old, 1)), "none");
  EXPECT_EQ(complaint("RIFF, perhaps"), file + ": is not a model of orv");
  EXPECT_EQ(complaint(""), file + ": is not a model of orv");
  EXPECT_EQ(complaint(std::string(1 << 20, '\x81')), file + ": is not a model of orv");
  const std::vector<std::pair<const char *, Json>> changes = {{"/sampleRate", 0},
                                                              {"/features/bands", 4000},
                                                              {"/features/window", 9},
                                                              {"/features/cepstra", 2},
                                                              {"/classes", Json::array()},
                                                              {"/classes/0/weights", {0.5}},
                                                              {"/classes/0/weights/0", -1},
                                                              {"/classes/0/variances/1/5", 0},
                                                              {"/classes/0/means/0", {1, 2}},
                                                              {"/classes/0/name", 3},
                                                              {"/classes/0/means/0/0", NAN},
                                                              {"/heldOut", "7/5"},
                                                              {"/transform/kind", "none"},
                                                              {"/transform/kind", "ica"},
                                                              {"/transform/mean", {1, 2}},
                                                              {"/transform/matrix/0/1", NAN},
                                                              {"/transform/matrix", Json::array()},
                                                              {"/transform/matrix/4", {1, 2}},
                                                              {"/transform/matrix/5", {1, 2, 3, 4, 5, 6}}};
  for (const auto &[where, value] : changes) {
    Json changed = body;
    changed[Json::json_pointer(where)] = value;
    EXPECT_EQ(complaint(pack(changed, 2)), file + ": is a damaged model") << where;
  }
}

}  // namespace
}  // namespace orv::test
