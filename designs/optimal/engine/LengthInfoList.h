#pragma once

#include <map>

namespace DOpt {

/// The kept edge points by the length of their edge. Among equal lengths the newest comes first.
class LengthInfoList {
  public:
    [[nodiscard]] bool IsEmpty() const { return rows_.empty(); }
    /// Of the shortest edge; the list must not be empty.
    [[nodiscard]] float ShortestLength() const { return rows_.begin()->first; }
    [[nodiscard]] int ShortestRow() const { return rows_.begin()->second; }
    void RemoveShortest() { rows_.erase(rows_.begin()); }
    void Insert(float length, int row) {
        rows_.emplace_hint(rows_.lower_bound(length), length, row);
    }

  private:
    std::multimap<float, int> rows_;
};

}  // namespace DOpt
