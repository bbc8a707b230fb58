// The subcommands of orv. Each add function declares one, with its options, and what runs when it is chosen;
// a subcommand reports failure by throwing Error.

#ifndef ORV_HOSTS_ORV_COMMANDS_H
#define ORV_HOSTS_ORV_COMMANDS_H

#include <CLI/CLI.hpp>

namespace orv {

void addFeatures(CLI::App &app);
void addTrain(CLI::App &app);
void addEvaluate(CLI::App &app);
void addIdentify(CLI::App &app);
void addPitch(CLI::App &app);
void addDenoise(CLI::App &app);
void addVad(CLI::App &app);
void addResample(CLI::App &app);
void addCodebook(CLI::App &app);
void addMatch(CLI::App &app);

}  // namespace orv

#endif
