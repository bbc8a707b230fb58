// A host in C++: the score of two frames.
#include <orvsr/gauss.h>

#include <vector>

int main() {
  const std::vector<float> frames = {1, 2, 3, 4}, mean = {1, 1}, inverseVariance = {2, 2};
  std::vector<float> scores(2);
  const OrvStatus status =
      orvsLogGauss_32f_D2(frames.data(), 2, mean.data(), inverseVariance.data(), 2, scores.data(), 2, 0.5F);
  return status == orvStsNoErr && scores == std::vector<float>{-0.5F, -12.5F} ? 0 : 1;
}
