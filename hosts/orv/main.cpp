#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "common/error.h"
#include "orv/commands.h"
#include "orvsr/core.h"

namespace {

int fail(const std::string &message) {
  std::fprintf(stderr, "orv: %s\n", orv::oneLine(message).c_str());
  return 1;
}

}  // namespace

int main(int argc, char **argv) {
  CLI::App app("Speech recognition and analysis of recordings");
  app.set_version_flag("--version", std::string("orv, with ") + orvsrGetLibVersion()->name + " " +
                                        orvsrGetLibVersion()->version);
  app.require_subcommand(1);
  orv::addFeatures(app);
  orv::addTrain(app);
  orv::addEvaluate(app);
  orv::addIdentify(app);
  orv::addPitch(app);
  orv::addDenoise(app);
  orv::addVad(app);
  orv::addResample(app);
  orv::addCodebook(app);
  orv::addMatch(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError &error) {
    if (error.get_exit_code() == 0) return app.exit(error);  // help and version
    fail(error.what());
    return 2;
  } catch (const std::bad_alloc &) {
    return fail("out of memory");
  } catch (const std::exception &error) {
    return fail(error.what());
  }
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) return fail("standard output cannot be written");
  return 0;
}
