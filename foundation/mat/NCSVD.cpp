#include "foundation/mat/NCSVD.h"

#include <Eigen/Eigenvalues>
#include <Eigen/QR>
#include <Eigen/SVD>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using Eigen::MatrixXd;
template <class T>
using RowMajor = Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

/// Blocked products split their sums by the cache sizes they find. With sizes of our own the sums,
/// and so the last digits, are the same on every machine.
void FixBlockSizes() {
    static const bool done = [] {
        constexpr std::ptrdiff_t cKiB = 1024;
        Eigen::setCpuCacheSizes(32 * cKiB, 256 * cKiB, 2048 * cKiB);
        return true;
    }();
    static_cast<void>(done);
}

template <class T>
bool IsDecomposable(const NCDataMatrix<T>& matrix) {
    const auto cells = matrix.Cells();
    return !matrix.IsEmpty() && std::all_of(cells.begin(), cells.end(), [](T cell) {
        return std::isfinite(cell) && cell != NCDataMatrix<T>::cMissing;
    });
}

template <class T>
MatrixXd ToDouble(const NCDataMatrix<T>& matrix) {
    return Eigen::Map<const RowMajor<T>>(
               matrix.Cells().data(), matrix.SizeRows(), matrix.SizeColumns())
        .template cast<double>();
}

template <class T>
std::unique_ptr<NCDataMatrix<T>> FromDouble(const MatrixXd& values) {
    auto matrix = std::make_unique<NCDataMatrix<T>>(static_cast<int>(values.rows()),
                                                    static_cast<int>(values.cols()));
    Eigen::Map<RowMajor<T>>(matrix->Cells().data(), values.rows(), values.cols()) =
        values.template cast<T>();
    return matrix;
}

struct Decomposition {
    MatrixXd left;
    Eigen::VectorXd values;
    MatrixXd right;
};

/// Orthogonal V0 that makes the columns of A * V0 nearly orthogonal, longest first: the
/// eigenvectors of A'A. Squaring spoils them where singular values are small, which costs the
/// rotations after them some work and the result no accuracy.
MatrixXd NearlyRightVectors(const MatrixXd& matrix) {
    const Eigen::SelfAdjointEigenSolver<MatrixXd> solver(matrix.transpose() * matrix);
    return solver.eigenvectors().rowwise().reverse();
}

/// Of a matrix A that is no wider than high: A V0 = Q R and R = U w V' by rotations, hence
/// A = (Q U) w (V0 V)'. R is nearly diagonal, so that few rotations are left: several times faster
/// than rotations alone (Drmac and Veselic, 2008, on preconditioning) and a little more accurate.
///
/// Deliberate: not by divide and conquer, which is no faster here. The one at hand is wrong in the
/// first digit, and reads outside its arrays, for some matrices with many equal singular values,
/// and such are orthogonal designs.
Decomposition DecomposeUpright(const MatrixXd& matrix) {
    const Eigen::Index columns = matrix.cols();
    const MatrixXd firstRight = NearlyRightVectors(matrix);
    const Eigen::HouseholderQR<MatrixXd> qr(matrix * firstRight);
    const MatrixXd triangle = qr.matrixQR().topRows(columns).triangularView<Eigen::Upper>();
    const Eigen::JacobiSVD<MatrixXd> svd(triangle, Eigen::ComputeThinU | Eigen::ComputeThinV);
    MatrixXd left = MatrixXd::Zero(matrix.rows(), columns);
    left.topRows(columns) = svd.matrixU();
    left.applyOnTheLeft(qr.householderQ());
    return {std::move(left), svd.singularValues(), firstRight * svd.matrixV()};
}

/// Divides the matrix by a power of two that brings its entries to the order of 1, so that sums of
/// squares neither overflow nor vanish, and returns the power. Normal numbers are not rounded by
/// that.
double ScaleToUnity(MatrixXd& matrix) {
    constexpr int cLargestExponent = 1000;
    const int exponent =
        std::clamp(std::ilogb(matrix.cwiseAbs().maxCoeff()), -cLargestExponent, cLargestExponent);
    matrix *= std::ldexp(1.0, -exponent);
    return std::ldexp(1.0, exponent);
}

Decomposition Decompose(MatrixXd matrix) {
    FixBlockSizes();
    const double scale = ScaleToUnity(matrix);
    const bool isWide = matrix.rows() < matrix.cols();
    Decomposition result = isWide ? DecomposeUpright(matrix.transpose()) : DecomposeUpright(matrix);
    if (isWide) {
        std::swap(result.left, result.right);
    }
    result.values *= scale;
    return result;
}

/// Relative size up to which a singular value is rounding noise.
double NoiseLevel(int rows, int columns) {
    return std::numeric_limits<double>::epsilon() * std::max(rows, columns);
}

/// True when the smallest of the descending values is more than noise beside the largest.
bool HasFullRank(std::span<const double> values, int rows, int columns) {
    return !values.empty() && values.back() > NoiseLevel(rows, columns) * values.front();
}

}  // namespace

template <class T>
struct NCSVD<T>::Factors {
    MatrixXd left;
    MatrixXd right;
};

template <class T>
NCSVD<T>::NCSVD(const NCDataMatrix<T>& matrix)
    : rows_(matrix.SizeRows()), columns_(matrix.SizeColumns()) {
    if (!IsDecomposable(matrix)) {
        return;
    }
    Decomposition result = Decompose(ToDouble(matrix));
    values_.assign(result.values.begin(), result.values.end());
    factors_ = std::make_unique<Factors>(Factors{std::move(result.left), std::move(result.right)});
}

template <class T>
NCSVD<T>::~NCSVD() = default;

template <class T>
std::unique_ptr<NCDataMatrix<T>> NCSVD<T>::GetInverse(float tolerance) const {
    const bool isDefault = !(tolerance >= 0);
    if (values_.empty() || (isDefault && !HasFullRank(values_, rows_, columns_))) {
        return nullptr;
    }
    const double cutoff = isDefault ? 0.0 : static_cast<double>(tolerance) * values_.front();
    const auto kept = std::count_if(
        values_.begin(), values_.end(), [cutoff](double value) { return value > cutoff; });
    if (kept == 0) {
        return nullptr;
    }
    const Eigen::Map<const Eigen::VectorXd> values(values_.data(), kept);
    const MatrixXd scaled = factors_->right.leftCols(kept) * values.cwiseInverse().asDiagonal();
    return FromDouble<T>(scaled * factors_->left.leftCols(kept).transpose());
}

template <class T>
std::unique_ptr<NCDataMatrix<T>> NCSVD<T>::GetCrossInverse() const {
    if (rows_ < columns_ || !HasFullRank(values_, rows_, columns_)) {
        return nullptr;
    }
    const Eigen::Map<const Eigen::VectorXd> values(values_.data(), columns_);
    const MatrixXd scaled = factors_->right * values.cwiseInverse().asDiagonal();
    MatrixXd inverse = scaled * scaled.transpose();
    // Blocked products sum the two halves in different ways; callers rely on one symmetric result.
    inverse.triangularView<Eigen::StrictlyUpper>() = inverse.transpose();
    return FromDouble<T>(inverse);
}

template <class T>
T NCSVD<T>::GetLogDeterminant() const {
    if (rows_ < columns_ || !HasFullRank(values_, rows_, columns_)) {
        return NCDataMatrix<T>::cMissing;
    }
    double sum = 0;
    for (const double value : values_) {
        sum += 2 * std::log10(value);
    }
    return static_cast<T>(sum);
}

template <class T>
float NCSVD<T>::GetConditionNumber() const {
    if (values_.empty()) {
        return NCDataMatrix<float>::cMissing;
    }
    if (values_.back() == 0) {
        return std::numeric_limits<float>::infinity();
    }
    return static_cast<float>(values_.front() / values_.back());
}

template class NCSVD<float>;
template class NCSVD<double>;
