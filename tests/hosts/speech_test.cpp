// Recorded speech, where its packages are installed.

#include <nlohmann/json.hpp>

#include "hosts/support.h"

namespace orv::test {
namespace {

using Speech = Hosts;

TEST_F(Speech, ThreeSpeakersAreToldApart) {
  const fs::path sounds = "/usr/share/asterisk/sounds";
  for (const char *voice : {"fr_CA_f_June", "it_IT_m_Carlo", "ru_RU_f_IvrvoiceRU"}) {
    if (!fs::exists(sounds / voice)) GTEST_SKIP() << voice << " is not installed";
    fs::create_directories(folder / voice);
    for (const auto &prompt : fs::directory_iterator(sounds / voice)) {
      // The prompts of the voice mail, some hundred for each voice.
      if (prompt.path().filename().string()[0] == 'v') {
        fs::create_symlink(prompt.path(), folder / voice / prompt.path().filename());
      }
    }
  }
  const Outcome trained = run("train -o model --components 8 --hold-out 3/3 --skip-unusable fr* it* ru*");
  ASSERT_EQ(trained.status, 0) << trained.err;
  const Outcome evaluated = run("evaluate model --held-out --skip-unusable --json fr* it* ru*");
  ASSERT_EQ(evaluated.status, 0) << evaluated.err;
  const auto json = nlohmann::json::parse(evaluated.out);
  EXPECT_GT(json["recordings"], 50);
  EXPECT_GT(json["accuracy"], 0.9) << evaluated.out;
}

}  // namespace
}  // namespace orv::test
