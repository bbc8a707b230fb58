// The memory of a codebook's tree.

#ifndef ORV_VQ_TREE_H
#define ORV_VQ_TREE_H

#include <algorithm>
#include <cstdint>

#include "core/alloc.h"
#include "vq/codebook.h"

namespace orv::cdbk {

// Neighbours that a leaf gets among so many leaves: the logarithm to base 2, rounded up, and 4 at least.
constexpr std::int32_t neighboursAmong(std::int32_t leaves) {
  if (leaves < 3) return 0;
  const std::int32_t q = std::max(significantBits(leaves) - 1, 4);
  return leaves > 1 << q ? q + 1 : q;
}

// Everything that belongs to the tree, cut from one block that begins with the root, so that freeing the root
// frees the tree. Nodes stand in the order of their birth: children come after their parents.
template <class T>
class TreeMemory {
 public:
  TreeMemory(std::int32_t leaves, std::int32_t width) : isPacked_(isPackedWidth<T>(width)) {
    const std::int64_t nodes = 2 * std::int64_t{leaves} - 1;
    std::int64_t links = std::int64_t{leaves} * neighboursAmong(leaves);
    std::int64_t elements = nodes * width;
    std::int64_t bytes = nodes * kBytes<CdbkCluster>;
    if (isPacked_) {
      bytes += nodes * kBytes<CdbkPacked>;
      elements += (4 * std::int64_t{leaves - 1} + links) * width;
      links *= 2;
    }
    bytes += links * kBytes<CdbkCluster *> + elements * kBytes<T>;
    nodes_ = reinterpret_cast<CdbkCluster *>(orvsMalloc_64f(lengthOf((bytes + 7) / 8)));
    if (nodes_ == nullptr) return;
    packed_ = reinterpret_cast<CdbkPacked *>(nodes_ + nodes);
    links_ = reinterpret_cast<CdbkCluster **>(packed_ + (isPacked_ ? nodes : 0));
    elements_ = reinterpret_cast<T *>(links_ + links);
  }
  explicit operator bool() const { return nodes_ != nullptr; }

  CdbkCluster *addNode(std::int32_t depth) {
    CdbkCluster *node = nodes_ + count_;
    *node = CdbkCluster{};
    node->depth = depth;
    node->isLeaf = 1;
    if (isPacked_) {
      packed_[count_] = CdbkPacked{};
      node->pPacked = packed_ + count_;
    }
    ++count_;
    return node;
  }
  std::int32_t count() const { return count_; }
  CdbkCluster *node(std::int32_t i) const { return nodes_ + i; }

  T *addElements(std::int64_t len) {
    elements_ += len;
    return elements_ - len;
  }
  CdbkCluster **addLinks(std::int32_t len) {
    links_ += len;
    return links_ - len;
  }

 private:
  template <class P>
  static constexpr std::int64_t kBytes = sizeof(P);

  bool isPacked_;
  CdbkCluster *nodes_ = nullptr;
  CdbkPacked *packed_ = nullptr;
  CdbkCluster **links_ = nullptr;
  T *elements_ = nullptr;
  std::int32_t count_ = 0;
};

}  // namespace orv::cdbk

#endif
