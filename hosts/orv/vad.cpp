#include <cmath>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "common/audio.h"
#include "common/bandsplit.h"
#include "common/error.h"
#include "common/noisereduction.h"
#include "common/outputfile.h"
#include "common/resampler.h"
#include "common/speechdetector.h"
#include "orv/commands.h"

namespace orv {
namespace {

constexpr int kRate = 8000;  // that the detector works at
constexpr std::size_t kLeastBlocks = 11;
constexpr double kBlockSeconds = static_cast<double>(NoiseReducer::kHop) / kRate;

struct Arguments {
  std::string input, output;
  bool json = false, frames = false;
};

// Where results go as they come: a file that takes its place at the end, or standard output.
class Results {
 public:
  explicit Results(const std::string &file) {
    if (!file.empty()) stream_.emplace(OutputFile(file).stream());
  }
  void append(const std::string &text) {
    if (stream_) {
      stream_->append(text);
    } else {
      std::fwrite(text.data(), 1, text.size(), stdout);
    }
  }
  void commit() {
    if (stream_) stream_->commit();
  }

 private:
  std::optional<OutputFile::Stream> stream_;
};

// Rows of a table, or members of a JSON array. Nothing is written before the first of them or the end.
class Rows {
 public:
  // Columns of the table; the array's name.
  Rows(Results &results, bool json, const std::string &columns, const std::string &name, int sampleRate)
      : results_(results), json_(json) {
    head_ = json ? "{\n  \"sampleRate\": " + std::to_string(sampleRate) + ",\n  \"" + name + "\": ["
                 : columns + "\n";
  }
  void row(const nlohmann::ordered_json &values) {
    std::string line;
    if (json_) {
      line = (rows_ == 0 ? "\n    " : ",\n    ") + values.dump();
    } else {
      for (const auto &value : values) line += (line.empty() ? "" : ",") + value.dump();
      line += "\n";
    }
    results_.append(std::exchange(head_, "") + line);
    ++rows_;
  }
  void end() {
    results_.append(std::exchange(head_, "") + (!json_ ? "" : rows_ == 0 ? "]\n}\n" : "\n  ]\n}\n"));
    results_.commit();
  }

 private:
  Results &results_;
  bool json_;
  std::string head_;  // until it is written
  std::size_t rows_ = 0;
};

double milliseconds(double seconds) { return std::round(seconds * 1000) / 1000; }

// The noise reducer's blocks of 10 ms, one decision each.
class Segmenter {
 public:
  Segmenter(Rows &rows, bool frames) : rows_(rows), frames_(frames) {}

  void block(const NoiseReducer::Block &block) {
    ++blocks_;
    detector_.block(block);
    release();
  }

  // The recording ends after so many seconds; the last block may reach beyond.
  void end(double seconds) {
    detector_.flush();
    release();
    if (begun_) rows_.row({{"begin", milliseconds(*begun_)}, {"end", milliseconds(seconds)}});
  }

  std::size_t blocks() const { return blocks_; }

 private:
  void release() {
    for (; decided_ < blocks_ && detector_.known(); ++decided_, detector_.next())
      decide(static_cast<double>(decided_) * kBlockSeconds, detector_.speech());
  }

  void decide(double seconds, bool speech) {
    if (frames_) {
      rows_.row({{"seconds", milliseconds(seconds)}, {"speech", speech ? 1 : 0}});
    } else if (speech && !begun_) {
      begun_ = seconds;
    } else if (!speech && begun_) {
      rows_.row({{"begin", milliseconds(*begun_)}, {"end", milliseconds(seconds)}});
      begun_.reset();
    }
  }

  Rows &rows_;
  bool frames_;
  SpeechDetector detector_;
  std::size_t blocks_ = 0, decided_ = 0;
  std::optional<double> begun_;  // the segment that goes on
};

void run(const Arguments &arguments) {
  RecordingReader source(arguments.input);
  const int rate = source.sampleRate();
  Results results(arguments.output);
  Rows rows(results, arguments.json, arguments.frames ? "seconds,speech" : "begin,end",
            arguments.frames ? "frames" : "segments", rate);
  Segmenter segmenter(rows, arguments.frames);
  NoiseReducer reducer;
  const auto toBlock = [&](const NoiseReducer::Block &block) { segmenter.block(block); };
  const auto toLow = [&](std::span<const float> low, std::span<const float>) { reducer.push(low, toBlock); };
  // 16 kHz as in the front end: the band below 4 kHz, of half the rate.
  const bool wide = rate == 2 * kRate;
  BandSplit split;
  std::optional<Resampler> resampler;
  if (!wide && rate != kRate) {
    try {
      resampler.emplace(rate, kRate, Quality::medium);
    } catch (const Error &reason) {
      throw Error(source.file(), reason.what());
    }
  }

  std::size_t read = 0;
  std::vector<float> converted;
  const auto take = [&](std::span<const float> samples, bool end) {
    if (wide) {
      split.push(samples, toLow);
      if (end) split.flush(toLow);
    } else if (resampler) {
      converted.clear();
      resampler->convert(samples, end, converted);
      reducer.push(converted, toBlock);
    } else {
      reducer.push(samples, toBlock);
    }
    if (end) reducer.flush(toBlock);
  };
  for (auto samples = source.read(); !samples.empty(); samples = source.read()) {
    read += samples.size();
    take(samples, false);
  }
  take({}, true);
  const double seconds = static_cast<double>(read) / rate;
  if (segmenter.blocks() < kLeastBlocks)
    throw UnusableRecording(
        source.file(), "lasts " + std::to_string(std::lround(seconds * 1000)) + " ms; the detector needs " +
                           std::to_string(std::lround(kLeastBlocks * kBlockSeconds * 1000)) + " ms");
  segmenter.end(seconds);
  rows.end();
}

}  // namespace

void addVad(CLI::App &app) {
  auto arguments = std::make_shared<Arguments>();
  CLI::App *command = app.add_subcommand("vad", "Tell where a recording holds speech");
  command->add_option("input", arguments->input, "Recording, one channel; - is standard input")
      ->required()
      ->option_text("IN.wav");
  command->add_option("-o,--output", arguments->output, "Where the table goes instead of standard output")
      ->option_text("FILE");
  command->add_flag("--json", arguments->json, "Write JSON instead of comma-separated values");
  command->add_flag("--frames", arguments->frames,
                    "Write the decision about every 10 ms instead of segments");
  command->callback([arguments] { run(*arguments); });
}

}  // namespace orv
