#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "designs/optimal/engine/BitTable.h"

namespace DOpt {

/// Finds, for vertices on one side of a plane, the vertices on the other side that share an edge
/// with them: pairs that are tight on at least `shared` constraints together.
///
/// A vertex tight on exactly shared + 1 constraints, the ordinary case, has one edge for each
/// constraint that it leaves; its neighbours are looked up by the set that remains. Vertices where
/// more constraints meet are compared one by one.
class AdjacentPairs {
  public:
    /// @param tight constraints by vertex; borrowed, and may grow while pairs are asked for
    /// @param inside the vertices to find, ascending
    /// @param outsideCount how many vertices will be asked about; decides whether the look-up pays
    AdjacentPairs(const BitTable& tight,
                  const std::vector<int>& inside,
                  int shared,
                  int outsideCount);

    /// The neighbours of a vertex, ascending; valid until the next call.
    [[nodiscard]] const std::vector<int>& Of(int outside);

  private:
    enum class Kind { Lonely, Simple, Crowded };

    [[nodiscard]] Kind KindOf(int vertex) const;
    [[nodiscard]] std::uint64_t KeyOf(int vertex) const;
    [[nodiscard]] int& Bucket(std::uint64_t key);
    void AddKeys(int vertex);
    void AddByKey(int outside);
    void AddIfNeighbour(std::span<const BitTable::Word> outside, int mayLeave, int vertex);

    const BitTable& tight_;
    int shared_;
    bool useKeys_;
    std::vector<int> compared_;  // inside vertices that have to be compared with every vertex
    const std::vector<int>& inside_;
    // Hash table of the keys of simple vertices, each without one of its constraints.
    struct Entry {
        std::uint64_t key;
        int vertex;
        int next;  // entry in the same bucket, -1 for none
    };
    std::vector<int> buckets_;
    std::vector<Entry> entries_;
    std::vector<int> found_;
};

}  // namespace DOpt
