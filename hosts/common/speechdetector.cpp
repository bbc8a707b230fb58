#include "common/speechdetector.h"

#include <cstddef>
#include <cstdint>

#include "common/error.h"

namespace orv {
namespace {

constexpr std::int32_t kSpeech = 1, kNone = 4;
constexpr std::size_t kDelay = 4;  // blocks at the start that no decision is about

}  // namespace

SpeechDetector::SpeechDetector() {
  std::int32_t size = 0;
  require(orvsVADGetBufSize_Aurora_32f(&size), "orvsVADGetBufSize_Aurora_32f");
  state_.resize(static_cast<std::size_t>(size));
  require(orvsVADInit_Aurora_32f(state()), "orvsVADInit_Aurora_32f");
}

void SpeechDetector::block(const NoiseReducer::Block &block) {
  std::int32_t decision = 0;
  require(orvsVADDecision_Aurora_32f(block.melGains.data(), block.gains.data(), 0, &decision, state()),
          "orvsVADDecision_Aurora_32f");
  note(decision);
}

void SpeechDetector::flush() {
  std::int32_t decision = 0;
  do {
    require(orvsVADFlush_Aurora_32f(&decision, state()), "orvsVADFlush_Aurora_32f");
    note(decision);
  } while (decision != kNone);
  ended_ = true;
}

void SpeechDetector::note(int decision) {
  if (decision == kNone) return;
  if (decisions_.empty()) decisions_.assign(kDelay, decision == kSpeech);
  decisions_.push_back(decision == kSpeech);
}

}  // namespace orv
