#include "common/model.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "common/error.h"

namespace orv {
namespace {

using Json = nlohmann::ordered_json;
using Bytes = std::vector<std::uint8_t>;

constexpr const char *kFormat = "orv-model";
constexpr int kVersion = 2;
constexpr int kOldestVersion = 1;  // without a transform

std::string checkSum(const Bytes &bytes) {
  char text[9];
  std::snprintf(text, sizeof text, "%08lx", crc32_z(0, bytes.data(), bytes.size()));
  return text;
}

Json matrix(const Frames &frames) {
  Json rows = Json::array();
  for (std::size_t r = 0; r < frames.rows; ++r) {
    rows.push_back(std::vector<float>(frames.row(r), frames.row(r) + frames.width));
  }
  return rows;
}

void need(bool holds) {
  if (!holds) throw Error("out of range");
}

Frames matrix(const Json &json, std::size_t rows, std::int32_t width) {
  need(json.size() == rows);
  Frames frames;
  frames.resize(rows, width);
  for (std::size_t r = 0; r < rows; ++r) {
    const auto values = json.at(r).get<std::vector<float>>();
    need(values.size() == static_cast<std::size_t>(width));
    need(std::all_of(values.begin(), values.end(), [](float v) { return std::isfinite(v); }));
    std::copy(values.begin(), values.end(), frames.row(r));
  }
  return frames;
}

Json toJson(const FeatureOptions &o) {
  return {{"frameMs", o.frameMs},
          {"hopMs", o.hopMs},
          {"window", static_cast<int>(o.window)},
          {"kind", static_cast<int>(o.kind)},
          {"order", o.order},
          {"preEmphasis", o.preEmphasis},
          {"bands", o.bands},
          {"lowHz", o.lowHz},
          {"highHz", o.highHz},
          {"cepstra", o.cepstra},
          {"lifter", o.lifter},
          {"meanNormalisation", o.meanNormalisation},
          {"frontEnd", static_cast<int>(o.frontEnd)},
          {"dropPauses", o.dropPauses}};
}

FeatureOptions featureOptions(const Json &json) {
  FeatureOptions o;
  const int window = json.at("window").get<int>();
  need(window >= 0 && window <= static_cast<int>(Window::rectangular));
  o.window = static_cast<Window>(window);
  const int kind = json.at("kind").get<int>();
  need(kind >= 0 && kind <= static_cast<int>(FeatureKind::lsf));
  o.kind = static_cast<FeatureKind>(kind);
  json.at("order").get_to(o.order);
  json.at("frameMs").get_to(o.frameMs);
  json.at("hopMs").get_to(o.hopMs);
  json.at("preEmphasis").get_to(o.preEmphasis);
  json.at("bands").get_to(o.bands);
  json.at("lowHz").get_to(o.lowHz);
  json.at("highHz").get_to(o.highHz);
  json.at("cepstra").get_to(o.cepstra);
  json.at("lifter").get_to(o.lifter);
  json.at("meanNormalisation").get_to(o.meanNormalisation);
  // Models from before there was a choice have neither of these.
  const int frontEnd = json.value("frontEnd", 0);
  need(frontEnd >= 0 && frontEnd <= static_cast<int>(FrontEnd::aurora));
  o.frontEnd = static_cast<FrontEnd>(frontEnd);
  o.dropPauses = json.value("dropPauses", false);
  return o;
}

constexpr std::array<const char *, 3> kTransforms = {"none", "pca", "lda"};

Json toJson(const Transform &transform) {
  return {{"kind", kTransforms[static_cast<std::size_t>(transform.kind)]},
          {"mean", transform.mean},
          {"matrix", matrix(transform.matrix)}};
}

Transform transformOf(const Json &json, std::int32_t width) {
  const auto kind = std::find(kTransforms.begin(), kTransforms.end(), json.at("kind").get<std::string>());
  need(kind != kTransforms.end());
  Transform transform;
  transform.kind = static_cast<TransformKind>(kind - kTransforms.begin());
  if (transform.kind == TransformKind::none) return transform;
  const Json &rows = json.at("matrix");
  need(!rows.empty() && rows.size() <= static_cast<std::size_t>(width));
  transform.matrix = matrix(rows, rows.size(), width);
  transform.mean = matrix(Json::array({json.at("mean")}), 1, width).values;
  transform.mean.resize(static_cast<std::size_t>(width));  // without the padding
  return transform;
}

Model fromJson(const Json &json, int version) {
  Model model;
  json.at("sampleRate").get_to(model.sampleRate);
  need(model.sampleRate > 0);
  model.features = featureOptions(json.at("features"));
  std::int32_t width = model.chain().width();
  if (version >= 2) model.transform = transformOf(json.at("transform"), width);
  if (model.transform.kind != TransformKind::none)
    width = static_cast<std::int32_t>(model.transform.matrix.rows);
  if (const auto fold = json.at("heldOut").get<std::string>(); !fold.empty())
    model.heldOut = Fold::parse(fold);
  for (const Json &entry : json.at("classes")) {
    Model::Class one;
    entry.at("name").get_to(one.name);
    Mixture &mixture = one.mixture;
    entry.at("weights").get_to(mixture.weights);
    need(!mixture.weights.empty());
    need(std::all_of(mixture.weights.begin(), mixture.weights.end(),
                     [](double w) { return w > 0 && w <= 1; }));
    mixture.means = matrix(entry.at("means"), mixture.weights.size(), width);
    mixture.variances = matrix(entry.at("variances"), mixture.weights.size(), width);
    for (std::size_t r = 0; r < mixture.variances.rows; ++r) {
      const float *row = mixture.variances.row(r);
      need(std::all_of(row, row + width, [](float v) { return v > 0; }));
    }
    mixture.prepare();
    model.classes.push_back(std::move(one));
  }
  need(!model.classes.empty());
  return model;
}

Bytes readFile(const std::filesystem::path &file) {
  std::error_code failure;
  const auto status = std::filesystem::status(file, failure);
  if (!std::filesystem::exists(status)) throw Error(file, "no such file");
  if (!std::filesystem::is_regular_file(status)) throw Error(file, "is not a file");
  std::ifstream stream(file, std::ios::binary);
  Bytes bytes{std::istreambuf_iterator<char>(stream), {}};
  if (!stream) throw Error(file, "cannot be read");
  return bytes;
}

}  // namespace

std::string encode(const Model &model) {
  Json classes = Json::array();
  for (const Model::Class &one : model.classes) {
    classes.push_back({{"name", one.name},
                       {"weights", one.mixture.weights},
                       {"means", matrix(one.mixture.means)},
                       {"variances", matrix(one.mixture.variances)}});
  }
  const Json body = {{"sampleRate", model.sampleRate},
                     {"features", toJson(model.features)},
                     {"transform", toJson(model.transform)},
                     {"heldOut", model.heldOut.parts == 0 ? "" : model.heldOut.text()},
                     {"classes", std::move(classes)}};
  Bytes bytes = Json::to_cbor(body);
  Json file = {{"format", kFormat}, {"version", kVersion}, {"crc32", checkSum(bytes)}};
  file["model"] = Json::binary(std::move(bytes));
  std::string encoded;
  Json::to_cbor(file, encoded);
  return encoded;
}

Model loadModel(const std::filesystem::path &file) {
  const Bytes bytes = readFile(file);
  // A model starts with its first key and the name of the format, which also keeps foreign files away from
  // the parser. The byte ahead of them counts the keys.
  const Bytes head = Json::to_cbor(Json{{"format", kFormat}});
  if (bytes.size() < head.size() || !std::equal(head.begin() + 1, head.end(), bytes.begin() + 1)) {
    throw Error(file, "is not a model of orv");
  }
  const Error damaged(file, "is a damaged model");
  Json outer;
  int version = 0;
  try {
    outer = Json::from_cbor(bytes);
    outer.at("version").get_to(version);
  } catch (const nlohmann::json::exception &) {
    throw damaged;
  }
  if (version < kOldestVersion || version > kVersion) {
    throw Error(file, "is a model of version " + std::to_string(version) + "; this program reads versions " +
                          std::to_string(kOldestVersion) + " to " + std::to_string(kVersion));
  }
  try {
    const Bytes &body = outer.at("model").get_binary();
    if (outer.size() != 4 || outer.at("crc32").get<std::string>() != checkSum(body)) throw damaged;
    return fromJson(Json::from_cbor(body), version);
  } catch (const nlohmann::json::exception &) {
    throw damaged;
  } catch (const Error &) {
    throw damaged;
  }
}

}  // namespace orv
