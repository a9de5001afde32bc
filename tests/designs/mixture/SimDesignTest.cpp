#include "designs/mixture/SimDesign.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "foundation/utl/Exceptions.h"
#include "frame/DesignSpecificOptions.h"
#include "tests/oracles/ModelOracles.h"
#include "tests/oracles/SimplexPointOracle.h"
#include "tests/support/DesignMatchers.h"
#include "tests/support/MatrixRows.h"
#include "tests/support/MixtureDesigns.h"

namespace {

using mixture::Build;
using mixture::Builder;
using mixture::IsValid;
using mixture::MakeFactors;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

// The largest factor count of each design.
const std::map<EDesign::Type, int> cMostFactors{
    {EDesign::SimM, 12}, {EDesign::SimF, 12}, {EDesign::SimSC, 10}, {EDesign::SimC, 9}};

const std::map<EDesign::Type, EModel::Type> cModels{{EDesign::SimM, EModel::Quadratic},
                                                    {EDesign::SimF, EModel::Quadratic},
                                                    {EDesign::SimSC, EModel::SpecialCubic},
                                                    {EDesign::SimC, EModel::Cubic}};

const std::map<EDesign::Type, oracles::Terms> cTerms{
    {EDesign::SimM, oracles::MixtureQuadraticTerms},
    {EDesign::SimF, oracles::MixtureQuadraticTerms},
    {EDesign::SimSC, oracles::MixtureSpecialCubicTerms},
    {EDesign::SimC, oracles::MixtureCubicTerms}};

oracles::Points ExpectedPoints(EDesign::Type type, int k, int centroids) {
    const oracles::Points vertices = oracles::Vertices(k);
    const oracles::Points edges = oracles::EdgeCentres(k);
    const oracles::Points thirds = oracles::EdgeThirds(k);
    const oracles::Points blends = oracles::TripleBlends(k);
    const oracles::Points inner =
        oracles::Joined({oracles::InteriorPoints(k, k), oracles::Centroids(k, centroids)});
    switch (type) {
        case EDesign::SimM:
            return oracles::Joined({vertices, edges, inner});
        case EDesign::SimF:
            return oracles::Joined({vertices, edges, oracles::FaceCentres(k), inner});
        case EDesign::SimSC:
            return oracles::Joined({vertices, thirds, blends, inner});
        default:
            return oracles::Joined({vertices, edges, thirds, blends, inner});
    }
}

}  // namespace

TEST(SimplexCentroid, ModifiedDesignOfThreeFactorsIsWrittenOut) {
    const float third = 1.0F / 3;
    const float sixth = 1.0F / 6;
    const std::vector<std::vector<float>> expected{{1, 0, 0},
                                                   {0, 1, 0},
                                                   {0, 0, 1},
                                                   {0.5F, 0.5F, 0},
                                                   {0.5F, 0, 0.5F},
                                                   {0, 0.5F, 0.5F},
                                                   {2 * third, sixth, sixth},
                                                   {sixth, 2 * third, sixth},
                                                   {sixth, sixth, 2 * third}};
    EXPECT_EQ(RowsOf(Build(EDesign::SimM, 3, 0)), expected);
}

TEST(SimplexCentroid, ThirdsOfAnEdgeStartNearItsFirstFactor) {
    const std::vector<std::vector<float>> expected{{0.6666667F, 0.33333334F, 0},
                                                   {0.33333334F, 0.6666667F, 0},
                                                   {0.6666667F, 0, 0.33333334F},
                                                   {0.33333334F, 0, 0.6666667F},
                                                   {0, 0.6666667F, 0.33333334F},
                                                   {0, 0.33333334F, 0.6666667F},
                                                   {0.33333334F, 0.33333334F, 0.33333334F}};
    EXPECT_EQ(RowsOf(Build(EDesign::SimSC, 3, 0), 4, 10), expected);
}

TEST(SimplexCentroid, PointsStandInOrder) {
    for (const auto& [type, most] : cMostFactors) {
        for (int k = 3; k <= most; ++k) {
            EXPECT_EQ(RowsOf(Build(type, k, 2)), ExpectedPoints(type, k, 2)) << type << ' ' << k;
        }
    }
}

TEST(SimplexCentroid, EveryRunIsAMixture) {
    for (const auto& [type, most] : cMostFactors) {
        for (int k = 3; k <= most; ++k) {
            const NCDataMatrix<float> runs = Build(type, k, 1);
            EXPECT_THAT(runs, RowsSumTo(1, mixture::cSumTolerance)) << type << ' ' << k;
            EXPECT_THAT(mixture::RowsOutside(runs, 0, 1), IsEmpty()) << type << ' ' << k;
        }
    }
}

TEST(SimplexCentroid, MixtureCheckObjectsToOneChangedShare) {
    for (const auto& [type, most] : cMostFactors) {
        const NCDataMatrix<float> runs = WithFlippedCell(Build(type, most, 1), 1, 1);
        EXPECT_THAT(runs, Not(RowsSumTo(1, mixture::cSumTolerance))) << type;
        EXPECT_THAT(mixture::RowsOutside(runs, 0, 1), ElementsAre(1)) << type;
    }
}

TEST(SimplexCentroid, RunTableCountsThePoints) {
    for (const auto& [type, most] : cMostFactors) {
        for (int k = 3; k <= most; ++k) {
            if (type == EDesign::SimSC && k == 10) {
                continue;
            }
            EXPECT_EQ(Builder(type).GetDefaultRuns(MakeFactors(k), EObjective::Optimization),
                      static_cast<unsigned>(Build(type, k, 0).SizeRows()))
                << type << ' ' << k;
        }
    }
}

TEST(SimplexCentroid, SpecialCubicTableOfTenFactorsCountsFourMore) {
    EXPECT_EQ(Builder(EDesign::SimSC).GetDefaultRuns(MakeFactors(10), EObjective::Optimization),
              234U);
    EXPECT_EQ(Build(EDesign::SimSC, 10, 0).SizeRows(), 230);
}

TEST(SimplexCentroid, NoRunsOutsideTheTable) {
    for (const auto& [type, most] : cMostFactors) {
        for (const int k : {0, 1, 2, most + 1, 13, 40}) {
            EXPECT_EQ(Builder(type).GetDefaultRuns(MakeFactors(k), EObjective::Optimization), 0U)
                << type << ' ' << k;
            EXPECT_THAT(Builder(type).GetLegalRuns(MakeFactors(k), DesignOptions()),
                        ElementsAre(0U))
                << type << ' ' << k;
        }
    }
}

TEST(SimplexCentroid, ItsModelIsEstimable) {
    for (const auto& [type, most] : cMostFactors) {
        for (int k = 3; k <= most; ++k) {
            const auto model = oracles::ModelMatrix(Build(type, k, 0), k, cTerms.at(type));
            EXPECT_EQ(oracles::Rank(model), model[0].size()) << type << ' ' << k;
        }
    }
}

TEST(SimplexCentroid, ModelCheckObjectsToAMissingEdge) {
    // Without the centre of the first edge and the interior points, the first two factors never
    // stand together alone: only the blends of all of them are left for their product.
    NCDataMatrix<float> runs = Build(EDesign::SimM, 5, 0);
    runs.RemoveRows(16, 5);
    runs.RemoveRows(6, 1);
    const auto model = oracles::ModelMatrix(runs, 5, oracles::MixtureQuadraticTerms);
    EXPECT_EQ(oracles::Rank(model), model[0].size() - 1);
}

TEST(SimplexCentroid, FacesOfThreeFactorsAreTheirEdgesAgain) {
    const auto rows = RowsOf(Build(EDesign::SimF, 3, 0));
    ASSERT_EQ(rows.size(), 12U);
    EXPECT_EQ(std::set<std::vector<float>>(rows.begin(), rows.end()).size(), 9U);
}

TEST(SimplexCentroid, ModelFollowsTheType) {
    const TestFactors factors = MakeFactors(4);
    for (const auto& [type, model] : cModels) {
        EXPECT_EQ(Builder(type).GetDefaultModel(factors, EObjective::Optimization), model);
        EXPECT_EQ(Builder(type).GetDefaultModel(factors, EObjective::SystemCharacterization),
                  model);
        EXPECT_EQ(Builder(type).GetDefaultModel(factors, EObjective::Screening), EModel::None);
        const DesignOptions options(Builder(type), factors);
        EXPECT_EQ(options.GetObjective(), EObjective::Optimization);
        EXPECT_EQ(options.GetModel(), model);
    }
}

TEST(SimplexCentroid, TakesItsOwnModelOnly) {
    const TestFactors factors = MakeFactors(4);
    for (const auto& [type, own] : cModels) {
        for (const EModel::Type model : {EModel::None,
                                         EModel::Linear,
                                         EModel::Interaction,
                                         EModel::Quadratic,
                                         EModel::SpecialCubic,
                                         EModel::Cubic}) {
            DesignOptions options(Builder(type), factors);
            options.SetModel(model);
            EXPECT_EQ(Builder(type).IsValid(factors, options), model == own)
                << type << ' ' << model;
        }
        DesignOptions options(Builder(type), factors);
        options.SetObjective(EObjective::Screening);
        EXPECT_FALSE(Builder(type).IsValid(factors, options)) << type;
    }
}

TEST(SimplexCentroid, IsValidForTheFactorCountsOfTheTableOnly) {
    for (const auto& [type, most] : cMostFactors) {
        for (int k = 0; k <= 14; ++k) {
            EXPECT_EQ(IsValid(type, MakeFactors(k)), k >= 3 && k <= most) << type << ' ' << k;
        }
    }
}

TEST(SimplexCentroid, NeedsRoomForOneCentroid) {
    for (const auto& [type, most] : cMostFactors) {
        const TestFactors factors = MakeFactors(most);
        DesignOptions options(Builder(type), factors);
        options.SetMaxRuns(options.GetRuns());
        EXPECT_FALSE(Builder(type).IsValid(factors, options)) << type;
        options.SetMaxRuns(options.GetRuns() + 1);
        EXPECT_TRUE(Builder(type).IsValid(factors, options)) << type;
    }
}

TEST(SimplexCentroid, RefusesRegionsThatAreNoSimplex) {
    EXPECT_FALSE(IsValid(EDesign::SimM, MakeFactors(2).Formulation(0, 0.5F)));
    EXPECT_FALSE(IsValid(EDesign::SimM, MakeFactors(3).Quantitative()));
    EXPECT_FALSE(IsValid(EDesign::SimM, MakeFactors(3).WithFiller(true)));
}

TEST(SimplexCentroid, InfeasibleSettingsAreOnlyNotValid) {
    for (const auto& [type, most] : cMostFactors) {
        EXPECT_FALSE(IsValid(type, MakeFactors(3, 0.4F, 0.6F))) << type;
        EXPECT_FALSE(IsValid(type, MakeFactors(3, 0.0F, 0.2F))) << type;
    }
}

TEST(SimplexCentroid, RefusesConstraints) {
    const TestFactors factors = MakeFactors(3);
    DesignOptions options(Builder(EDesign::SimM), factors);
    const auto specific = std::make_shared<DesignSpecificOptions>();
    options.SetDesignSpecificOptions(specific);
    EXPECT_TRUE(Builder(EDesign::SimM).IsValid(factors, options));
    specific->SetConstraints(NCDOE::Constraints({NCDOE::Constraint{{{0, 1.0}}, 0.5, false}}),
                             factors);
    EXPECT_FALSE(Builder(EDesign::SimM).IsValid(factors, options));
}

TEST(SimplexCentroid, RunsStayWithinTheRangesInBothOrientations) {
    for (const auto& [type, most] : cMostFactors) {
        for (const auto& [low, high] :
             std::vector<std::pair<float, float>>{{0.0F, 1.0F}, {0.2F, 0.6F}, {0.0F, 0.5F}}) {
            const TestFactors factors = MakeFactors(3, low, high);
            const DesignOptions options(Builder(type), factors);
            const auto real = mixture::InRealSettings(Build(type, factors, options), factors);
            ASSERT_GT(real.SizeRows(), 0) << type << ' ' << low << " to " << high;
            EXPECT_THAT(real, RowsSumTo(1, mixture::cSumTolerance)) << low << " to " << high;
            EXPECT_THAT(
                mixture::RowsOutside(real, static_cast<double>(low), static_cast<double>(high)),
                IsEmpty())
                << type << ' ' << low << " to " << high;
        }
    }
}

TEST(SimplexCentroid, CentroidsAreTheOnlyCenterPoints) {
    const TestFactors factors = MakeFactors(3);
    const DesignOptions options(Builder(EDesign::SimM), factors);
    const NCDataMatrix<float> runs = Build(EDesign::SimM, factors, options);
    ASSERT_EQ(runs.SizeRows(), 12);
    EXPECT_EQ(RowsOf(runs, 10, 12), oracles::Centroids(3, 3));
}

TEST(SimplexCentroid, ReplicatesRepeatReplicatedRunsAndCentroids) {
    const TestFactors factors = MakeFactors(3);
    DesignOptions options(Builder(EDesign::SimM), factors);
    options.SetReplicatedRuns(2);
    options.SetReplicates(1);
    const NCDataMatrix<float> runs = Build(EDesign::SimM, factors, options);
    ASSERT_EQ(runs.SizeRows(), 2 * (9 + 3 + 2));
    EXPECT_EQ(RowsOf(runs, 1, 14), RowsOf(runs, 15, 28));
}

TEST(SimplexCentroid, TooManyReplicatesAreRefused) {
    const TestFactors factors = MakeFactors(3);
    DesignOptions options(Builder(EDesign::SimM), factors);
    options.SetReplicates(1'000'000);
    EXPECT_THROW(Build(EDesign::SimM, factors, options), Exception);
}

TEST(SimplexCentroid, EachTypeHasItsClass) {
    const TestFactors factors = MakeFactors(3);
    const auto clone = [&](EDesign::Type type) {
        return Builder(type).Build(factors, DesignOptions(Builder(type), factors))->Clone();
    };
    EXPECT_NE(std::dynamic_pointer_cast<SimDesignM>(clone(EDesign::SimM)), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<SimDesignF>(clone(EDesign::SimF)), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<SimDesignSC>(clone(EDesign::SimSC)), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<SimDesignC>(clone(EDesign::SimC)), nullptr);
}

TEST(SimplexCentroid, DesignAndBuildersAreForMixturesOnly) {
    const TestFactors factors = MakeFactors(3);
    for (const auto& [type, most] : cMostFactors) {
        EXPECT_TRUE(Builder(type).IsMixtureOnlyDesign()) << type;
        const auto design = Builder(type).Build(factors, DesignOptions(Builder(type), factors));
        EXPECT_TRUE(design->IsMixtureOnlyDesign()) << type;
    }
}
