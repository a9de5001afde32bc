#pragma once

#include <cassert>
#include <cstddef>
#include <span>
#include <vector>

/// A growable vector that counts from 1, as the numbers of candidate rows do. In a list of row
/// numbers 0 means a free place and ends the list.
template <class T>
class OneBasedVec {
  public:
    OneBasedVec() = default;
    OneBasedVec(int size, T fill) : values_(static_cast<std::size_t>(size), fill) {}

    [[nodiscard]] int Size() const { return static_cast<int>(values_.size()); }
    [[nodiscard]] T& operator()(int position) { return values_[Offset(position)]; }
    [[nodiscard]] const T& operator()(int position) const { return values_[Offset(position)]; }
    void Append(T value) { values_.push_back(value); }
    [[nodiscard]] std::span<const T> Values() const { return values_; }

    friend bool operator==(const OneBasedVec&, const OneBasedVec&) = default;

  private:
    [[nodiscard]] std::size_t Offset(int position) const {
        assert(position >= 1 && position <= Size());
        return static_cast<std::size_t>(position - 1);
    }

    std::vector<T> values_;
};
