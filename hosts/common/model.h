// What training leaves behind: how features are made and transformed, and a mixture for each class.

#ifndef ORV_HOSTS_COMMON_MODEL_H
#define ORV_HOSTS_COMMON_MODEL_H

#include <filesystem>
#include <string>
#include <vector>

#include "common/featurechain.h"
#include "common/mixture.h"
#include "common/recordings.h"
#include "common/transform.h"

namespace orv {

struct Model {
  struct Class {
    std::string name;
    Mixture mixture;
  };

  int sampleRate = 0;
  FeatureOptions features;
  Transform transform;
  Fold heldOut;  // the recordings of each folder that training left out
  std::vector<Class> classes;

  FeatureChain chain() const { return FeatureChain(features, sampleRate); }
};

// A model as the bytes of its file: CBOR with the name and version of the format, and a check sum over the
// rest.
std::string encode(const Model &model);

// Reads models of version 1 too, which have no transform. Throws Error if the file is missing, no model, of a
// later version, or damaged in any byte.
Model loadModel(const std::filesystem::path &file);

}  // namespace orv

#endif
