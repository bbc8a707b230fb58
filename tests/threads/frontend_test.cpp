// Objects of the front end in two threads: those that a transform only reads.

#include "orvsr/frontend.h"

#include "primitives/fft/fft.h"
#include "support/arrays.h"
#include "threads/threads.h"

namespace orv::test {
namespace {

TEST(Threads, TransformWithOneLifter) {
  Random random(4);
  const auto energies = uniform<float>(random, 23, -5, 15);
  OrvsDCTLifterState_32f *lifter = nullptr;
  ASSERT_EQ(orvsDCTLifterInitAlloc_C0_32f(&lifter, 23, 12, 22, 1, 1), 0);
  expectSameInTwoThreads([&] {
    std::vector<float> cepstrum(13);
    EXPECT_EQ(orvsDCTLifter_32f(energies.data(), cepstrum.data(), lifter), 0);
    return cepstrum;
  });
  orvsDCTLifterFree_32f(lifter);
}

// Each call works in a buffer of its own, the caller's or one that the library takes.
TEST(Threads, TransformWithOneFft) {
  Random random(5);
  for (const std::int32_t order : {4, 9, 13}) {
    const auto signal = uniform<float>(random, std::size_t{1} << order, -1, 1);
    OrvRealFftState32f *fft = nullptr;
    ASSERT_EQ(orvsFFTInitAlloc_R_32f(&fft, order, kFftNoDivision, 0), 0);
    std::int32_t bytes = 0;
    ASSERT_EQ(orvsFFTGetBufSize_R_32f(fft, &bytes), 0);
    for (const bool given : {false, true})
      expectSameInTwoThreads([&] {
        std::vector<float> spectrum(signal.size() + 2);
        std::vector<std::uint8_t> work(static_cast<std::size_t>(bytes) + 1);
        EXPECT_EQ(orvsFFTFwd_RToCCS_32f(signal.data(), spectrum.data(), fft, given ? work.data() : nullptr),
                  0);
        return spectrum;
      });
    orvsFFTFree_R_32f(fft);
  }
}

}  // namespace
}  // namespace orv::test
