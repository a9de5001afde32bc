#include "evaluation/Power.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/oracles/DenseOracles.h"
#include "tests/oracles/PowerOracle.h"

namespace {

using NCDOE::ExpandedFactor;
using NCDOE::Power;
using NCDOE::Detail::ExpandTerms;
using Terms = std::vector<std::vector<int>>;

constexpr double cConfidence = 0.95;

NCDataMatrix<float> TwoLevels(int factors, int replicates = 1) {
    const int runs = 1 << factors;
    NCDataMatrix<float> design(runs * replicates, factors);
    for (int row = 0; row < runs * replicates; ++row) {
        for (int factor = 0; factor < factors; ++factor) {
            design(row + 1, factor + 1, ((row >> factor) & 1) != 0 ? 1.0F : -1.0F);
        }
    }
    return design;
}

Terms MainEffects(int factors) {
    Terms terms = {{}};
    for (int i = 0; i < factors; ++i) {
        terms.push_back({i});
    }
    return terms;
}

double Oracle(double df1, double df2, double nonCentrality) {
    return static_cast<double>(oracles::PowerOfF(df1, df2, nonCentrality, 0.95L));
}

std::string FailureOf(const NCDataMatrix<float>& design,
                      const Terms& terms,
                      const std::set<int>& qualitative) {
    try {
        const Power power(design, terms, {}, qualitative);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "no error";
}

// Each level of one qualitative factor `repeats` times, beside a column of a second factor.
NCDataMatrix<float> Levels(int levels, int repeats) {
    NCDataMatrix<float> design(levels * repeats, 2);
    for (int row = 0; row < levels * repeats; ++row) {
        design(row + 1, 1, static_cast<float>(row % levels));
        design(row + 1, 2, (row / levels) % 2 == 0 ? -1.0F : 1.0F);
    }
    return design;
}

// The simplex lattice of halves in three components, with the centroid, twice.
NCDataMatrix<float> Lattice() {
    NCDataMatrix<float> design;
    const NCDataMatrix<float> once = {{1, 0, 0},
                                      {0, 1, 0},
                                      {0, 0, 1},
                                      {0.5F, 0.5F, 0},
                                      {0.5F, 0, 0.5F},
                                      {0, 0.5F, 0.5F},
                                      {0.25F, 0.25F, 0.5F}};
    design.ConcatRows(once);
    design.ConcatRows(once);
    return design;
}

TEST(Power, TwoToTheThreeDetectsTwoSigmaInKnownPart) {
    // Non-centrality 8 with 1 and 4 degrees of freedom.
    const Power power(TwoLevels(3), MainEffects(3), {}, {});
    for (int term = 1; term <= 3; ++term) {
        EXPECT_NEAR(power.GetPower(term, 2, 1, cConfidence), 0.5716, 5e-5) << "term " << term;
    }
}

TEST(Power, SixteenRunsDetectTwoSigmaInKnownPart) {
    const Power power(TwoLevels(3, 2), MainEffects(3), {}, {});
    EXPECT_NEAR(power.GetPower(1, 2, 1, cConfidence), 0.9558, 5e-5);
}

TEST(Power, IsTheTailOfTheNonCentralDistribution) {
    for (int factors = 2; factors <= 5; ++factors) {
        for (const double effect : {0.5, 1.0, 2.0, 3.0}) {
            const int runs = 1 << factors;
            const Power power(TwoLevels(factors), MainEffects(factors), {}, {});
            EXPECT_NEAR(power.GetPower(1, effect, 1, cConfidence),
                        Oracle(1, runs - factors - 1, effect * effect / 4 * runs),
                        1e-9)
                << factors << " factors, effect " << effect;
        }
    }
}

TEST(Power, IsWhatSimulationFinds) {
    // 2^3 with a true effect of two sigma: share of simulated experiments whose F exceeds its
    // limit.
    const auto design = TwoLevels(3);
    std::mt19937 engine(1974);
    const auto normal = [&engine] {
        const double u = (static_cast<double>(engine()) + 0.5) / 4294967296.0;
        const double v = (static_cast<double>(engine()) + 0.5) / 4294967296.0;
        return std::sqrt(-2 * std::log(u)) * std::cos(2 * M_PI * v);
    };
    const double limit = static_cast<double>(oracles::CriticalF(1, 4, 0.95L));
    constexpr int cTrials = 40000;
    int detected = 0;
    for (int trial = 0; trial < cTrials; ++trial) {
        double total = 0, explained = 0, tested = 0;
        std::vector<double> sums(4, 0);
        for (int row = 1; row <= 8; ++row) {
            const double y = 1.0 * static_cast<double>(design(row, 1)) + normal();
            total += y * y;
            sums[0] += y;
            for (int factor = 1; factor <= 3; ++factor) {
                sums[static_cast<std::size_t>(factor)] +=
                    y * static_cast<double>(design(row, factor));
            }
        }
        for (const double sum : sums) {
            explained += sum * sum / 8;
        }
        tested = sums[1] * sums[1] / 8;
        detected += tested / ((total - explained) / 4) > limit ? 1 : 0;
    }
    // Four standard errors.
    EXPECT_NEAR(Power(design, MainEffects(3), {}, {}).GetPower(1, 2, 1, cConfidence),
                static_cast<double>(detected) / cTrials,
                0.01);
}

TEST(Power, OfRandomModelsUsesTheResidualOfTheOtherTerms) {
    for (unsigned seed = 1; seed <= 10; ++seed) {
        std::mt19937 engine(seed);
        const auto design = oracles::RandomMatrix<float>(12, 3, engine);
        const Power power(design, MainEffects(3), {}, {});
        // The squared length that the rest of column 1 has beside the constant and columns 2 and 3
        // is the inverse of its diagonal element of (X'X)^-1.
        oracles::Table x = oracles::ToTable(design);
        for (auto& row : x) {
            row.push_back(1);
        }
        const auto inverse =
            oracles::GaussJordanInverse(oracles::Product(oracles::Transposed(x), x));
        const double nonCentrality = static_cast<double>(1 / inverse[0][0]) * 4;
        EXPECT_NEAR(power.GetPower(1, 4, 1, cConfidence), Oracle(1, 8, nonCentrality), 1e-8)
            << "seed " << seed;
    }
}

TEST(Power, NoiseCancelsForMainEffectsAndSquares) {
    const Power power(TwoLevels(3), MainEffects(3), {}, {});
    EXPECT_NEAR(
        power.GetPower(1, 2, 0.01, cConfidence), power.GetPower(1, 2, 1, cConfidence), 1e-12);
}

TEST(Power, GrowsWithTheEffectAndTheRuns) {
    const Power once(TwoLevels(3), MainEffects(3), {}, {});
    const Power twice(TwoLevels(3, 2), MainEffects(3), {}, {});
    double last = 0;
    for (double effect = 0.5; effect < 6; effect += 0.5) {
        const double power = once.GetPower(1, effect, 1, cConfidence);
        EXPECT_GT(power, last);
        EXPECT_GT(twice.GetPower(1, effect, 1, cConfidence), power);
        last = power;
    }
}

TEST(Power, OfAHugeEffectIsOne) {
    const Power power(TwoLevels(3), MainEffects(3), {}, {});
    for (const double effect : {20.0, 100.0, 1000.0}) {
        EXPECT_NEAR(power.GetPower(1, effect, 1, cConfidence), 1, 1e-6) << "effect " << effect;
    }
}

TEST(Power, ThatDoesNotExceedTheLevelOfSignificanceIsNotANumber) {
    const Power power(TwoLevels(3), MainEffects(3), {}, {});
    EXPECT_TRUE(std::isnan(power.GetPower(1, 0, 1, cConfidence)));
    EXPECT_TRUE(std::isnan(power.GetPower(1, 1e-4, 1, cConfidence)));
    EXPECT_FALSE(std::isnan(power.GetPower(1, 0.1, 1, cConfidence)));
}

TEST(Power, OfASquareIsTestedWithoutItsMainEffect) {
    // 3^2, where squares and main effects are orthogonal.
    NCDataMatrix<float> design(9, 2);
    for (int row = 0; row < 9; ++row) {
        design(row + 1, 1, static_cast<float>(row % 3 - 1));
        design(row + 1, 2, static_cast<float>(row / 3 - 1));
    }
    const Terms terms = {{}, {0}, {1}, {0, 0}, {1, 1}};
    // x1^2 around its mean 2/3: 6 (1/3)^2 + 3 (2/3)^2 = 2; one unit of sigma from centre to edge.
    EXPECT_NEAR(
        Power(design, terms, {}, {}).GetPower(3, 3, 1, cConfidence), Oracle(1, 4, 2 * 9), 1e-9);
    // With the centre moved, x1 and x1^2 correlate, and x1 still does not take its part.
    NCDataMatrix<float> moved = design;
    for (int row = 1; row <= 9; ++row) {
        moved(row, 1, design(row, 1) + 0.5F);
    }
    long double mean = 0, sum = 0;
    for (int row = 1; row <= 9; ++row) {
        const long double v = moved(row, 1);
        mean += v * v / 9;
    }
    for (int row = 1; row <= 9; ++row) {
        const long double v = moved(row, 1);
        sum += (v * v - mean) * (v * v - mean);
    }
    EXPECT_NEAR(Power(moved, terms, {}, {}).GetPower(3, 1, 1, cConfidence),
                Oracle(1, 4, static_cast<double>(sum)),
                1e-6);
}

TEST(Power, OfAMainEffectIsTestedWithoutTermsThatHoldIt) {
    // Beside x1 x2 and the rest the main effect would be partly aliased in a random design.
    std::mt19937 engine(11);
    const auto design = oracles::RandomMatrix<float>(14, 2, engine);
    const Power full(design, {{}, {0}, {1}, {0, 1}, {0, 0}}, {}, {});
    oracles::Table x = oracles::ToTable(design);
    for (auto& row : x) {
        row.push_back(1);
    }
    const auto inverse = oracles::GaussJordanInverse(oracles::Product(oracles::Transposed(x), x));
    EXPECT_NEAR(full.GetPower(1, 4, 1, cConfidence),
                Oracle(1, 14 - 5, static_cast<double>(1 / inverse[0][0]) * 4),
                1e-8);
}

TEST(Power, WithTwoConstantsIsNeverANumber) {
    const Power power(TwoLevels(3), {{}, {0}, {1}, {2}, {}}, {}, {});
    for (int term = 0; term < 5; ++term) {
        EXPECT_TRUE(std::isnan(power.GetPower(term, 2, 1, cConfidence))) << "term " << term;
    }
}

TEST(Power, OfTheConstantIsNotANumber) {
    EXPECT_TRUE(
        std::isnan(Power(TwoLevels(3), MainEffects(3), {}, {}).GetPower(0, 2, 1, cConfidence)));
}

TEST(Power, OfFourFactorsIsNotANumber) {
    const Power power(TwoLevels(4, 2), {{}, {0}, {1}, {0, 1, 2}, {0, 1, 2, 3}}, {}, {});
    EXPECT_TRUE(std::isnan(power.GetPower(4, 2, 1, cConfidence)));
    EXPECT_FALSE(std::isnan(power.GetPower(3, 2, 1, cConfidence)));
}

TEST(Power, BesideAliasedTermsIsNotANumber) {
    // In the half fraction x3 = x1 x2.
    NCDataMatrix<float> design = TwoLevels(2, 2);
    design.InsertColumns(3, 1);
    for (int row = 1; row <= 8; ++row) {
        design(row, 3, design(row, 1) * design(row, 2));
    }
    const Power power(design, {{}, {0}, {1}, {2}, {0, 1}}, {}, {});
    EXPECT_FALSE(std::isnan(power.GetPower(2, 2, 1, cConfidence)))
        << "x1 x2 holds x2 and is left out";
    const Power other(design, {{}, {0}, {1}, {2}, {0, 1}, {0, 0}}, {}, {});
    EXPECT_TRUE(std::isnan(other.GetPower(3, 2, 1, cConfidence)))
        << "the constant and x1^2 are one column";
}

TEST(Power, OfASaturatedModelHasNoResidual) {
    const Power power(TwoLevels(2), {{}, {0}, {1}, {0, 1}}, {}, {});
    EXPECT_THROW((void)power.GetPower(1, 2, 1, cConfidence), std::domain_error);
}

TEST(Power, RefusesAProbabilityOutsideItsRange) {
    const Power power(TwoLevels(3), MainEffects(3), {}, {});
    EXPECT_THROW((void)power.GetPower(1, 2, 1, 1.5), std::domain_error);
    EXPECT_THROW((void)power.GetPower(1, 2, 1, -0.1), std::domain_error);
}

TEST(Power, OfAnEffectThatIsNotANumberIsNotANumber) {
    const Power power(TwoLevels(3), MainEffects(3), {}, {});
    EXPECT_TRUE(
        std::isnan(power.GetPower(1, std::numeric_limits<double>::quiet_NaN(), 1, cConfidence)));
}

TEST(Power, RefusesATermThatIsNotInTheModel) {
    const Power power(TwoLevels(3), MainEffects(3), {}, {});
    for (const int term : {-1, 4}) {
        try {
            (void)power.GetPower(term, 2, 1, cConfidence);
            FAIL() << "no error";
        } catch (const std::invalid_argument& error) {
            EXPECT_STREQ(error.what(), "Model index out of range");
        }
    }
}

TEST(Power, RefusesFewerThanFourRunsOrTwoFactors) {
    EXPECT_EQ(FailureOf(NCDataMatrix<float>(3, 2, 1.0F), {{0}}, {}),
              "The design matrix must have at least 4 runs.");
    EXPECT_EQ(FailureOf(NCDataMatrix<float>(4, 1, 1.0F), {{0}}, {}),
              "The design matrix must have at least 2 factors.");
    EXPECT_EQ(FailureOf(NCDataMatrix<float>(4, 2, 1.0F), {{0}}, {}), "no error");
}

TEST(Power, RefusesAColumnOutsideTheMatrix) {
    EXPECT_NE(FailureOf(TwoLevels(2), {{2}}, {}), "no error");
    EXPECT_NE(FailureOf(TwoLevels(2), {{-1}}, {}), "no error");
    EXPECT_NE(FailureOf(TwoLevels(2), {{0}}, {2}), "no error");
}

TEST(Power, RefusesQualitativeColumnsWithMissingLevels) {
    const std::string text =
        "Qualitative variables must be coded so that for N different settings,\n"
        "all values are between 0 and N-1 and there are no missing settings.\n"
        "e.g. if a variable has 3 settings, the column must contain 0, 1 and 2.";
    EXPECT_EQ(FailureOf({{0, 1}, {2, 1}, {0, 1}, {2, 1}}, {{0}}, {0}), text);
    EXPECT_EQ(FailureOf({{1, 1}, {2, 1}, {1, 1}, {2, 1}}, {{0}}, {0}), text);
    EXPECT_EQ(FailureOf({{-2, 1}, {0, 1}, {1, 1}, {1, 1}}, {{0}}, {0}), text);
    EXPECT_EQ(FailureOf({{0, 1}, {0, 1}, {0, 1}, {0, 1}}, {{0}}, {0}), text);
    EXPECT_EQ(FailureOf({{0, 1}, {1, 1}, {2, 1}, {2, 1}}, {{0}}, {0}), "no error");
    EXPECT_EQ(FailureOf({{0, 1}, {0.99995F, 1}, {2, 1}, {1.00005F, 1}}, {{0}}, {0}), "no error");
}

TEST(Power, AQualitativeFactorOfThreeLevelsHasTwoColumns) {
    const auto columns = ExpandTerms({{}, {0}}, {{0, 3}});
    ASSERT_EQ(columns.size(), 3U);
    EXPECT_EQ(columns[0], (NCDOE::Detail::ExpandedTerm{0, {}}));
    EXPECT_EQ(columns[1], (NCDOE::Detail::ExpandedTerm{1, {{0, 0}}}));
    EXPECT_EQ(columns[2], (NCDOE::Detail::ExpandedTerm{1, {{0, 1}}}));
}

TEST(Power, ATermOfTwoThreeLevelFactorsHasFourColumns) {
    const auto columns = ExpandTerms({{2, 5}}, {{2, 3}, {5, 3}});
    ASSERT_EQ(columns.size(), 4U);
    EXPECT_EQ(columns[0].second, (std::vector<ExpandedFactor>{{2, 0}, {5, 0}}));
    EXPECT_EQ(columns[1].second, (std::vector<ExpandedFactor>{{2, 1}, {5, 0}}));
    EXPECT_EQ(columns[2].second, (std::vector<ExpandedFactor>{{2, 0}, {5, 1}}));
    EXPECT_EQ(columns[3].second, (std::vector<ExpandedFactor>{{2, 1}, {5, 1}}));
}

TEST(Power, AQuantitativeFactorHasNoLevel) {
    const auto columns = ExpandTerms({{1, 0}}, {{0, 2}});
    ASSERT_EQ(columns.size(), 1U);
    EXPECT_EQ(columns[0].second, (std::vector<ExpandedFactor>{{1, -1}, {0, 0}}));
}

TEST(Power, OfAQualitativeFactorTakesAllItsColumnsAtOnce) {
    // Each column is 1, 0, -1 over four rows a level: squared length 8 around its mean of 0; half
    // an effect of 2 leaves it so. 2 degrees of freedom against 12 - 3 - 1.
    const Power power(Levels(3, 4), {{}, {0}, {1}}, {}, {0});
    EXPECT_NEAR(power.GetPower(1, 2, 1, cConfidence), Oracle(2, 8, 8), 1e-9);
}

TEST(Power, OfAQualitativeFactorDoesNotDivideByTheNoise) {
    const Power power(Levels(3, 4), {{}, {0}, {1}}, {}, {0});
    EXPECT_EQ(power.GetPower(1, 2, 7, cConfidence), power.GetPower(1, 2, 1, cConfidence));
}

TEST(Power, OfAnInteractionWithAQualitativeFactorIsNotANumber) {
    const Power power(Levels(3, 6), {{}, {0}, {1}, {0, 1}, {1, 0}}, {}, {0});
    EXPECT_TRUE(std::isnan(power.GetPower(3, 2, 1, cConfidence)));
    EXPECT_TRUE(std::isnan(power.GetPower(4, 2, 1, cConfidence)));
}

TEST(Power, OfAMixtureComponentUsesTheAdjustedOthers) {
    // No constant in a mixture. The other components give way by half the tested share each.
    const auto design = Lattice();
    const Power power(design, {{0}, {1}, {2}}, {{0, 1, 2}}, {});
    oracles::Table x = oracles::ToTable(design);
    for (auto& row : x) {
        row[1] += row[0] / 2;
        row[2] += row[0] / 2;
    }
    const auto inverse = oracles::GaussJordanInverse(oracles::Product(oracles::Transposed(x), x));
    EXPECT_NEAR(power.GetPower(0, 3, 1, cConfidence),
                Oracle(1, 14 - 3, static_cast<double>(1 / inverse[0][0]) * 9),
                1e-8);
}

TEST(Power, OfAMixtureBlendKeepsAllOtherTerms) {
    const auto design = Lattice();
    const Terms terms = {{0}, {1}, {2}, {0, 1}, {0, 2}, {1, 2}};
    const Power power(design, terms, {{0, 1, 2}}, {});
    oracles::Table x;
    for (const auto& row : oracles::ToTable(design)) {
        x.push_back({row[0], row[1], row[2], row[0] * row[1], row[0] * row[2], row[1] * row[2]});
    }
    const auto inverse = oracles::GaussJordanInverse(oracles::Product(oracles::Transposed(x), x));
    for (const int term : {3, 4, 5}) {
        const auto at = static_cast<std::size_t>(term);
        EXPECT_NEAR(power.GetPower(term, 3, 1, cConfidence),
                    Oracle(1, 14 - 6, static_cast<double>(1 / inverse[at][at]) * 144),
                    1e-8)
            << "term " << term;
    }
}

TEST(Power, OfMixtureCubicTermsHasScalesOfItsOwn) {
    // Alone in the model, a column keeps its whole squared length.
    const auto design = Lattice();
    const auto length = [&design](int i, int j, int k) {
        double sum = 0;
        for (int row = 1; row <= design.SizeRows(); ++row) {
            const double value = static_cast<double>(design(row, i + 1)) *
                                 static_cast<double>(design(row, j + 1)) *
                                 static_cast<double>(design(row, k + 1));
            sum += value * value;
        }
        return sum;
    };
    const std::vector<std::set<int>> mixture = {{0, 1, 2}};
    EXPECT_NEAR(Power(design, {{0, 1, 2}}, mixture, {}).GetPower(0, 3, 1, cConfidence),
                Oracle(1, 13, length(0, 1, 2) * 81 * 81),
                1e-8);
    EXPECT_NEAR(Power(design, {{0, 0, 1}}, mixture, {}).GetPower(0, 1, 1, cConfidence),
                Oracle(1, 13, length(0, 0, 1) * 27 * 27),
                1e-8);
    EXPECT_NEAR(Power(design, {{2, 2, 2}}, mixture, {}).GetPower(0, 0.3, 1, cConfidence),
                Oracle(1, 13, length(2, 2, 2) * 1.6 * 1.6),
                1e-8);
}

TEST(Power, OfAMixtureTermDoesNotDivideByTheNoise) {
    const Power power(Lattice(), {{0}, {1}, {2}}, {{0, 1, 2}}, {});
    EXPECT_EQ(power.GetPower(0, 3, 5, cConfidence), power.GetPower(0, 3, 1, cConfidence));
}

TEST(Power, OfAProductOfMixtureAndProcessFactorsIsNotANumber) {
    NCDataMatrix<float> design = Lattice();
    design.InsertColumns(4, 1);
    for (int row = 1; row <= design.SizeRows(); ++row) {
        design(row, 4, row % 2 == 0 ? 1.0F : -1.0F);
    }
    const Power power(design, {{0}, {1}, {2}, {0, 3}, {3, 0}, {3}}, {{0, 1, 2}}, {});
    EXPECT_TRUE(std::isnan(power.GetPower(3, 2, 1, cConfidence)));
    EXPECT_TRUE(std::isnan(power.GetPower(4, 2, 1, cConfidence)));
    EXPECT_FALSE(std::isnan(power.GetPower(5, 2, 1, cConfidence)));
}

TEST(Power, OfAProductOfTwoMixturesIsNotANumber) {
    NCDataMatrix<float> design(8, 4);
    for (int row = 0; row < 8; ++row) {
        const float a = row % 2 == 0 ? 0.25F : 0.75F, b = row / 4 == 0 ? 0.2F : 0.6F;
        design(row + 1, 1, a);
        design(row + 1, 2, 1 - a);
        design(row + 1, 3, b);
        design(row + 1, 4, 1 - b);
    }
    const Power power(design, {{0}, {1}, {0, 2}}, {{0, 1}, {2, 3}}, {});
    EXPECT_TRUE(std::isnan(power.GetPower(2, 2, 1, cConfidence)));
}

TEST(Power, MasksNameTheirTypes) {
    EXPECT_EQ(Power::siDivideWithVariance, 3);
    EXPECT_EQ(Power::siMixtureFactor, 60);
}

TEST(Power, OfAnEffectBeyondTheSeriesIsOne) {
    const Power power(TwoLevels(3), MainEffects(3), {}, {});
    for (const double effect : {3e4, 1e5, 1e6, 1e12, 1e150}) {
        EXPECT_EQ(power.GetPower(1, effect, 1, cConfidence), 1) << "effect " << effect;
    }
}

// With one residual degree of freedom the small power of a strict test grows with the effect.
TEST(Power, GoesOnBeyondTheSeries) {
    constexpr double cStrict = 1 - 1e-9;
    const Power power(TwoLevels(2), MainEffects(2), {}, {});
    const double within = power.GetPower(1, 3.1e4, 1, cStrict);
    EXPECT_NEAR(power.GetPower(1, 3.2e4, 1, cStrict) / within, 3.2 / 3.1, 1e-4) << within;
    EXPECT_NEAR(power.GetPower(1, 3.1e6, 1, cStrict) / within, 100, 0.1) << within;
}

TEST(Power, RefusesLevelsThatNoIntHolds) {
    constexpr float cNaN = std::numeric_limits<float>::quiet_NaN();
    for (const float level : {cNaN, 3e9F, -3e9F, 1e38F, -1e38F}) {
        EXPECT_THAT(FailureOf({{0, 1}, {1, 1}, {level, 1}, {1, 1}}, {{0}}, {0}),
                    ::testing::HasSubstr("must be coded"))
            << level;
    }
}

}  // namespace
