#include <gtest/gtest.h>

#include <numeric>

#include "foundation/mat/NCIntegralVector.h"

namespace {

using IntVector = NCIntegralVector<int, -99>;

TEST(NCIntegralVector, ASizedVectorHoldsMissingValues) {
    EXPECT_EQ(IntVector(3), (IntVector{-99, -99, -99}));
}

TEST(NCIntegralVector, ADefaultVectorIsEmpty) {
    EXPECT_EQ(IntVector().Size(), 0);
}

TEST(NCIntegralVector, PositionsCountFromOne) {
    IntVector vector{5, 6, 7};
    vector(1) = 4;
    EXPECT_EQ(vector[1], 4);
    EXPECT_EQ(vector[3], 7);
}

TEST(NCIntegralVector, ReserveChangesNeitherSizeNorValues) {
    IntVector vector{1, 2};
    vector.reserve(100);
    EXPECT_EQ(vector, (IntVector{1, 2}));
}

TEST(NCIntegralVector, SetAllValuesFills) {
    IntVector vector{1, 2};
    vector.SetAllValues(8);
    EXPECT_EQ(vector, (IntVector{8, 8}));
}

TEST(NCIntegralVector, InsertValuesPutsCopiesBeforeThePosition) {
    IntVector vector{1, 2};
    vector.InsertValues(2, 2, 9);
    EXPECT_EQ(vector, (IntVector{1, 9, 9, 2}));
}

TEST(NCIntegralVector, InsertOnePastTheEndAppends) {
    IntVector vector{1, 2};
    vector.Insert(3, 9);
    EXPECT_EQ(vector, (IntVector{1, 2, 9}));
}

TEST(NCIntegralVector, FindGivesTheLowestPositionInTheRange) {
    const IntVector vector{7, 3, 7, 3, 7};
    EXPECT_EQ(vector.Find(7, SortType::Unsorted, 2, 5), 3);
}

TEST(NCIntegralVector, FindOfAnAbsentValueIsZero) {
    const IntVector vector{7, 3, 7};
    EXPECT_EQ(vector.Find(4, SortType::Unsorted, 1, 3), 0);
}

TEST(NCIntegralVector, FindLooksAtNothingOutsideItsRange) {
    const IntVector vector{1, 2, 3, 4};
    EXPECT_EQ(vector.Find(1, SortType::Ascending, 2, 3), 0);
    EXPECT_EQ(vector.Find(4, SortType::Ascending, 2, 3), 0);
}

TEST(NCIntegralVector, FindInAnEmptyRangeIsZero) {
    EXPECT_EQ(IntVector().Find(1, SortType::Unsorted, 1, 0), 0);
}

TEST(NCIntegralVector, BothSearchesAgreeOnAscendingValues) {
    const IntVector vector{-5, 0, 0, 2, 2, 2, 9};
    for (int value = -6; value <= 10; ++value) {
        EXPECT_EQ(vector.Find(value, SortType::Ascending, 1, 7),
                  vector.Find(value, SortType::Unsorted, 1, 7))
            << "value " << value;
    }
}

TEST(NCIntegralVector, IterationVisitsEveryValue) {
    const IntVector vector{1, 2, 3};
    EXPECT_EQ(std::accumulate(vector.begin(), vector.end(), 0), 6);
}

}  // namespace
