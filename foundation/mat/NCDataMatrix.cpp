#include "foundation/mat/NCDataMatrix.h"

#include <algorithm>
#include <limits>

#include "foundation/mat/CellStream.h"
#include "foundation/mat/NCSVD.h"
#include "foundation/mat/ProductKernel.h"
#include "foundation/utl/Exceptions.h"

namespace {

/// True when the list names each of the columns 1 to `columns` once.
bool IsPermutation(const std::vector<int>& order, int columns) {
    if (order.size() != static_cast<std::size_t>(columns)) {
        return false;
    }
    std::vector<bool> seen(order.size(), false);
    for (const int column : order) {
        if (column < 1 || column > columns || seen[static_cast<std::size_t>(column - 1)]) {
            return false;
        }
        seen[static_cast<std::size_t>(column - 1)] = true;
    }
    return true;
}

/// The listed columns (one-based) of a row-by-row block of the given width, as a new block.
template <class T, class Columns>
std::vector<T> PickColumns(const std::vector<T>& cells,
                           int rows,
                           int width,
                           const Columns& columns) {
    std::vector<T> picked;
    picked.reserve(static_cast<std::size_t>(rows) *
                   static_cast<std::size_t>(columns.end() - columns.begin()));
    const T* row = cells.data();
    for (int i = 0; i < rows; ++i, row += width) {
        for (const int column : columns) {
            picked.push_back(row[column - 1]);
        }
    }
    return picked;
}

/// Joins two blocks of equal height side by side.
template <class T>
std::vector<T> JoinColumns(const std::vector<T>& left,
                           int leftWidth,
                           const std::vector<T>& right,
                           int rightWidth,
                           int rows) {
    std::vector<T> joined;
    joined.reserve(left.size() + right.size());
    auto leftRow = left.begin();
    auto rightRow = right.begin();
    for (int i = 0; i < rows; ++i) {
        joined.insert(joined.end(), leftRow, leftRow + leftWidth);
        joined.insert(joined.end(), rightRow, rightRow + rightWidth);
        leftRow += leftWidth;
        rightRow += rightWidth;
    }
    return joined;
}

}  // namespace

template <class T>
NCDataMatrix<T>::NCDataMatrix(std::initializer_list<std::initializer_list<T>> rows)
    : rows_(static_cast<int>(rows.size())),
      columns_(rows.size() == 0 ? 0 : static_cast<int>(rows.begin()->size())) {
    cells_.reserve(CellCount(rows_, columns_));
    for (const auto& row : rows) {
        if (row.size() != static_cast<std::size_t>(columns_)) {
            throw InvalidOperationException("Rows of different lengths in a literal matrix");
        }
        cells_.insert(cells_.end(), row.begin(), row.end());
    }
}

template <class T>
NCDataVector<T> NCDataMatrix<T>::GetColumn(int column) const {
    assert(column >= 1 && column <= columns_);
    NCDataVector<T> values(rows_);
    for (int row = 1; row <= rows_; ++row) {
        values(row, (*this)(row, column));
    }
    return values;
}

template <class T>
void NCDataMatrix<T>::Clear() {
    rows_ = 0;
    columns_ = 0;
    cells_.clear();
}

template <class T>
NCDataMatrix<T>& NCDataMatrix<T>::SetSize(int rows, int columns) {
    cells_.assign(CellCount(rows, columns), cMissing);
    rows_ = rows;
    columns_ = columns;
    return *this;
}

template <class T>
NCDataMatrix<T>& NCDataMatrix<T>::Resize(int rows, int columns) {
    if (columns == columns_) {
        cells_.resize(CellCount(rows, columns), cMissing);
    } else {
        std::vector<T> resized(CellCount(rows, columns), cMissing);
        const int keptColumns = std::min(columns, columns_);
        const T* source = cells_.data();
        T* target = resized.data();
        for (int row = 0; row < std::min(rows, rows_); ++row) {
            std::copy_n(source, keptColumns, target);
            source += columns_;
            target += columns;
        }
        cells_ = std::move(resized);
    }
    rows_ = rows;
    columns_ = columns;
    return *this;
}

template <class T>
void NCDataMatrix<T>::SetAllValues(T value) {
    std::fill(cells_.begin(), cells_.end(), value);
}

template <class T>
void NCDataMatrix<T>::ReserveRows(int rows) {
    cells_.reserve(CellCount(rows, columns_));
}

template <class T>
void NCDataMatrix<T>::ReserveColumns(int columns) {
    cells_.reserve(CellCount(rows_, columns));
}

template <class T>
void NCDataMatrix<T>::SetRow(int row, T value) {
    const auto cells = RowSpan(row);
    std::fill(cells.begin(), cells.end(), value);
}

template <class T>
void NCDataMatrix<T>::SetRow(int row, const NCDataVector<T>& values) {
    assert(values.Size() == columns_);
    const auto source = values.Values();
    std::copy(source.begin(), source.end(), RowSpan(row).begin());
}

template <class T>
void NCDataMatrix<T>::InsertRows(int first, int count) {
    assert(first >= 1 && first <= rows_ + 1 && count >= 0);
    const auto position = cells_.begin() + static_cast<std::ptrdiff_t>(RowOffset(first));
    cells_.insert(position, CellCount(count, columns_), cMissing);
    rows_ += count;
}

template <class T>
void NCDataMatrix<T>::InsertRow(int first, const NCDataVector<T>& values) {
    assert(first >= 1 && first <= rows_ + 1);
    assert(rows_ == 0 || values.Size() == columns_);
    const auto source = values.Values();
    const auto position = cells_.begin() + static_cast<std::ptrdiff_t>(RowOffset(first));
    cells_.insert(position, source.begin(), source.end());
    columns_ = values.Size();
    ++rows_;
}

template <class T>
void NCDataMatrix<T>::RemoveRows(int first, int count) {
    assert(first >= 1 && count >= 0 && first - 1 <= rows_ - count);
    const auto begin = cells_.begin() + static_cast<std::ptrdiff_t>(RowOffset(first));
    cells_.erase(begin, begin + static_cast<std::ptrdiff_t>(CellCount(count, columns_)));
    rows_ -= count;
}

template <class T>
void NCDataMatrix<T>::InsertColumns(int first, int count) {
    assert(first >= 1 && first <= columns_ + 1 && count >= 0);
    const int columns = columns_ + count;
    std::vector<T> widened(CellCount(rows_, columns), cMissing);
    const T* source = cells_.data();
    T* target = widened.data();
    for (int row = 0; row < rows_; ++row) {
        std::copy_n(source, first - 1, target);
        std::copy_n(source + (first - 1), columns_ - (first - 1), target + (first - 1) + count);
        source += columns_;
        target += columns;
    }
    cells_ = std::move(widened);
    columns_ = columns;
}

template <class T>
void NCDataMatrix<T>::InsertColumn(int first, const NCDataVector<T>& values) {
    if (columns_ == 0) {
        assert(first == 1);
        const auto source = values.Values();
        cells_.assign(source.begin(), source.end());
        rows_ = values.Size();
        columns_ = 1;
        return;
    }
    assert(values.Size() == rows_);
    InsertColumns(first, 1);
    for (int row = 1; row <= rows_; ++row) {
        (*this)(row, first, values(row));
    }
}

template <class T>
void NCDataMatrix<T>::RemoveColumns(int first, int count) {
    assert(first >= 1 && count >= 0 && first - 1 <= columns_ - count);
    const int after = columns_ - (first - 1) - count;
    const T* source = cells_.data();
    T* target = cells_.data();
    for (int row = 0; row < rows_; ++row) {
        target = std::copy_n(source, first - 1, target);
        target = std::copy_n(source + (first - 1) + count, after, target);
        source += columns_;
    }
    columns_ -= count;
    cells_.resize(CellCount(rows_, columns_));
}

template <class T>
void NCDataMatrix<T>::ConcatRows(const NCDataMatrix& other) {
    if (other.rows_ == 0) {
        return;
    }
    if (rows_ != 0 && columns_ != other.columns_) {
        throw InvalidOperationException("ConcatRows: the numbers of columns differ");
    }
    // The other's size is taken first: it may be this very matrix, which grows here.
    const std::size_t before = cells_.size();
    const std::size_t appended = other.cells_.size();
    cells_.resize(before + appended);
    std::copy_n(
        other.cells_.begin(), appended, cells_.begin() + static_cast<std::ptrdiff_t>(before));
    columns_ = other.columns_;
    rows_ += other.rows_;
}

template <class T>
void NCDataMatrix<T>::ConcatColumns(const NCDataMatrix& other) {
    if (other.columns_ == 0) {
        return;
    }
    if (columns_ != 0 && rows_ != other.rows_) {
        throw InvalidOperationException("ConcatColumns: the numbers of rows differ");
    }
    cells_ = JoinColumns(cells_, columns_, other.cells_, other.columns_, other.rows_);
    rows_ = other.rows_;
    columns_ += other.columns_;
}

template <class T>
void NCDataMatrix<T>::RearrangeColumns(const std::vector<int>& order) {
    if (!IsPermutation(order, columns_)) {
        throw InvalidOperationException("RearrangeColumns: the list must name every column once");
    }
    cells_ = PickColumns(cells_, rows_, columns_, order);
}

template <class T>
void NCDataMatrix<T>::ReduceColumns(const NCIntegralVector<int, -99>& columns) {
    for (const int column : columns) {
        if (column < 1 || column > columns_) {
            throw InvalidOperationException("ReduceColumns: no such column");
        }
    }
    cells_ = PickColumns(cells_, rows_, columns_, columns);
    columns_ = columns.Size();
}

template <class T>
void NCDataMatrix<T>::GetColumnMinMax(int column, T& min, T& max) const {
    T lowest = std::numeric_limits<T>::infinity();
    T highest = -lowest;
    for (int row = 1; row <= rows_; ++row) {
        const T value = (*this)(row, column);
        if (value != cMissing) {
            lowest = value < lowest ? value : lowest;
            highest = value > highest ? value : highest;
        }
    }
    const bool found = lowest <= highest;
    min = found ? lowest : cMissing;
    max = found ? highest : cMissing;
}

template <class T>
NCDataMatrix<T>& NCDataMatrix<T>::Transpose() {
    // In bands of rows: the target lines of one band stay in the cache until they are full.
    constexpr int cBand = 16;
    std::vector<T> transposed(cells_.size());
    const auto height = static_cast<std::size_t>(rows_);
    for (int band = 1; band <= rows_; band += cBand) {
        const int last = std::min(band + cBand - 1, rows_);
        for (int column = 1; column <= columns_; ++column) {
            T* const target = transposed.data() + static_cast<std::size_t>(column - 1) * height;
            for (int row = band; row <= last; ++row) {
                target[row - 1] = (*this)(row, column);
            }
        }
    }
    cells_ = std::move(transposed);
    std::swap(rows_, columns_);
    return *this;
}

template <class T>
NCDataMatrix<T> NCDataMatrix<T>::operator*(const NCDataMatrix& other) const {
    if (columns_ != other.rows_) {
        throw InvalidOperationException("Product of matrices of unfit sizes");
    }
    NCDataMatrix product(rows_, other.columns_);
    const auto inner = static_cast<std::size_t>(columns_);
    const ProductKernel::LeftFactor<T> left{
        cells_.data(), static_cast<std::size_t>(rows_), inner, inner, 1};
    ProductKernel::Multiply(
        left, other.cells_.data(), static_cast<std::size_t>(other.columns_), product.Cells());
    return product;
}

template <class T>
NCDataMatrixPrim<T> NCDataMatrix<T>::Prim() const {
    return NCDataMatrixPrim<T>(*this);
}

template <class T>
std::unique_ptr<NCSVD<T>> NCDataMatrix<T>::GetSVD(bool* cancel) const {
    const auto isCancelled = [cancel] { return cancel != nullptr && *cancel; };
    if (isCancelled()) {
        return nullptr;
    }
    auto decomposition = std::make_unique<NCSVD<T>>(*this);
    // A stop that came during the work is honoured before anybody goes on with the result.
    return isCancelled() ? nullptr : std::move(decomposition);
}

template <class T>
bool NCDataMatrix<T>::QvStreamableStartRead(QvInStream& stream) {
    if (!CellStream::ReadTag(stream, CellStream::cMatrixTag<T>)) {
        return false;
    }
    const auto rows = CellStream::ReadSize(stream);
    const auto columns = CellStream::ReadSize(stream);
    if (!rows || !columns) {
        return false;
    }
    auto cells = CellStream::ReadCells<T>(stream, CellCount(*rows, *columns));
    if (!cells) {
        return false;
    }
    rows_ = *rows;
    columns_ = *columns;
    cells_ = std::move(*cells);
    return true;
}

template <class T>
bool NCDataMatrix<T>::QvStreamableStartWrite(QvOutStream& stream) const {
    stream.WriteUInt32(CellStream::cMatrixTag<T>);
    CellStream::WriteSize(stream, rows_);
    CellStream::WriteSize(stream, columns_);
    CellStream::WriteCells<T>(stream, cells_);
    return stream.IsGood();
}

template <class T>
NCDataMatrix<T> NCDataMatrixPrim<T>::operator*(const NCDataMatrix<T>& other) const {
    if (matrix_.SizeRows() != other.SizeRows()) {
        throw InvalidOperationException("Product of matrices of unfit sizes");
    }
    NCDataMatrix<T> product(matrix_.SizeColumns(), other.SizeColumns());
    const auto inner = static_cast<std::size_t>(matrix_.SizeRows());
    const auto rows = static_cast<std::size_t>(matrix_.SizeColumns());
    const ProductKernel::LeftFactor<T> left{matrix_.Cells().data(), rows, inner, 1, rows};
    ProductKernel::Multiply(
        left, other.Cells().data(), static_cast<std::size_t>(other.SizeColumns()), product.Cells());
    return product;
}

template class NCDataMatrix<float>;
template class NCDataMatrix<double>;
template class NCDataMatrixPrim<float>;
template class NCDataMatrixPrim<double>;
