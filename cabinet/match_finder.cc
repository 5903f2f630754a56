#include "cabinet/match_finder.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace kw::cabinet {
namespace {

constexpr unsigned kPairBits = 13;
constexpr unsigned kNearBits = 12;
// Bytes at a block's end that start no match, so that every place can be read eight bytes at a time.
constexpr uint32_t kTail = 16;
// A match of three bytes from further away costs more than its literals.
constexpr uint32_t kFarForThree = 8192;
// Literals without a match until a place in two is passed over, twice as many until two in three are, and so
// on: data that does not shrink is not searched in vain for long.
constexpr unsigned kPatienceBits = 8;
// At most so many places are passed over, so that what comes again later is still found.
constexpr uint32_t kMostPassedOver = 15;
// A match shorter than this is given up for a better one at the next place.
constexpr uint32_t kContent = 8;
// Bytes that a candidate is compared in at once.
constexpr uint32_t kWord = 8;

uint64_t Load(const std::byte* at) {
  uint64_t word;
  std::memcpy(&word, at, sizeof word);
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  return word;
}

uint32_t HashOfFive(uint64_t word) {
  return static_cast<uint32_t>(((word << 24) * 0x9E3779B185EBCA87u) >> (64 - kPairBits));
}
uint32_t HashOfThree(uint64_t word) {
  return ((static_cast<uint32_t>(word) << 8) * 0x9E3779B1u) >> (32 - kNearBits);
}

// How many bytes agree at `a` and `b`, of which `known` do, up to `most`.
uint32_t CommonLength(const std::byte* a, const std::byte* b, uint32_t known, uint32_t most) {
  uint32_t length = known;
  for (; length + kWord <= most; length += kWord) {
    const uint64_t differing = Load(a + length) ^ Load(b + length);
    if (differing != 0) return length + static_cast<uint32_t>(std::countr_zero(differing)) / 8;
  }
  while (length < most && a[length] == b[length]) ++length;
  return length;
}

struct Match {
  uint32_t length = 0;
  uint32_t distance = 0;

  bool Pays() const { return length > kMinMatch || (length == kMinMatch && distance <= kFarForThree); }

  // Whether this match is worth a literal more than `earlier`, which starts one place before. A byte more of
  // length counts four bits or so, the distance by its size.
  bool IsBetterThan(const Match& earlier) const {
    if (length < earlier.length) return false;
    const int gained = 4 * static_cast<int>(length - earlier.length) + std::bit_width(earlier.distance) -
                       std::bit_width(distance);
    return gained > 2;
  }
};

}  // namespace

// One pass over a block. Keeps the hashes of the next place, whose table entries are fetched ahead.
class MatchFinder::Scan {
 public:
  Scan(Tables& tables, const std::byte* content)
      : pairs_(tables.pairs.data()), near_(tables.near.data()), content_(content) {}

  // Must come before Find or Note of a place that does not follow the last one.
  void GoTo(uint32_t place) {
    const uint64_t word = Load(content_ + place);
    pair_hash_ = HashOfFive(word);
    near_hash_ = HashOfThree(word);
  }

  // Remembers `place`.
  void Note(uint32_t place) {
    pairs_[pair_hash_] = (pairs_[pair_hash_] << 16) | static_cast<uint16_t>(place);
    near_[near_hash_] = static_cast<uint16_t>(place);
    GoTo(place + 1);
  }

  // Remembers `place` and gives the longest match for it among what was remembered; `most` bounds its length.
  Match Find(uint32_t place, uint32_t most) {
    const std::byte* at = content_ + place;
    const uint64_t word = Load(at);
    const uint32_t reach = std::min(place, kWindow);
    const uint32_t pair = pairs_[pair_hash_];
    const uint32_t near = near_[near_hash_];
    pairs_[pair_hash_] = (pair << 16) | static_cast<uint16_t>(place);
    near_[near_hash_] = static_cast<uint16_t>(place);
    GoTo(place + 1);
    __builtin_prefetch(&pairs_[pair_hash_], 1);

    // All candidates are weighed without a branch: the length, and then the nearness, in one number.
    const auto weigh = [&](uint32_t candidate) -> uint32_t {
      const uint32_t distance = static_cast<uint16_t>(place - candidate);
      const bool within = distance - 1 < reach;
      const uint64_t differing = Load(at - (within ? distance : 0)) ^ word;
      const uint32_t length = differing == 0 ? kWord : static_cast<uint32_t>(std::countr_zero(differing)) / 8;
      return within ? (length << 16) | (0xFFFF - distance) : 0;
    };
    const uint32_t first = weigh(pair & 0xFFFF);
    const uint32_t second = weigh(pair >> 16);
    const uint32_t best = std::max({first, second, weigh(near)});
    Match match{best >> 16, 0xFFFF - (best & 0xFFFF)};
    if (match.length < kWord || most <= kWord) return {std::min(match.length, most), match.distance};
    match.length = CommonLength(at, at - match.distance, kWord, most);
    for (const uint32_t other : {first, second}) {
      const uint32_t distance = 0xFFFF - (other & 0xFFFF);
      if (other >> 16 < kWord || distance == match.distance || match.length == most) continue;
      const uint32_t length = CommonLength(at, at - distance, kWord, most);
      if (length > match.length) match = {length, distance};
    }
    return match;
  }

 private:
  uint32_t* pairs_;
  uint16_t* near_;
  const std::byte* content_;
  uint32_t pair_hash_ = 0;
  uint32_t near_hash_ = 0;
};

MatchFinder::MatchFinder() : tables_(std::make_unique_for_overwrite<Tables>()) {
  steps_.steps.reserve(kBlockSize / kMinMatch + 1);
  Restart();
}

void MatchFinder::Restart() {
  tables_->pairs.fill(0);
  tables_->near.fill(0);
}

const Steps& MatchFinder::Cut(const std::byte* content, uint32_t from, uint32_t to) {
  steps_.steps.clear();
  steps_.literals.fill(0);
  steps_.distances.fill(0);
  uint32_t first_literal = from;
  const auto add = [&](uint32_t end_of_literals, const Match& match) {
    steps_.steps.push_back({end_of_literals - first_literal, static_cast<uint16_t>(match.length),
                            static_cast<uint16_t>(match.distance)});
    for (; first_literal < end_of_literals; ++first_literal) {
      ++steps_.literals[static_cast<uint8_t>(content[first_literal])];
    }
    first_literal += match.length;
  };
  const uint32_t end = to - std::min(to - from, kTail);
  Scan scan(*tables_, content);
  if (from < end) scan.GoTo(from);
  for (uint32_t place = from; place < end;) {
    Match match = scan.Find(place, std::min(kMaxMatch, to - place));
    if (!match.Pays()) {
      ++place;
      const uint32_t passed_over = std::min((place - first_literal) >> kPatienceBits, kMostPassedOver);
      if (passed_over == 0) continue;
      place = std::min(place + passed_over, end);
      scan.GoTo(place);
      continue;
    }
    uint32_t noted = place + 1;
    while (match.length < kContent && noted < end) {
      const Match later = scan.Find(noted, std::min(kMaxMatch, to - noted));
      ++noted;
      if (!later.IsBetterThan(match)) break;
      match = later;
      ++place;
    }
    add(place, match);
    ++steps_.literals[kFirstLengthSymbol + kSymbols.LengthGroup(match.length)];
    ++steps_.distances[kSymbols.DistanceGroup(match.distance)];
    place = first_literal;
    for (const uint32_t behind = std::min(place, end); noted < behind; ++noted) scan.Note(noted);
  }
  add(to, {});
  steps_.literals[kEndOfBlock] = 1;
  return steps_;
}

}  // namespace kw::cabinet
