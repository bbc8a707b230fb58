#include <algorithm>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "common/audio.h"
#include "common/audiosink.h"
#include "common/error.h"
#include "common/noisereduction.h"
#include "common/suppressor.h"
#include "orv/commands.h"

namespace orv {
namespace {

enum class Method { mcra, aurora };

struct Arguments {
  std::string input, output;
  Method method = Method::mcra;
  SuppressionGain gain = SuppressionGain::wiener;
};

// One channel, as the two classes behind it have it in common.
class Channel {
 public:
  virtual ~Channel() = default;
  virtual void process(std::span<const float> samples, bool end, std::vector<float> &out) = 0;
};

class Suppressed : public Channel {
 public:
  Suppressed(int sampleRate, SuppressionGain gain) : suppressor_(sampleRate, gain) {}
  void process(std::span<const float> samples, bool end, std::vector<float> &out) override {
    const auto sink = [&](std::span<const float> made) { out.insert(out.end(), made.begin(), made.end()); };
    suppressor_.push(samples, sink);
    if (end) suppressor_.flush(sink);
  }

 private:
  Suppressor suppressor_;
};

class Reduced : public Channel {
 public:
  void process(std::span<const float> samples, bool end, std::vector<float> &out) override {
    owed_ += samples.size();
    // The last block is filled up with zeros, which nobody sent in.
    const auto sink = [&](const NoiseReducer::Block &block) {
      const std::size_t count = std::min(owed_, block.samples.size());
      out.insert(out.end(), block.samples.begin(),
                 block.samples.begin() + static_cast<std::ptrdiff_t>(count));
      owed_ -= count;
    };
    reducer_.push(samples, sink);
    if (end) reducer_.flush(sink);
  }

 private:
  NoiseReducer reducer_{NoiseReducer::Aim::listening};
  std::size_t owed_ = 0;
};

std::unique_ptr<Channel> makeChannel(const RecordingReader &source, const Arguments &arguments) {
  if (arguments.method == Method::aurora) return std::make_unique<Reduced>();
  try {
    return std::make_unique<Suppressed>(source.sampleRate(), arguments.gain);
  } catch (const Error &reason) {
    throw Error(source.file(), reason.what());
  }
}

void run(const Arguments &arguments) {
  RecordingReader source(arguments.input, Channels::any);
  std::vector<std::unique_ptr<Channel>> channels;
  for (std::size_t c = 0; c < source.channels(); ++c) channels.push_back(makeChannel(source, arguments));
  AudioSink sink(arguments.output, source.sampleRate(), source.channels(), source.format());
  copyThrough(source, sink, "denoising second",
              [&](std::size_t channel, std::span<const float> samples, bool end, std::vector<float> &out) {
                channels[channel]->process(samples, end, out);
              });
  sink.commit();
}

}  // namespace

void addDenoise(CLI::App &app) {
  static const std::map<std::string, Method> methods = {{"mcra", Method::mcra}, {"aurora", Method::aurora}};
  static const std::map<std::string, SuppressionGain> gains = {{"wiener", SuppressionGain::wiener},
                                                               {"emns", SuppressionGain::emns}};
  auto arguments = std::make_shared<Arguments>();
  CLI::App *command = app.add_subcommand("denoise", "Take noise off a recording");
  command->add_option("input", arguments->input, "Recording; - is standard input")
      ->required()
      ->option_text("IN.wav");
  command->add_option("-o,--output", arguments->output, "Recording; the extension tells the format")
      ->required()
      ->option_text("OUT.wav");
  command
      ->add_option("--method", arguments->method, "mcra (default): tracked noise; aurora: two filter stages")
      ->transform(CLI::CheckedTransformer(methods))
      ->option_text("NAME");
  CLI::Option *gain =
      command->add_option("--gain", arguments->gain, "Of method mcra: wiener (default) or emns")
          ->transform(CLI::CheckedTransformer(gains))
          ->option_text("NAME");
  command->callback([arguments, gain] {
    if (gain->count() > 0 && arguments->method == Method::aurora)
      throw Error("--gain goes with --method mcra only");
    run(*arguments);
  });
}

}  // namespace orv
