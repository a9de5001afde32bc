#include <array>
#include <vector>

#include "designs/factorial/FF2.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "tests/support/ProbeBuilder.h"
#include "tests/support/TestFactors.h"

namespace {

using ::testing::ElementsAre;

std::vector<int> LegalBlocks(EDesign::Type type, int factors, unsigned runs) {
    ProbeBuilder builder;
    builder.type = type;
    DesignOptions options;
    options.SetRuns(runs);
    return builder.GetLegalBlocks(TestFactors().Quantitatives(factors), options, false);
}

TEST(LegalBlocks, NoBlocksAreLegalWhereNoneAreWanted) {
    for (const auto& builder : AllDesigns::AllPossibleDesigns().GetAllDesigns()) {
        DesignOptions options;
        options.SetRuns(64);
        EXPECT_THAT(builder->GetLegalBlocks(TestFactors().Quantitatives(6), options, true),
                    ElementsAre(1))
            << builder->GetShortString();
    }
}

TEST(LegalBlocks, TwoLevelFactorialsAreBlockedFromEightRunsOn) {
    EXPECT_THAT(LegalBlocks(EDesign::FF2, 2, 4), ElementsAre(1));
    EXPECT_THAT(LegalBlocks(EDesign::FF2, 3, 8), ElementsAre(1, 2));
    EXPECT_THAT(LegalBlocks(EDesign::FF2, 4, 16), ElementsAre(1, 2, 4));
    for (int factors = 5; factors <= 10; ++factors) {
        EXPECT_THAT(LegalBlocks(EDesign::FF2, factors, 1U << factors), ElementsAre(1, 2, 4, 8))
            << factors;
    }
}

TEST(LegalBlocks, BuilderOfTwoLevelFactorialsAnswersForItsDefaults) {
    const FF2Builder builder("FF2", "", "");
    const TestFactors factors = TestFactors().Quantitatives(3);
    EXPECT_THAT(builder.GetLegalBlocks(factors, DesignOptions(builder, factors), false),
                ElementsAre(1, 2));
}

TEST(LegalBlocks, MoreThanThirtyOneFactorsAreNeverBlocked) {
    EXPECT_THAT(LegalBlocks(EDesign::PB, 31, 64), ElementsAre(1, 2));
    EXPECT_THAT(LegalBlocks(EDesign::PB, 32, 64), ElementsAre(1));
}

TEST(LegalBlocks, OnionDesignsAreNotBlocked) {
    EXPECT_THAT(LegalBlocks(EDesign::OnionDOpt, 4, 64), ElementsAre(1));
}

TEST(LegalBlocks, PlackettBurmanNeedsTwoRunsMoreThanFactors) {
    EXPECT_THAT(LegalBlocks(EDesign::PB, 10, 12), ElementsAre(1, 2));
    EXPECT_THAT(LegalBlocks(EDesign::PB, 11, 12), ElementsAre(1));
    EXPECT_THAT(LegalBlocks(EDesign::PB, 3, 0), ElementsAre(1));
}

TEST(LegalBlocks, BoxBehnkenGoesByFactorCount) {
    const std::array<std::vector<int>, 13> expected{
        {{1}, {1}, {1}, {1}, {1, 3}, {1, 2}, {1, 2}, {1, 2}, {1}, {1, 5, 10}, {1, 2}, {1}, {1, 2}}};
    for (int factors = 0; factors < 13; ++factors) {
        EXPECT_EQ(LegalBlocks(EDesign::BB, factors, 64),
                  expected[static_cast<std::size_t>(factors)])
            << factors;
    }
}

TEST(LegalBlocks, CompositeDesignsAlwaysPartIntoCubeAndStar) {
    EXPECT_THAT(LegalBlocks(EDesign::CCC, 2, 8), ElementsAre(1, 2));
    EXPECT_THAT(LegalBlocks(EDesign::CCC, 3, 14), ElementsAre(1, 2));
}

TEST(LegalBlocks, CompositeDesignsWithAResolutionVCubeBlockTheCubeToo) {
    // Cubes of 16, 16, 32, 64 and 64 runs; blocking the half fraction of five factors lowers its
    // resolution.
    EXPECT_THAT(LegalBlocks(EDesign::CCC, 4, 24), ElementsAre(1, 2, 3));
    EXPECT_THAT(LegalBlocks(EDesign::CCC, 5, 26), ElementsAre(1, 2));
    EXPECT_THAT(LegalBlocks(EDesign::CCC, 6, 44), ElementsAre(1, 2, 3));
    EXPECT_THAT(LegalBlocks(EDesign::CCC, 7, 78), ElementsAre(1, 2, 3, 5, 9));
    EXPECT_THAT(LegalBlocks(EDesign::CCC, 8, 80), ElementsAre(1, 2, 3, 5));
}

TEST(LegalBlocks, FaceCentredAndOrthogonalCompositesAreNotBlocked) {
    EXPECT_THAT(LegalBlocks(EDesign::CCF, 4, 24), ElementsAre(1));
    EXPECT_THAT(LegalBlocks(EDesign::CCO, 4, 24), ElementsAre(1));
}

// The numbers that legal blocks of D-optimal designs follow from.
std::vector<int> ExpectedDOptimalBlocks(const Factors& factors, const DesignOptions& options) {
    std::vector<int> expected{1};
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::DOpt, "");
    const std::vector<unsigned> legal =
        builder ? builder->GetLegalRuns(factors, options) : std::vector<unsigned>();
    const int columns = static_cast<int>(factors.GetDesignFactorCountExpanded());
    for (int blocks = 2; !legal.empty() && blocks <= 9; ++blocks) {
        if (blocks <= static_cast<int>(legal.back() / 2) && blocks <= 33 - columns) {
            expected.push_back(blocks);
        }
    }
    return expected;
}

TEST(LegalBlocks, OptimalDesignsGoByTheLargestRunCountAndTheColumns) {
    ProbeBuilder probe;
    probe.type = EDesign::DOpt;
    for (const int count : {2, 10, 28, 31}) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        const DesignOptions options(probe, factors);
        EXPECT_EQ(probe.GetLegalBlocks(factors, options, false),
                  ExpectedDOptimalBlocks(factors, options))
            << count;
    }
}

TEST(LegalBlocks, OptimalDesignsOfManyProcessAndMixtureFactorsAreNotBlocked) {
    ProbeBuilder probe;
    probe.type = EDesign::DOpt;
    const TestFactors factors =
        TestFactors().Quantitatives(9).Formulation().Formulation().Formulation();
    EXPECT_THAT(probe.GetLegalBlocks(factors, DesignOptions(probe, factors), false),
                ElementsAre(1));
}

}  // namespace
