// Options that several subcommands have.

#ifndef ORV_HOSTS_ORV_OPTIONS_H
#define ORV_HOSTS_ORV_OPTIONS_H

#include <CLI/CLI.hpp>

#include "common/featurechain.h"
#include "common/transform.h"

namespace orv {

void addFeatureOptions(CLI::App &command, FeatureOptions &options);
void addTransformOptions(CLI::App &command, TransformOptions &options);
void addSkipOption(CLI::App &command, bool &skip);
void addResampleOption(CLI::App &command, bool &resample);

}  // namespace orv

#endif
