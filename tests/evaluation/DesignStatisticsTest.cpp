#include "evaluation/DesignStatistics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "evaluation/Power.h"
#include "foundation/mat/TransformStruct.h"
#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/Exceptions.h"
#include "frame/NCDesign.h"
#include "tests/oracles/ModelOracles.h"
#include "tests/oracles/PowerOracle.h"
#include "tests/oracles/StatisticsOracle.h"
#include "tests/support/TestFactors.h"

namespace {

using Table = NCDataMatrix<float>;
using Terms = DesignStatistics::Terms;
using Results = DesignStatistics::Results;

constexpr double cNone = -99.0;

Results Figures(const Factors& factors,
                const Terms& terms,
                const Table& design,
                const Table* candidates,
                bool coded = false,
                int blocks = 1) {
    bool stop = false;
    return DesignStatistics::CalculateStatistics(
        factors, terms, design, candidates, coded, blocks, stop);
}

void ExpectNear(const Results& results, const oracles::Figures& expected) {
    // Cells, inverse and images are float: seven digits, less two lost to the condition.
    constexpr double share = 1e-4;
    const auto near = [](double value, long double oracle, const char* name) {
        EXPECT_NEAR(value, static_cast<double>(oracle), share * (1 + std::abs(value))) << name;
    };
    near(results.CondNo, expected.condition, "CondNo");
    near(results.GEff, expected.gEfficiency, "GEff");
    near(results.LogDet, expected.logDeterminant, "LogDet");
    near(results.NormLogDet, expected.normLogDeterminant, "NormLogDet");
    near(results.IOptimality, expected.averageVariance, "IOptimality");
}

void ExpectNothing(const Results& results) {
    EXPECT_EQ(results.CondNo, cNone);
    EXPECT_EQ(results.GEff, cNone);
    EXPECT_EQ(results.LogDet, cNone);
    EXPECT_EQ(results.NormLogDet, cNone);
    EXPECT_EQ(results.IOptimality, cNone);
}

// The full quadratic model of three factors.
const Terms cQuadratic{{}, {0}, {1}, {2}, {0, 1}, {0, 2}, {1, 2}, {0, 0}, {1, 1}, {2, 2}};

Table Grid(float low, float high, int columns) {
    int rows = 1;
    for (int i = 0; i < columns; ++i) {
        rows *= 3;
    }
    Table grid(rows, columns);
    for (int row = 0; row < rows; ++row) {
        int rest = row;
        for (int column = 1; column <= columns; ++column, rest /= 3) {
            grid(row + 1, column, low + (high - low) * static_cast<float>(rest % 3) / 2);
        }
    }
    return grid;
}

Table RandomRuns(int runs, int columns, float low, float high, unsigned seed) {
    std::mt19937 engine(seed);
    Table table(runs, columns);
    for (float& cell : table.Cells()) {
        const double share = static_cast<double>(engine()) / 4294967296.0;
        cell = low + (high - low) * static_cast<float>(share);
    }
    return table;
}

// A design of one factor at two settings, 1 and 1 - gap; its condition number is near 4 / gap.
Table NearlySame(float gap) {
    return {{1}, {1 - gap}};
}

const Terms cLinearInOne{{}, {0}};

TEST(DesignStatistics, FiguresAreThoseOfTheDefinitions) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const Table grid = Grid(-1, 1, 3);
    for (unsigned seed = 1; seed <= 10; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const Table design = RandomRuns(16, 3, -1, 1, seed);
        ExpectNear(Figures(factors, cQuadratic, design, &grid),
                   oracles::FiguresOf(oracles::ModelMatrix(design, 3, oracles::QuadraticTerms),
                                      oracles::ModelMatrix(grid, 3, oracles::QuadraticTerms)));
    }
}

// An orthogonal two-level design is the best there is for a linear model in every respect: all
// prediction variances at its points are p / n (Montgomery, Design and Analysis of Experiments).
TEST(DesignStatistics, FullFactorialIsPerfectForALinearModel) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const Table cube = NCDesign::MakeFFDesignTable(factors, 8, false, false);
    const Results results = Figures(factors, {{}, {0}, {1}, {2}}, cube, &cube);
    EXPECT_NEAR(results.CondNo, 1, 1e-6);
    EXPECT_NEAR(results.GEff, 100, 1e-4);
    EXPECT_NEAR(results.LogDet, 4 * std::log10(8.0), 1e-6);
    EXPECT_NEAR(results.NormLogDet, 0, 1e-6);
    EXPECT_NEAR(results.IOptimality, 4, 1e-6);
}

TEST(DesignStatistics, UnitsOfTheFactorsDoNotMatter) {
    const TestFactors coded = TestFactors().Quantitatives(3);
    const TestFactors real =
        TestFactors().Quantitative(100, 300).Quantitative(100, 300).Quantitative(100, 300);
    const Table codedGrid = Grid(-1, 1, 3);
    const Table realGrid = Grid(100, 300, 3);
    const Table codedRuns = RandomRuns(14, 3, -1, 1, 5);
    const Table realRuns = RandomRuns(14, 3, 100, 300, 5);
    const Results a = Figures(coded, cQuadratic, codedRuns, &codedGrid);
    const Results b = Figures(real, cQuadratic, realRuns, &realGrid);
    EXPECT_NEAR(a.CondNo, b.CondNo, 1e-3 * a.CondNo);
    EXPECT_NEAR(a.GEff, b.GEff, 1e-2);
    EXPECT_NEAR(a.LogDet, b.LogDet, 1e-3);
    EXPECT_NEAR(a.IOptimality, b.IOptimality, 1e-3 * a.IOptimality);
}

TEST(DesignStatistics, TransformedFactorsAreCodedInTheirWorkingScale) {
    const TestFactors factors =
        TestFactors().Quantitative(1, 100).Transformed(TransformStruct(TransformStruct::Log10));
    const TestFactors plain = TestFactors().Quantitatives(1);
    const Terms terms{{}, {0}, {0, 0}};
    const Table real{{1}, {10}, {100}, {100}};
    const Table coded{{-1}, {0}, {1}, {1}};
    const Results a = Figures(factors, terms, real, &real);
    const Results b = Figures(plain, terms, coded, &coded);
    EXPECT_NEAR(a.CondNo, b.CondNo, 1e-5);
    EXPECT_NEAR(a.GEff, b.GEff, 1e-3);
    EXPECT_NEAR(a.LogDet, b.LogDet, 1e-5);
}

// The component of the largest range is left out, since the others determine it.
TEST(DesignStatistics, MixtureModelLeavesTheSlackComponentOut) {
    const TestFactors factors =
        TestFactors().Formulation(0, 0.5F).Formulation(0, 1).Formulation(0, 0.5F);
    const Table design{
        {0, 1, 0}, {0.5F, 0.5F, 0}, {0, 0.5F, 0.5F}, {0.5F, 0, 0.5F}, {0.25F, 0.5F, 0.25F}};
    Table coded(5, 2);
    for (int row = 1; row <= 5; ++row) {
        coded(row, 1, (design(row, 1) - 0.25F) / 0.25F);
        coded(row, 2, (design(row, 3) - 0.25F) / 0.25F);
    }
    const auto linear = [](const oracles::Run& x) { return oracles::Run{1, x[0], x[1]}; };
    const oracles::Table model = oracles::ModelMatrix(coded, 2, linear);
    ExpectNear(Figures(factors, {{}, {0}, {1}, {2}}, design, &design),
               oracles::FiguresOf(model, model));
}

TEST(DesignStatistics, LetterCodesAndExpandedVariablesGiveTheSame) {
    const TestFactors factors =
        TestFactors().Quantitative(10, 20).Qualitative(3).Multilevel({1, 2, 4});
    const Table coded = NCDesign::MakeFFDesignTable(factors, 18, false, false);
    const Table real = DesignStatistics::FromCodedMatrix(coded, factors, 1, false);
    const Terms terms{{}, {0}, {1}, {2}, {0, 1}};
    const Results a = Figures(factors, terms, coded, &real, true);
    const Results b = Figures(factors, terms, real, &real, false);
    EXPECT_EQ(a.CondNo, b.CondNo);
    EXPECT_EQ(a.GEff, b.GEff);
    EXPECT_EQ(a.LogDet, b.LogDet);
    EXPECT_EQ(a.IOptimality, b.IOptimality);
    EXPECT_GT(a.GEff, 0);
}

TEST(DesignStatistics, OrderOfTheFactorsDoesNotMatter) {
    const TestFactors first =
        TestFactors().Quantitative(0, 1).Qualitative(3).Formulation().Formulation().Formulation();
    const TestFactors second =
        TestFactors().Formulation().Qualitative(3).Formulation().Quantitative(0, 1).Formulation();
    Table a(0, 6);
    Table b(0, 6);
    const std::vector<std::vector<float>> levels{{-1, -1}, {1, 0}, {0, 1}};
    const std::vector<std::vector<float>> blends{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int i = 0; i < 18; ++i) {
        const auto& level = levels[static_cast<std::size_t>(i % 3)];
        const auto& blend = blends[static_cast<std::size_t>(i / 3 % 3)];
        const float x = i < 9 ? 0.0F : 1.0F;
        a.InsertRow(i + 1, {x, level[0], level[1], blend[0], blend[1], blend[2]});
        b.InsertRow(i + 1, {blend[0], level[0], level[1], blend[1], x, blend[2]});
    }
    const Results left = Figures(first, {{}, {0}, {1}, {2}, {3}, {4}, {0, 1}}, a, &a);
    const Results right = Figures(second, {{}, {0}, {1}, {2}, {3}, {4}, {3, 1}}, b, &b);
    EXPECT_NEAR(left.LogDet, right.LogDet, 1e-4);
    EXPECT_NEAR(left.CondNo, right.CondNo, 1e-4);
    EXPECT_NEAR(left.GEff, right.GEff, 1e-3);
    EXPECT_GT(left.GEff, 0);
}

TEST(DesignStatistics, BlocksAddTheirCodingColumns) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const Table coded{{-1, -1, 65}, {1, -1, 66}, {-1, 1, 66}, {1, 1, 65}};
    const Results results = Figures(factors, {{}, {0}, {1}, {2}}, coded, nullptr, true, 2);
    // A half fraction with its block: four orthogonal columns of four runs.
    EXPECT_NEAR(results.LogDet, 4 * std::log10(4.0), 1e-6);
    EXPECT_NEAR(results.CondNo, 1, 1e-6);
}

TEST(DesignStatistics, FewerRunsThanColumnsHaveNoFigures) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const Table design = RandomRuns(9, 3, -1, 1, 1);
    ExpectNothing(Figures(factors, cQuadratic, design, &design));
}

TEST(DesignStatistics, NoRunsAndNoFactorsHaveNoFigures) {
    ExpectNothing(Figures(TestFactors().Quantitatives(3), cQuadratic, Table(0, 3), nullptr));
    ExpectNothing(Figures(TestFactors(), {}, Table(0, 0), nullptr));
}

TEST(DesignStatistics, StoppedCalculationHasNoFigures) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const Table design = RandomRuns(16, 3, -1, 1, 1);
    bool stop = true;
    ExpectNothing(DesignStatistics::CalculateStatistics(
        factors, cQuadratic, design, &design, false, 1, stop));
}

// The columns are orthogonal, of the lengths 2 and 1/2, so that the determinant is 1.
TEST(DesignStatistics, LogDeterminantOfExactlyZeroCountsAsNone) {
    const Table design{{-0.25F}, {0.25F}, {-0.25F}, {0.25F}};
    ExpectNothing(Figures(TestFactors().Quantitatives(1), cLinearInOne, design, &design));
}

TEST(DesignStatistics, SingularDesignHasNoFigures) {
    const Table design{{1}, {1}, {1}};
    ExpectNothing(Figures(TestFactors().Quantitatives(1), cLinearInOne, design, &design));
}

TEST(DesignStatistics, MissingCellsGiveNoFigures) {
    const Table design{{-1}, {-99}, {1}};
    ExpectNothing(Figures(TestFactors().Quantitatives(1), cLinearInOne, design, &design));
}

TEST(DesignStatistics, ConditionNumberAboveTheCeilingIsNotTold) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    const Table grid = Grid(-1, 1, 1);
    const Results below = Figures(factors, cLinearInOne, NearlySame(4 / 2900.0F), &grid);
    EXPECT_NEAR(below.CondNo, 2900, 5);
    EXPECT_GT(below.GEff, 0);
    const Results above = Figures(factors, cLinearInOne, NearlySame(4 / 3100.0F), &grid);
    EXPECT_EQ(above.CondNo, cNone);
    EXPECT_EQ(above.GEff, cNone);
    EXPECT_EQ(above.IOptimality, cNone);
    EXPECT_NEAR(above.LogDet, 2 * std::log10(4 / 3100.0), 1e-3);
    EXPECT_NEAR(above.NormLogDet, above.LogDet / 2 - std::log10(2.0), 1e-6);
}

TEST(DesignStatistics, AverageVarianceOfABadConditionStaysNoNumber) {
    const Table grid = Grid(-1, 1, 1);
    const Results results =
        Figures(TestFactors().Quantitatives(1), cLinearInOne, NearlySame(4 / 1000.0F), &grid);
    EXPECT_NEAR(results.CondNo, 1000, 5);
    EXPECT_GT(results.GEff, 0);
    EXPECT_TRUE(std::isnan(results.IOptimality)) << results.IOptimality;
}

TEST(DesignStatistics, WithoutCandidatesPredictionsAreNotJudged) {
    const Table design{{-1}, {1}, {1}};
    const Results results = Figures(TestFactors().Quantitatives(1), cLinearInOne, design, nullptr);
    EXPECT_EQ(results.GEff, cNone);
    EXPECT_EQ(results.IOptimality, cNone);
    EXPECT_GT(results.CondNo, 1);
    EXPECT_NE(results.LogDet, cNone);
    EXPECT_NE(results.NormLogDet, cNone);
}

TEST(DesignStatistics, CandidatesOfAnotherWidthAreRefusedWithoutWords) {
    const Table design{{-1}, {1}, {1}};
    const Table candidates(3, 2, 0.5F);
    try {
        (void)Figures(TestFactors().Quantitatives(1), cLinearInOne, design, &candidates);
        FAIL() << "not refused";
    } catch (const InvalidOperationException& error) {
        EXPECT_STREQ(error.what(), "");
    }
}

TEST(DesignStatistics, CodedDesignWithoutALevelIsRefused) {
    const TestFactors factors = TestFactors().Qualitative(3);
    for (const float code : {-99.0F, 0.0F, 63.4F, 64.0F, 64.4F, 67.6F, 68.0F}) {
        SCOPED_TRACE(code);
        try {
            (void)Figures(factors, {{}, {0}}, {{65}, {66}, {67}, {code}}, nullptr, true);
            ADD_FAILURE() << "not refused";
        } catch (const InvalidOperationException& error) {
            EXPECT_STREQ(error.what(), "The current model cannot be used.");
        }
    }
}

TEST(DesignStatistics, ResultsAreReadBackFromAStore) {
    Results results;
    results.CondNo = 1.5;
    results.GEff = 87.25;
    results.LogDet = 12.125;
    results.NormLogDet = -0.5;
    results.IOptimality = 5.75;
    ConfigurationStore store;
    results.Save(*store.OpenRoot());
    Results loaded;
    EXPECT_TRUE(loaded.Load(*store.OpenRoot()));
    EXPECT_EQ(loaded.CondNo, 1.5);
    EXPECT_EQ(loaded.GEff, 87.25);
    EXPECT_EQ(loaded.LogDet, 12.125);
    EXPECT_EQ(loaded.NormLogDet, -0.5);
    EXPECT_EQ(loaded.IOptimality, 5.75);
}

TEST(DesignStatistics, AverageThatIsNoNumberIsKeptAsSuch) {
    Results results;
    results.IOptimality = std::nan("");
    ConfigurationStore store;
    results.Save(*store.OpenRoot());
    const ConfigurationStore reread = ConfigurationStore::FromText(store.ToText(), "store");
    Results loaded;
    EXPECT_TRUE(loaded.Load(*reread.OpenRoot()));
    EXPECT_TRUE(std::isnan(loaded.IOptimality)) << loaded.IOptimality;
}

TEST(DesignStatistics, MissingKeysLeaveTheirFigures) {
    ConfigurationStore store;
    store.OpenRoot()->WriteDouble("GEff", 50);
    Results results;
    results.LogDet = 3;
    EXPECT_TRUE(results.Load(*store.OpenRoot()));
    EXPECT_EQ(results.GEff, 50);
    EXPECT_EQ(results.LogDet, 3);
    EXPECT_EQ(results.CondNo, cNone);
}

// --- Power ------------------------------------------------------------------------------------

// With orthogonal columns nothing of the effect is lost: lambda = n (effect / 2)^2 / noise^2.
TEST(DesignPower, OrthogonalDesignHasThePowerOfItsNonCentrality) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const Table cube = NCDesign::MakeFFDesignTable(factors, 8, false, false);
    DesignStatistics statistics;
    statistics.SetupPower(DesignStatistics::DesignMatrixPower(cube, factors, false, false, true),
                          {{0}, {1}, {2}},
                          factors);
    for (const double effect : {1.5, 4.0}) {
        const double lambda = 8 * effect * effect / 4 / (0.8 * 0.8);
        EXPECT_NEAR(statistics.CalculatePower(1, effect, 0.8, 0.95),
                    static_cast<double>(oracles::PowerOfF(1, 4, lambda, 0.95L)),
                    1e-6)
            << effect;
    }
}

TEST(DesignPower, EffectIsDividedByTheNoiseFirst) {
    const TestFactors factors = TestFactors().Quantitatives(2).Qualitative(3);
    const Table coded = NCDesign::MakeFFDesignTable(factors, 12, false, false);
    const Table matrix = DesignStatistics::DesignMatrixPower(coded, factors, false, false, true);
    DesignStatistics statistics;
    statistics.SetupPower(matrix, {{0}, {1}, {2}}, factors);
    const NCDOE::Power power(matrix, {{0}, {1}, {2}, {3}}, {{}}, {2});
    for (int term = 0; term < 3; ++term) {
        EXPECT_EQ(statistics.CalculatePower(term, 3, 1.5, 0.95), power.GetPower(term, 2, 1.5, 0.95))
            << term;
    }
    EXPECT_FALSE(std::isnan(statistics.CalculatePower(2, 3, 1.5, 0.95)));
}

TEST(DesignPower, ConstantInTheListLeavesNoPower) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const Table cube = NCDesign::MakeFFDesignTable(factors, 4, false, false);
    Table twice = cube;
    twice.ConcatRows(cube);
    DesignStatistics statistics;
    statistics.SetupPower(DesignStatistics::DesignMatrixPower(twice, factors, false, false, true),
                          {{}, {0}, {1}},
                          factors);
    EXPECT_TRUE(std::isnan(statistics.CalculatePower(1, 5, 1, 0.95)));
}

TEST(DesignPower, MixtureHasNoConstantTerm) {
    const TestFactors factors = TestFactors().Formulation().Formulation().Formulation();
    const Table shares{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    DesignStatistics statistics;
    statistics.SetupPower(shares, {{0}, {1}, {2}}, factors);
    const NCDOE::Power power(shares, {{0}, {1}, {2}}, {{0, 1, 2}}, {});
    EXPECT_EQ(statistics.CalculatePower(1, 4, 1, 0.95), power.GetPower(1, 4, 1, 0.95));
    EXPECT_FALSE(std::isnan(statistics.CalculatePower(1, 4, 1, 0.95)));
}

TEST(DesignPower, CopiesKeepTheirOwnAfterASecondSetup) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const Table cube = NCDesign::MakeFFDesignTable(factors, 4, false, false);
    Table twice = cube;
    twice.ConcatRows(cube);
    Table fourTimes = twice;
    fourTimes.ConcatRows(twice);
    const auto form = [&](const Table& table) {
        return DesignStatistics::DesignMatrixPower(table, factors, false, false, true);
    };
    DesignStatistics statistics;
    statistics.SetupPower(form(twice), {{0}, {1}}, factors);
    const DesignStatistics copy = statistics;
    const double before = copy.CalculatePower(0, 2, 1, 0.95);
    statistics.SetupPower(form(fourTimes), {{0}, {1}}, factors);
    EXPECT_EQ(copy.CalculatePower(0, 2, 1, 0.95), before);
    EXPECT_GT(statistics.CalculatePower(0, 2, 1, 0.95), before);
}

TEST(DesignPower, IsNotToldBeforeItIsSetUp) {
    const DesignStatistics statistics;
    EXPECT_THROW(static_cast<void>(statistics.CalculatePower(0, 1, 1, 0.95)),
                 InvalidOperationException);
}

}  // namespace
