// The square matrices C of the definitive screening designs, each by its construction.
//
// For even m, C is a conference matrix, C'C = (m - 1) I, as Xiao, Lin and Bai (2012), "Constructing
// definitive screening designs using conference matrices", Journal of Quality Technology 44, have
// it; those of order q + 1 are Paley's (1933), "On orthogonal matrices", Journal of Mathematics and
// Physics 12. There is none of order 22, since 21 is no sum of two squares.
//
// For odd m the usual way, a conference matrix of order m + 1 less one row and column, is singular.
// Circulants whose shifts all have inner product -1 or 1 are used instead, and where no regular one
// exists, that core with one row replaced, which keeps the inner products. The matrices of 21 and
// 22 columns were found by search among circulant blocks.

#include "designs/factorial/DefinitiveScreeningTables.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using Matrix = NCDataMatrix<float>;

float Sign(char symbol) {
    return symbol == '0' ? 0.0F : symbol == '+' ? 1.0F : -1.0F;
}

Matrix Rows(const std::vector<std::string_view>& rows) {
    const int size = static_cast<int>(rows.size());
    Matrix matrix(size, size);
    for (int row = 1; row <= size; ++row) {
        std::ranges::transform(
            rows[static_cast<std::size_t>(row - 1)], matrix.RowSpan(row).begin(), Sign);
    }
    return matrix;
}

// Every row is the one above it, moved one column to the right.
Matrix Circulant(std::string_view firstRow) {
    const int size = static_cast<int>(firstRow.size());
    Matrix matrix(size, size);
    for (int row = 0; row < size; ++row) {
        for (int column = 0; column < size; ++column) {
            const int shift = (column - row + size) % size;
            matrix(row + 1, column + 1, Sign(firstRow[static_cast<std::size_t>(shift)]));
        }
    }
    return matrix;
}

Matrix Negated(Matrix matrix) {
    for (float& cell : matrix.Cells()) {
        cell = 0.0F - cell;  // not by a minus sign: 0 has no sign in a design
    }
    return matrix;
}

Matrix WithDiagonal(Matrix matrix, float value) {
    for (int i = 1; i <= matrix.SizeRows(); ++i) {
        matrix(i, i, value);
    }
    return matrix;
}

// [a b]
// [c d]
Matrix Blocks(Matrix a, const Matrix& b, Matrix c, const Matrix& d) {
    a.ConcatColumns(b);
    c.ConcatColumns(d);
    a.ConcatRows(c);
    return a;
}

// One row of `low` below and one column of `right` on the right side, with 0 in the corner.
Matrix Bordered(const Matrix& matrix, float right, float low) {
    const int size = matrix.SizeRows();
    return Blocks(matrix, Matrix(size, 1, right), Matrix(1, size, low), Matrix(1, 1, 0.0F));
}

// The finite field of prime^n elements: polynomials below degree n in x, where x^n is replaced by
// the polynomial of the given n coefficients, lowest first. An element's number has the
// coefficients as its digits to the base `prime`.
class Field {
  public:
    Field(int prime, std::vector<int> power) : prime_(prime), power_(std::move(power)) {
        for (std::size_t i = 0; i < power_.size(); ++i) {
            size_ *= prime_;
        }
    }
    explicit Field(int prime) : Field(prime, {0}) {}

    [[nodiscard]] int Size() const { return size_; }

    [[nodiscard]] int Difference(int a, int b) const {
        std::vector<int> digits = Digits(a);
        const std::vector<int> other = Digits(b);
        for (std::size_t i = 0; i < digits.size(); ++i) {
            digits[i] = (digits[i] - other[i] + prime_) % prime_;
        }
        return Number(digits);
    }

    [[nodiscard]] int Square(int a) const {
        const std::vector<int> digits = Digits(a);
        const std::size_t degree = power_.size();
        std::vector<int> product(2 * degree, 0);
        for (std::size_t i = 0; i < degree; ++i) {
            for (std::size_t j = 0; j < degree; ++j) {
                product[i + j] += digits[i] * digits[j];
            }
        }
        for (std::size_t high = product.size() - 1; high >= degree; --high) {
            for (std::size_t i = 0; i < degree; ++i) {
                product[high - degree + i] += product[high] * power_[i];
            }
        }
        product.resize(degree);
        return Number(product);
    }

  private:
    [[nodiscard]] std::vector<int> Digits(int number) const {
        std::vector<int> digits;
        for (std::size_t i = 0; i < power_.size(); ++i, number /= prime_) {
            digits.push_back(number % prime_);
        }
        return digits;
    }
    [[nodiscard]] int Number(const std::vector<int>& digits) const {
        return std::accumulate(digits.rbegin(), digits.rend(), 0, [this](int number, int digit) {
            return number * prime_ + digit % prime_;
        });
    }

    int prime_;
    std::vector<int> power_;
    int size_ = 1;
};

// The cell of two elements is the quadratic character of their difference: 0 on the diagonal, 1 for
// squares, -1 for the others.
Matrix PaleyCore(const Field& field) {
    std::vector<float> character(static_cast<std::size_t>(field.Size()), -1.0F);
    for (int element = 0; element < field.Size(); ++element) {
        character[static_cast<std::size_t>(field.Square(element))] = element == 0 ? 0.0F : 1.0F;
    }
    Matrix core(field.Size(), field.Size());
    for (int row = 0; row < field.Size(); ++row) {
        for (int column = 0; column < field.Size(); ++column) {
            const int difference = field.Difference(column, row);
            core(row + 1, column + 1, character[static_cast<std::size_t>(difference)]);
        }
    }
    return core;
}

// The conference matrix of order q + 1: symmetric for q = 1 modulo 4, skew for q = 3.
Matrix Paley(const Field& field) {
    const int size = field.Size();
    const float left = size % 4 == 1 ? 1.0F : -1.0F;
    return Blocks(
        Matrix(1, 1, 0.0F), Matrix(1, size, 1.0F), Matrix(size, 1, left), PaleyCore(field));
}

// The core with a first row of 1: the core itself is singular.
Matrix ClearedCore(const Field& field) {
    Matrix core = PaleyCore(field);
    core.SetRow(1, 1.0F);
    core(1, 1, 0.0F);
    return core;
}

// From a skew conference matrix S of order m, one of order 2m: [S, S + I; S - I, -S].
Matrix Doubled(const Matrix& skew) {
    return Blocks(skew, WithDiagonal(skew, 1.0F), WithDiagonal(skew, -1.0F), Negated(skew));
}

// [A, B; B', -A'] of circulants.
Matrix TwoCirculants(std::string_view a, std::string_view b) {
    Matrix transposedA = Circulant(a);
    Matrix transposedB = Circulant(b);
    transposedA.Transpose();
    transposedB.Transpose();
    return Blocks(Circulant(a), Circulant(b), transposedB, Negated(transposedA));
}

// Every row, followed by its mirror image.
Matrix FoldedOver(const Matrix& half) {
    const Matrix mirrored = Negated(half);
    Matrix design(2 * half.SizeRows(), half.SizeColumns());
    for (int row = 1; row <= half.SizeRows(); ++row) {
        std::ranges::copy(half.RowSpan(row), design.RowSpan(2 * row - 1).begin());
        std::ranges::copy(mirrored.RowSpan(row), design.RowSpan(2 * row).begin());
    }
    return design;
}

std::map<int, Matrix> MakeHalves() {
    const Field field9(3, {2, 0});      // x^2 = -1
    const Field field25(5, {3, 0});     // x^2 = -2
    const Field field27(3, {2, 1, 0});  // x^3 = x + 2
    // clang-format off
    return {
        { 4, Rows({"0+--", "-0-+", "--0-", "-++0"})},
        { 5, Rows({"0++--", "+0--+", "+-0+-", "+-+0+", "++++0"})},
        { 6, Rows({"0+----", "+0-++-", "--0+--", "-++0+-", "+-+-0-", "++++-0"})},
        { 7, Circulant("0+-+---")},
        { 8, Paley(Field(7))},
        { 9, Circulant("0+-++++--")},
        {10, Paley(field9)},
        {11, Circulant("0+-+----+--")},
        {12, Paley(Field(11))},
        {13, Circulant("0++--+-+-----")},
        {14, Paley(Field(13))},
        {15, Circulant("0+-----++-+-+--")},
        {16, Doubled(Paley(Field(7)))},
        {17, ClearedCore(Field(17))},
        {18, Paley(Field(17))},
        {19, Circulant("0+--+-+++-+----+---")},
        {20, Paley(Field(19))},
        {21, Bordered(Blocks(Circulant("0+--++----"), Circulant("++++--+-+-"),
                             Circulant("+++--+-+-+"), Circulant("0+--++----")), -1.0F, -1.0F)},
        {22, TwoCirculants("0-+--++----", "++-+-+-----")},
        {23, Circulant("0+-+-++---+------++-+--")},
        {24, Paley(Field(23))},
        {25, ClearedCore(field25)},
        {26, Paley(field25)},
        {27, ClearedCore(field27)},
        {28, Paley(field27)},
        {29, ClearedCore(Field(29))},
        {30, Paley(Field(29))},
    };
    // clang-format on
}

std::map<int, Matrix> MakeMatrices() {
    std::map<int, Matrix> matrices = MakeHalves();
    for (auto& [columns, matrix] : matrices) {
        matrix = FoldedOver(matrix);
    }
    return matrices;
}

}  // namespace

const std::map<int, NCDataMatrix<float>>& DefinitiveScreeningTables::GetMatrices() {
    static const std::map<int, NCDataMatrix<float>> matrices = MakeMatrices();
    return matrices;
}
