#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <initializer_list>
#include <vector>

/// How the values of a searched vector stand.
enum class SortType { Unsorted, Ascending };

/// A vector of whole numbers, indexed from 1. `Missing` is the value of an entry without a value.
template <class T, T Missing>
class NCIntegralVector {
  public:
    NCIntegralVector() = default;
    NCIntegralVector(std::initializer_list<T> values) : values_(values) {}
    /// `size` missing values.
    explicit NCIntegralVector(int size) : values_(static_cast<std::size_t>(size), Missing) {}

    [[nodiscard]] int Size() const { return static_cast<int>(values_.size()); }
    void reserve(int size) { values_.reserve(static_cast<std::size_t>(size)); }
    void SetAllValues(T value) { std::fill(values_.begin(), values_.end(), value); }

    [[nodiscard]] T& operator()(int position) { return values_[Offset(position)]; }
    [[nodiscard]] T operator[](int position) const { return values_[Offset(position)]; }

    /// Inserts `count` copies of `value` before position `first`; Size() + 1 appends.
    void InsertValues(int first, int count, T value) {
        assert(first >= 1 && first <= Size() + 1 && count >= 0);
        values_.insert(values_.begin() + (first - 1), static_cast<std::size_t>(count), value);
    }
    /// Inserts one value before a position; Size() + 1 appends.
    void Insert(int position, T value) { InsertValues(position, 1, value); }

    /// The lowest position from `first` to `last` that holds `value`, or 0. A search of ascending
    /// values takes a logarithmic number of steps.
    [[nodiscard]] int Find(T value, SortType sortType, int first, int last) const {
        assert(first >= 1 && last <= Size());
        if (last < first) {
            return 0;
        }
        const auto begin = values_.begin() + (first - 1);
        const auto end = values_.begin() + last;
        const auto found = sortType == SortType::Ascending ? std::lower_bound(begin, end, value)
                                                           : std::find(begin, end, value);
        return found != end && *found == value ? static_cast<int>(found - values_.begin()) + 1 : 0;
    }

    [[nodiscard]] auto begin() { return values_.begin(); }
    [[nodiscard]] auto end() { return values_.end(); }
    [[nodiscard]] auto begin() const { return values_.begin(); }
    [[nodiscard]] auto end() const { return values_.end(); }

    friend bool operator==(const NCIntegralVector&, const NCIntegralVector&) = default;

  private:
    [[nodiscard]] std::size_t Offset(int position) const {
        assert(position >= 1 && position <= Size());
        return static_cast<std::size_t>(position - 1);
    }

    std::vector<T> values_;
};
