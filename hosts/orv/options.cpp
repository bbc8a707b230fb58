#include "orv/options.h"

#include <map>

namespace orv {

void addFeatureOptions(CLI::App &command, FeatureOptions &options) {
  static const std::map<std::string, Window> windows = {
      {"hamming", Window::hamming}, {"hann", Window::hann}, {"rectangular", Window::rectangular}};
  static const std::map<std::string, FeatureKind> kinds = {{"mfcc", FeatureKind::mfcc},
                                                           {"fbank", FeatureKind::fbank},
                                                           {"lpcc", FeatureKind::lpcc},
                                                           {"lsf", FeatureKind::lsf}};
  static const std::map<std::string, FrontEnd> frontEnds = {{"plain", FrontEnd::plain},
                                                            {"aurora", FrontEnd::aurora}};
  const std::string group = "Features";
  command
      .add_option("--front-end", options.frontEnd,
                  "plain (default), or aurora: for speech in noise, at 8 or 16 kHz; of the options below it "
                  "takes the last two")
      ->transform(CLI::CheckedTransformer(frontEnds))
      ->option_text("NAME")
      ->group(group);
  command
      .add_option("--kind", options.kind,
                  "mfcc (default): mel cepstra; fbank: log band energies; lpcc: cepstra of a linear "
                  "predictor; lsf: its line "
                  "spectrum frequencies")
      ->transform(CLI::CheckedTransformer(kinds))
      ->option_text("NAME")
      ->group(group);
  command.add_option("--frame", options.frameMs, "Length of a frame in ms")
      ->capture_default_str()
      ->group(group);
  command.add_option("--hop", options.hopMs, "From frame to frame in ms")
      ->capture_default_str()
      ->group(group);
  command.add_option("--window", options.window, "hamming (default), hann or rectangular")
      ->transform(CLI::CheckedTransformer(windows))
      ->option_text("NAME")
      ->group(group);
  command.add_option("--preemphasis", options.preEmphasis, "a of x[n] - a x[n-1]")
      ->capture_default_str()
      ->group(group);
  command.add_option("--bands", options.bands, "Mel bands")->capture_default_str()->group(group);
  command.add_option("--low", options.lowHz, "Lower limit of the bands in Hz")
      ->capture_default_str()
      ->group(group);
  command.add_option("--high", options.highHz, "Upper limit of the bands in Hz; 0: half the sample rate")
      ->capture_default_str()
      ->group(group);
  command.add_option("--cepstra", options.cepstra, "Cepstral coefficients beside C0")
      ->capture_default_str()
      ->group(group);
  command.add_option("--lifter", options.lifter, "Parameter of the sinusoidal lifter")
      ->capture_default_str()
      ->group(group);
  command.add_option("--order", options.order, "Order of the linear predictor, even")
      ->capture_default_str()
      ->group(group);
  command
      .add_flag("!--no-mean-normalisation", options.meanNormalisation,
                "Keep the mean of each coefficient over the recording")
      ->group(group);
  command.add_flag("--drop-pauses", options.dropPauses, "With aurora: leave out frames without speech")
      ->group(group);
}

void addTransformOptions(CLI::App &command, TransformOptions &options) {
  static const std::map<std::string, TransformKind> kinds = {{"pca", TransformKind::pca},
                                                             {"lda", TransformKind::lda}};
  const std::string group = "Transform";
  CLI::Option *kind =
      command
          .add_option("--transform", options.kind,
                      "Transform the features linearly. pca: onto their principal components; lda: "
                      "onto the directions that tell the sounds of the voices apart")
          ->transform(CLI::CheckedTransformer(kinds))
          ->option_text("NAME")
          ->group(group);
  command.add_option("--dims", options.dims, "Values that the transform keeps; default: all")
      ->needs(kind)
      ->option_text("N")
      ->check(CLI::PositiveNumber)
      ->group(group);
}

void addResampleOption(CLI::App &command, bool &resample) {
  command.add_flag("!--no-resample", resample,
                   "Refuse recordings of another sample rate instead of converting them");
}

void addSkipOption(CLI::App &command, bool &skip) {
  command.add_flag("--skip-unusable", skip, "Leave out recordings that are empty, too short or silent");
}

}  // namespace orv
