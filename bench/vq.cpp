// Codebooks, their searches, and time warping.

#include "orvsr/vq.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <type_traits>

#include "bench/data.h"
#include "bench/openblas.h"
#include "bench/ratio.h"

#if ORV_BENCH_FAISS
#include <faiss/IndexFlat.h>

extern "C" void omp_set_num_threads(int);
#endif

namespace orv::bench {
namespace {

using Book32f = std::unique_ptr<CdbkState, Releaser<orvsCdbkFree_32f>>;
using Book16s = std::unique_ptr<CdbkState, Releaser<orvsCdbkFree_16s>>;

// --- all rows

// Vectors without any relation to the rows: the least helpful ones.
template <class T>
struct Search {
  static constexpr std::int32_t height = 10000, size = 1024, width = 39;
  Array<T> x, rows;
  Array<std::int32_t> index = Array<std::int32_t>(height);
  std::conditional_t<std::is_same_v<T, float>, Book32f, Book16s> book;

  Search() {
    const double scale = std::is_same_v<T, float> ? 1.0 : 1000.0;
    x = uniform<T>(std::size_t{height} * width, -2.0 * scale, 2.0 * scale, 1);
    rows = uniform<T>(std::size_t{size} * width, -2.0 * scale, 2.0 * scale, 2);
    CdbkState *state = nullptr;
    if constexpr (std::is_same_v<T, float>)
      orvsCdbkInitAlloc_L2_32f(&state, rows.data(), width, width, size, size, CDBK_DIRECT);
    else
      orvsCdbkInitAlloc_L2_16s(&state, rows.data(), width, width, size, size, CDBK_DIRECT);
    book.reset(state);
  }
};

template <class T, class Work>
auto search(Work work) {
  return [work] { return [work, in = std::make_shared<Search<T>>()] { work(*in); }; };
}

template <class T>
[[gnu::noinline]] void plainSearch(Search<T> &in) {
  for (std::int32_t i = 0; i < in.height; ++i) {
    const T *x = &in.x[static_cast<std::size_t>(i * in.width)];
    float best = FLT_MAX;
    for (std::int32_t r = 0; r < in.size; ++r) {
      const T *row = &in.rows[static_cast<std::size_t>(r * in.width)];
      float sum = 0;
      for (std::int32_t k = 0; k < in.width; ++k) {
        const auto d = static_cast<float>(x[k] - row[k]);
        sum += d * d;
      }
      if (double{best} > double{sum} * 1.000001) {
        best = sum;
        in.index[static_cast<std::size_t>(i)] = r;
      }
    }
  }
}

void addScans() {
  Case single("vq/VQ_32f/1024x39");
  single.repetitions(15)
      .ours(search<float>([](Search<float> &in) {
        orvsVQ_32f(in.x.data(), in.width, in.index.data(), in.height, in.book.get());
      }))
      .peer("plain scalar", 4.0, search<float>(plainSearch<float>));
#if ORV_BENCH_FAISS
  single.peer("faiss IndexFlatL2", 1.0, [] {
#if ORV_BENCH_OPENBLAS
    useKernels(kNativeKernels);
#endif
    omp_set_num_threads(1);
    struct Index {
      Search<float> in;
      faiss::IndexFlatL2 index{Search<float>::width};
      Array<float> distances = Array<float>(Search<float>::height);
      Array<std::int64_t> labels = Array<std::int64_t>(Search<float>::height);
    };
    auto peer = std::make_shared<Index>();
    peer->index.add(Search<float>::size, peer->in.rows.data());
    return [peer] {
      peer->index.search(Search<float>::height, peer->in.x.data(), 1, peer->distances.data(),
                         peer->labels.data());
    };
  });
#else
  single.absentPeer("faiss IndexFlatL2");
#endif
  Case("vq/VQ_16s/1024x39")
      .repetitions(15)
      .ours(search<std::int16_t>([](Search<std::int16_t> &in) {
        orvsVQ_16s(in.x.data(), in.width, in.index.data(), in.height, in.book.get());
      }))
      .peer("plain scalar", 4.0, search<std::int16_t>(plainSearch<std::int16_t>));
}

// --- the tree

// Vectors round 600 centres, a tree of 256 rows grown from a part of them, and the same rows to be scanned.
struct Tree {
  static constexpr std::int32_t height = 10000, grownFrom = 4000, size = 256, width = 13;
  Array<float> x = uniform<float>(std::size_t{height} * width, -0.7, 0.7, 1);
  Array<float> distance = Array<float>(height);
  Array<std::int32_t> index = Array<std::int32_t>(height);
  Book32f tree, direct;

  Tree() {
    constexpr std::size_t centres = 600;
    const auto centre = uniform<float>(centres * width, -2.0, 2.0, 2);
    for (std::size_t i = 0; i < x.size(); ++i) x[i] += centre[i % (centres * width)];
    CdbkState *state = nullptr;
    orvsCdbkInitAlloc_L2_32f(&state, x.data(), width, width, grownFrom, size, CDBK_SPLIT_SPREAD);
    tree.reset(state);
    Array<float> rows(std::size_t{size} * width);
    orvsGetCodebook_32f(tree.get(), rows.data(), width);
    orvsCdbkInitAlloc_L2_32f(&state, rows.data(), width, width, size, size, CDBK_DIRECT);
    direct.reset(state);
  }
  double meanDistance(const Book32f &book) {
    orvsVQDist_32f(x.data(), width, index.data(), distance.data(), height, book.get());
    double sum = 0;
    for (const float d : distance) sum += static_cast<double>(d);
    return sum / height;
  }

  // Grown once; what the tree costs in accuracy is written then.
  static Tree &once() {
    static Tree tree;
    static const double loss = [] {
      const double exact = tree.meanDistance(tree.direct), found = tree.meanDistance(tree.tree);
      std::printf("vq/tree: distances are %.2f %% longer than to the nearest rows\n",
                  100 * (found / exact - 1));
      return found;
    }();
    static_cast<void>(loss);
    return tree;
  }
};

void addTree() {
  const auto searching = [](Book32f Tree::*book) {
    return [book] {
      return [book, &in = Tree::once()] {
        orvsVQ_32f(in.x.data(), in.width, in.index.data(), in.height, (in.*book).get());
      };
    };
  };
  const auto oneByOne = [] {
    return [&in = Tree::once()] {
      for (std::int32_t i = 0; i < in.height; ++i)
        orvsVQ_32f(&in.x[static_cast<std::size_t>(i * in.width)], in.width,
                   &in.index[static_cast<std::size_t>(i)], 1, in.direct.get());
    };
  };
  Case("vq/VQ_32f of a tree/256x13")
      .ours(searching(&Tree::tree))
      .peer("scan, vector by vector", 0.0, oneByOne)
      .peer("scan, all vectors", 0.0, searching(&Tree::direct));
}

// --- time warping

struct Sequences {
  static constexpr std::int32_t len = 200, width = 39;
  Array<float> a = uniform<float>(std::size_t{len} * width, -2.0, 2.0, 1);
  Array<float> b = uniform<float>(std::size_t{len} * width, -2.0, 2.0, 2);
  Array<float> cost = Array<float>(len), next = Array<float>(len);
  float distance = 0;
};

template <class Work>
auto sequences(Work work) {
  return [work] { return [work, in = Sequences()]() mutable { work(in); }; };
}

[[gnu::noinline]] void plainWarp(Sequences &in) {
  const auto distance = [&](std::int32_t j, std::int32_t i) {
    double sum = 0;
    for (std::int32_t k = 0; k < in.width; ++k) {
      const float d =
          in.a[static_cast<std::size_t>(j * in.width + k)] - in.b[static_cast<std::size_t>(i * in.width + k)];
      const float square = d * d;
      sum += static_cast<double>(square);
    }
    return static_cast<float>(std::sqrt(sum));
  };
  for (std::int32_t i = 0; i < in.len; ++i) in.cost[static_cast<std::size_t>(i)] = distance(0, i);
  for (std::int32_t j = 1; j < in.len; ++j) {
    for (std::int32_t i = 0; i < in.len; ++i) {
      float best = in.cost[static_cast<std::size_t>(i)];
      if (i >= 1) best = std::min(best, in.cost[static_cast<std::size_t>(i - 1)]);
      if (i >= 2) best = std::min(best, in.cost[static_cast<std::size_t>(i - 2)]);
      in.next[static_cast<std::size_t>(i)] = best + distance(j, i);
    }
    std::swap(in.cost, in.next);
  }
  in.distance = *std::min_element(in.cost.begin(), in.cost.end());
}

void addWarp() {
  Case("vq/DTW_L2_32f_D2/200x200x39")
      .ours(sequences([](Sequences &in) {
        orvsDTW_L2_32f_D2(in.a.data(), in.len, in.b.data(), in.len, in.width, in.width, &in.distance, -1,
                          FLT_MAX);
      }))
      .peer("plain scalar", 2.5, sequences(plainWarp));
}

}  // namespace

void addVqCases() {
  addScans();
  addTree();
  addWarp();
}

}  // namespace orv::bench
