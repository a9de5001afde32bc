#include "designs/optimal/DOptGen.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>

#include "designs/optimal/DOptFactorAdapter.h"
#include "designs/optimal/DOptFactorRef.h"
#include "foundation/util/NCInternalError.h"
#include "tests/support/TestFactors.h"

namespace {

std::string InternalError(const std::function<void()>& call) {
    try {
        call();
    } catch (const NCInternalError& error) {
        return error.what();
    }
    return "";
}

TEST(DOptGen, StartsWithItsDefaults) {
    const DOptGen generator;
    EXPECT_EQ(generator.GetStatus(), DOpt::Success);
    EXPECT_EQ(generator.GetVariables(), 0);
    EXPECT_EQ(generator.search.exchangeWidth, 3);
    EXPECT_EQ(generator.search.randomStartPoints, 3);
    EXPECT_EQ(generator.search.repetitions, 10);
    EXPECT_EQ(generator.search.runRange, 1);
    EXPECT_TRUE(generator.search.scale);
    EXPECT_FALSE(generator.HasMixture());
    EXPECT_TRUE(generator.GetEdgeCentres());
    EXPECT_FALSE(generator.GetEdgeThirds());
    EXPECT_EQ(generator.GetCandidates(), nullptr);
}

TEST(DOptGen, VariablesAreModelTermsToo) {
    DOptGen generator;
    EXPECT_EQ(generator.SetVariables(5), DOpt::Success);
    EXPECT_EQ(generator.GetVariables(), 5);
    EXPECT_EQ(generator.GetModelTerms(), 5);
}

TEST(DOptGen, NoVariablesAreRefused) {
    DOptGen generator;
    EXPECT_EQ(generator.SetVariables(3), DOpt::Success);
    EXPECT_EQ(generator.SetVariables(0), DOpt::IllegalArgument);
    EXPECT_EQ(generator.GetStatus(), DOpt::IllegalArgument);
    EXPECT_EQ(generator.GetVariables(), 3);
}

TEST(DOptGen, SettersNameThemselvesForAWrongSize) {
    DOptGen generator;
    generator.SetVariables(3);
    const NCDataMatrix<float> wrong(2, 5, 0.0F);
    EXPECT_EQ(InternalError([&] { generator.SetPInitCon(wrong); }), "SetPInitCon");
    EXPECT_EQ(InternalError([&] { generator.SetPInitVert(wrong); }), "SetPInitVert");
    EXPECT_EQ(InternalError([&] { generator.SetPNewCon(wrong); }), "SetPNewCon");
    EXPECT_EQ(InternalError([&] { generator.SetPIsMix({4, 0}); }), "SetPIsMix");
    EXPECT_EQ(InternalError([&] { generator.SetVarRanges({3, 0}, {2, 1}); }), "SetVarRanges");
    EXPECT_EQ(InternalError([&] { generator.SetVarRanges({2, 0}, {3, 1}); }), "SetVarRanges");
}

TEST(DOptGen, SettersTakeTheirSizes) {
    DOptGen generator;
    generator.SetVariables(3);
    EXPECT_EQ(InternalError([&] {
                  generator.SetPInitCon({2, 4, 0.0F});
                  generator.SetPNewCon({2, 4, 0.0F});
                  generator.SetPInitVert({2, 3, 0.0F});
                  generator.SetPIsMix({3, 0});
                  generator.SetVarRanges({3, 0}, {3, 1});
              }),
              "");
}

TEST(DOptGen, MixtureVariablesAreThoseMarkedWithOne) {
    DOptGen generator;
    generator.SetVariables(3);
    OneBasedVec<int> isMix(3, 1);
    isMix(1) = 0;
    generator.SetPIsMix(isMix);
    EXPECT_EQ(generator.GetMixtureVariables(), 2);
    EXPECT_TRUE(generator.HasMixture());
}

TEST(DOptGen, MixtureRangesFollowTheVariables) {
    DOptGen generator;
    generator.SetVariables(3);
    OneBasedVec<float> high(3, 1);
    high(3) = 0.5F;
    generator.SetVarRanges({3, 0.25F}, high);
    EXPECT_EQ(generator.GetVarRangeMix(), nullptr);
    OneBasedVec<int> isMix(3, 1);
    isMix(1) = 0;
    generator.SetPIsMix(isMix);
    const auto ranges = generator.GetVarRangeMix();
    ASSERT_EQ(ranges->Size(), 2);
    EXPECT_EQ((*ranges)(1), 0.75F);
    EXPECT_EQ((*ranges)(2), 0.25F);
}

TEST(DOptGen, CandidatesHaveOneColumnAVariable) {
    DOptGen generator;
    generator.SetVariables(2);
    EXPECT_EQ(generator.SetCandidates({3, 3, 0.0F}), DOpt::IllegalArgument);
    EXPECT_EQ(generator.GetCandidates(), nullptr);
    EXPECT_EQ(generator.SetCandidates({3, 2, 0.0F}), DOpt::Success);
}

TEST(DOptGen, DesignsAreTheRowsUpToTheFirstFreePlace) {
    DOptGen generator;
    generator.SetVariables(1);
    OneBasedVec<int> rows(4, 2);
    rows(2) = 3;
    rows(3) = 0;
    EXPECT_EQ(generator.GetDesign(rows), nullptr);
    generator.SetCandidates({{10}, {20}, {30}});
    EXPECT_EQ(*generator.GetDesign(rows), (NCDataMatrix<float>{{20}, {30}}));
    EXPECT_EQ(generator.GetDesign({4, 0}), nullptr);
}

TEST(DOptGen, LimitsFollowTheExpandedVariables) {
    const TestFactors factors =
        TestFactors().Qualitative(3).Multilevel({10, 20, 30}).Formulation(0.1F, 0.4F);
    const DOptFactorAdapter adapter(factors, 1);
    DOptGen generator;
    generator.SetVariables(4);
    generator.SetVarRangesFrom(adapter);
    generator.SetIsMixFrom(adapter);
    const std::vector<float> low = {-1, -1, 30, 0.1F};
    const std::vector<float> high = {1, 1, 10, 0.4F};
    for (int variable = 1; variable <= 4; ++variable) {
        EXPECT_EQ((*generator.GetVarMin())(variable), low[static_cast<std::size_t>(variable - 1)]);
        EXPECT_EQ((*generator.GetVarMax())(variable), high[static_cast<std::size_t>(variable - 1)]);
        EXPECT_EQ((*generator.GetIsMix())(variable), variable == 4 ? 1 : 0);
    }
}

TEST(DOptGen, OnlyAFillerWithAFreeSumUnmarksMixtures) {
    for (const bool sumFree : {false, true}) {
        const TestFactors factors = TestFactors().Formulation().WithFiller(sumFree);
        DOptGen generator;
        generator.SetVariables(1);
        generator.SetIsMixFrom(DOptFactorAdapter(factors, 1));
        EXPECT_EQ(generator.HasMixture(), !sumFree);
    }
}

TEST(DOptGen, TransformsAreThoseOfQuantitativeFactors) {
    const TransformStruct log(TransformStruct::Log10);
    const TestFactors factors =
        TestFactors().Multilevel({1, 2}).Transformed(log).Quantitative(1, 2).Transformed(log);
    DOptGen generator;
    generator.SetVariables(2);
    generator.SetTransformsFrom(DOptFactorAdapter(factors, 1));
    EXPECT_EQ(generator.GetTransform(1), nullptr);
    ASSERT_NE(generator.GetTransform(2), nullptr);
    EXPECT_EQ(*generator.GetTransform(2), log);
}

TEST(DOptGen, IdentityTransformsMakeNoTable) {
    const TestFactors factors = TestFactors().Quantitative().Transformed(TransformStruct());
    DOptGen generator;
    generator.SetVariables(1);
    generator.SetTransformsFrom(DOptFactorAdapter(factors, 1));
    EXPECT_EQ(generator.GetTransform(1), nullptr);
}

TEST(DOptGen, StepsWithoutTheirInputAreRefused) {
    DOptGen generator;
    generator.SetVariables(2);
    EXPECT_EQ(generator.ComputeVertices({}), DOpt::MissingObject);
    const DOpt::WorkingScale scale{DOpt::PointTable(2), {}};
    EXPECT_EQ(generator.ComputeCentroids({}, scale, {}), DOpt::NoCentroidPlan);
    EXPECT_EQ(generator.ComputeCentroids({true, false, {2}}, scale, {}), DOpt::MissingCentroids);
}

TEST(DOptFactorRef, EndsOfMultilevelFactorsAreExchanged) {
    const TestFactors factors = TestFactors().Multilevel({10, 20, 30});
    const DOptFactorRef ref(factors, 0);
    EXPECT_EQ(ref.GetLow(), 30);
    EXPECT_EQ(ref.GetHigh(), 10);
    EXPECT_EQ(ref.GetMultilevelSettingOB(2), 20);
}

TEST(DOptFactorRef, OtherFactorsHaveTheirLimits) {
    const TestFactors factors = TestFactors().Quantitative(2, 5).Formulation(0.1F, 0.3F);
    EXPECT_EQ(DOptFactorRef(factors, 0).GetLow(), 2);
    EXPECT_EQ(DOptFactorRef(factors, 1).GetHigh(), 0.3F);
}

TEST(DOptFactorRef, WrongTypesNameTheFunction) {
    const TestFactors factors = TestFactors().Qualitative(3).Quantitative().Multilevel({1, 2});
    const DOptFactorRef qualitative(factors, 0);
    EXPECT_EQ(InternalError([&] { static_cast<void>(qualitative.GetLow()); }), "GetLow");
    EXPECT_EQ(InternalError([&] { static_cast<void>(qualitative.GetHigh()); }), "GetHigh");
    for (const auto& [factor, level] : {std::pair(1, 1), std::pair(2, 3), std::pair(2, 0)}) {
        EXPECT_EQ(
            InternalError([&, factor = factor, level = level] {
                static_cast<void>(DOptFactorRef(factors, factor).GetMultilevelSettingOB(level));
            }),
            "GetMultilevelSettingOB");
    }
}

TEST(DOptFactorRef, AFactorWithoutTransformHasTheIdentity) {
    const TransformStruct log(TransformStruct::Log10);
    const TestFactors factors = TestFactors().Quantitative().Quantitative(1, 2).Transformed(log);
    EXPECT_EQ(DOptFactorRef(factors, 0).GetTransform().kind, TransformStruct::Identity);
    EXPECT_EQ(DOptFactorRef(factors, 1).GetTransform(), log);
}

TEST(DOptFactorRef, CodingSumsToZero) {
    const TestFactors factors = TestFactors().Qualitative(3);
    EXPECT_EQ(*DOptFactorRef(factors, 0).MakeCodingMatrix(),
              (NCDataMatrix<float>{{-1, -1}, {1, 0}, {0, 1}}));
}

TEST(OneBasedVec, CountsFromOne) {
    OneBasedVec<int> rows(2, 7);
    rows(2) = 9;
    rows.Append(11);
    const OneBasedVec<int> copy = rows;
    EXPECT_EQ(copy(1), 7);
    EXPECT_EQ(copy(2), 9);
    EXPECT_EQ(copy(3), 11);
    EXPECT_EQ(copy.Size(), 3);
}

TEST(DOPTMatrix, IsMadeWithItsFill) {
    const auto matrix = MakeDOPTMatrix<double>("DOptMx", 2, 3, -99.0);
    EXPECT_EQ(matrix->SizeRows(), 2);
    EXPECT_EQ((*matrix)(2, 3), -99.0);
}

}  // namespace
