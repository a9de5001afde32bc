#include "designs/optimal/CandidateSetGenerator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/TestFactors.h"

namespace {

using NCDOE::detail::CandidateSetGenerator;
using Rows = std::vector<std::vector<double>>;
using testing::ElementsAre;

Rows Walk(CandidateSetGenerator generator) {
    Rows rows;
    while (!generator.Next() && rows.size() < 10000) {
        rows.push_back(generator.GetRow());
    }
    return rows;
}

std::string FailureOf(const TestFactors& factors, long steps) {
    try {
        const CandidateSetGenerator generator(factors, steps);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "no error";
}

TEST(CandidateSetGenerator, NegativeStepsMeanSeven) {
    EXPECT_EQ(CandidateSetGenerator(TestFactors().Quantitatives(2), -1).SizeRows(), 49);
}

TEST(CandidateSetGenerator, TwoStepsAreTheEnds) {
    EXPECT_EQ(Walk({TestFactors().Quantitatives(2), 2}),
              (Rows{{-1, -1}, {1, -1}, {-1, 1}, {1, 1}}));
}

TEST(CandidateSetGenerator, StepsAreEven) {
    EXPECT_EQ(Walk({TestFactors().Quantitative(150, 180), 5}),
              (Rows{{-1}, {-0.5}, {0}, {0.5}, {1}}));
}

TEST(CandidateSetGenerator, FewerThanTwoStepsAreRefused) {
    for (const long steps : {0L, 1L}) {
        EXPECT_EQ(FailureOf(TestFactors().Quantitatives(2), steps),
                  "Number of steps must be at least 2");
    }
}

TEST(CandidateSetGenerator, NoFactorsAreRefused) {
    EXPECT_EQ(FailureOf(TestFactors(), 7), "No factors defined");
}

TEST(CandidateSetGenerator, MixedFactorsMakeAFullGrid) {
    const auto factors = TestFactors().Quantitative().Qualitative(3).MultilevelOf(4);
    CandidateSetGenerator generator(factors, -1);
    EXPECT_EQ(generator.SizeRows(), 84);
    EXPECT_EQ(generator.SizeColumns(), 3);
    EXPECT_FALSE(generator.HasMixture());
    const Rows rows = Walk(std::move(generator));
    EXPECT_EQ(rows.size(), 84U);
    EXPECT_EQ(std::set<std::vector<double>>(rows.begin(), rows.end()).size(), 84U);
}

TEST(CandidateSetGenerator, TheFirstFactorTurnsFastest) {
    const Rows rows = Walk({TestFactors().Quantitative().Qualitative(3).MultilevelOf(4), -1});
    EXPECT_THAT(rows[0], ElementsAre(-1, 0, -1));
    EXPECT_THAT(rows[6], ElementsAre(1, 0, -1));
    EXPECT_THAT(rows[7], ElementsAre(-1, 1, -1));
    EXPECT_THAT(rows[83], ElementsAre(1, 2, 1));
}

TEST(CandidateSetGenerator, TheFirstRowIsThereBeforeTheFirstStep) {
    CandidateSetGenerator generator(TestFactors().Quantitative().Qualitative(3), 3);
    EXPECT_THAT(generator.GetRow(), ElementsAre(-1, 0));
    EXPECT_FALSE(generator.Next());
    EXPECT_THAT(generator.GetRow(), ElementsAre(-1, 0));
}

TEST(CandidateSetGenerator, WrapsToTheFirstRow) {
    CandidateSetGenerator generator(TestFactors().Quantitatives(2), 2);
    for (int i = 0; i < 4; ++i) {
        EXPECT_FALSE(generator.Next());
    }
    EXPECT_TRUE(generator.Next());
    EXPECT_THAT(generator.GetRow(), ElementsAre(-1, -1));
}

TEST(CandidateSetGenerator, MultilevelSettingsAreSortedAndScaled) {
    EXPECT_EQ(Walk({TestFactors().Multilevel({400, 100, 200}), 7}),
              (Rows{{-1}, {2.0 * 100 / 300 - 1}, {1}}));
}

TEST(CandidateSetGenerator, MultilevelDifferencesAreTakenInFloat) {
    const std::vector<float> settings = {0.1F, 0.2F, 0.7F};
    const Rows rows = Walk({TestFactors().Multilevel(settings), 7});
    const float above = 0.2F - 0.1F, range = 0.7F - 0.1F;
    EXPECT_EQ(rows[1][0], 2.0 * static_cast<double>(above) / static_cast<double>(range) - 1.0);
}

TEST(CandidateSetGenerator, MultilevelNeedsTwoSettings) {
    EXPECT_EQ(FailureOf(TestFactors().Multilevel({5}), 7),
              "Multilevel factors must have at least two levels.");
    EXPECT_EQ(FailureOf(TestFactors().Multilevel({5, 6}), 7), "no error");
}

TEST(CandidateSetGenerator, QualitativeNeedsThreeLevels) {
    EXPECT_EQ(FailureOf(TestFactors().Qualitative(2), 7),
              "Qualitative factors factors must have at least two settings.");
    EXPECT_EQ(FailureOf(TestFactors().Qualitative(3), 7), "no error");
}

TEST(CandidateSetGenerator, AFactorWithoutATypeIsRefused) {
    EXPECT_EQ(FailureOf(TestFactors().Quantitative().Other(CEType::NotDefined, {}, 0), 7),
              "Don't know how to handle factors of type NotDefined");
}

TEST(CandidateSetGenerator, FillerAndTimeStayWithoutValue) {
    const auto factors = TestFactors()
                             .Other(CEType::Filler, {0, 1}, 0)
                             .Quantitative()
                             .Other(CEType::Time, {0, 1}, 0);
    CandidateSetGenerator generator(factors, 3);
    EXPECT_EQ(generator.SizeRows(), 3);
    const Rows rows = Walk(std::move(generator));
    ASSERT_EQ(rows.size(), 3U);
    for (const auto& row : rows) {
        EXPECT_TRUE(std::isnan(row[0]) && std::isnan(row[2]));
    }
}

TEST(CandidateSetGenerator, FormulationWithAFreeSumIsAQuantitativeFactor) {
    const auto factors = TestFactors().Formulation().Formulation().WithFreeSum();
    CandidateSetGenerator generator(factors, 3);
    EXPECT_FALSE(generator.HasMixture());
    EXPECT_EQ(Walk(std::move(generator)).size(), 9U);
}

TEST(CandidateSetGenerator, AMixtureIsASimplexLatticeOfSixths) {
    CandidateSetGenerator generator(TestFactors().Formulation().Formulation().Formulation(), -1);
    EXPECT_TRUE(generator.HasMixture());
    ASSERT_EQ(generator.SizeRows(), 28);  // C(6 + 2, 2)
    std::set<std::vector<long>> sixths;
    for (long i = 0; i < generator.SizeRows(); ++i) {
        EXPECT_FALSE(generator.Next());
        const auto& row = generator.GetRow();
        EXPECT_NEAR(std::accumulate(row.begin(), row.end(), 0.0), 1.0, 1e-15);
        std::vector<long> parts;
        for (const double share : row) {
            EXPECT_NEAR(share * 6, std::round(share * 6), 1e-12);
            parts.push_back(std::lround(share * 6));
        }
        sixths.insert(parts);
    }
    EXPECT_EQ(sixths.size(), 28U);
}

TEST(CandidateSetGenerator, AMixtureHasNoValueBeforeTheFirstStep) {
    const CandidateSetGenerator generator(TestFactors().Quantitative().Formulation().Formulation(),
                                          3);
    EXPECT_EQ(generator.GetRow()[0], -1);
    EXPECT_TRUE(std::isnan(generator.GetRow()[1]) && std::isnan(generator.GetRow()[2]));
}

TEST(CandidateSetGenerator, AMixtureAloneNeverReportsItsEnd) {
    CandidateSetGenerator generator(TestFactors().Formulation().Formulation(), 3);
    std::vector<double> shares;
    for (int i = 0; i < 4; ++i) {
        EXPECT_FALSE(generator.Next());
        shares.push_back(generator.GetRow()[0]);
    }
    EXPECT_THAT(shares, ElementsAre(1, 0.5, 0, 1));
}

TEST(CandidateSetGenerator, AMixtureTurnsFasterThanTheOtherFactors) {
    CandidateSetGenerator generator(TestFactors().Quantitative().Formulation().Formulation(), 2);
    EXPECT_EQ(generator.SizeRows(), 4);
    EXPECT_EQ(Walk(std::move(generator)), (Rows{{-1, 1, 0}, {-1, 0, 1}, {1, 1, 0}, {1, 0, 1}}));
}

TEST(CandidateSetGenerator, AMixtureOfOneFactorIsRefused) {
    EXPECT_EQ(FailureOf(TestFactors().Quantitative().Formulation(), 7),
              "Mixtures must consist of at least two factors.");
}

}  // namespace
