#include "foundation/mat/NCSVD.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "tests/oracles/DenseOracles.h"

namespace {

using oracles::Table;
using DoubleMatrix = NCDataMatrix<double>;
using FloatMatrix = NCDataMatrix<float>;

constexpr float cDefaultTolerance = -99;
constexpr double cEpsilon = std::numeric_limits<double>::epsilon();

/// Hilbert matrix, H(i, j) = 1 / (i + j - 1).
DoubleMatrix Hilbert(int size) {
    DoubleMatrix matrix(size, size);
    for (int i = 1; i <= size; ++i) {
        for (int j = 1; j <= size; ++j) {
            matrix(i, j, 1.0 / (i + j - 1));
        }
    }
    return matrix;
}

/// Full factorial in -1 and 1 with its constant, all interactions of `factors` factors: orthogonal,
/// [2^factors x 2^factors].
template <class T>
NCDataMatrix<T> TwoLevelModel(int factors) {
    const int size = 1 << factors;
    NCDataMatrix<T> matrix(size, size);
    for (int run = 0; run < size; ++run) {
        for (int term = 0; term < size; ++term) {
            const int minusSigns = __builtin_popcount(static_cast<unsigned>(run & term));
            matrix(run + 1, term + 1, minusSigns % 2 == 0 ? T{1} : T{-1});
        }
    }
    return matrix;
}

/// Entries -1, 0 and 1.
DoubleMatrix RandomDesign(int rows, int columns, std::mt19937& engine) {
    DoubleMatrix matrix(rows, columns);
    for (double& cell : matrix.Cells()) {
        cell = static_cast<double>(engine() % 3) - 1;
    }
    return matrix;
}

Table CrossProduct(const DoubleMatrix& matrix) {
    const Table table = oracles::ToTable(matrix);
    return oracles::Product(oracles::Transposed(table), table);
}

/// The four defining identities of the pseudo-inverse (Penrose, 1955), as the largest violation
/// relative to the size of the terms.
long double PenroseViolation(const DoubleMatrix& matrix, const DoubleMatrix& inverse) {
    using oracles::Product;
    using oracles::Transposed;
    const Table a = oracles::ToTable(matrix);
    const Table g = oracles::ToTable(inverse);
    const Table ag = Product(a, g);
    const Table ga = Product(g, a);
    const long double first =
        oracles::LargestDifference(Product(ag, a), a) / oracles::LargestEntry(a);
    const long double second =
        oracles::LargestDifference(Product(ga, g), g) / oracles::LargestEntry(g);
    const long double third = oracles::LargestDifference(ag, Transposed(ag));
    const long double fourth = oracles::LargestDifference(ga, Transposed(ga));
    return std::max({first, second, third, fourth});
}

TEST(NCSVD, InverseOfAKnownMatrix) {
    const auto inverse = FloatMatrix{{4, 7}, {2, 6}}.GetSVD(nullptr)->GetInverse(cDefaultTolerance);
    ASSERT_NE(inverse, nullptr);
    const FloatMatrix expected{{0.6f, -0.7f}, {-0.2f, 0.4f}};
    for (int row = 1; row <= 2; ++row) {
        for (int column = 1; column <= 2; ++column) {
            EXPECT_FLOAT_EQ((*inverse)(row, column), expected(row, column));
        }
    }
}

TEST(NCSVD, InverseEqualsEliminationOverRandomSizes) {
    std::mt19937 engine(21);
    for (int size = 1; size <= 40; ++size) {
        const auto matrix = oracles::RandomMatrix<double>(size, size, engine);
        const auto svd = matrix.GetSVD(nullptr);
        const auto inverse = svd->GetInverse(cDefaultTolerance);
        ASSERT_NE(inverse, nullptr) << "size " << size;
        const Table expected = oracles::GaussJordanInverse(oracles::ToTable(matrix));
        // The error of an inverse grows with the condition number.
        const long double allowed =
            10.0L * size * cEpsilon * svd->GetConditionNumber() * oracles::LargestEntry(expected);
        EXPECT_LE(oracles::LargestDifference(oracles::ToTable(*inverse), expected), allowed)
            << "size " << size << ", seed 21";
    }
}

TEST(NCSVD, FloatInverseIsTheDoubleOneRoundedOnce) {
    std::mt19937 engine(22);
    for (int size = 1; size <= 30; ++size) {
        const auto single = oracles::RandomMatrix<float>(size, size, engine);
        DoubleMatrix wide(size, size);
        std::copy(single.Cells().begin(), single.Cells().end(), wide.Cells().begin());
        const auto rounded = single.GetSVD(nullptr)->GetInverse(cDefaultTolerance);
        const auto exact = wide.GetSVD(nullptr)->GetInverse(cDefaultTolerance);
        ASSERT_TRUE(rounded && exact);
        for (std::size_t i = 0; i < exact->Cells().size(); ++i) {
            ASSERT_EQ(rounded->Cells()[i], static_cast<float>(exact->Cells()[i]))
                << "size " << size << ", seed 22";
        }
    }
}

TEST(NCSVD, PseudoInversesSatisfyPenrosesIdentities) {
    std::mt19937 engine(23);
    for (const auto& [rows, columns] : {std::pair{1, 5},
                                        {5, 1},
                                        {4, 6},
                                        {6, 4},
                                        {20, 19},
                                        {19, 20},
                                        {60, 17},
                                        {17, 60},
                                        {30, 30}}) {
        const auto matrix = oracles::RandomMatrix<double>(rows, columns, engine);
        const auto svd = matrix.GetSVD(nullptr);
        const auto inverse = svd->GetInverse(cDefaultTolerance);
        ASSERT_NE(inverse, nullptr) << rows << " x " << columns;
        EXPECT_EQ(inverse->SizeRows(), columns);
        EXPECT_EQ(inverse->SizeColumns(), rows);
        EXPECT_LE(PenroseViolation(matrix, *inverse),
                  100 * cEpsilon * (rows + columns) * svd->GetConditionNumber())
            << rows << " x " << columns << ", seed 23";
    }
}

TEST(NCSVD, PseudoInverseOfARankDeficientMatrixSatisfiesPenrosesIdentities) {
    std::mt19937 engine(24);
    const auto left = oracles::RandomMatrix<double>(25, 6, engine);
    const auto right = oracles::RandomMatrix<double>(6, 20, engine);
    const DoubleMatrix matrix = left * right;
    const auto inverse = matrix.GetSVD(nullptr)->GetInverse(1e-10f);
    ASSERT_NE(inverse, nullptr);
    EXPECT_LE(PenroseViolation(matrix, *inverse), 1e-12) << "seed 24";
}

TEST(NCSVD, CrossInverseEqualsEliminationOverRandomDesigns) {
    std::mt19937 engine(25);
    for (int columns = 1; columns <= 25; ++columns) {
        const auto matrix = oracles::RandomMatrix<double>(columns + 10, columns, engine);
        const auto svd = matrix.GetSVD(nullptr);
        const auto inverse = svd->GetCrossInverse();
        ASSERT_NE(inverse, nullptr);
        const Table expected = oracles::GaussJordanInverse(CrossProduct(matrix));
        const long double allowed = 20.0L * columns * cEpsilon * svd->GetConditionNumber() *
                                    oracles::LargestEntry(expected);
        EXPECT_LE(oracles::LargestDifference(oracles::ToTable(*inverse), expected), allowed)
            << columns << " columns, seed 25";
    }
}

TEST(NCSVD, CrossInverseIsExactlySymmetric) {
    std::mt19937 engine(26);
    for (int columns = 1; columns <= 70; ++columns) {
        const auto inverse = oracles::RandomMatrix<double>(columns + 5, columns, engine)
                                 .GetSVD(nullptr)
                                 ->GetCrossInverse();
        ASSERT_NE(inverse, nullptr);
        DoubleMatrix transposed = *inverse;
        EXPECT_EQ(transposed.Transpose(), *inverse) << columns << " columns, seed 26";
    }
}

TEST(NCSVD, AWideMatrixHasAPseudoInverseButNoCrossInverse) {
    const auto svd = FloatMatrix{{1, 0, 0}, {0, 2, 0}}.GetSVD(nullptr);
    EXPECT_NE(svd->GetInverse(cDefaultTolerance), nullptr);
    EXPECT_EQ(svd->GetCrossInverse(), nullptr);
    EXPECT_EQ(svd->GetLogDeterminant(), -99);
}

TEST(NCSVD, LogDeterminantEqualsEliminationOverRandomSizes) {
    std::mt19937 engine(27);
    for (int trial = 0; trial < 40; ++trial) {
        const int columns = static_cast<int>(1 + engine() % 30);
        const int rows = columns + static_cast<int>(engine() % 20);
        const auto matrix = oracles::RandomMatrix<double>(rows, columns, engine);
        const auto svd = matrix.GetSVD(nullptr);
        const long double expected = oracles::LogDeterminant(CrossProduct(matrix));
        // Every log10(w) carries the relative error of w, at most the condition number's share.
        const double allowed =
            10 * cEpsilon * columns * (static_cast<double>(svd->GetConditionNumber()) + 100);
        EXPECT_NEAR(svd->GetLogDeterminant(), static_cast<double>(expected), allowed)
            << "trial " << trial << ", seed 27: " << rows << " x " << columns;
    }
}

TEST(NCSVD, LogDeterminantOfAKnownMatrix) {
    // det(A'A) = (10 * 100)^2.
    EXPECT_FLOAT_EQ((FloatMatrix{{10, 0}, {0, 100}}.GetSVD(nullptr)->GetLogDeterminant()), 6.0f);
}

TEST(NCSVD, LogDeterminantNeverOverflows) {
    EXPECT_NEAR(
        DoubleMatrix({{1e200, 0}, {0, 1e200}}).GetSVD(nullptr)->GetLogDeterminant(), 800, 1e-9);
}

TEST(NCSVD, ConditionNumberOfTheHilbertMatrixOfThree) {
    // The matrix is symmetric and positive definite: its singular values are its eigenvalues, the
    // roots 1.4083189271 and 0.0026873404 (and 0.1223270659) of its characteristic cubic.
    EXPECT_FLOAT_EQ(Hilbert(3).GetSVD(nullptr)->GetConditionNumber(), 524.05678f);
}

TEST(NCSVD, TwoLevelModelsHaveConditionOne) {
    for (int factors = 1; factors <= 7; ++factors) {
        EXPECT_EQ(TwoLevelModel<float>(factors).GetSVD(nullptr)->GetConditionNumber(), 1.0f)
            << factors << " factors";
    }
}

TEST(NCSVD, TwoLevelModelsAreInvertedByTheirTranspose) {
    for (int factors = 1; factors <= 6; ++factors) {
        const auto matrix = TwoLevelModel<double>(factors);
        const auto inverse = matrix.GetSVD(nullptr)->GetInverse(cDefaultTolerance);
        ASSERT_NE(inverse, nullptr);
        Table expected = oracles::Transposed(oracles::ToTable(matrix));
        for (auto& row : expected) {
            for (long double& value : row) {
                value /= matrix.SizeRows();
            }
        }
        EXPECT_LE(oracles::LargestDifference(oracles::ToTable(*inverse), expected), 1e-14)
            << factors << " factors";
    }
}

TEST(NCSVD, SingularValuesDescendAndKeepTheSumOfSquares) {
    std::mt19937 engine(28);
    for (const auto& [rows, columns] : {std::pair{3, 3}, {40, 18}, {18, 40}, {33, 33}}) {
        const auto matrix = oracles::RandomMatrix<double>(rows, columns, engine);
        const auto svd = matrix.GetSVD(nullptr);
        const auto values = svd->GetSingularValues();
        ASSERT_EQ(values.size(), static_cast<std::size_t>(std::min(rows, columns)));
        EXPECT_TRUE(std::is_sorted(values.rbegin(), values.rend()));
        double ofCells = 0;
        for (const double cell : matrix.Cells()) {
            ofCells += cell * cell;
        }
        double ofValues = 0;
        for (const double value : values) {
            ofValues += value * value;
        }
        EXPECT_NEAR(ofValues, ofCells, 1e-12 * ofCells) << rows << " x " << columns << ", seed 28";
    }
}

TEST(NCSVD, DesignsWithADuplicateColumnAreSingular) {
    std::mt19937 engine(29);
    for (int trial = 0; trial < 60; ++trial) {
        const int columns = static_cast<int>(2 + engine() % 30);
        const int rows = columns + static_cast<int>(engine() % 30);
        DoubleMatrix matrix = RandomDesign(rows, columns, engine);
        for (int row = 1; row <= rows; ++row) {
            matrix(row, columns, matrix(row, 1));
        }
        const auto svd = matrix.GetSVD(nullptr);
        const auto place = ::testing::Message()
                           << "trial " << trial << ", seed 29: " << rows << " x " << columns;
        ASSERT_FALSE(svd->GetSingularValues().empty()) << place;
        EXPECT_EQ(svd->GetInverse(cDefaultTolerance), nullptr) << place;
        EXPECT_EQ(svd->GetCrossInverse(), nullptr) << place;
        EXPECT_EQ(svd->GetLogDeterminant(), -99) << place;
        EXPECT_GT(svd->GetConditionNumber(), 1e13f) << place;
    }
}

TEST(NCSVD, DesignsWithADependentSumColumnAreSingular) {
    // The mixture case: a constant beside components that add up to it.
    std::mt19937 engine(30);
    for (int components = 2; components <= 20; ++components) {
        DoubleMatrix matrix(components + 15, components + 1);
        for (int row = 1; row <= matrix.SizeRows(); ++row) {
            double rest = 1;
            for (int column = 1; column < components; ++column) {
                rest -= matrix(row, column, rest * static_cast<double>(engine() % 1000) / 1000);
            }
            matrix(row, components, rest);
            matrix(row, components + 1, 1);
        }
        EXPECT_EQ(matrix.GetSVD(nullptr)->GetInverse(cDefaultTolerance), nullptr)
            << components << " components, seed 30";
    }
}

TEST(NCSVD, AMatrixOfOneZeroIsSingular) {
    const auto svd = FloatMatrix{{0}}.GetSVD(nullptr);
    EXPECT_EQ(svd->GetInverse(cDefaultTolerance), nullptr);
    EXPECT_EQ(svd->GetInverse(0), nullptr);
    EXPECT_EQ(svd->GetLogDeterminant(), -99);
    EXPECT_EQ(svd->GetConditionNumber(), std::numeric_limits<float>::infinity());
}

TEST(NCSVD, ARankOneMatrixIsSingular) {
    const auto svd = FloatMatrix{{1, 2, 3}, {2, 4, 6}, {3, 6, 9}}.GetSVD(nullptr);
    EXPECT_EQ(svd->GetInverse(cDefaultTolerance), nullptr);
    EXPECT_EQ(svd->GetLogDeterminant(), -99);
}

TEST(NCSVD, AnExplicitToleranceInvertsWhatIsLeftOfARankOneMatrix) {
    // For A = u u' the pseudo-inverse is A / |u|^4, here with |u|^2 = 5.
    const auto inverse = DoubleMatrix{{1, 2}, {2, 4}}.GetSVD(nullptr)->GetInverse(1e-10f);
    ASSERT_NE(inverse, nullptr);
    EXPECT_NEAR((*inverse)(1, 1), 1.0 / 25, 1e-15);
    EXPECT_NEAR((*inverse)(1, 2), 2.0 / 25, 1e-15);
    EXPECT_NEAR((*inverse)(2, 2), 4.0 / 25, 1e-15);
}

TEST(NCSVD, AToleranceOfOneLeavesNothing) {
    EXPECT_EQ((FloatMatrix{{1, 0}, {0, 2}}.GetSVD(nullptr)->GetInverse(1)), nullptr);
}

TEST(NCSVD, HilbertMatricesAreRegularUpToTheRankLimit) {
    // The condition number 1.6e13 at size 10 is below 1 / (epsilon * size), 5.2e14 at 11 is above.
    for (int size = 1; size <= 10; ++size) {
        EXPECT_NE(Hilbert(size).GetSVD(nullptr)->GetInverse(cDefaultTolerance), nullptr) << size;
    }
    for (int size = 11; size <= 20; ++size) {
        EXPECT_EQ(Hilbert(size).GetSVD(nullptr)->GetInverse(cDefaultTolerance), nullptr) << size;
    }
}

TEST(NCSVD, ScalingLeavesTheConditionNumber) {
    for (const double scale : {1e-150, 1e-5, 1e5, 1e150}) {
        DoubleMatrix matrix = Hilbert(5);
        for (double& cell : matrix.Cells()) {
            cell *= scale;
        }
        const auto svd = matrix.GetSVD(nullptr);
        EXPECT_FLOAT_EQ(svd->GetConditionNumber(), 476607.25f) << scale;
        EXPECT_NE(svd->GetInverse(cDefaultTolerance), nullptr) << scale;
    }
}

template <class T>
void ExpectNoDecomposition(const NCDataMatrix<T>& matrix) {
    const auto svd = matrix.GetSVD(nullptr);
    ASSERT_NE(svd, nullptr);
    EXPECT_TRUE(svd->GetSingularValues().empty());
    EXPECT_EQ(svd->GetInverse(cDefaultTolerance), nullptr);
    EXPECT_EQ(svd->GetInverse(0), nullptr);
    EXPECT_EQ(svd->GetCrossInverse(), nullptr);
    EXPECT_EQ(svd->GetLogDeterminant(), -99);
    EXPECT_EQ(svd->GetConditionNumber(), -99);
}

TEST(NCSVD, EmptyMatricesHaveNoDecomposition) {
    ExpectNoDecomposition(FloatMatrix());
    ExpectNoDecomposition(FloatMatrix(0, 3));
    ExpectNoDecomposition(DoubleMatrix(3, 0));
}

TEST(NCSVD, MatricesWithMissingCellsHaveNoDecomposition) {
    ExpectNoDecomposition(FloatMatrix{{1, 2}, {-99, 3}});
    ExpectNoDecomposition(DoubleMatrix{{1, 2}, {3, -99}});
}

TEST(NCSVD, MatricesWithNonFiniteCellsHaveNoDecomposition) {
    ExpectNoDecomposition(FloatMatrix{{1, std::numeric_limits<float>::infinity()}});
    ExpectNoDecomposition(DoubleMatrix{{1, std::numeric_limits<double>::quiet_NaN()}});
}

TEST(NCSVD, OneDecompositionServesTwoResultTypes) {
    // A float and a double matrix of the same small integers share every singular value.
    const FloatMatrix single{{3, 1}, {1, 2}, {0, 5}};
    const DoubleMatrix wide{{3, 1}, {1, 2}, {0, 5}};
    const auto a = single.GetSVD(nullptr);
    const auto b = wide.GetSVD(nullptr);
    EXPECT_EQ(a->GetSingularValues()[0], b->GetSingularValues()[0]);
    EXPECT_EQ(a->GetLogDeterminant(), static_cast<float>(b->GetLogDeterminant()));
}

/// Penrose's identities for the pseudo-inverse of what is above rounding noise; they hold only when
/// every singular value and both factors are right.
long double DecompositionError(const DoubleMatrix& matrix) {
    const auto inverse = matrix.GetSVD(nullptr)->GetInverse(1e-9f);
    return inverse == nullptr ? std::numeric_limits<long double>::infinity()
                              : PenroseViolation(matrix, *inverse);
}

TEST(NCSVD, CutTwoLevelModelsAreDecomposedAccurately) {
    // Rows and columns cut off an orthogonal table leave many equal singular values: the case in
    // which a divide-and-conquer method can be wrong in the first digit without saying so.
    const auto whole = TwoLevelModel<double>(7);
    for (const auto& [rows, columns] : {std::pair{80, 46},
                                        {36, 35},
                                        {40, 19},
                                        {37, 37},
                                        {71, 38},
                                        {97, 41},
                                        {79, 21},
                                        {57, 39}}) {
        DoubleMatrix matrix = whole;
        matrix.Resize(rows, columns);
        EXPECT_LE(DecompositionError(matrix), 1e-12) << rows << " x " << columns;
    }
}

TEST(NCSVD, RepeatedIndicatorColumnsAreDecomposedAccurately) {
    // Level indicators of a factor with eight levels, over and over.
    for (const auto& [rows, columns] :
         {std::pair{49, 16}, {72, 67}, {25, 16}, {64, 21}, {33, 30}, {78, 73}, {100, 75}}) {
        DoubleMatrix matrix(rows, columns, 0);
        for (int row = 1; row <= rows; ++row) {
            for (int column = 1; column <= columns; ++column) {
                matrix(row, column, row % 8 == column % 8 ? 1 : 0);
            }
        }
        EXPECT_LE(DecompositionError(matrix), 1e-12) << rows << " x " << columns;
    }
}

TEST(NCSVD, SingularValuesOfRepeatedIndicatorsAreKnown) {
    // Eight orthogonal groups of 6 equal columns with 9 ones each: w = sqrt(9 * 6), eight times.
    DoubleMatrix matrix(72, 48, 0);
    for (int row = 1; row <= 72; ++row) {
        for (int column = 1; column <= 48; ++column) {
            matrix(row, column, row % 8 == column % 8 ? 1 : 0);
        }
    }
    const auto svd = matrix.GetSVD(nullptr);
    const auto values = svd->GetSingularValues();
    ASSERT_EQ(values.size(), 48u);
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_NEAR(values[i], i < 8 ? std::sqrt(54.0) : 0.0, 1e-13) << i;
    }
}

TEST(NCSVD, ExtremeEntriesOfTallMatricesNeitherOverflowNorVanish) {
    std::mt19937 engine(31);
    const auto matrix = oracles::RandomMatrix<double>(90, 20, engine);
    const float expected = matrix.GetSVD(nullptr)->GetConditionNumber();
    for (const double scale : {1e-300, 1e-200, 1e200, 1e300}) {
        DoubleMatrix scaled = matrix;
        for (double& cell : scaled.Cells()) {
            cell *= scale;
        }
        EXPECT_FLOAT_EQ(scaled.GetSVD(nullptr)->GetConditionNumber(), expected)
            << scale << ", seed 31";
    }
}

TEST(NCSVD, RepeatedSingularValuesAreDecomposedAccurately) {
    // The ordinary case of designs: orthogonal columns of two lengths, replicated runs.
    for (int factors = 4; factors <= 6; ++factors) {
        DoubleMatrix matrix = TwoLevelModel<double>(factors);
        matrix.ConcatRows(matrix);
        const int columns = matrix.SizeColumns();
        for (int column = 1; column <= columns / 2; ++column) {
            for (int row = 1; row <= matrix.SizeRows(); ++row) {
                matrix(row, column, 3 * matrix(row, column));
            }
        }
        const auto inverse = matrix.GetSVD(nullptr)->GetInverse(cDefaultTolerance);
        ASSERT_NE(inverse, nullptr);
        EXPECT_LE(PenroseViolation(matrix, *inverse), 1e-13) << factors << " factors";
    }
}

}  // namespace
