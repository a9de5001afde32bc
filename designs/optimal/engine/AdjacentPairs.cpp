#include "designs/optimal/engine/AdjacentPairs.h"

#include <algorithm>
#include <bit>

namespace DOpt {

namespace {

// Below this many comparisons a vertex, building the look-up costs more than it saves.
constexpr std::size_t cPlainComparisons = 256;

// A random number for each constraint; the key of a set is the exclusive or over its members.
std::uint64_t MemberKey(int constraint) {
    std::uint64_t value = (static_cast<std::uint64_t>(constraint) + 1) * 0x9e3779b97f4a7c15ULL;
    value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9ULL;
    value = (value ^ (value >> 27)) * 0x94d049bb133111ebULL;
    return value ^ (value >> 31);
}

}  // namespace

AdjacentPairs::AdjacentPairs(const BitTable& tight,
                             const std::vector<int>& inside,
                             int shared,
                             int outsideCount)
    : tight_(tight),
      shared_(shared),
      useKeys_(shared > 0 && inside.size() > cPlainComparisons && outsideCount > 1),
      inside_(inside) {
    if (!useKeys_) {
        return;
    }
    const std::size_t keys = inside.size() * static_cast<std::size_t>(shared + 1);
    entries_.reserve(keys);
    buckets_.assign(std::bit_ceil(keys), -1);
    for (const int vertex : inside) {
        const Kind kind = KindOf(vertex);
        if (kind == Kind::Crowded) {
            compared_.push_back(vertex);
        }
        if (kind == Kind::Simple) {
            AddKeys(vertex);
        }
    }
}

AdjacentPairs::Kind AdjacentPairs::KindOf(int vertex) const {
    const int count = CountBits(tight_.Row(vertex));
    if (count == shared_ + 1) {
        return Kind::Simple;
    }
    return count >= shared_ ? Kind::Crowded : Kind::Lonely;
}

std::uint64_t AdjacentPairs::KeyOf(int vertex) const {
    std::uint64_t key = 0;
    ForEachBit(tight_.Row(vertex), [&](int bit) { key ^= MemberKey(bit); });
    return key;
}

int& AdjacentPairs::Bucket(std::uint64_t key) {
    return buckets_[static_cast<std::size_t>(key) & (buckets_.size() - 1)];
}

void AdjacentPairs::AddKeys(int vertex) {
    const std::uint64_t whole = KeyOf(vertex);
    ForEachBit(tight_.Row(vertex), [&](int bit) {
        const std::uint64_t key = whole ^ MemberKey(bit);
        int& head = Bucket(key);
        entries_.push_back({key, vertex, head});
        head = static_cast<int>(entries_.size()) - 1;
    });
}

// `mayLeave` of the outside vertex's constraints need not hold at a neighbour. Counting those that
// do not, instead of those that do, ends after a step or two.
void AdjacentPairs::AddIfNeighbour(std::span<const BitTable::Word> outside,
                                   int mayLeave,
                                   int vertex) {
    const auto inside = tight_.Row(vertex);
    for (std::size_t word = 0; word < outside.size(); ++word) {
        for (BitTable::Word left = outside[word] & ~inside[word]; left != 0; left &= left - 1) {
            if (--mayLeave < 0) {
                return;
            }
        }
    }
    found_.push_back(vertex);
}

void AdjacentPairs::AddByKey(int outside) {
    const std::uint64_t whole = KeyOf(outside);
    const auto row = tight_.Row(outside);
    ForEachBit(row, [&](int bit) {
        const std::uint64_t key = whole ^ MemberKey(bit);
        for (int at = Bucket(key); at >= 0;) {
            const Entry& entry = entries_[static_cast<std::size_t>(at)];
            // The key only points at likely neighbours.
            if (entry.key == key) {
                AddIfNeighbour(row, 1, entry.vertex);
            }
            at = entry.next;
        }
    });
}

const std::vector<int>& AdjacentPairs::Of(int outside) {
    found_.clear();
    const auto row = tight_.Row(outside);
    const int mayLeave = CountBits(row) - shared_;
    if (mayLeave < 0) {
        return found_;
    }
    const bool simple = useKeys_ && KindOf(outside) == Kind::Simple;
    for (const int vertex : simple ? compared_ : inside_) {
        AddIfNeighbour(row, mayLeave, vertex);
    }
    if (simple) {
        AddByKey(outside);
        std::ranges::sort(found_);
        // Two vertices with the same constraints find each other once for each of them.
        found_.erase(std::unique(found_.begin(), found_.end()), found_.end());
    }
    return found_;
}

}  // namespace DOpt
