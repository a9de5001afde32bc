#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <typeinfo>
#include <vector>

#include "designs/rsm/CCF.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/generators/Generators.h"
#include "tests/support/CompositeRequest.h"

namespace {

using Matrix = NCDataMatrix<float>;

constexpr std::array<EDesign::Type, 3> cFamilies{EDesign::CCF, EDesign::CCC, EDesign::CCO};

bool IsValid(const CompositeRequest& request, const DesignOptions& options) {
    return request.Builder().IsValid(request.MakeFactors(), options);
}

bool IsValidOver(EDesign::Type type, const Factors& factors) {
    const DesignBuilder& builder = CompositeRequest{.type = type}.Builder();
    return builder.IsValid(factors, DesignOptions(builder, factors));
}

bool IsRecommended(EDesign::Type type, int factors, unsigned int maxRuns) {
    const CompositeRequest request{.type = type, .factors = factors};
    DesignOptions options;
    options.SetMaxRuns(maxRuns);
    return request.Builder().IsREDMUPRecommended(request.MakeFactors(), options);
}

Matrix BuiltWith(const CompositeRequest& request, const DesignOptions& options) {
    const TestFactors factors = request.MakeFactors();
    return *request.Builder().Build(factors, options)->GetDesignMatrix();
}

}  // namespace

TEST(CentralComposite, FaceCentredDesignOfTwoFactorsIsWrittenOut) {
    const CompositeRequest request{.type = EDesign::CCF, .factors = 2};
    EXPECT_EQ(request.Build(),
              (Matrix{{-1, -1},
                      {1, -1},
                      {-1, 1},
                      {1, 1},
                      {-1, 0},
                      {1, 0},
                      {0, -1},
                      {0, 1},
                      {0, 0},
                      {0, 0},
                      {0, 0}}));
}

TEST(CentralComposite, FaceCentredDesignOfThreeFactorsHasSeventeenRuns) {
    const CompositeRequest request{.type = EDesign::CCF, .factors = 3};
    const Matrix design = request.Build();
    EXPECT_EQ(design.SizeRows(), 17);
    EXPECT_EQ(design.SizeColumns(), 3);
    EXPECT_EQ(request.CubeRuns(), 8);
}

TEST(CentralComposite, TheRotatableDistanceHasThreeDecimals) {
    const Matrix design = CompositeRequest{.factors = 2}.Build();
    EXPECT_EQ(design(5, 1), -1.414F);
    EXPECT_EQ(design(8, 2), 1.414F);
}

TEST(CentralComposite, AnUnsetDistanceIsOne) {
    for (const EDesign::Type type : cFamilies) {
        const CompositeRequest request{
            .type = type, .factors = 3, .starDistance = DesignOptions::cNoStarDistance};
        EXPECT_EQ(request.Build()(9, 1), -1.0F) << request;
    }
}

TEST(CentralComposite, EveryFamilyFollowsTheOptionsDistance) {
    for (const EDesign::Type type : cFamilies) {
        const CompositeRequest request{.type = type, .factors = 3, .starDistance = 1.3F};
        EXPECT_EQ(request.Build()(9, 1), -1.3F) << request;
    }
}

TEST(CentralComposite, StarRunsFormTheLastBlock) {
    const CompositeRequest request{.factors = 4, .blocks = 3};
    const Matrix design = request.Build();
    ASSERT_EQ(design.SizeRows(), 16 + 8 + 3);
    ASSERT_EQ(design.SizeColumns(), 5);
    for (int row = 1; row <= 16; ++row) {
        const float product = design(row, 1) * design(row, 2) * design(row, 3) * design(row, 4);
        EXPECT_EQ(design(row, 5), product > 0 ? 66 : 65) << row;
    }
    for (int row = 17; row <= 24; ++row) {
        EXPECT_EQ(design(row, 5), 67) << row;
    }
    EXPECT_EQ(design(25, 5), 65);
    EXPECT_EQ(design(26, 5), 66);
    EXPECT_EQ(design(27, 5), 67);
}

TEST(CentralComposite, TwoBlocksAreTheFactorialAndTheStarRuns) {
    const CompositeRequest request{.factors = 2, .blocks = 2, .centrePoints = 2};
    const float distance = request.Options().GetStarDistance();
    EXPECT_EQ(request.Build(),
              (Matrix{{-1, -1, 65},
                      {1, -1, 65},
                      {-1, 1, 65},
                      {1, 1, 65},
                      {-distance, 0, 66},
                      {distance, 0, 66},
                      {0, -distance, 66},
                      {0, distance, 66},
                      {0, 0, 65},
                      {0, 0, 66}}));
}

TEST(CentralComposite, BlockedDistanceOfThreeFactorsIsTheWorkedOne) {
    // Two centre points with the factorial runs, one with the star runs: sqrt(2.8).
    const CompositeRequest request{.factors = 3, .blocks = 2, .centrePoints = 3};
    EXPECT_NEAR(request.Options().GetStarDistance(), 1.6733, 5e-5);
}

TEST(CentralComposite, OrthogonalDistanceOfTwoFactorsIsTheWorkedOne) {
    const CompositeRequest request{.type = EDesign::CCO, .factors = 2, .centrePoints = 3};
    EXPECT_NEAR(request.Options().GetStarDistance(), 1.1474, 5e-5);
}

TEST(CentralComposite, DefaultDistancesAreThoseOfTheTable) {
    const std::map<int, float> table{{2, 1.414F},
                                     {3, 1.682F},
                                     {4, 2.0F},
                                     {5, 2.0F},
                                     {6, 2.378F},
                                     {7, 2.828F},
                                     {8, 2.828F},
                                     {9, 3.364F},
                                     {11, 3.364F},
                                     {12, 4.0F},
                                     {16, 4.0F},
                                     {17, 4.757F},
                                     {21, 4.757F}};
    for (const auto& [factors, distance] : table) {
        EXPECT_EQ(CompositeRequest{.factors = factors}.Options().GetStarDistance(), distance)
            << factors;
    }
}

TEST(CentralComposite, OutsideTheFactorCountsThereIsNoDistance) {
    for (const EDesign::Type type : {EDesign::CCC, EDesign::CCO}) {
        const DesignBuilder& builder = CompositeRequest{.type = type}.Builder();
        DesignOptions blocked;
        blocked.SetBlocks(2);
        for (const unsigned int factors : {0U, 1U, 22U, 100U}) {
            EXPECT_EQ(builder.GetDefaultStarDistance(factors, DesignOptions()), -99.0F) << factors;
            EXPECT_EQ(builder.GetDefaultStarDistance(factors, blocked), -99.0F) << factors;
        }
    }
}

TEST(CentralComposite, FaceCentredStarsStandAtOneWhateverTheFactors) {
    const DesignBuilder& builder = CompositeRequest{.type = EDesign::CCF}.Builder();
    EXPECT_EQ(builder.GetDefaultStarDistance(5, DesignOptions()), 1.0F);
    EXPECT_EQ(builder.GetDefaultStarDistance(50, DesignOptions()), 1.0F);
}

TEST(CentralComposite, RunsByFactorsAreThoseOfTheTable) {
    const std::array<unsigned int, 23> runs{0,   0,   8,   14,  24,  26,  44,  78,
                                            80,  146, 148, 150, 280, 282, 284, 286,
                                            288, 290, 548, 550, 552, 554, 0};
    for (const EDesign::Type type : cFamilies) {
        const auto& builder =
            dynamic_cast<const CCFBuilder&>(CompositeRequest{.type = type}.Builder());
        for (int factors = 0; factors < static_cast<int>(runs.size()); ++factors) {
            EXPECT_EQ(builder.RunsForFactors(factors), runs[static_cast<std::size_t>(factors)])
                << factors;
        }
    }
}

TEST(CentralComposite, AreValidFromTwoToTwentyOneFactors) {
    for (const EDesign::Type type : cFamilies) {
        for (int factors = 1; factors <= 23; ++factors) {
            const CompositeRequest request{.type = type, .factors = factors};
            EXPECT_EQ(IsValid(request, request.Options()), factors >= 2 && factors <= 21)
                << request;
        }
    }
}

TEST(CentralComposite, TheRunLimitCountsOneCentrePoint) {
    for (const EDesign::Type type : cFamilies) {
        const CompositeRequest request{.type = type, .factors = 3};
        DesignOptions options = request.Options();
        options.SetMaxRuns(15);
        EXPECT_TRUE(IsValid(request, options)) << request;
        options.SetMaxRuns(14);
        EXPECT_FALSE(IsValid(request, options)) << request;
    }
}

TEST(CentralComposite, ServeTheQuadraticModelOfResponseSurfaces) {
    for (const EDesign::Type type : cFamilies) {
        const CompositeRequest request{.type = type, .factors = 3};
        DesignOptions options = request.Options();
        EXPECT_EQ(options.GetObjective(), EObjective::Optimization);
        EXPECT_EQ(options.GetModel(), EModel::Quadratic);
        options.SetObjective(EObjective::SystemCharacterization);
        EXPECT_TRUE(IsValid(request, options));
        options.SetObjective(EObjective::Screening);
        EXPECT_FALSE(IsValid(request, options));
        options = request.Options();
        options.SetModel(EModel::Linear);
        EXPECT_FALSE(IsValid(request, options));
    }
}

TEST(CentralComposite, LevelFactorsAreNotServed) {
    TestFactors factors;
    factors.Quantitatives(2);
    for (const EDesign::Type type : cFamilies) {
        EXPECT_TRUE(IsValidOver(type, factors));
        EXPECT_FALSE(IsValidOver(type, TestFactors(factors).MultilevelOf(3)));
        EXPECT_FALSE(IsValidOver(type, TestFactors(factors).Qualitative(2)));
        EXPECT_FALSE(IsValidOver(type, TestFactors(factors).Formulation().Formulation()));
    }
}

TEST(CentralComposite, AFillerIsServedAtTheFacesOnly) {
    TestFactors factors;
    factors.Formulation(0, 0.4F).Formulation(0, 0.4F);
    const TestFactors free = TestFactors(factors).WithFiller(true);
    EXPECT_TRUE(IsValidOver(EDesign::CCF, free));
    EXPECT_FALSE(IsValidOver(EDesign::CCC, free));
    EXPECT_FALSE(IsValidOver(EDesign::CCO, free));
    EXPECT_FALSE(IsValidOver(EDesign::CCF, TestFactors(factors).WithFiller(false)));
}

TEST(CentralComposite, ConstraintsAreNotServed) {
    const CompositeRequest request{.type = EDesign::CCF, .factors = 3};
    DesignOptions options = request.Options();
    const auto specific = std::make_shared<DesignSpecificOptions>();
    const NCDOE::Constraint lower{.terms = {{.factor = 0, .coefficient = 1}}};
    specific->SetConstraints(NCDOE::Constraints({lower}), request.MakeFactors());
    options.SetDesignSpecificOptions(specific);
    EXPECT_FALSE(IsValid(request, options));
}

TEST(CentralComposite, LegalRunsAreTheDefaultOnes) {
    for (const EDesign::Type type : cFamilies) {
        const CompositeRequest request{.type = type, .factors = 6};
        EXPECT_THAT(request.Builder().GetLegalRuns(request.MakeFactors(), request.Options()),
                    testing::ElementsAre(44));
    }
}

TEST(CentralComposite, OnlyCircumscribedDesignsHaveBlocks) {
    for (const EDesign::Type type : {EDesign::CCF, EDesign::CCO}) {
        const CompositeRequest request{.type = type, .factors = 7};
        EXPECT_THAT(
            request.Builder().GetLegalBlocks(request.MakeFactors(), request.Options(), false),
            testing::ElementsAre(1));
    }
}

TEST(CentralComposite, BlocksAreNotOfferedWhereNoneAreWanted) {
    const CompositeRequest request{.factors = 7};
    EXPECT_THAT(request.Builder().GetLegalBlocks(request.MakeFactors(), request.Options(), true),
                testing::ElementsAre(1));
    EXPECT_THAT(request.Builder().GetLegalBlocks(request.MakeFactors(), request.Options(), false),
                testing::ElementsAre(1, 2, 3, 5, 9));
}

TEST(CentralComposite, SeventeenFactorsHaveTwoBlocksAtMost) {
    const CompositeRequest request{.factors = 17};
    EXPECT_THAT(request.Builder().GetLegalBlocks(request.MakeFactors(), request.Options(), false),
                testing::ElementsAre(1, 2));
}

TEST(CentralComposite, PlatesTakeDistantStarsWhereThereIsRoom) {
    for (const EDesign::Type type : {EDesign::CCC, EDesign::CCO}) {
        EXPECT_TRUE(IsRecommended(type, 2, 12));
        EXPECT_FALSE(IsRecommended(type, 2, 11));
        EXPECT_TRUE(IsRecommended(type, 3, 13));
        EXPECT_FALSE(IsRecommended(type, 3, 12));
    }
    EXPECT_TRUE(IsRecommended(EDesign::CCF, 3, 1));
}

TEST(CentralComposite, PrioritiesAreThoseOfTheFactorCount) {
    const auto priority = [](EDesign::Type type, int factors) {
        const CompositeRequest request{.type = type, .factors = factors};
        return static_cast<int>(request.Builder().GetPriority(request.MakeFactors()));
    };
    EXPECT_EQ(priority(EDesign::CCC, 4), 14);
    EXPECT_EQ(priority(EDesign::CCF, 4), 13);
    EXPECT_EQ(priority(EDesign::CCO, 4), 11);
    EXPECT_EQ(priority(EDesign::CCO, 7), 12);
    EXPECT_EQ(priority(EDesign::CCC, 22), 0);
}

TEST(CentralComposite, UserGeneratorsMakeTheFactorialPart) {
    const CompositeRequest request{.type = EDesign::CCF, .factors = 5};
    DesignOptions options = request.Options();
    ASSERT_TRUE(
        options.SetGenerators(std::vector<std::vector<int>>{{1}, {2}, {3}, {4}, {-1, 2, 3, 4}}));
    const Matrix design = BuiltWith(request, options);
    for (int row = 1; row <= 16; ++row) {
        EXPECT_EQ(design(row, 5),
                  -design(row, 1) * design(row, 2) * design(row, 3) * design(row, 4))
            << row;
    }
}

TEST(CentralComposite, UserGeneratorsNeedNoWordForTheStarBlock) {
    const CompositeRequest request{.factors = 5, .blocks = 2};
    DesignOptions options = request.Options();
    ASSERT_TRUE(
        options.SetGenerators(std::vector<std::vector<int>>{{1}, {2}, {3}, {4}, {-1, 2, 3, 4}}));
    const Matrix design = BuiltWith(request, options);
    EXPECT_EQ(design(1, 5), -1);
    EXPECT_EQ(design(1, 6), 65);
    EXPECT_EQ(design(17, 6), 66);
}

TEST(CentralComposite, ARunCountWithoutGeneratorsEndsInTheGeneratorError) {
    for (const unsigned int runs : {0U, 5U, 16U, 40U}) {
        const CompositeRequest request{.type = EDesign::CCF, .factors = 4};
        DesignOptions options = request.Options();
        options.SetRuns(runs);
        try {
            BuiltWith(request, options);
            FAIL() << runs << " runs, no exception";
        } catch (const Exception& exception) {
            EXPECT_THAT(exception.what(), testing::StartsWith("Generator error: Invalid")) << runs;
        }
    }
}

TEST(CentralComposite, ReplicatesRepeatCentrePointsAndReplicatedRuns) {
    const CompositeRequest request{.factors = 2};
    DesignOptions options = request.Options();
    options.SetReplicatedRuns(4);
    options.SetReplicates(1);
    EXPECT_EQ(BuiltWith(request, options).SizeRows(), (8 + 4 + 3) * 2);
}

TEST(CentralComposite, ACloneIsOfTheSameClassAndSharesTheMatrix) {
    for (const EDesign::Type type : cFamilies) {
        const CompositeRequest request{.type = type, .factors = 3};
        const TestFactors factors = request.MakeFactors();
        const auto design = request.Builder().Build(factors, request.Options());
        const NCDesign& original = *design;
        const auto clone = original.Clone();
        const NCDesign& copy = *clone;
        EXPECT_EQ(copy.GetDesignMatrix(), original.GetDesignMatrix());
        EXPECT_EQ(typeid(copy), typeid(original));
    }
}

TEST(CentralComposite, AnInvalidRequestGivesAnEmptyHandle) {
    for (const EDesign::Type type : cFamilies) {
        EXPECT_TRUE((CompositeRequest{.type = type, .factors = 22}.Build().IsEmpty()));
    }
}
