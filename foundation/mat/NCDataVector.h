#pragma once

#include <cassert>
#include <cstddef>
#include <initializer_list>
#include <span>
#include <vector>

#include "foundation/stream/Export.h"
#include "foundation/stream/QvStreamBase.h"
#include "foundation/utl/NCDataMatrixForward.h"

/// A dense vector, indexed from 1. T is float or double.
template <class T>
class QORVA_EXPORT NCDataVector : public QvStreamBase {
  public:
    NCDataVector() = default;
    /// `size` missing values (-99).
    explicit NCDataVector(int size) : NCDataVector(size, T{-99}) {}
    NCDataVector(int size, T fill) : values_(static_cast<std::size_t>(size), fill) {}
    NCDataVector(std::initializer_list<T> values) : values_(values) {}
    explicit NCDataVector(std::span<const T> values) : values_(values.begin(), values.end()) {}

    [[nodiscard]] int Size() const { return static_cast<int>(values_.size()); }
    [[nodiscard]] T operator()(int position) const { return values_[Offset(position)]; }
    /// Sets the element and returns the value.
    T operator()(int position, T value) { return values_[Offset(position)] = value; }

    [[nodiscard]] std::span<T> Values() { return values_; }
    [[nodiscard]] std::span<const T> Values() const { return values_; }

    /// Dot product of two vectors of one length, accumulated in double.
    /// @throws InvalidOperationException when the lengths differ.
    [[nodiscard]] double operator*(const NCDataVector& other) const;
    /// Row vector times matrix; the length is the matrix's row count.
    /// @throws InvalidOperationException when it is not.
    [[nodiscard]] NCDataVector operator*(const NCDataMatrix<T>& matrix) const;

    bool QvStreamableStartRead(QvInStream& stream) override;
    bool QvStreamableStartWrite(QvOutStream& stream) const override;
    void QvStreamableReset() override { values_.clear(); }

    friend bool operator==(const NCDataVector& a, const NCDataVector& b) {
        return a.values_ == b.values_;
    }

  private:
    [[nodiscard]] std::size_t Offset(int position) const {
        assert(position >= 1 && position <= Size());
        return static_cast<std::size_t>(position - 1);
    }

    std::vector<T> values_;
};

extern template class NCDataVector<float>;
extern template class NCDataVector<double>;
