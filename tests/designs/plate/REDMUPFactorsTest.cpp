#include "designs/plate/REDMUPFactors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "foundation/utl/Exceptions.h"
#include "tests/support/TestFactors.h"

namespace {

using ::testing::ElementsAre;

TestFactors Mixed() {
    return TestFactors()
        .Quantitative(150, 180)
        .Qualitative(3)
        .Multilevel({10, 20, 40})
        .Formulation(0.1F, 0.4F)
        .Formulation(0.2F, 0.6F);
}

std::string FailureOf(const std::vector<unsigned long long>& indices, const Factors& parent) {
    try {
        const REDMUPFactors view(indices, parent);
    } catch (const Exception& exception) {
        return exception.what();
    }
    return {};
}

TEST(REDMUPFactors, ShowTheGroupInItsOrder) {
    const TestFactors parent = Mixed();
    const REDMUPFactors view({2, 0, 1}, parent);
    EXPECT_EQ(view.GetDesignFactorCount(), 3U);
    EXPECT_EQ(view.GetFactorType(0), CEType::Multilevel);
    EXPECT_EQ(view.GetFactorType(1), CEType::Quantitative);
    EXPECT_EQ(view.GetFactorType(2), CEType::Qualitative);
    EXPECT_THAT(view.GetFactorSettings(0), ElementsAre(10, 20, 40));
    EXPECT_THAT(view.GetFactorSettings(1), ElementsAre(150, 180));
    EXPECT_EQ(view.GetLevelCount(2), 3U);
}

TEST(REDMUPFactors, ForwardTransforms) {
    TransformStruct transform;
    TestFactors parent = TestFactors().Quantitatives(2);
    parent.Transformed(transform);
    const REDMUPFactors view({1, 0}, parent);
    EXPECT_EQ(view.GetFactorTransform(0), parent.GetFactorTransform(1));
    EXPECT_NE(view.GetFactorTransform(0), nullptr);
    EXPECT_EQ(view.GetFactorTransform(1), nullptr);
}

TEST(REDMUPFactors, LeaveTheParentsRanges) {
    const TestFactors parent = Mixed();
    REDMUPFactors view({3, 4}, parent);
    view.SetFactorRange(0, 0.2F, 0.3F);
    EXPECT_EQ(parent.rangeChanges, 0);
    EXPECT_THAT(view.GetFactorSettings(0), ElementsAre(0.1F, 0.4F));
}

TEST(REDMUPFactors, HaveAFillerOnlyWithFormulationFactors) {
    const TestFactors parent = Mixed().WithFiller(true);
    EXPECT_TRUE(REDMUPFactors({0, 3}, parent).HasFiller());
    EXPECT_FALSE(REDMUPFactors({0, 1, 2}, parent).HasFiller());
    EXPECT_FALSE(REDMUPFactors({}, parent).HasFiller());
    EXPECT_FALSE(REDMUPFactors({3, 4}, Mixed()).HasFiller());
}

TEST(REDMUPFactors, HaveAFreeSumOnlyWithFormulationFactors) {
    const TestFactors parent = Mixed().WithFreeSum();
    EXPECT_TRUE(REDMUPFactors({0, 3}, parent).IsFormulationSumFree());
    EXPECT_FALSE(REDMUPFactors({0, 1, 2}, parent).IsFormulationSumFree());
    EXPECT_FALSE(REDMUPFactors({}, parent).IsFormulationSumFree());
    EXPECT_FALSE(REDMUPFactors({3, 4}, Mixed()).IsFormulationSumFree());
}

TEST(REDMUPFactors, HaveAConstantShareOnlyWithFormulationFactors) {
    const TestFactors parent = Mixed().WithConstantShare(0.25F);
    EXPECT_EQ(REDMUPFactors({4}, parent).GetConstantMixtureShare(), 0.25F);
    EXPECT_EQ(REDMUPFactors({0, 1, 2}, parent).GetConstantMixtureShare(), 0.0F);
    EXPECT_EQ(REDMUPFactors({}, parent).GetConstantMixtureShare(), 0.0F);
}

TEST(REDMUPFactors, MayBeEmpty) {
    const TestFactors parent = Mixed();
    EXPECT_EQ(FailureOf({}, parent), "");
    EXPECT_EQ(REDMUPFactors({}, parent).GetDesignFactorCount(), 0U);
    EXPECT_EQ(FailureOf({}, TestFactors()), "");
}

TEST(REDMUPFactors, RefuseRepeatedNumbers) {
    EXPECT_EQ(FailureOf({0, 2, 0}, Mixed()), "Incorrect block factor setup.");
    EXPECT_EQ(FailureOf({4, 3, 2, 1, 0}, Mixed()), "");
}

TEST(REDMUPFactors, RefuseNumbersThatTheParentDoesNotHave) {
    const TestFactors parent = Mixed();
    EXPECT_EQ(FailureOf({4}, parent), "");
    EXPECT_EQ(FailureOf({5}, parent), "Incorrect block factor setup.");
    EXPECT_EQ(FailureOf({0, 18446744073709551615ULL}, parent), "Incorrect block factor setup.");
    EXPECT_EQ(FailureOf({0}, TestFactors()), "Incorrect block factor setup.");
}

TEST(REDMUPFactors, FactorsOutsideTheGroupAreOutsideTheParent) {
    const TestFactors parent = Mixed();
    const REDMUPFactors view({0}, parent);
    EXPECT_EQ(view.GetFactorType(1), CEType::NotDefined);
    EXPECT_EQ(view.GetFactorType(-1), CEType::NotDefined);
}

}  // namespace
