#include "foundation/mat/NCDataMatrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <sstream>

#include "foundation/mat/NCSVD.h"
#include "foundation/utl/Exceptions.h"
#include "tests/oracles/DenseOracles.h"

namespace {

using FloatMatrix = NCDataMatrix<float>;
using FloatVector = NCDataVector<float>;
constexpr float cNaN = std::numeric_limits<float>::quiet_NaN();

const FloatMatrix& Sample() {
    static const FloatMatrix matrix{{1, 2, 3}, {4, 5, 6}};
    return matrix;
}

std::string Streamed(const FloatMatrix& matrix) {
    std::ostringstream bytes;
    QvOutStream out(bytes);
    EXPECT_TRUE(matrix.QvStreamableStartWrite(out));
    return bytes.str();
}

/// A matrix read from the bytes into one that holds something else; empty handle on failure.
bool ReadInto(FloatMatrix& matrix, const std::string& bytes) {
    std::istringstream stream(bytes);
    QvInStream in(stream);
    return matrix.QvStreamableStartRead(in);
}

TEST(NCDataMatrix, ADefaultMatrixIsEmpty) {
    const FloatMatrix matrix;
    EXPECT_EQ(matrix.SizeRows(), 0);
    EXPECT_EQ(matrix.SizeColumns(), 0);
    EXPECT_TRUE(matrix.IsEmpty());
}

TEST(NCDataMatrix, CellsStandRowByRow) {
    const auto cells = Sample().Cells();
    EXPECT_EQ(std::vector<float>(cells.begin(), cells.end()),
              (std::vector<float>{1, 2, 3, 4, 5, 6}));
}

TEST(NCDataMatrix, ALiteralTableHasItsShape) {
    EXPECT_EQ(Sample().SizeRows(), 2);
    EXPECT_EQ(Sample().SizeColumns(), 3);
    EXPECT_EQ(Sample()(2, 1), 4);
}

TEST(NCDataMatrix, ARaggedLiteralTableIsRefused) {
    EXPECT_THROW((FloatMatrix{{1, 2}, {3}}), InvalidOperationException);
}

TEST(NCDataMatrix, TheFillIsInEveryCell) {
    EXPECT_EQ(FloatMatrix(1, 2, 7), (FloatMatrix{{7, 7}}));
    EXPECT_EQ(FloatMatrix(1, 2), (FloatMatrix{{-99, -99}}));
}

TEST(NCDataMatrix, TheSetterReturnsTheValue) {
    FloatMatrix matrix(1, 2, 0);
    EXPECT_EQ(matrix(1, 2, 5), 5);
    EXPECT_EQ(matrix, (FloatMatrix{{0, 5}}));
}

TEST(NCDataMatrix, ACopyIsDeep) {
    FloatMatrix copy = Sample();
    copy(1, 1, 9);
    EXPECT_EQ(Sample()(1, 1), 1);
}

TEST(NCDataMatrix, RowsAndColumnsCanBeTakenOut) {
    EXPECT_EQ(Sample().GetRow(2), (FloatVector{4, 5, 6}));
    EXPECT_EQ(Sample().GetColumn(3), (FloatVector{3, 6}));
}

TEST(NCDataMatrix, ClearedMatricesEqualDefaultOnes) {
    FloatMatrix matrix = Sample();
    matrix.Clear();
    EXPECT_EQ(matrix, FloatMatrix());
}

TEST(NCDataMatrix, SetSizeForgetsTheCells) {
    FloatMatrix matrix = Sample();
    EXPECT_EQ(&matrix.SetSize(2, 2), &matrix);
    EXPECT_EQ(matrix, FloatMatrix(2, 2, -99));
}

TEST(NCDataMatrix, ResizeKeepsWhatFits) {
    FloatMatrix matrix = Sample();
    EXPECT_EQ(matrix.Resize(3, 2), (FloatMatrix{{1, 2}, {4, 5}, {-99, -99}}));
    EXPECT_EQ(matrix.Resize(1, 3), (FloatMatrix{{1, 2, -99}}));
    EXPECT_EQ(matrix.Resize(2, 3), (FloatMatrix{{1, 2, -99}, {-99, -99, -99}}));
}

TEST(NCDataMatrix, ReservingChangesNothing) {
    FloatMatrix matrix = Sample();
    matrix.ReserveRows(1000);
    matrix.ReserveColumns(1000);
    EXPECT_EQ(matrix, Sample());
}

TEST(NCDataMatrix, ReservedRowsAreInsertedWithoutMovingTheCells) {
    FloatMatrix matrix = Sample();
    matrix.ReserveRows(100);
    const float* const before = matrix.Cells().data();
    matrix.InsertRows(3, 98);
    EXPECT_EQ(matrix.Cells().data(), before);
}

TEST(NCDataMatrix, SetRowOverwritesOneRow) {
    FloatMatrix matrix = Sample();
    matrix.SetRow(1, 0.0f);
    matrix.SetRow(2, FloatVector{7, 8, 9});
    EXPECT_EQ(matrix, (FloatMatrix{{0, 0, 0}, {7, 8, 9}}));
}

TEST(NCDataMatrix, InsertedRowsAreMissing) {
    FloatMatrix matrix = Sample();
    matrix.InsertRows(2, 1);
    EXPECT_EQ(matrix, (FloatMatrix{{1, 2, 3}, {-99, -99, -99}, {4, 5, 6}}));
}

TEST(NCDataMatrix, RowsInsertedPastTheEndAreAppended) {
    FloatMatrix matrix = Sample();
    matrix.InsertRow(3, FloatVector{7, 8, 9});
    EXPECT_EQ(matrix, (FloatMatrix{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}));
}

TEST(NCDataMatrix, TheFirstRowSetsTheWidth) {
    FloatMatrix matrix;
    matrix.InsertRow(1, FloatVector{7, 8});
    EXPECT_EQ(matrix, (FloatMatrix{{7, 8}}));
}

TEST(NCDataMatrix, AMatrixWithoutRowsTakesTheWidthOfTheNextOne) {
    FloatMatrix matrix = Sample();
    matrix.RemoveRows(1, 2);
    matrix.InsertRow(1, FloatVector{7, 8});
    EXPECT_EQ(matrix, (FloatMatrix{{7, 8}}));
}

TEST(NCDataMatrix, RemovedRowsLeaveTheOthers) {
    FloatMatrix matrix{{1, 1}, {2, 2}, {3, 3}, {4, 4}};
    matrix.RemoveRows(2, 2);
    EXPECT_EQ(matrix, (FloatMatrix{{1, 1}, {4, 4}}));
}

TEST(NCDataMatrix, RemovingAllRowsKeepsTheWidth) {
    FloatMatrix matrix = Sample();
    matrix.RemoveRows(1, 2);
    EXPECT_EQ(matrix, FloatMatrix(0, 3));
}

TEST(NCDataMatrix, InsertedColumnsAreMissing) {
    FloatMatrix matrix = Sample();
    matrix.InsertColumns(2, 2);
    EXPECT_EQ(matrix, (FloatMatrix{{1, -99, -99, 2, 3}, {4, -99, -99, 5, 6}}));
}

TEST(NCDataMatrix, ColumnsInsertedPastTheEndAreAppended) {
    FloatMatrix matrix = Sample();
    matrix.InsertColumn(4, FloatVector{7, 8});
    EXPECT_EQ(matrix, (FloatMatrix{{1, 2, 3, 7}, {4, 5, 6, 8}}));
}

TEST(NCDataMatrix, TheFirstColumnSetsTheHeight) {
    FloatMatrix matrix;
    matrix.InsertColumn(1, FloatVector{7, 8});
    EXPECT_EQ(matrix, (FloatMatrix{{7}, {8}}));
}

TEST(NCDataMatrix, RemovedColumnsLeaveTheOthers) {
    FloatMatrix matrix{{1, 2, 3, 4}, {5, 6, 7, 8}};
    matrix.RemoveColumns(2, 2);
    EXPECT_EQ(matrix, (FloatMatrix{{1, 4}, {5, 8}}));
}

TEST(NCDataMatrix, RemovingAllColumnsKeepsTheHeight) {
    FloatMatrix matrix = Sample();
    matrix.RemoveColumns(1, 3);
    EXPECT_EQ(matrix, FloatMatrix(2, 0));
}

TEST(NCDataMatrix, ConcatRowsAppendsBelow) {
    FloatMatrix matrix = Sample();
    matrix.ConcatRows(FloatMatrix{{7, 8, 9}});
    EXPECT_EQ(matrix, (FloatMatrix{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}));
}

TEST(NCDataMatrix, ConcatRowsAppendsAMatrixToItself) {
    FloatMatrix matrix = Sample();
    matrix.ConcatRows(matrix);
    EXPECT_EQ(matrix, (FloatMatrix{{1, 2, 3}, {4, 5, 6}, {1, 2, 3}, {4, 5, 6}}));
}

TEST(NCDataMatrix, ConcatRowsOntoAnEmptyMatrixTakesTheWidth) {
    FloatMatrix matrix;
    matrix.ConcatRows(Sample());
    EXPECT_EQ(matrix, Sample());
}

TEST(NCDataMatrix, ConcatRowsWithoutRowsChangesNothing) {
    FloatMatrix matrix = Sample();
    matrix.ConcatRows(FloatMatrix());
    matrix.ConcatRows(FloatMatrix(0, 7));
    EXPECT_EQ(matrix, Sample());
}

TEST(NCDataMatrix, ConcatRowsOfAnotherWidthIsRefusedUnchanged) {
    FloatMatrix matrix = Sample();
    EXPECT_THROW(matrix.ConcatRows(FloatMatrix{{1, 2}}), InvalidOperationException);
    EXPECT_EQ(matrix, Sample());
}

TEST(NCDataMatrix, ConcatColumnsAppendsToTheRight) {
    FloatMatrix matrix = Sample();
    matrix.ConcatColumns(FloatMatrix{{7}, {8}});
    EXPECT_EQ(matrix, (FloatMatrix{{1, 2, 3, 7}, {4, 5, 6, 8}}));
}

TEST(NCDataMatrix, ConcatColumnsAppendsAMatrixToItself) {
    FloatMatrix matrix = Sample();
    matrix.ConcatColumns(matrix);
    EXPECT_EQ(matrix, (FloatMatrix{{1, 2, 3, 1, 2, 3}, {4, 5, 6, 4, 5, 6}}));
}

TEST(NCDataMatrix, ConcatColumnsOntoAnEmptyMatrixTakesTheHeight) {
    FloatMatrix matrix;
    matrix.ConcatColumns(Sample());
    EXPECT_EQ(matrix, Sample());
}

TEST(NCDataMatrix, ConcatColumnsWithoutColumnsChangesNothing) {
    FloatMatrix matrix = Sample();
    matrix.ConcatColumns(FloatMatrix(9, 0));
    EXPECT_EQ(matrix, Sample());
}

TEST(NCDataMatrix, ConcatColumnsOfAnotherHeightIsRefusedUnchanged) {
    FloatMatrix matrix = Sample();
    EXPECT_THROW(matrix.ConcatColumns(FloatMatrix{{1}}), InvalidOperationException);
    EXPECT_EQ(matrix, Sample());
}

TEST(NCDataMatrix, RearrangedColumnsStandInTheGivenOrder) {
    FloatMatrix matrix = Sample();
    matrix.RearrangeColumns({3, 1, 2});
    EXPECT_EQ(matrix, (FloatMatrix{{3, 1, 2}, {6, 4, 5}}));
}

TEST(NCDataMatrix, AnOrderThatIsNoPermutationIsRefusedUnchanged) {
    for (const std::vector<int>& order :
         std::vector<std::vector<int>>{{}, {1, 2}, {1, 2, 2}, {0, 1, 2}, {1, 2, 4}, {1, 2, 3, 3}}) {
        FloatMatrix matrix = Sample();
        EXPECT_THROW(matrix.RearrangeColumns(order), InvalidOperationException)
            << ::testing::PrintToString(order);
        EXPECT_EQ(matrix, Sample());
    }
}

TEST(NCDataMatrix, ReduceColumnsKeepsTheListedOnesInTheirOrder) {
    FloatMatrix matrix = Sample();
    matrix.ReduceColumns({3, 1});
    EXPECT_EQ(matrix, (FloatMatrix{{3, 1}, {6, 4}}));
}

TEST(NCDataMatrix, ReduceColumnsToNoneKeepsTheHeight) {
    FloatMatrix matrix = Sample();
    matrix.ReduceColumns({});
    EXPECT_EQ(matrix, FloatMatrix(2, 0));
}

TEST(NCDataMatrix, ReduceColumnsRefusesNumbersThatAreNoColumn) {
    for (const int column : {0, 4, -99}) {
        FloatMatrix matrix = Sample();
        EXPECT_THROW(matrix.ReduceColumns({1, column}), InvalidOperationException) << column;
        EXPECT_EQ(matrix, Sample());
    }
}

TEST(NCDataMatrix, MinAndMaxLeaveMissingCellsOut) {
    const FloatMatrix matrix{{3}, {-99}, {-5}, {cNaN}, {4}};
    float min = 0;
    float max = 0;
    matrix.GetColumnMinMax(1, min, max);
    EXPECT_EQ(min, -5);
    EXPECT_EQ(max, 4);
}

TEST(NCDataMatrix, MinAndMaxOfNothingAreMissing) {
    float min = 0;
    float max = 0;
    FloatMatrix(3, 1).GetColumnMinMax(1, min, max);
    EXPECT_EQ(min, -99);
    EXPECT_EQ(max, -99);
}

TEST(NCDataMatrix, TransposeExchangesRowsAndColumns) {
    FloatMatrix matrix = Sample();
    EXPECT_EQ(matrix.Transpose(), (FloatMatrix{{1, 4}, {2, 5}, {3, 6}}));
}

TEST(NCDataMatrix, TransposeReachesEveryCellOfLargeMatrices) {
    std::mt19937 engine(3);
    const auto original = oracles::RandomMatrix<float>(37, 50, engine);
    FloatMatrix matrix = original;
    matrix.Transpose();
    for (int row = 1; row <= 37; ++row) {
        ASSERT_EQ(matrix.GetColumn(row), original.GetRow(row)) << "row " << row;
    }
}

TEST(NCDataMatrix, ProductOfKnownMatrices) {
    EXPECT_EQ(Sample() * (FloatMatrix{{1, 0}, {0, 1}, {1, 1}}), (FloatMatrix{{4, 5}, {10, 11}}));
}

TEST(NCDataMatrix, ProductSumsAreRoundedOnce) {
    // The float sum of the first two terms would swallow the 1.
    EXPECT_EQ((FloatMatrix{{1e8f, 1, -1e8f}} * FloatMatrix{{1}, {1}, {1}}), (FloatMatrix{{1}}));
}

TEST(NCDataMatrix, ProductOverNoInnerIndexIsZero) {
    EXPECT_EQ(FloatMatrix(2, 0) * FloatMatrix(0, 2), FloatMatrix(2, 2, 0));
}

TEST(NCDataMatrix, ProductRejectsUnfitSizes) {
    EXPECT_THROW(static_cast<void>(Sample() * Sample()), InvalidOperationException);
}

TEST(NCDataMatrix, PrimProductRejectsUnfitSizes) {
    EXPECT_THROW(static_cast<void>(Sample().Prim() * FloatMatrix(3, 1)), InvalidOperationException);
}

template <class T>
class NCDataMatrixProduct : public ::testing::Test {};
using ElementTypes = ::testing::Types<float, double>;
TYPED_TEST_SUITE(NCDataMatrixProduct, ElementTypes);

/// Shapes around the block sizes of the product, drawn from a seed.
struct Shape {
    int rows, inner, columns;
};
Shape DrawShape(std::mt19937& engine) {
    return {static_cast<int>(1 + engine() % 40),
            static_cast<int>(1 + engine() % 40),
            static_cast<int>(1 + engine() % 40)};
}

TYPED_TEST(NCDataMatrixProduct, EqualsTheTripleLoopBitForBit) {
    std::mt19937 engine(11);
    for (int trial = 0; trial < 60; ++trial) {
        const Shape shape = DrawShape(engine);
        const auto a = oracles::RandomMatrix<TypeParam>(shape.rows, shape.inner, engine);
        const auto b = oracles::RandomMatrix<TypeParam>(shape.inner, shape.columns, engine);
        ASSERT_EQ(a * b, oracles::LiteralProduct(a, b))
            << "seed 11, trial " << trial << ": " << shape.rows << " x " << shape.inner << " x "
            << shape.columns;
    }
}

TYPED_TEST(NCDataMatrixProduct, PrimEqualsTheTripleLoopBitForBit) {
    std::mt19937 engine(12);
    for (int trial = 0; trial < 60; ++trial) {
        const Shape shape = DrawShape(engine);
        const auto a = oracles::RandomMatrix<TypeParam>(shape.inner, shape.rows, engine);
        const auto b = oracles::RandomMatrix<TypeParam>(shape.inner, shape.columns, engine);
        auto transposed = a;
        transposed.Transpose();
        ASSERT_EQ(a.Prim() * b, oracles::LiteralProduct(transposed, b))
            << "seed 12, trial " << trial << ": " << shape.rows << " x " << shape.inner << " x "
            << shape.columns;
    }
}

TYPED_TEST(NCDataMatrixProduct, CarriesWhatIsNotFinite) {
    // 0 * infinity must show: no term may be skipped for a factor of 0.
    const NCDataMatrix<TypeParam> a{{0, 1}};
    const NCDataMatrix<TypeParam> b{{std::numeric_limits<TypeParam>::infinity()}, {1}};
    EXPECT_TRUE(std::isnan((a * b)(1, 1)));
}

TEST(NCDataMatrix, GetSVDStopsWhenCancelled) {
    bool cancel = true;
    EXPECT_EQ(Sample().GetSVD(&cancel), nullptr);
    cancel = false;
    EXPECT_NE(Sample().GetSVD(&cancel), nullptr);
    EXPECT_NE(Sample().GetSVD(nullptr), nullptr);
}

TEST(NCDataMatrix, AStreamBringsItBack) {
    FloatMatrix matrix{{5}};
    ASSERT_TRUE(ReadInto(matrix, Streamed(Sample())));
    EXPECT_EQ(matrix, Sample());
}

TEST(NCDataMatrix, AStreamBringsBackSizesWithoutCells) {
    FloatMatrix matrix{{5}};
    ASSERT_TRUE(ReadInto(matrix, Streamed(FloatMatrix(0, 4))));
    EXPECT_EQ(matrix, FloatMatrix(0, 4));
}

TEST(NCDataMatrix, TwoMatricesOfOneStreamAreReadInTurn) {
    std::istringstream stream(Streamed(Sample()) + Streamed(FloatMatrix{{9}}));
    QvInStream in(stream);
    FloatMatrix first;
    FloatMatrix second;
    ASSERT_TRUE(first.QvStreamableStartRead(in) && second.QvStreamableStartRead(in));
    EXPECT_EQ(first, Sample());
    EXPECT_EQ(second, (FloatMatrix{{9}}));
}

TEST(NCDataMatrix, EveryCutStreamLeavesTheValue) {
    const std::string whole = Streamed(Sample());
    for (std::size_t length = 0; length < whole.size(); ++length) {
        FloatMatrix matrix{{5}};
        EXPECT_FALSE(ReadInto(matrix, whole.substr(0, length))) << "length " << length;
        EXPECT_EQ(matrix, (FloatMatrix{{5}})) << "length " << length;
    }
}

TEST(NCDataMatrix, HugePromisedSizesAreRefusedWithoutTheData) {
    // Sizes up to the largest ints, whose product needs 62 bits, and sizes that are no int.
    for (const std::string& size : {std::string("\xff\xff\xff\x7f"),
                                    std::string("\xff\xff\xff\xff"),
                                    std::string("\0\0\1\0", 4)}) {
        std::string bytes = Streamed(Sample());
        bytes.replace(4, 4, size);
        bytes.replace(8, 4, size);
        FloatMatrix matrix{{5}};
        EXPECT_FALSE(ReadInto(matrix, bytes));
        EXPECT_EQ(matrix, (FloatMatrix{{5}}));
    }
}

TEST(NCDataMatrix, AFloatStreamIsNotTakenForADoubleOne) {
    std::istringstream stream(Streamed(FloatMatrix(4, 4, 0)));
    QvInStream in(stream);
    NCDataMatrix<double> matrix;
    EXPECT_FALSE(matrix.QvStreamableStartRead(in));
}

TEST(NCDataMatrix, AVectorStreamIsNotTakenForAMatrix) {
    std::stringstream bytes;
    QvOutStream out(bytes);
    ASSERT_TRUE(FloatVector(8, 0).QvStreamableStartWrite(out));
    FloatMatrix matrix;
    EXPECT_FALSE(ReadInto(matrix, bytes.str()));
}

}  // namespace
