// Training of codebooks.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "bench/data.h"
#include "bench/ratio.h"
#include "orvsr/vq.h"

#if ORV_BENCH_FAISS
#include <faiss/Clustering.h>
#include <faiss/IndexFlat.h>

extern "C" void omp_set_num_threads(int);
#endif

namespace orv::bench {
namespace {

constexpr std::int32_t kHeight = 20000, kWidth = 13, kSize = 256;
constexpr double kUnit = 1000.0;  // of the integers

// Vectors from 64 normal distributions, in no order.
template <class T>
Array<T> vectors() {
  std::mt19937 random(1);
  std::normal_distribution<double> normal;
  std::vector<double> centres(std::size_t{64} * kWidth);
  for (double &c : centres) c = 3.0 * normal(random);
  Array<T> x;
  for (std::int32_t r = 0; r < kHeight; ++r) {
    const double *centre = &centres[random() % 64 * kWidth];
    for (std::int32_t k = 0; k < kWidth; ++k)
      x.push_back(static_cast<T>((centre[k] + normal(random)) * (std::is_same_v<T, float> ? 1.0 : kUnit)));
  }
  return x;
}

// Shows once the mean squared distance of the vectors to their nearest row, in the units of the 32f data.
template <class T, class Row>
void showDistortion(const char *name, const Array<T> &x, const std::vector<Row> &rows) {
  static std::set<std::string> shown;
  if (!shown.insert(name).second) return;
  double total = 0.0;
  for (std::size_t i = 0; i < x.size(); i += kWidth) {
    double least = 1e30;
    for (std::size_t r = 0; r < rows.size(); r += kWidth) {
      double sum = 0.0;
      for (std::size_t k = 0; k < kWidth; ++k) {
        const auto d = static_cast<double>(x[i + k] - rows[r + k]);
        sum += d * d;
      }
      least = std::min(least, sum);
    }
    total += least;
  }
  const double unit = std::is_same_v<T, float> ? 1.0 : kUnit * kUnit;
  std::printf("distortion of %s: %.4f\n", name, total / unit / kHeight);
}

// The last codebook trained is kept until the end, when its distortion is shown.
template <class T, auto initAlloc, auto getCodebook, auto release>
auto training(const char *name, std::int32_t method) {
  return [name, method] {
    struct Book {
      const char *name;
      Array<T> x = vectors<T>();
      CdbkState *state = nullptr;
      ~Book() {
        if (state == nullptr) return;
        std::vector<T> rows(std::size_t{kSize} * kWidth);
        getCodebook(state, rows.data(), kWidth);
        showDistortion(name, x, rows);
        release(state);
      }
    };
    auto book = std::make_shared<Book>(Book{name});
    return [book, method] {
      if (book->state != nullptr) release(book->state);
      initAlloc(&book->state, book->x.data(), kWidth, kWidth, kHeight, kSize, method);
    };
  };
}

void addPeers(Case &ours) {
#if ORV_BENCH_FAISS
  ours.peer("faiss k-means", 0.0, [] {
    omp_set_num_threads(1);
    auto x = std::make_shared<Array<float>>(vectors<float>());
    return [x] {
      faiss::ClusteringParameters parameters;  // 25 rounds
      parameters.max_points_per_centroid = kHeight;
      faiss::Clustering clustering(kWidth, kSize, parameters);
      faiss::IndexFlatL2 index(kWidth);
      clustering.train(kHeight, x->data(), index);
      showDistortion("faiss k-means", *x, clustering.centroids);
    };
  });
#else
  ours.absentPeer("faiss k-means");
#endif
}

}  // namespace

void addVqTrainingCases() {
  Case spread("vq/CdbkInitAlloc_L2_32f/256 of 20000x13, by spread");
  spread.repetitions(15).ours(
      training<float, orvsCdbkInitAlloc_L2_32f, orvsGetCodebook_32f, orvsCdbkFree_32f>("32f, by spread",
                                                                                       CDBK_SPLIT_SPREAD));
  addPeers(spread);
  Case count("vq/CdbkInitAlloc_L2_32f/256 of 20000x13, by count");
  count.repetitions(15).ours(training<float, orvsCdbkInitAlloc_L2_32f, orvsGetCodebook_32f, orvsCdbkFree_32f>(
      "32f, by count", CDBK_SPLIT_COUNT));
  addPeers(count);
  Case integers("vq/CdbkInitAlloc_L2_16s/256 of 20000x13, by count");
  integers.repetitions(15).ours(
      training<std::int16_t, orvsCdbkInitAlloc_L2_16s, orvsGetCodebook_16s, orvsCdbkFree_16s>(
          "16s, by count", CDBK_SPLIT_COUNT));
  addPeers(integers);
}

}  // namespace orv::bench
