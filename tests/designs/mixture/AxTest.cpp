#include "designs/mixture/Ax.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
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

const std::vector<EDesign::Type> cTypes{EDesign::AxN, EDesign::AxE, EDesign::AxR};

// The reduced design with a chosen run count and no centroid.
NCDataMatrix<float> BuildReduced(int count, unsigned runs) {
    const TestFactors factors = MakeFactors(count);
    DesignOptions options(Builder(EDesign::AxR), factors);
    options.SetRuns(runs);
    options.SetCenterPoints(0);
    return Build(EDesign::AxR, factors, options);
}

}  // namespace

TEST(Axial, NormalDesignOfThreeFactorsIsWrittenOut) {
    const float third = 1.0F / 3;
    const float sixth = 1.0F / 6;
    const std::vector<std::vector<float>> expected{{1, 0, 0},
                                                   {0, 1, 0},
                                                   {0, 0, 1},
                                                   {2 * third, sixth, sixth},
                                                   {sixth, 2 * third, sixth},
                                                   {sixth, sixth, 2 * third},
                                                   {third, third, third}};
    EXPECT_EQ(RowsOf(Build(EDesign::AxN, 3, 1)), expected);
}

TEST(Axial, ExtendedDesignOfFourFactorsEndsWithFaceCentres) {
    const float third = 1.0F / 3;
    const std::vector<std::vector<float>> expected{{0, third, third, third},
                                                   {third, 0, third, third},
                                                   {third, third, 0, third},
                                                   {third, third, third, 0}};
    const NCDataMatrix<float> runs = Build(EDesign::AxE, 4, 0);
    ASSERT_EQ(runs.SizeRows(), 12);
    EXPECT_EQ(RowsOf(runs, 9, 12), expected);
}

TEST(Axial, PointsStandInOrder) {
    for (int k = 3; k <= 20; ++k) {
        const oracles::Points vertices = oracles::Vertices(k);
        const oracles::Points interior = oracles::InteriorPoints(k, k);
        const oracles::Points few = oracles::InteriorPoints(k, std::min(k / 2, 4));
        const oracles::Points centroids = oracles::Centroids(k, 2);
        EXPECT_EQ(RowsOf(Build(EDesign::AxN, k, 2)),
                  oracles::Joined({vertices, interior, centroids}))
            << k;
        EXPECT_EQ(RowsOf(Build(EDesign::AxE, k, 2)),
                  oracles::Joined({vertices, interior, oracles::FaceCentres(k), centroids}))
            << k;
        EXPECT_EQ(RowsOf(Build(EDesign::AxR, k, 2)), oracles::Joined({vertices, few, centroids}))
            << k;
    }
}

TEST(Axial, EveryRunIsAMixture) {
    for (const EDesign::Type type : cTypes) {
        for (int k = 3; k <= 20; ++k) {
            const NCDataMatrix<float> runs = Build(type, k, 1);
            EXPECT_THAT(runs, RowsSumTo(1, mixture::cSumTolerance)) << type << ' ' << k;
            EXPECT_THAT(mixture::RowsOutside(runs, 0, 1), IsEmpty()) << type << ' ' << k;
        }
    }
}

TEST(Axial, MixtureCheckObjectsToOneChangedShare) {
    for (const EDesign::Type type : cTypes) {
        const NCDataMatrix<float> runs = WithFlippedCell(Build(type, 4, 1), 1, 1);
        EXPECT_THAT(runs, Not(RowsSumTo(1, mixture::cSumTolerance))) << type;
        EXPECT_THAT(mixture::RowsOutside(runs, 0, 1), ElementsAre(1)) << type;
    }
}

TEST(Axial, RowsAreTheDefaultRuns) {
    for (const EDesign::Type type : cTypes) {
        for (int k = 3; k <= 20; ++k) {
            EXPECT_EQ(static_cast<unsigned>(Build(type, k, 0).SizeRows()),
                      Builder(type).GetDefaultRuns(MakeFactors(k), EObjective::Screening))
                << type << ' ' << k;
        }
    }
}

TEST(Axial, DefaultRunsBeyondTwentyFactors) {
    const TestFactors factors = MakeFactors(21);
    EXPECT_EQ(Builder(EDesign::AxN).GetDefaultRuns(factors, EObjective::Screening), 0U);
    EXPECT_EQ(Builder(EDesign::AxE).GetDefaultRuns(factors, EObjective::Screening), 0U);
    EXPECT_EQ(Builder(EDesign::AxR).GetDefaultRuns(factors, EObjective::Screening), 4U);
}

TEST(Axial, LinearModelIsEstimable) {
    for (const EDesign::Type type : cTypes) {
        for (int k = 3; k <= 20; ++k) {
            const auto model =
                oracles::ModelMatrix(Build(type, k, 0), k, oracles::MixtureLinearTerms);
            EXPECT_EQ(oracles::Rank(model), static_cast<std::size_t>(k)) << type << ' ' << k;
        }
    }
}

TEST(Axial, LegalRunsOfTheReducedDesignGoUpToTheDefault) {
    const TestFactors factors = MakeFactors(6);
    DesignOptions options(Builder(EDesign::AxR), factors);
    EXPECT_EQ(options.GetRuns(), 9U);
    EXPECT_THAT(Builder(EDesign::AxR).GetLegalRuns(factors, options), ElementsAre(6, 7, 8, 9));
    options.SetMaxRuns(7);
    EXPECT_THAT(Builder(EDesign::AxR).GetLegalRuns(factors, options), ElementsAre(6, 7));
    options.SetMaxRuns(5);
    EXPECT_THAT(Builder(EDesign::AxR).GetLegalRuns(factors, options), IsEmpty());
}

TEST(Axial, LegalRunsOfTheOthersAreTheDefault) {
    const TestFactors factors = MakeFactors(6);
    EXPECT_THAT(Builder(EDesign::AxN).GetLegalRuns(factors, DesignOptions()), ElementsAre(12));
    EXPECT_THAT(Builder(EDesign::AxE).GetLegalRuns(factors, DesignOptions()), ElementsAre(18));
}

TEST(Axial, ReducedDesignTakesTheFirstInteriorPoints) {
    EXPECT_EQ(RowsOf(BuildReduced(6, 7)),
              oracles::Joined({oracles::Vertices(6), oracles::InteriorPoints(6, 1)}));
    EXPECT_EQ(RowsOf(BuildReduced(6, 6)), oracles::Vertices(6));
}

TEST(Axial, ReducedDesignWithAnIllegalRunCountStaysWithinItsPoints) {
    EXPECT_EQ(RowsOf(BuildReduced(6, 0)), oracles::Vertices(6));
    EXPECT_EQ(BuildReduced(6, 4'000'000'000U).SizeRows(), 12);
}

TEST(Axial, CentroidsAreTheOnlyCenterPoints) {
    const TestFactors factors = MakeFactors(3);
    const DesignOptions options(Builder(EDesign::AxN), factors);
    EXPECT_EQ(options.GetCenterPoints(), 3U);
    EXPECT_EQ(RowsOf(Build(EDesign::AxN, factors, options), 7, 9), oracles::Centroids(3, 3));
    EXPECT_EQ(Build(EDesign::AxN, factors, options).SizeRows(), 9);
    EXPECT_EQ(Builder(EDesign::AxN).GetDefaultCenterPoints(EObjective::RobustnessVerification), 1U);
}

TEST(Axial, ReplicatesRepeatTheWholeDesign) {
    const TestFactors factors = MakeFactors(3);
    DesignOptions options(Builder(EDesign::AxN), factors);
    options.SetReplicates(1);
    const NCDataMatrix<float> runs = Build(EDesign::AxN, factors, options);
    ASSERT_EQ(runs.SizeRows(), 18);
    EXPECT_EQ(RowsOf(runs, 1, 9), RowsOf(runs, 10, 18));
}

TEST(Axial, TooManyCentroidsAreRefused) {
    const TestFactors factors = MakeFactors(3);
    DesignOptions options(Builder(EDesign::AxN), factors);
    options.SetCenterPoints(4'000'000'000U);
    EXPECT_THROW(Build(EDesign::AxN, factors, options), Exception);
}

TEST(Axial, RunsStayWithinTheRangesInBothOrientations) {
    for (const EDesign::Type type : cTypes) {
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

TEST(Axial, RunsLeaveRoomForAConstantShare) {
    TestFactors factors = MakeFactors(3, 0, 0.9F);
    factors.WithConstantShare(0.1F);
    const DesignOptions options(Builder(EDesign::AxN), factors);
    const auto real = mixture::InRealSettings(Build(EDesign::AxN, factors, options), factors);
    ASSERT_EQ(real.SizeRows(), 9);
    EXPECT_THAT(real, RowsSumTo(0.9, mixture::cSumTolerance));
}

TEST(Axial, IsValidFromThreeToTwentyFactors) {
    for (const EDesign::Type type : cTypes) {
        for (int k = 0; k <= 22; ++k) {
            EXPECT_EQ(IsValid(type, MakeFactors(k)), k >= 3 && k <= 20) << type << ' ' << k;
        }
    }
}

TEST(Axial, NeedsRoomForItsRunsWithoutACentroid) {
    const TestFactors factors = MakeFactors(6);
    for (const auto& [type, runs] : std::vector<std::pair<EDesign::Type, unsigned>>{
             {EDesign::AxN, 12}, {EDesign::AxE, 18}, {EDesign::AxR, 6}}) {
        DesignOptions options(Builder(type), factors);
        options.SetMaxRuns(runs);
        EXPECT_TRUE(Builder(type).IsValid(factors, options)) << type;
        options.SetMaxRuns(runs - 1);
        EXPECT_FALSE(Builder(type).IsValid(factors, options)) << type;
    }
}

TEST(Axial, TakesTheLinearModelOfScreeningOnly) {
    const TestFactors factors = MakeFactors(3);
    DesignOptions options(Builder(EDesign::AxN), factors);
    EXPECT_EQ(options.GetObjective(), EObjective::Screening);
    EXPECT_EQ(options.GetModel(), EModel::Linear);
    options.SetObjective(EObjective::RobustnessVerification);
    EXPECT_TRUE(Builder(EDesign::AxN).IsValid(factors, options));
    options.SetObjective(EObjective::Optimization);
    EXPECT_FALSE(Builder(EDesign::AxN).IsValid(factors, options));
    options.SetObjective(EObjective::Screening);
    options.SetModel(EModel::Interaction);
    EXPECT_FALSE(Builder(EDesign::AxN).IsValid(factors, options));
}

TEST(Axial, RefusesRegionsThatAreNoSimplex) {
    EXPECT_FALSE(IsValid(EDesign::AxN, MakeFactors(2).Formulation(0, 0.5F)));
    EXPECT_FALSE(IsValid(EDesign::AxN, MakeFactors(3).Quantitative()));
    EXPECT_FALSE(IsValid(EDesign::AxN, MakeFactors(3).WithFiller(true)));
}

TEST(Axial, InfeasibleSettingsAreOnlyNotValid) {
    for (const EDesign::Type type : cTypes) {
        EXPECT_FALSE(IsValid(type, MakeFactors(3, 0.4F, 0.6F))) << type;
        EXPECT_FALSE(IsValid(type, MakeFactors(3, 0.0F, 0.2F))) << type;
        EXPECT_FALSE(IsValid(type, MakeFactors(3).WithFiller(false))) << type;
    }
}

TEST(Axial, RefusesConstraints) {
    const TestFactors factors = MakeFactors(3);
    DesignOptions options(Builder(EDesign::AxN), factors);
    const auto specific = std::make_shared<DesignSpecificOptions>();
    options.SetDesignSpecificOptions(specific);
    EXPECT_TRUE(Builder(EDesign::AxN).IsValid(factors, options));
    specific->SetConstraints(NCDOE::Constraints({NCDOE::Constraint{{{0, 1.0}}, 0.5, false}}),
                             factors);
    EXPECT_FALSE(Builder(EDesign::AxN).IsValid(factors, options));
}

TEST(Axial, DesignAndBuildersAreForMixturesOnly) {
    const TestFactors factors = MakeFactors(3);
    for (const EDesign::Type type : cTypes) {
        EXPECT_TRUE(Builder(type).IsMixtureOnlyDesign()) << type;
        const auto design = Builder(type).Build(factors, DesignOptions(Builder(type), factors));
        EXPECT_TRUE(design->IsMixtureOnlyDesign()) << type;
        EXPECT_NE(std::dynamic_pointer_cast<Ax>(design->Clone()), nullptr) << type;
        EXPECT_EQ(design->Clone()->GetDesignMatrix(), design->GetDesignMatrix()) << type;
    }
}
