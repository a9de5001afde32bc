#include "foundation/mat/NCDataVector.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/utl/Exceptions.h"
#include "tests/oracles/DenseOracles.h"

namespace {

using FloatVector = NCDataVector<float>;

TEST(NCDataVector, ASizedVectorHoldsMissingValues) {
    EXPECT_EQ(FloatVector(2), (FloatVector{-99.0f, -99.0f}));
}

TEST(NCDataVector, ZeroAndOneAreASizeAndAFillNotAList) {
    EXPECT_EQ(FloatVector(3, 1.5f), (FloatVector{1.5f, 1.5f, 1.5f}));
}

TEST(NCDataVector, TheSetterReturnsTheValue) {
    FloatVector vector(2, 0.0f);
    EXPECT_EQ(vector(2, 4.5f), 4.5f);
    EXPECT_EQ(vector, (FloatVector{0.0f, 4.5f}));
}

TEST(NCDataVector, ACopyIsDeep) {
    const FloatVector original{1, 2};
    FloatVector copy = original;
    copy(1, 9);
    EXPECT_EQ(original(1), 1);
}

TEST(NCDataVector, TheDotProductIsSummedInDouble) {
    // In float the 1 would be lost beside 1e8.
    const FloatVector a{1e8f, 1.0f, -1e8f};
    const FloatVector ones(3, 1.0f);
    EXPECT_EQ(a * ones, 1.0);
}

TEST(NCDataVector, TheDotProductOfEmptyVectorsIsZero) {
    EXPECT_EQ(FloatVector() * FloatVector(), 0);
}

TEST(NCDataVector, TheDotProductRejectsDifferentLengths) {
    EXPECT_THROW(static_cast<void>(FloatVector(2) * FloatVector(3)), InvalidOperationException);
}

TEST(NCDataVector, TimesMatrixCombinesTheRows) {
    const NCDataMatrix<float> matrix{{1, 2, 3}, {10, 20, 30}};
    EXPECT_EQ((FloatVector{2, 1} * matrix), (FloatVector{12, 24, 36}));
}

TEST(NCDataVector, TimesMatrixEqualsTheLiteralProduct) {
    std::mt19937 engine(7);
    for (int size = 1; size <= 20; ++size) {
        const auto row = oracles::RandomMatrix<float>(1, size, engine);
        const auto matrix = oracles::RandomMatrix<float>(size, 9, engine);
        EXPECT_EQ(row.GetRow(1) * matrix, oracles::LiteralProduct(row, matrix).GetRow(1))
            << "size " << size << ", seed 7";
    }
}

TEST(NCDataVector, TimesMatrixRejectsAnotherHeight) {
    EXPECT_THROW(static_cast<void>(FloatVector(2) * NCDataMatrix<float>(3, 2)),
                 InvalidOperationException);
}

TEST(NCDataVector, AStreamBringsItBack) {
    std::stringstream bytes;
    QvOutStream out(bytes);
    const NCDataVector<double> written{1.0, -99.0, 1e-300};
    ASSERT_TRUE(written.QvStreamableStartWrite(out));
    NCDataVector<double> read{5};
    QvInStream in(bytes);
    ASSERT_TRUE(read.QvStreamableStartRead(in));
    EXPECT_EQ(read, written);
}

TEST(NCDataVector, EveryCutStreamLeavesTheValue) {
    std::stringstream bytes;
    QvOutStream out(bytes);
    ASSERT_TRUE((FloatVector{1, 2, 3}.QvStreamableStartWrite(out)));
    const std::string whole = bytes.str();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        std::stringstream cut(whole.substr(0, length));
        QvInStream in(cut);
        FloatVector vector{8};
        EXPECT_FALSE(vector.QvStreamableStartRead(in)) << "length " << length;
        EXPECT_EQ(vector, FloatVector{8}) << "length " << length;
    }
}

TEST(NCDataVector, AFloatStreamIsNotTakenForADoubleOne) {
    std::stringstream bytes;
    QvOutStream out(bytes);
    ASSERT_TRUE((FloatVector{1, 2, 3, 4}.QvStreamableStartWrite(out)));
    QvInStream in(bytes);
    NCDataVector<double> vector;
    EXPECT_FALSE(vector.QvStreamableStartRead(in));
}

TEST(NCDataVector, AHugePromisedSizeIsRefusedWithoutTheData) {
    std::stringstream good;
    QvOutStream out(good);
    ASSERT_TRUE((FloatVector{1, 2}.QvStreamableStartWrite(out)));
    for (const std::string& size :
         {std::string("\xff\xff\xff\x7f"), std::string("\xff\xff\xff\xff")}) {
        std::string bytes = good.str();
        bytes.replace(4, 4, size);
        std::stringstream hostile(bytes);
        QvInStream in(hostile);
        FloatVector vector{8};
        EXPECT_FALSE(vector.QvStreamableStartRead(in));
        EXPECT_EQ(vector, FloatVector{8});
    }
}

TEST(NCDataVector, AResetVectorIsEmpty) {
    FloatVector vector{1, 2};
    vector.QvStreamableReset();
    EXPECT_EQ(vector, FloatVector());
}

}  // namespace
