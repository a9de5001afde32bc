#include "frame/MatrixSection.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/ConfigurationSection.h"

namespace {

const NCDataMatrix<float> cMatrix{{1.5F, -99.0F, 0.1F}, {65.0F, -1.0F, 1e-30F}};

// A stored matrix of the given sizes, without rows.
bool LoadsSizes(int rows, int columns) {
    ConfigurationStore store;
    const auto section = store.OpenRoot()->OpenOrCreateSection("FMatrix");
    section->WriteInt("NRows", rows);
    section->WriteInt("NCols", columns);
    NCDataMatrix<float> matrix;
    return MatrixSection::LoadMatrix(store.OpenRoot().get(), &matrix);
}

}  // namespace

TEST(MatrixSection, MatrixComesBackBitForBit) {
    ConfigurationStore store;
    MatrixSection::SaveMatrix(store.OpenRoot().get(), cMatrix);
    const ConfigurationStore again = ConfigurationStore::FromText(store.ToText(), "test");
    NCDataMatrix<float> loaded;
    ASSERT_TRUE(MatrixSection::LoadMatrix(again.OpenRoot().get(), &loaded));
    EXPECT_EQ(loaded, cMatrix);
}

TEST(MatrixSection, SavingReplacesALargerMatrix) {
    ConfigurationStore store;
    ConfigurationStore fresh;
    MatrixSection::SaveMatrix(store.OpenRoot().get(), NCDataMatrix<float>(5, 4, 1.0F));
    MatrixSection::SaveMatrix(store.OpenRoot().get(), cMatrix);
    MatrixSection::SaveMatrix(fresh.OpenRoot().get(), cMatrix);
    EXPECT_TRUE(store == fresh);
}

TEST(MatrixSection, MissingSectionLeavesTheMatrix) {
    const ConfigurationStore store;
    NCDataMatrix<float> matrix = cMatrix;
    EXPECT_FALSE(MatrixSection::LoadMatrix(store.OpenRoot().get(), &matrix));
    EXPECT_EQ(matrix, cMatrix);
}

TEST(MatrixSection, RemovedMatrixIsGone) {
    ConfigurationStore store;
    MatrixSection::SaveMatrix(store.OpenRoot().get(), cMatrix);
    MatrixSection::Remove(store.OpenRoot().get());
    NCDataMatrix<float> matrix;
    EXPECT_FALSE(MatrixSection::LoadMatrix(store.OpenRoot().get(), &matrix));
}

TEST(MatrixSection, SizesBelowOneAreRefused) {
    EXPECT_TRUE(LoadsSizes(1, 1));
    EXPECT_FALSE(LoadsSizes(0, 1));
    EXPECT_FALSE(LoadsSizes(1, 0));
    EXPECT_FALSE(LoadsSizes(-1, -1));
}

TEST(MatrixSection, SizesOfADamagedFileAreRefused) {
    EXPECT_FALSE(LoadsSizes(std::numeric_limits<int>::max(), std::numeric_limits<int>::max()));
    EXPECT_FALSE(LoadsSizes(1'000'000, 101));
}

TEST(MatrixSection, MissingCellsAreMissingAndSpareOnesDropped) {
    ConfigurationStore store;
    const auto section = store.OpenRoot()->OpenOrCreateSection("FMatrix");
    section->WriteInt("NRows", 3);
    section->WriteInt("NCols", 2);
    section->WriteFloatVector("R1", {1.0F});
    section->WriteFloatVector("R3", {1.0F, 2.0F, 3.0F});
    NCDataMatrix<float> loaded;
    ASSERT_TRUE(MatrixSection::LoadMatrix(store.OpenRoot().get(), &loaded));
    const NCDataMatrix<float> expected{{1.0F, -99.0F}, {-99.0F, -99.0F}, {1.0F, 2.0F}};
    EXPECT_EQ(loaded, expected);
}
