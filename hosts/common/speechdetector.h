// Which blocks of a noise reducer hold speech.

#ifndef ORV_HOSTS_COMMON_SPEECHDETECTOR_H
#define ORV_HOSTS_COMMON_SPEECHDETECTOR_H

#include <deque>
#include <vector>

#include "common/noisereduction.h"
#include "orvsr/robust.h"

namespace orv {

// The detector of the noise-robust front end, fed with the gains of the Wiener filter. Its decision comes six
// blocks late. One about the first block takes eleven.
class SpeechDetector {
 public:
  SpeechDetector();

  void block(const NoiseReducer::Block &block);
  void flush();

  // The blocks stand in a queue, at whose head is the first of the stream. Whether it is known about the one
  // at the head, and what; then on to the next. A stream too short for a decision is speech, and what stands
  // before the first decision or behind the last goes with it.
  bool known() const { return ended_ || decisions_.size() > 1; }
  bool speech() const { return decisions_.empty() || decisions_.front(); }
  void next() {
    if (decisions_.size() > 1) decisions_.pop_front();
  }

 private:
  VADState_Aurora *state() { return reinterpret_cast<VADState_Aurora *>(state_.data()); }
  void note(int decision);

  std::vector<unsigned char> state_;
  std::deque<bool> decisions_;  // from the next block on; the last decision stays
  bool ended_ = false;
};

}  // namespace orv

#endif
