#include "designs/optimal/QuadraticSupport.h"

#include <gtest/gtest.h>

namespace {

using DOpt::DeterminesQuadraticModel;
using DOpt::PointTable;
using Table = NCDataMatrix<float>;

TEST(QuadraticSupport, AThreeLevelFactorialDeterminesTheModel) {
    Table grid(9, 2);
    for (int row = 1; row <= 9; ++row) {
        grid(row, 1, static_cast<float>((row - 1) % 3));
        grid(row, 2, static_cast<float>((row - 1) / 3));
    }
    EXPECT_TRUE(DeterminesQuadraticModel(PointTable(grid), false));
}

TEST(QuadraticSupport, CornersAndTheCentreTellTheSumOfSquaresOnly) {
    EXPECT_FALSE(DeterminesQuadraticModel(
        PointTable(Table{{0, 0}, {1, 0}, {0, 1}, {1, 1}, {0.5F, 0.5F}, {0, 0}, {1, 1}}), false));
}

TEST(QuadraticSupport, FewerPointsThanTermsAreTooFew) {
    EXPECT_FALSE(DeterminesQuadraticModel(
        PointTable(Table{{0, 0}, {1, 0}, {0, 1}, {1, 1}, {0.25F, 0.5F}}), false));
}

TEST(QuadraticSupport, ASimplexLatticeDeterminesTheModelOfAMixture) {
    const Table lattice{
        {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0.5F, 0.5F, 0}, {0.5F, 0, 0.5F}, {0, 0.5F, 0.5F}};
    EXPECT_TRUE(DeterminesQuadraticModel(PointTable(lattice), true));
    Table holed = lattice;
    holed.RemoveRows(6, 1);
    holed.ConcatRows(Table{{1, 0, 0}});
    EXPECT_FALSE(DeterminesQuadraticModel(PointTable(holed), true));
}

}  // namespace
