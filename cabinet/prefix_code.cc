#include "cabinet/prefix_code.h"

#include <algorithm>

namespace kw::cabinet {
namespace {

constexpr unsigned kMaxLength = 15;

struct Leaf {
  uint16_t count;
  uint16_t symbol;
};

// The symbols that occur, the rarest first.
class Leaves {
 public:
  explicit Leaves(std::span<const uint32_t> counts) {
    for (size_t i = 0; i < counts.size(); ++i) {
      if (counts[i] != 0) leaves_[size_++] = {static_cast<uint16_t>(counts[i]), static_cast<uint16_t>(i)};
    }
    for (uint16_t i = 0; size_ < 2; ++i) {
      if (size_ == 0 || leaves_[0].symbol != i) leaves_[size_++] = {1, i};
    }
    Sort();
  }

  size_t size() const { return size_; }
  const Leaf& operator[](size_t i) const { return leaves_[i]; }

 private:
  // By both bytes of the count, the lower first; equal ones keep the order of their symbols.
  void Sort() {
    std::array<Leaf, kMaxSymbols> other;
    for (const unsigned shift : {0u, 8u}) {
      std::array<uint16_t, 257> places{};
      for (size_t i = 0; i < size_; ++i) ++places[((leaves_[i].count >> shift) & 0xFFu) + 1];
      for (size_t i = 1; i < places.size(); ++i) places[i] = static_cast<uint16_t>(places[i] + places[i - 1]);
      for (size_t i = 0; i < size_; ++i) other[places[(leaves_[i].count >> shift) & 0xFFu]++] = leaves_[i];
      std::copy_n(other.begin(), size_, leaves_.begin());
    }
  }

  std::array<Leaf, kMaxSymbols> leaves_;
  size_t size_ = 0;
};

using LengthCounts = std::array<uint32_t, kMaxLength + 1>;

// How many codes of each length the best code has. Two nodes of least weight are joined again and again; both
// the leaves and the joined nodes come in order of weight, so the least are at the front of one of two
// queues.
LengthCounts CountLengths(const Leaves& leaves, unsigned limit) {
  const size_t inner = leaves.size() - 1;
  std::array<uint32_t, kMaxSymbols> weights;
  std::array<uint16_t, 2 * kMaxSymbols> parents;  // of leaves, then of joined nodes
  size_t leaf = 0;
  size_t node = 0;
  for (size_t made = 0; made < inner; ++made) {
    uint32_t weight = 0;
    for (int side = 0; side < 2; ++side) {
      if (leaf < leaves.size() && (node >= made || leaves[leaf].count <= weights[node])) {
        weight += leaves[leaf].count;
        parents[leaf++] = static_cast<uint16_t>(made);
      } else {
        weight += weights[node];
        parents[leaves.size() + node++] = static_cast<uint16_t>(made);
      }
    }
    weights[made] = weight;
  }
  std::array<uint16_t, kMaxSymbols> depths;  // of joined nodes, the last of which is the root
  depths[inner - 1] = 0;
  for (size_t i = inner - 1; i-- > 0;)
    depths[i] = static_cast<uint16_t>(depths[parents[leaves.size() + i]] + 1);
  LengthCounts counts{};
  for (size_t i = 0; i < leaves.size(); ++i) ++counts[std::min<unsigned>(depths[parents[i]] + 1u, limit)];
  return counts;
}

// Where codes were cut to `limit` they take more room than there is: shorter ones are lengthened.
void FitIntoCodeSpace(LengthCounts& counts, unsigned limit) {
  uint32_t taken = 0;
  for (unsigned length = 1; length <= limit; ++length) taken += counts[length] << (limit - length);
  for (; taken > (1u << limit); --taken) {
    // One code of a lesser length makes room beside it for one of the longest.
    unsigned length = limit - 1;
    while (counts[length] == 0) --length;
    --counts[length];
    counts[length + 1] += 2;
    --counts[limit];
  }
}

uint16_t Reversed(uint32_t code, unsigned length) {
  code = ((code & 0x5555) << 1) | ((code >> 1) & 0x5555);
  code = ((code & 0x3333) << 2) | ((code >> 2) & 0x3333);
  code = ((code & 0x0F0F) << 4) | ((code >> 4) & 0x0F0F);
  code = ((code & 0x00FF) << 8) | ((code >> 8) & 0x00FF);
  return static_cast<uint16_t>(code >> (16 - length));
}

}  // namespace

size_t PrefixCode::Used(size_t least) const {
  size_t used = symbols;
  while (used > least && lengths[used - 1] == 0) --used;
  return used;
}

PrefixCode BestCode(std::span<const uint32_t> counts, unsigned limit) {
  const Leaves leaves(counts);
  LengthCounts by_length = CountLengths(leaves, limit);
  FitIntoCodeSpace(by_length, limit);

  PrefixCode code;
  code.symbols = counts.size();
  std::fill_n(code.lengths.begin(), counts.size(), uint8_t{0});
  size_t rarest = 0;
  for (unsigned length = limit; length > 0; --length) {
    for (uint32_t i = 0; i < by_length[length]; ++i) {
      code.lengths[leaves[rarest++].symbol] = static_cast<uint8_t>(length);
    }
  }
  std::array<uint32_t, kMaxLength + 2> next{};
  for (unsigned length = 1; length <= limit; ++length)
    next[length + 1] = (next[length] + by_length[length]) << 1;
  for (size_t i = 0; i < counts.size(); ++i) {
    const unsigned length = code.lengths[i];
    code.codes[i] = length == 0 ? uint16_t{0} : Reversed(next[length]++, length);
  }
  return code;
}

}  // namespace kw::cabinet
