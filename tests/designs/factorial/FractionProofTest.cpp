// Every fraction that the three families offer, for every legal number of factors, runs and blocks,
// proven from the runs of the built design.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/FractionRequests.h"

namespace {

using Requests = std::vector<FractionRequest>;

// The legal choices that the tables cannot serve; each has a test of its own below.
bool EndsInGeneratorError(const FractionRequest& request) {
    const auto [type, factors, runs, blocks] = request;
    switch (type) {
        case EDesign::FFR_III:
            return factors >= 52;
        case EDesign::FFR_IV:
            return runs == 128 && blocks == 8;
        default:
            return factors >= 27 && blocks == 4;
    }
}

Requests Served(EDesign::Type type) {
    Requests requests = FractionRequest::AllOf(type);
    std::erase_if(requests, EndsInGeneratorError);
    return requests;
}

Requests AllServed() {
    Requests requests = Served(EDesign::FFR_III);
    for (const EDesign::Type type : {EDesign::FFR_IV, EDesign::FFR_V}) {
        const Requests more = Served(type);
        requests.insert(requests.end(), more.begin(), more.end());
    }
    return requests;
}

Requests Unblocked(Requests requests) {
    std::erase_if(requests, [](const FractionRequest& request) { return request.blocks > 1; });
    return requests;
}

constexpr FractionRequest cResolutionThree{EDesign::FFR_IV, 29, 128, 4};

int ClearMainEffects(const TwoLevelRuns& runs) {
    int clear = 0;
    for (int factor = 0; factor < runs.FactorCount(); ++factor) {
        clear += runs.IsClearOfBlocks(factor) ? 1 : 0;
    }
    return clear;
}

int InteractionsInBlocks(const TwoLevelRuns& runs) {
    int confounded = 0;
    for (int first = 0; first < runs.FactorCount(); ++first) {
        for (int second = 0; second < first; ++second) {
            confounded += runs.IsClearOfBlocks(first, second) ? 0 : 1;
        }
    }
    return confounded;
}

// A built fraction of 7 factors in 16 runs and 2 blocks, with one cell changed.
TwoLevelRuns WithOneCellFlipped(int row, int column) {
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::FFR_IV, "");
    TestFactors factors;
    factors.Quantitatives(7);
    DesignOptions options(*builder, factors);
    options.SetBlocks(2);
    const auto design = builder->Build(factors, options);
    NCDataMatrix<float> matrix = *design->GetDesignMatrix();
    const float old = matrix(row, column);
    const bool isBlock = column == 8;
    matrix(row, column, isBlock ? 131.0F - old : -old);  // letters 65 and 66, or -1 and 1
    return {matrix, 16, 7, true};
}

}  // namespace

// So that no proof runs over nothing.
TEST(FractionProof, TheFamiliesOfferSoManyChoices) {
    EXPECT_EQ(FractionRequest::AllOf(EDesign::FFR_III).size(), 104U);
    EXPECT_EQ(FractionRequest::AllOf(EDesign::FFR_IV).size(), 258U);
    EXPECT_EQ(FractionRequest::AllOf(EDesign::FFR_V).size(), 95U);
}

TEST(FractionProof, EveryFractionIsBalancedAndHasOrthogonalColumns) {
    for (const FractionRequest& request : AllServed()) {
        const std::vector<double> lengths = request.Build().WordLengths(2);
        EXPECT_EQ(lengths[1], 0) << request;
        EXPECT_EQ(lengths[2], 0) << request;
    }
}

TEST(FractionProof, UnblockedResolutionThreeFractionsHaveResolutionThree) {
    for (const FractionRequest& request : Unblocked(Served(EDesign::FFR_III))) {
        EXPECT_EQ(request.Build().Resolution(3), 3) << request;
    }
}

TEST(FractionProof, UnblockedResolutionFourFractionsHaveResolutionFour) {
    for (const FractionRequest& request : Unblocked(Served(EDesign::FFR_IV))) {
        EXPECT_EQ(request.Build().Resolution(4), 4) << request;
    }
}

TEST(FractionProof, UnblockedResolutionFiveFractionsHaveResolutionFiveOrMore) {
    for (const FractionRequest& request : Unblocked(Served(EDesign::FFR_V))) {
        const int expected = request.factors == 7 ? 7 : request.factors == 9 ? 6 : 5;
        EXPECT_EQ(request.Build().Resolution(7), expected) << request;
    }
}

TEST(FractionProof, EveryFractionHasTheResolutionThatItsTableStates) {
    for (const FractionRequest& request : AllServed()) {
        if (!(request == cResolutionThree)) {
            EXPECT_GE(request.Build().Resolution(5), request.StatedResolution()) << request;
        }
    }
}

// The table's last word has an even number of letters, unlike all others of its row.
TEST(FractionProof, TwentyNineFactorsIn128RunsAndFourBlocksHaveResolutionThreeOnly) {
    EXPECT_EQ(cResolutionThree.StatedResolution(), 4);
    EXPECT_EQ(cResolutionThree.Build().Resolution(4), 3);
}

TEST(FractionProof, EveryBlockedFractionHasBlocksOfOneSize) {
    for (const FractionRequest& request : AllServed()) {
        const TwoLevelRuns runs = request.Build();
        ASSERT_EQ(runs.BlockCount(), request.blocks) << request;
        for (int block = 0; block < runs.BlockCount(); ++block) {
            EXPECT_EQ(runs.RunsOfBlock(block) * request.blocks, request.runs) << request;
        }
    }
}

TEST(FractionProof, NoMainEffectIsConfoundedWithBlocks) {
    for (const FractionRequest& request : AllServed()) {
        EXPECT_EQ(ClearMainEffects(request.Build()), request.factors) << request;
    }
}

// Where the tables have no block generators that keep the resolution, they fall back.
// Factors/blocks: resolution IV.
TEST(FractionProof, BlockingLowersTheResolutionOfTheseResolutionFiveChoices) {
    std::vector<std::string> lowered;
    for (const FractionRequest& request : Served(EDesign::FFR_V)) {
        const int resolution = request.Build().Resolution(4);
        if (resolution < 5) {
            EXPECT_EQ(resolution, 4) << request;
            lowered.push_back(std::to_string(request.factors) + "/" +
                              std::to_string(request.blocks));
        }
    }
    EXPECT_THAT(lowered,
                testing::ElementsAre("5/2",
                                     "6/4",
                                     "9/4",
                                     "9/8",
                                     "10/4",
                                     "10/8",
                                     "11/4",
                                     "11/8",
                                     "15/4",
                                     "15/8",
                                     "16/4",
                                     "16/8",
                                     "17/4",
                                     "17/8",
                                     "19/4",
                                     "19/8",
                                     "20/4",
                                     "20/8",
                                     "21/4",
                                     "21/8"));
}

// Factors/runs/blocks: resolution III.
TEST(FractionProof, BlockingLowersTheResolutionOfTheseResolutionFourChoices) {
    std::vector<std::string> lowered;
    for (const FractionRequest& request : Served(EDesign::FFR_IV)) {
        if (request.Build().Resolution(3) == 3) {
            lowered.push_back(std::to_string(request.factors) + "/" + std::to_string(request.runs) +
                              "/" + std::to_string(request.blocks));
        }
    }
    EXPECT_THAT(lowered,
                testing::ElementsAre("4/8/2",
                                     "7/16/4",
                                     "8/16/4",
                                     "10/32/8",
                                     "12/32/8",
                                     "13/32/8",
                                     "14/32/4",
                                     "14/32/8",
                                     "15/32/4",
                                     "15/32/8",
                                     "16/32/4",
                                     "16/32/8",
                                     "19/64/8",
                                     "20/64/8",
                                     "21/64/8",
                                     "22/64/8",
                                     "23/64/8",
                                     "24/64/8",
                                     "25/64/8",
                                     "29/128/4"));
}

// Factors/blocks: interactions that are confounded with blocks in fractions of resolution V.
TEST(FractionProof, BlocksTakeTwoFactorInteractionsOfTheseResolutionFiveChoices) {
    std::vector<std::string> taken;
    for (const FractionRequest& request : Served(EDesign::FFR_V)) {
        const int count = InteractionsInBlocks(request.Build());
        if (count > 0) {
            taken.push_back(std::to_string(request.factors) + "/" + std::to_string(request.blocks) +
                            ": " + std::to_string(count));
        }
    }
    EXPECT_THAT(taken,
                testing::ElementsAre("5/4: 3",
                                     "6/8: 3",
                                     "8/8: 3",
                                     "10/8: 1",
                                     "11/8: 1",
                                     "16/8: 1",
                                     "17/2: 1",
                                     "17/8: 1",
                                     "21/8: 1"));
}

TEST(FractionProof, TwelveToTwentyFiveFactorsIn128RunsAndEightBlocksEndInTheGeneratorError) {
    int failures = 0;
    for (const FractionRequest& request : FractionRequest::AllOf(EDesign::FFR_IV)) {
        if (EndsInGeneratorError(request)) {
            EXPECT_GE(request.factors, 12);
            EXPECT_LE(request.factors, 25);
            EXPECT_EQ(request.Failure(),
                      "Generator error: Invalid number of generator definitions:\n\n")
                << request;
            ++failures;
        }
    }
    EXPECT_EQ(failures, 14);
}

// Their table names the letter k, which 1024 runs do not have.
TEST(FractionProof, TwentySevenToTwentyNineFactorsIn1024RunsAndFourBlocksEndInTheGeneratorError) {
    for (const int factors : {27, 28, 29}) {
        const FractionRequest request{EDesign::FFR_V, factors, 1024, 4};
        EXPECT_EQ(request.Failure(),
                  "Generator error: Invalid generator definitions:\n\n"
                  "Base generator not valid for the current design: bcdfk\n")
            << request;
    }
}

// The generator algebra serves 48 factors and three block generators.
TEST(FractionProof, FiftyTwoToSixtyThreeFactorsEndInTheGeneratorError) {
    for (int factors = 52; factors <= 63; ++factors) {
        const FractionRequest request{EDesign::FFR_III, factors, 64, 1};
        EXPECT_EQ(request.Failure(),
                  "Generator error: Invalid number of generator definitions:\n\n")
            << request;
    }
}

TEST(FractionProof, AFlippedCellLowersTheResolution) {
    EXPECT_EQ(WithOneCellFlipped(5, 3).Resolution(4), 1);
}

TEST(FractionProof, AFlippedCellConfoundsItsFactorWithBlocks) {
    EXPECT_EQ(ClearMainEffects(WithOneCellFlipped(5, 3)), 6);
}

TEST(FractionProof, AFlippedBlockLetterIsSeen) {
    const TwoLevelRuns runs = WithOneCellFlipped(5, 8);
    EXPECT_NE(runs.RunsOfBlock(0), runs.RunsOfBlock(1));
    EXPECT_EQ(ClearMainEffects(runs), 0);
}
