#include "foundation/mat/NCDataVector.h"

#include "foundation/mat/CellStream.h"
#include "foundation/mat/NCDataMatrix.h"
#include "foundation/mat/ProductKernel.h"
#include "foundation/utl/Exceptions.h"

template <class T>
double NCDataVector<T>::operator*(const NCDataVector& other) const {
    if (values_.size() != other.values_.size()) {
        throw InvalidOperationException("Dot product of vectors of different lengths");
    }
    double sum = 0;
    for (std::size_t i = 0; i < values_.size(); ++i) {
        sum += static_cast<double>(values_[i]) * static_cast<double>(other.values_[i]);
    }
    return sum;
}

template <class T>
NCDataVector<T> NCDataVector<T>::operator*(const NCDataMatrix<T>& matrix) const {
    if (Size() != matrix.SizeRows()) {
        throw InvalidOperationException("Product of a vector and a matrix of unfit sizes");
    }
    NCDataVector product(matrix.SizeColumns());
    const ProductKernel::LeftFactor<T> left{values_.data(), 1, values_.size(), values_.size(), 1};
    ProductKernel::Multiply(left,
                            matrix.Cells().data(),
                            static_cast<std::size_t>(matrix.SizeColumns()),
                            product.Values());
    return product;
}

template <class T>
bool NCDataVector<T>::QvStreamableStartRead(QvInStream& stream) {
    if (!CellStream::ReadTag(stream, CellStream::cVectorTag<T>)) {
        return false;
    }
    const auto size = CellStream::ReadSize(stream);
    if (!size) {
        return false;
    }
    auto values = CellStream::ReadCells<T>(stream, static_cast<std::size_t>(*size));
    if (!values) {
        return false;
    }
    values_ = std::move(*values);
    return true;
}

template <class T>
bool NCDataVector<T>::QvStreamableStartWrite(QvOutStream& stream) const {
    stream.WriteUInt32(CellStream::cVectorTag<T>);
    CellStream::WriteSize(stream, Size());
    CellStream::WriteCells<T>(stream, values_);
    return stream.IsGood();
}

template class NCDataVector<float>;
template class NCDataVector<double>;
