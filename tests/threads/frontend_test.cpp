// Objects of the front end in two threads: those that a transform only reads.

#include "orvsr/frontend.h"

#include "primitives/fft/fft.h"
#include "support/arrays.h"
#include "threads/threads.h"

namespace orv::test {
namespace {

// A bank without a transform of its own. One that takes samples is written by every call, and is not shared.
TEST(Threads, EvaluateOneFilterBank) {
  Random random(6);
  const auto spectrum = uniform<float>(random, 129, 0, 100);
  std::vector<std::int16_t> rounded(spectrum.begin(), spectrum.end());
  std::int32_t order = 0;
  OrvsFBankState_32f *bank = nullptr;
  OrvsFBankState_16s *integers = nullptr;
  ASSERT_EQ(orvsMelFBankInitAlloc_32f(&bank, &order, 256, 8000, 64, 4000, 23, 1127, 700, orvFBankMelWeights),
            0);
  ASSERT_EQ(
      orvsMelFBankInitAlloc_16s(&integers, &order, 256, 8000, 64, 4000, 23, 1127, 700, orvFBankMelWeights),
      0);
  expectSameInTwoThreads([&] {
    std::vector<float> bands(23);
    std::vector<std::int16_t> integerBands(23);
    EXPECT_EQ(orvsEvalFBank_32f(spectrum.data(), bands.data(), bank), 0);
    EXPECT_EQ(orvsEvalFBank_16s_Sfs(rounded.data(), integerBands.data(), integers, 0), 0);
    bands.insert(bands.end(), integerBands.begin(), integerBands.end());
    return bands;
  });
  orvsFBankFree_32f(bank);
  orvsFBankFree_16s(integers);
}

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
