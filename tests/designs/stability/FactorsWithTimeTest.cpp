#include "designs/stability/FactorsWithTime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/TestFactors.h"

namespace {

TEST(FactorsWithTime, PutATimeFactorFirst) {
    const TestFactors factors = TestFactors().Quantitative(10, 20).Qualitative(3);
    const FactorsWithTime timed(factors, 4);
    EXPECT_EQ(timed.GetDesignFactorCount(), 3U);
    EXPECT_EQ(timed.GetFactorType(0), CEType::Time);
    EXPECT_EQ(timed.GetLevelCount(0), 4U);
    EXPECT_THAT(timed.GetFactorSettings(0), ::testing::ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(timed.GetFactorTransform(0), nullptr);
}

TEST(FactorsWithTime, ForwardTheOtherFactors) {
    const TestFactors factors = TestFactors()
                                    .Quantitative(10, 20)
                                    .Transformed(TransformStruct(TransformStruct::Log10))
                                    .Qualitative(3);
    const FactorsWithTime timed(factors, 2);
    EXPECT_EQ(timed.GetFactorType(1), CEType::Quantitative);
    EXPECT_EQ(timed.GetFactorType(2), CEType::Qualitative);
    EXPECT_THAT(timed.GetFactorSettings(1), ::testing::ElementsAre(10, 20));
    EXPECT_EQ(timed.GetLevelCount(2), 3U);
    EXPECT_EQ(timed.GetFactorTransform(1), factors.GetFactorTransform(0));
}

TEST(FactorsWithTime, IgnoreNewRanges) {
    TestFactors factors = TestFactors().Formulation(0, 1);
    FactorsWithTime timed(factors, 2);
    timed.SetFactorRange(1, 0.25F, 0.5F);
    EXPECT_EQ(factors.rangeChanges, 0);
}

TEST(FactorsWithTime, ForwardTheMixture) {
    const TestFactors factors =
        TestFactors().Formulation(0, 1).WithFiller(true).WithConstantShare(0.25F);
    const FactorsWithTime timed(factors, 2);
    EXPECT_TRUE(timed.HasFiller());
    EXPECT_TRUE(timed.IsFormulationSumFree());
    EXPECT_EQ(timed.GetConstantMixtureShare(), 0.25F);
}

}  // namespace
