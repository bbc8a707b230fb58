#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include "hosts/support.h"

namespace orv::test {
namespace {

class Commands : public Hosts {
 protected:
  std::vector<std::string> listing() const {
    std::vector<std::string> names;
    for (const auto &entry : fs::recursive_directory_iterator(folder)) names.push_back(entry.path().string());
    std::sort(names.begin(), names.end());
    return names;
  }
};

TEST_F(Commands, TrainEvaluateAndIdentify) {
  makeVoices(10);
  Outcome trained = run("train -o model --components 4 --hold-out 5/5 colour loud/");
  ASSERT_EQ(trained.status, 0) << trained.err;
  EXPECT_EQ(trained.err, "");
  std::istringstream lines(trained.out);
  std::string line, size;
  double last = 0;
  int passes = 0;
  while (std::getline(lines, line)) {
    const auto at = line.find("log-likelihood ");
    if (at == std::string::npos) continue;
    const std::string present = line.substr(0, line.find(", pass"));
    const double value = std::stod(line.substr(at + 15));
    if (present == size) {
      EXPECT_GE(value, last) << line;
    }
    size = present;
    last = value;
    ++passes;
  }
  EXPECT_GE(passes, 2 * 3);  // two classes, sizes 1, 2 and 4
  EXPECT_EQ(size, "loud: 4 components");

  const std::string model = readFile(folder / "model");
  ASSERT_EQ(run("train -o again --components 4 --hold-out 5/5 colour loud").status, 0);
  EXPECT_TRUE(readFile(folder / "again") == model);

  const Outcome evaluated = run("evaluate model colour loud --json --held-out");
  ASSERT_EQ(evaluated.status, 0) << evaluated.err;
  const auto json = nlohmann::json::parse(evaluated.out);
  EXPECT_EQ(json["recordings"], 4);
  EXPECT_EQ(json["accuracy"], 1.0);
  EXPECT_EQ(json["classes"], (std::vector<std::string>{"colour", "loud"}));
  EXPECT_EQ(json["confusion"], (std::vector<std::vector<int>>{{2, 0}, {0, 2}}));
  EXPECT_EQ(json["audioSeconds"], 2.0);
  EXPECT_GT(json["realTimeFactor"], 0.0);
  EXPECT_GE(json["totalSeconds"], json["decisionSeconds"]);
  const Outcome listed = run("evaluate model colour loud --json --held-out --shortlist 1");
  EXPECT_EQ(nlohmann::json::parse(listed.out)["shortlist"]["correct"], 4) << listed.err;
  EXPECT_NE(
      run("evaluate model colour loud --shortlist 2").out.find("with shortlists of 2 Gaussians: 100.00 %"),
      std::string::npos);
  EXPECT_EQ(run("evaluate model colour loud --shortlist -1").status, 1);
  // A recording in the wrong folder is seen for what it is.
  fs::rename(folder / "colour/deeper/a.wav", folder / "loud/z.wav");
  const Outcome confused = run("evaluate model loud");
  EXPECT_NE(confused.out.find("10 of 11 recordings recognised, 90.91 %"), std::string::npos) << confused.out;

  const Outcome named = run("identify model loud/b.wav colour/deeper/e.wav");
  EXPECT_EQ(named.out.find("loud/b.wav: loud, score "), 0u) << named.out;
  EXPECT_NE(named.out.find("\ncolour/deeper/e.wav: colour, score "), std::string::npos) << named.out;
  EXPECT_GT(std::stod(named.out.substr(named.out.find("margin ") + 7)), 1.0);
}

TEST_F(Commands, TransformsAreEstimatedStoredAndApplied) {
  makeVoices(6);
  for (const std::string transform : {"pca --dims 6", "lda --dims 6"}) {
    const Outcome trained =
        run("train -o model --components 2 --hold-out 3/3 --transform " + transform + " colour loud");
    ASSERT_EQ(trained.status, 0) << trained.err;
    const Outcome evaluated = run("evaluate model colour loud --json --held-out");
    EXPECT_EQ(nlohmann::json::parse(evaluated.out)["accuracy"], 1.0) << transform << evaluated.err;
    const Outcome named = run("identify model loud/c.wav colour/deeper/f.wav");
    EXPECT_EQ(named.out.find("loud/c.wav: loud, score "), 0u) << named.out;
    EXPECT_NE(named.out.find("\ncolour/deeper/f.wav: colour, score "), std::string::npos) << named.out;
  }
}

TEST_F(Commands, ClustersAndShortlistsTellWhatTheyDidAndChangeNothingWhereThereIsRoom) {
  makeVoices(6);
  ASSERT_EQ(run("train -o plain --components 4 colour loud").status, 0);
  const std::string plain = readFile(folder / "plain");
  ASSERT_EQ(run("train -o roomy --components 4 --cluster 4 --shortlist 4 colour loud").status, 0);
  EXPECT_TRUE(readFile(folder / "roomy") == plain);

  const Outcome clustered = run("train -o model --components 4 --cluster 3 colour loud");
  EXPECT_NE(clustered.out.find("\ncolour: 4 components merged to 3, at a cost of about "), std::string::npos);
  EXPECT_NE(clustered.out.find("\ncolour: 3 components, pass 2: "), std::string::npos) << clustered.out;
  EXPECT_LT(fs::file_size(folder / "model"), 0.85 * static_cast<double>(plain.size()));
  EXPECT_EQ(nlohmann::json::parse(run("evaluate model colour loud --json").out)["accuracy"], 1.0);

  const Outcome listed = run("train -o model --components 4 --shortlist 1 colour loud");
  EXPECT_NE(listed.out.find("\nloud: shortlists of 1 Gaussians: passes "), std::string::npos) << listed.out;
  EXPECT_TRUE(readFile(folder / "model") != plain);
  EXPECT_EQ(nlohmann::json::parse(run("evaluate model colour loud --json").out)["accuracy"], 1.0);
}

TEST_F(Commands, SkipUnusableRecordingsOnlyWhenTold) {
  makeVoices(3);
  writeWav(folder / "colour/empty.wav", {});
  writeWav(folder / "colour/short.wav", noise(599, 0.5f, 1));
  writeWav(folder / "colour/silent.wav", std::vector<float>(8000, 0.0005f));
  writeFile(folder / "colour/notes.txt", "passed over");
  EXPECT_EQ(run("train -o model colour loud").status, 1);
  EXPECT_FALSE(fs::exists(folder / "model"));
  const Outcome trained = run("train -o model --components 1 --skip-unusable colour loud");
  EXPECT_EQ(trained.status, 0);
  for (const char *reason :
       {"skipped colour/empty.wav: holds no samples\n",
        "skipped colour/short.wav: is too short: 599 samples where 600 are needed\n",
        "skipped colour/silent.wav: is silent\n", "\ncolour: 3 recordings, 144 frames\n"}) {
    EXPECT_NE(trained.out.find(reason), std::string::npos) << trained.out;
  }
  const Outcome evaluated = run("evaluate --skip-unusable model colour");
  EXPECT_EQ(evaluated.err, "");
  EXPECT_NE(evaluated.out.find("3 of 3 recordings recognised, 100.00 %\n3 skipped"), std::string::npos)
      << evaluated.out;
}

// Everything that can be wrong gets one line that names the file and the reason, a status, and leaves the
// folder as it was.
TEST_F(Commands, EveryFaultGetsOneLineAndChangesNothing) {
  makeVoices(2);
  ASSERT_EQ(run("train -o model --components 1 colour loud").status, 0);
  ASSERT_EQ(run("train -o old --components 1 colour loud").status, 0);
  writeFile(folder / "text.wav", "no audio");
  writeWav(folder / "empty.wav", {});
  writeWav(folder / "short.wav", noise(599, 0.5f, 1));
  writeWav(folder / "wide.wav", noise(9000, 0.5f, 1), 16000);
  writeWav(folder / "stereo.wav", noise(9000, 0.5f, 1), 8000, 2);
  writeWav(folder / "silent.wav", std::vector<float>(8000));
  auto samples = noise(8000, 0.5f, 1);
  samples[4321] = NAN;
  writeWav(folder / "nan.wav", samples);
  samples[4321] = -INFINITY;
  writeWav(folder / "inf.wav", samples);
  samples[4321] = 1e20f;
  writeWav(folder / "huge.wav", samples);
  fs::create_directories(folder / "bare/inner");
  writeFile(folder / "bare/inner/notes.txt", "no recording");
  fs::create_directories(folder / "mixed");
  fs::copy(folder / "colour/deeper/a.wav", folder / "mixed/a.wav");
  fs::copy(folder / "wide.wav", folder / "mixed/b.wav");
  fs::create_directories(folder / "elsewhere/colour");
  fs::copy(folder / "nan.wav", folder / "elsewhere/colour/a.wav");
  std::string model = readFile(folder / "model");
  writeFile(folder / "cut", model.substr(0, model.size() / 2));
  model[model.size() / 2] ^= 4;
  writeFile(folder / "bent", model);
  writeFile(folder / "line\nbreak.wav", "no audio");

  const struct {
    const char *arguments, *complaint;
  } faults[] = {
      {"features text.wav -o old", "text.wav: cannot be read as audio: "},
      {"features none.wav -o old", "none.wav: no such file"},
      {"features colour -o old", "colour: is a folder"},
      {"features empty.wav -o old", "empty.wav: holds no samples"},
      {"features short.wav -o old", "short.wav: is too short: 599 samples where 600 are needed"},
      {"features stereo.wav -o old", "stereo.wav: has 2 channels; one is needed"},
      {"features nan.wav -o old", "nan.wav: sample 4322 is not a finite number"},
      {"features inf.wav -o old", "inf.wav: sample 4322 is not a finite number"},
      {"features huge.wav -o old", "huge.wav: sample 4322 is far out of range"},
      {"features line*break.wav -o old", "line?break.wav: cannot be read as audio: "},
      {"features wide.wav -o none/out.npy", "none/out.npy: cannot be written: No such file or directory"},
      {"features wide.wav -o colour", "colour: cannot be written: not a regular file"},
      {"features wide.wav -o /dev/null", "/dev/null: cannot be written: not a regular file"},
      {"features wide.wav -o wide.wav/out", "wide.wav/out: cannot be written: Not a directory"},
      {"features wide.wav -o old --frame 0", "a frame of 0 ms is not within 0 to 1000 ms"},
      {"features wide.wav -o old --frame nan", "a frame of nan ms is not within"},
      {"features wide.wav -o old --frame 0.05", "a frame of 0.05 ms is shorter than two samples"},
      {"features wide.wav -o old --hop -1", "a hop of -1 ms is not within"},
      {"features wide.wav -o old --hop 0.01", "a hop of 0.01 ms is shorter than a sample"},
      {"features wide.wav -o old --bands 0", "0 bands are too few"},
      {"features wide.wav -o old --bands 257", "257 bands are more than the 512-point spectrum"},
      {"features wide.wav -o old --bands 200", "200 bands are more than the 512-point spectrum"},
      {"features wide.wav -o old --bands x", "bands"},
      {"features wide.wav -o old --cepstra 25", "25 cepstra are not within 1 to the 24 bands"},
      {"features wide.wav -o old --lifter 0", "a lifter of 0 is below 1"},
      {"features wide.wav -o old --low 0", "bands from 0 to 8000 Hz do not lie within 0 to 8000 Hz"},
      {"features wide.wav -o old --high 8001", "bands from 64 to 8001 Hz do not lie within 0 to 8000 Hz"},
      {"features wide.wav -o old --low 500 --high 400", "bands from 500 to 400 Hz do not lie within"},
      {"features wide.wav -o old --preemphasis 1.5", "a pre-emphasis of 1.5 is not within 0 to 1"},
      {"features wide.wav -o old --window square", "square"},
      {"features wide.wav", "--output is required"},
      {"", "subcommand is required"},
      {"sing", "subcommand is required"},
      {"train -o old none", "none: no such folder"},
      {"train -o old text.wav", "text.wav: is not a folder"},
      {"train -o old bare", "bare: holds no recordings"},
      {"train -o old colour mixed --no-resample", "mixed/b.wav: is sampled at 16000 Hz where 8000 Hz are needed"},
      {"train -o old colour elsewhere/colour", "elsewhere/colour: a folder of this name was given before"},
      {"train -o old elsewhere/colour", "elsewhere/colour/a.wav: sample 4322 is not a finite number"},
      {"train -o none/model colour", "none/model: cannot be written: No such file or directory"},
      {"train -o old colour --components 0", "components is not within 1 to 4096"},
      {"train -o old colour --passes 0", "passes is below 1"},
      {"train -o old colour --hold-out 3/2", "'3/2' is not a fold K/N"},
      {"train -o old colour --hold-out 1/1", "'1/1' is not a fold K/N"},
      {"train -o old mixed --hold-out 5/5 --bands 300", "300 bands are more than"},
      {"train -o old colour --transform pca --dims 40", "40 dimensions are not within 1 to the 39 values"},
      {"train -o old colour --transform pca --dims 0", "dims"},
      {"train -o old colour --dims 3", "--dims requires --transform"},
      {"train -o old colour --transform ica", "ica"},
      {"train -o old colour --cluster -1", "mixtures cannot be merged to fewer than no Gaussians"},
      {"train -o old colour --cluster x", "cluster"},
      {"train -o old colour --shortlist -3", "a shortlist of fewer than no Gaussians cannot be made"},
      {"evaluate none colour", "none: no such file"},
      {"evaluate colour colour", "colour: is not a file"},
      {"evaluate text.wav colour", "text.wav: is not a model of orv"},
      {"evaluate cut colour", "cut: is a damaged model"},
      {"evaluate bent colour", "bent: is a damaged model"},
      {"evaluate model mixed", "mixed: the model has no class of this name"},
      {"evaluate model colour --held-out", "model: was trained without --hold-out"},
      {"evaluate model colour --json --frob", "--frob"},
      {"identify model wide.wav --no-resample", "wide.wav: is sampled at 16000 Hz where 8000 Hz are needed"},
      {"identify model silent.wav", "silent.wav: is silent"},
      {"identify model colour/deeper/a.wav none.wav", "none.wav: no such file"},
      {"identify model colour/deeper/a.wav >/dev/full", "standard output cannot be written"},
  };
  const std::string old = readFile(folder / "old");
  const auto names = listing();
  for (const auto &fault : faults) {
    const Outcome outcome = run(fault.arguments);
    EXPECT_GT(outcome.status, 0) << fault.arguments;
    EXPECT_NE(outcome.err.find(fault.complaint), std::string::npos) << fault.arguments << "\n" << outcome.err;
    EXPECT_EQ(outcome.err.find("orv: "), 0u) << fault.arguments << "\n" << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << fault.arguments << "\n"
                                                                           << outcome.err;
    EXPECT_TRUE(readFile(folder / "old") == old) << fault.arguments;
    EXPECT_EQ(listing(), names) << fault.arguments;
  }
}

TEST_F(Commands, OutputReplacesWhatALinkPointsToAndKeepsItsMode) {
  makeVoices(1);
  writeFile(folder / "real.npy", "old");
  fs::permissions(folder / "real.npy", fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("real.npy", folder / "link.npy");
  ASSERT_EQ(run("features loud/a.wav -o link.npy").status, 0);
  EXPECT_TRUE(fs::is_symlink(folder / "link.npy"));
  EXPECT_EQ(readFile(folder / "real.npy").substr(1, 5), "NUMPY");
  EXPECT_EQ(fs::status(folder / "real.npy").permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Commands, ProgressIsShownOnATerminalOnly) {
  makeVoices(2);
  EXPECT_EQ(run("train -o model --components 1 colour loud").err, "");
  int control = -1, terminal = -1;
  ASSERT_EQ(openpty(&control, &terminal, nullptr, nullptr, nullptr), 0);
  ASSERT_EQ(run("evaluate model colour loud", ttyname(terminal)).status, 0);
  char shown[4096];
  const ssize_t count = read(control, shown, sizeof shown);
  EXPECT_NE(
      std::string(shown, static_cast<std::size_t>(std::max<ssize_t>(count, 0))).find("recognising: 0 of 4"),
      std::string::npos);
  close(control);
  close(terminal);
}

}  // namespace
}  // namespace orv::test
