#pragma once

#include <cassert>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <span>
#include <vector>

#include "foundation/mat/NCDataVector.h"
#include "foundation/mat/NCIntegralVector.h"
#include "foundation/stream/Export.h"
#include "foundation/stream/QvStreamBase.h"

template <class T>
class QORVA_EXPORT NCSVD;
template <class T>
class QORVA_EXPORT NCDataMatrixPrim;

/// A dense matrix with value semantics, indexed from 1; T is float or double. The cells stand row
/// by row in one block. A cell without a value holds -99, and so do cells that an insertion or a
/// change of size makes. Positions and counts are checked by assertions only.
template <class T>
class QORVA_EXPORT NCDataMatrix : public QvStreamBase {
  public:
    static constexpr T cMissing = T{-99};

    NCDataMatrix() = default;
    NCDataMatrix(int rows, int columns, T fill = cMissing)
        : rows_(rows), columns_(columns), cells_(CellCount(rows, columns), fill) {}
    /// Literal tables, one inner list a row.
    /// @throws InvalidOperationException when the rows are not of one length.
    NCDataMatrix(std::initializer_list<std::initializer_list<T>> rows);

    [[nodiscard]] int SizeRows() const { return rows_; }
    [[nodiscard]] int SizeColumns() const { return columns_; }
    [[nodiscard]] bool IsEmpty() const { return cells_.empty(); }

    [[nodiscard]] T operator()(int row, int column) const { return cells_[Offset(row, column)]; }
    /// Sets the element and returns the value.
    T operator()(int row, int column, T value) { return cells_[Offset(row, column)] = value; }

    /// View of one row, for kernels; valid until the size changes.
    [[nodiscard]] std::span<T> RowSpan(int row) {
        assert(row >= 1 && row <= rows_);
        return {cells_.data() + RowOffset(row), static_cast<std::size_t>(columns_)};
    }
    [[nodiscard]] std::span<const T> RowSpan(int row) const {
        assert(row >= 1 && row <= rows_);
        return {cells_.data() + RowOffset(row), static_cast<std::size_t>(columns_)};
    }
    /// All cells, row by row.
    [[nodiscard]] std::span<T> Cells() { return cells_; }
    [[nodiscard]] std::span<const T> Cells() const { return cells_; }

    [[nodiscard]] NCDataVector<T> GetRow(int row) const { return NCDataVector<T>(RowSpan(row)); }
    [[nodiscard]] NCDataVector<T> GetColumn(int column) const;

    /// No rows, no columns.
    void Clear();
    /// Sets the size; every cell becomes missing.
    NCDataMatrix& SetSize(int rows, int columns);
    /// Changes the size and keeps what fits; new cells are missing.
    NCDataMatrix& Resize(int rows, int columns);
    void SetAllValues(T value);
    /// Capacity only, at the present number of columns.
    void ReserveRows(int rows);
    /// Capacity only, at the present number of rows.
    void ReserveColumns(int columns);

    void SetRow(int row, T value);
    void SetRow(int row, const NCDataVector<T>& values);
    /// Inserts missing rows before row `first`; SizeRows() + 1 appends.
    void InsertRows(int first, int count);
    /// Inserts one filled row before row `first`. On an empty matrix the row sets the width.
    void InsertRow(int first, const NCDataVector<T>& values);
    void RemoveRows(int first, int count);
    /// Inserts missing columns before column `first`; SizeColumns() + 1 appends.
    void InsertColumns(int first, int count);
    /// Inserts one filled column. On an empty matrix the column sets the height.
    void InsertColumn(int first, const NCDataVector<T>& values);
    void RemoveColumns(int first, int count);

    /// Appends the other matrix below this one. An empty matrix takes the other's width; appending
    /// a matrix without rows changes nothing. The other may be this matrix itself.
    /// @throws InvalidOperationException when the widths differ.
    void ConcatRows(const NCDataMatrix& other);
    /// Appends the other matrix to the right, by the same rules.
    void ConcatColumns(const NCDataMatrix& other);

    /// Puts the columns in the given order: new column j is the old column order[j - 1]. The list
    /// must name every column once.
    /// @throws InvalidOperationException otherwise; the matrix stays.
    void RearrangeColumns(const std::vector<int>& order);
    /// Keeps the listed columns, in the listed order.
    /// @throws InvalidOperationException for a number that is no column; the matrix stays.
    void ReduceColumns(const NCIntegralVector<int, -99>& columns);

    /// Extreme values of one column, missing cells left out; both are -99 when nothing is left.
    void GetColumnMinMax(int column, T& min, T& max) const;

    NCDataMatrix& Transpose();
    /// Matrix product [rows x inner] * [inner x columns], every element accumulated in double in
    /// ascending order of the inner index.
    /// @throws InvalidOperationException when the inner sizes differ; so do the other products.
    [[nodiscard]] NCDataMatrix operator*(const NCDataMatrix& other) const;
    /// This matrix transposed, as the left factor of a product that never forms it.
    [[nodiscard]] NCDataMatrixPrim<T> Prim() const;

    /// The singular value decomposition, computed in double. An empty handle when `*cancel` is set;
    /// the pointer may be null.
    [[nodiscard]] std::unique_ptr<NCSVD<T>> GetSVD(bool* cancel) const;

    /// Nothing to do: a matrix never shares its storage. It stands for callers that detach first.
    void UnlinkMe() {}

    bool QvStreamableStartRead(QvInStream& stream) override;
    bool QvStreamableStartWrite(QvOutStream& stream) const override;
    void QvStreamableReset() override { Clear(); }

    friend bool operator==(const NCDataMatrix& a, const NCDataMatrix& b) {
        return a.rows_ == b.rows_ && a.columns_ == b.columns_ && a.cells_ == b.cells_;
    }

  private:
    [[nodiscard]] static std::size_t CellCount(int rows, int columns) {
        assert(rows >= 0 && columns >= 0);
        return static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns);
    }
    [[nodiscard]] std::size_t RowOffset(int row) const {
        return static_cast<std::size_t>(row - 1) * static_cast<std::size_t>(columns_);
    }
    [[nodiscard]] std::size_t Offset(int row, int column) const {
        assert(row >= 1 && row <= rows_ && column >= 1 && column <= columns_);
        return RowOffset(row) + static_cast<std::size_t>(column - 1);
    }

    int rows_ = 0;
    int columns_ = 0;
    std::vector<T> cells_;
};

/// A transposed matrix as the left factor of a product. Borrows the matrix.
template <class T>
class QORVA_EXPORT NCDataMatrixPrim {
  public:
    explicit NCDataMatrixPrim(const NCDataMatrix<T>& matrix) : matrix_(matrix) {}

    /// matrix' * other, with the sums of NCDataMatrix::operator*.
    [[nodiscard]] NCDataMatrix<T> operator*(const NCDataMatrix<T>& other) const;

  private:
    const NCDataMatrix<T>& matrix_;
};

extern template class NCDataMatrix<float>;
extern template class NCDataMatrix<double>;
extern template class NCDataMatrixPrim<float>;
extern template class NCDataMatrixPrim<double>;
