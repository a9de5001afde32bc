#include "designs/optimal/IOptimal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#ifdef QORVA_HAS_OPENMP
#include <omp.h>
#endif

#include <algorithm>
#include <boost/function.hpp>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "foundation/util/NCError.h"
#include "foundation/utl/Exceptions.h"
#include "tests/oracles/DenseOracles.h"
#include "tests/oracles/IOptimalOracle.h"
#include "tests/support/QuadraticGrid.h"

namespace {

using NCDOE::IOptimal;
using testing::HasSubstr;

constexpr float cNaN = std::numeric_limits<float>::quiet_NaN();

NCDataMatrix<float> RandomCandidates(int rows, int columns, unsigned seed) {
    std::mt19937 engine(seed);
    return oracles::RandomMatrix<float>(rows, columns, engine);
}

// The definition in long double: the mean of x'(X'X)^-1 x over all candidates, times the runs.
double MeanVariance(const NCDataMatrix<float>& candidates, const oracles::Table& x) {
    const auto inverse = oracles::GaussJordanInverse(oracles::Product(oracles::Transposed(x), x));
    const oracles::Table all = oracles::ToTable(candidates);
    long double sum = 0;
    for (const auto& row : all) {
        sum += oracles::Product(oracles::Product({row}, inverse), oracles::Transposed({row}))[0][0];
    }
    return static_cast<double>(sum * static_cast<long double>(x.size()) /
                               static_cast<long double>(all.size()));
}

oracles::Table Rows(const NCDataMatrix<float>& candidates, const std::vector<int>& design) {
    const oracles::Table all = oracles::ToTable(candidates);
    oracles::Table rows;
    for (const int row : design) {
        rows.push_back(all[static_cast<std::size_t>(row)]);
    }
    return rows;
}

// The smallest I-value of all designs of `runs` runs, repetition allowed or not.
double BruteForce(const NCDataMatrix<float>& candidates, int runs, bool repeats) {
    const IOptimal search(candidates);
    double best = std::numeric_limits<double>::infinity();
    std::vector<int> design(static_cast<std::size_t>(runs), 0);
    const auto walk = [&](const auto& self, std::size_t at, int from) -> void {
        if (at == design.size()) {
            const double value = search.GetIValue(design);
            best = value < best ? value : best;  // a NaN is passed over
            return;
        }
        for (int row = from; row < candidates.SizeRows(); ++row) {
            design[at] = row;
            self(self, at + 1, repeats ? row : row + 1);
        }
    };
    walk(walk, 0, 0);
    return best;
}

std::string FailureOf(const IOptimal& search, unsigned runs, unsigned maxIterations) {
    try {
        (void)search.GetDesign(runs, 1, maxIterations, nullptr, {});
    } catch (const NCError& error) {
        return std::string(error.GetLevel() == NCError::Severe ? "severe: " : "") + error.what();
    }
    return "no error";
}

std::string ArgumentFailureOf(const IOptimal& search, const std::vector<int>& design) {
    try {
        (void)search.GetIValue(design);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "no error";
}

// Candidates of two columns: X'X of the first three rows is diag(100000, 1), of the next three
// diag(100001, 1).
NCDataMatrix<float> AtTheLimit() {
    return {{300, 0}, {100, 0}, {0, 1}, {300, 0}, {100, 0}, {1, 0}, {0, 1}};
}

TEST(IOptimal, IValueIsTheMeanPredictionVarianceTimesTheRuns) {
    for (unsigned seed = 1; seed <= 10; ++seed) {
        const auto candidates = RandomCandidates(40, 6, seed);
        std::vector<int> design(11);
        std::iota(design.begin(), design.end(), static_cast<int>(seed));
        const double expected = MeanVariance(candidates, Rows(candidates, design));
        EXPECT_NEAR(IOptimal(candidates).GetIValue(design), expected, 1e-10 * expected)
            << "seed " << seed;
    }
}

TEST(IOptimal, IValueOfAnOrthogonalDesignIsKnown) {
    // 2^2 with constant and main effects on the 3 x 3 grid: (1 + 2/3 + 2/3).
    NCDataMatrix<float> candidates(9, 3);
    for (int row = 0; row < 9; ++row) {
        candidates(row + 1, 1, 1);
        candidates(row + 1, 2, static_cast<float>(row % 3 - 1));
        candidates(row + 1, 3, static_cast<float>(row / 3 - 1));
    }
    EXPECT_NEAR(IOptimal(candidates).GetIValue({0, 2, 6, 8}), 7.0 / 3.0, 1e-14);
}

TEST(IOptimal, IValueOfRowsIsThatOfTheCandidatesWithTheseRows) {
    const auto candidates = RandomCandidates(30, 4, 3);
    const std::vector<int> design = {3, 3, 8, 12, 29, 0};
    dlib::matrix<double> rows(6, 4);
    NCDataMatrix<float> floats(6, 4);
    for (int i = 0; i < 6; ++i) {
        for (int j = 0; j < 4; ++j) {
            floats(i + 1, j + 1, candidates(design[static_cast<std::size_t>(i)] + 1, j + 1));
            rows(i, j) = static_cast<double>(floats(i + 1, j + 1));
        }
    }
    const IOptimal search(candidates);
    EXPECT_EQ(search.GetIValue(rows), search.GetIValue(design));
    EXPECT_EQ(search.GetIValue(floats), search.GetIValue(design));
}

TEST(IOptimal, IValueTakesRowsThatAreNoCandidates) {
    const auto candidates = RandomCandidates(30, 3, 4);
    const auto design = RandomCandidates(7, 3, 5);
    const double expected = MeanVariance(candidates, oracles::ToTable(design));
    EXPECT_NEAR(IOptimal(candidates).GetIValue(design), expected, 1e-11 * expected);
}

TEST(IOptimal, IValueRefusesRowsOfAnotherWidth) {
    const IOptimal search(RandomCandidates(10, 3, 1));
    EXPECT_THROW((void)search.GetIValue(RandomCandidates(10, 4, 1)), std::invalid_argument);
    EXPECT_THROW((void)search.GetIValue(dlib::matrix<double>(5, 2)), std::invalid_argument);
}

TEST(IOptimal, IValueRefusesFewerRowsThanColumns) {
    const IOptimal search(RandomCandidates(10, 3, 1));
    const std::string text =
        "IOptimal::GetIValue : The design must contain at least as many rows as there are "
        "variables.";
    EXPECT_EQ(ArgumentFailureOf(search, {0, 1}), text);
    EXPECT_EQ(ArgumentFailureOf(search, {}), text);
    EXPECT_THROW((void)search.GetIValue(RandomCandidates(2, 3, 1)), std::invalid_argument);
}

TEST(IOptimal, IValueRefusesNumbersThatAreNoCandidates) {
    const IOptimal search(RandomCandidates(10, 3, 1));
    const std::string text = "IOptimal::GetIValue : Candidate set row index out of range.";
    EXPECT_EQ(ArgumentFailureOf(search, {0, 1, 2, 10}), text);
    EXPECT_EQ(ArgumentFailureOf(search, {-1, 1, 2, 9}), text);
    EXPECT_EQ(ArgumentFailureOf(search, {0, 1, 2, 9}), "no error");
}

TEST(IOptimal, IValueOfASingularDesignIsNotANumber) {
    const IOptimal search(RandomCandidates(10, 3, 1));
    EXPECT_TRUE(std::isnan(search.GetIValue({4, 4, 4, 7})));
}

TEST(IOptimal, IValuePassesAConditionOfExactlyTheLimit) {
    const IOptimal search(AtTheLimit());
    EXPECT_FALSE(std::isnan(search.GetIValue({0, 1, 2})));
    EXPECT_TRUE(std::isnan(search.GetIValue({3, 4, 5, 6})));
}

TEST(IOptimal, IValuePassesASmallestSingularValueOfExactlyTheLimit) {
    // Two squares that add up to exactly 1e-17 in double.
    const double limit = 1e-17;
    double a = 0, b = 0;
    std::mt19937 engine(1);
    for (int i = 0; i < 100000 && a * a + b * b != limit; ++i) {
        a = 1e-9 + static_cast<double>(engine()) * 4e-19;
        b = std::sqrt(limit - a * a);
    }
    ASSERT_EQ(a * a + b * b, limit);
    const IOptimal search(NCDataMatrix<float>(2, 1, 1.0F));
    dlib::matrix<double> rows(2, 1);
    rows = a, b;
    EXPECT_FALSE(std::isnan(search.GetIValue(rows)));
    rows(0, 0) *= 0.999;
    EXPECT_TRUE(std::isnan(search.GetIValue(rows)));
}

TEST(IOptimal, IValueIsNotANumberWhereACellIsNot) {
    auto candidates = RandomCandidates(10, 3, 1);
    candidates(5, 2, cNaN);
    const IOptimal search(candidates);
    EXPECT_TRUE(std::isnan(search.GetIValue({0, 1, 2, 4})));
    EXPECT_TRUE(std::isnan(search.GetIValue({0, 1, 2, 3}))) << "the mean is over all candidates";
}

TEST(IOptimal, RefusesAnEmptyCandidateSet) {
    try {
        const IOptimal search{NCDataMatrix<float>()};
        FAIL() << "no error";
    } catch (const std::logic_error& error) {
        EXPECT_STREQ(error.what(), "Internal error in IOptimal::Init (1).");
    }
}

TEST(IOptimal, CopiesAndMovesAnswerAlike) {
    static_assert(std::is_move_constructible_v<IOptimal> && std::is_move_assignable_v<IOptimal>);
    const auto candidates = RandomCandidates(10, 3, 1);
    IOptimal first(candidates);
    const double expected = first.GetIValue({0, 1, 2, 3});
    const IOptimal copy = first;
    IOptimal moved(RandomCandidates(10, 3, 2));
    moved = std::move(first);
    EXPECT_EQ(copy.GetIValue({0, 1, 2, 3}), expected);
    EXPECT_EQ(moved.GetIValue({0, 1, 2, 3}), expected);
}

TEST(IOptimal, FewerRunsThanColumnsAreRefused) {
    const IOptimal search(RandomCandidates(20, 6, 1));
    EXPECT_EQ(FailureOf(search, 5, 10), "severe: The number of runs can not be less than 6");
    EXPECT_EQ(FailureOf(search, 6, 10), "no error");
}

TEST(IOptimal, AStartOfFewerRunsThanColumnsIsRefused) {
    const std::vector<int> start = {1, 2};
    EXPECT_THROW((void)IOptimal(RandomCandidates(20, 6, 1)).GetDesign(12, 1, 10, &start, {}),
                 NCError);
}

TEST(IOptimal, WithoutAttemptsNoDesignIsFound) {
    EXPECT_EQ(FailureOf(IOptimal(RandomCandidates(20, 6, 1)), 8, 0),
              "severe: No design could be found");
}

TEST(IOptimal, SingularCandidatesGiveNoDesign) {
    EXPECT_EQ(FailureOf(IOptimal(NCDataMatrix<float>(20, 3, 1.0F)), 8, 25),
              "severe: No design could be found");
}

TEST(IOptimal, MoreRunsThanCandidatesGiveNoDesign) {
    const IOptimal search(RandomCandidates(8, 3, 1));
    EXPECT_EQ(FailureOf(search, 9, 25), "severe: No design could be found");
    EXPECT_EQ(FailureOf(search, 8, 25), "no error");
}

TEST(IOptimal, AStartWithARowThatIsNoCandidateIsRefused) {
    const std::vector<int> start = {0, 1, 2, 20};
    EXPECT_THROW((void)IOptimal(RandomCandidates(20, 3, 1)).GetDesign(0, 1, 10, &start, {}),
                 std::invalid_argument);
}

TEST(IOptimal, AStartWithoutIValueComesBackAsItIs) {
    const std::vector<int> start = {7, 7, 7, 7};
    EXPECT_EQ(IOptimal(RandomCandidates(20, 3, 1)).GetDesign(0, 1, 10, &start, {}), start);
}

TEST(IOptimal, CandidatesThatAreNotNumbersLeaveTheStartAsItIs) {
    auto candidates = RandomCandidates(20, 3, 1);
    candidates(20, 3, cNaN);
    const std::vector<int> start = {1, 2, 3, 4};
    EXPECT_EQ(IOptimal(candidates).GetDesign(0, 1, 10, &start, {}), start);
}

TEST(IOptimal, AnEqualSeedGivesAnEqualDesign) {
    const IOptimal search(QuadraticGrid(3, 5));
    for (const int seed : {0, 1, 1974, std::numeric_limits<int>::max()}) {
        EXPECT_EQ(search.GetDesign(14, seed, 100, nullptr, {}),
                  search.GetDesign(14, seed, 100, nullptr, {}))
            << "seed " << seed;
    }
}

TEST(IOptimal, ANegativeSeedGivesAStartOfItsOwn) {
    // One step from 4 * 10^20 starts: two equal results in five would be a seed that is not random.
    const IOptimal search(QuadraticGrid(4, 5));
    std::set<std::vector<int>> designs;
    for (int i = 0; i < 5; ++i) {
        designs.insert(search.GetDesign(20, -1, 1, nullptr, {}));
    }
    EXPECT_EQ(designs.size(), 5U);
}

TEST(IOptimal, ADesignDrawnAtRandomRepeatsNoRun) {
    const IOptimal search(QuadraticGrid(2, 4));
    for (int seed = 0; seed < 20; ++seed) {
        const auto design = search.GetDesign(9, seed, 100, nullptr, {});
        EXPECT_EQ(std::set<int>(design.begin(), design.end()).size(), 9U) << "seed " << seed;
    }
}

TEST(IOptimal, AStartMayRepeatARun) {
    // Constant and slope: the best four runs are two at each end; the start has one of each.
    const NCDataMatrix<float> candidates = {{1, -1}, {1, -0.1F}, {1, 0}, {1, 0.1F}, {1, 1}};
    const std::vector<int> start = {0, 4, 2, 3};
    auto design = IOptimal(candidates).GetDesign(0, 0, 50, &start, {});
    std::sort(design.begin(), design.end());
    EXPECT_EQ(design, (std::vector<int>{0, 0, 4, 4}));
}

TEST(IOptimal, AStartSetsTheNumberOfRuns) {
    const std::vector<int> start = {0, 1, 2, 3, 4, 5, 6};
    EXPECT_EQ(IOptimal(RandomCandidates(20, 3, 1)).GetDesign(99, 5, 50, &start, {}).size(), 7U);
}

TEST(IOptimal, WithAStartOneStepIsMadeWithoutABudget) {
    const auto candidates = RandomCandidates(60, 4, 2);
    std::vector<int> start = {0, 1, 2, 3, 4, 5};
    const auto design = IOptimal(candidates).GetDesign(0, 0, 0, &start, {});
    int changed = 0;
    for (std::size_t i = 0; i < start.size(); ++i) {
        changed += start[i] != design[i] ? 1 : 0;
    }
    EXPECT_EQ(changed, 1);
}

TEST(IOptimal, TheBudgetAllowsOneStepMoreThanItsNumber) {
    const auto candidates = RandomCandidates(200, 5, 7);
    std::vector<int> start(12);
    std::iota(start.begin(), start.end(), 0);
    const oracles::IOptimalOracle oracle(candidates);
    for (unsigned budget = 0; budget < 5; ++budget) {
        EXPECT_EQ(IOptimal(candidates).GetDesign(0, 0, budget, &start, {}),
                  oracle.Run(start, budget).design)
            << "budget " << budget;
    }
}

TEST(IOptimal, AnImprovementBelowAThousandthEndsTheSearch) {
    // Slope alone: the I-value is inversely proportional to the sum of squares.
    const NCDataMatrix<float> small = {{1.0F}, {1.0F}, {1.0004F}};
    const NCDataMatrix<float> enough = {{1.0F}, {1.0F}, {1.0012F}};
    const std::vector<int> start = {0, 1};
    EXPECT_EQ(IOptimal(small).GetDesign(0, 0, 1, &start, {}), start);
    EXPECT_NE(IOptimal(enough).GetDesign(0, 0, 1, &start, {}), start);
}

TEST(IOptimal, DecidesAsThePlainForm) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        const int columns = 2 + static_cast<int>(seed % 7);
        const auto candidates = RandomCandidates(40 + static_cast<int>(seed), columns, seed);
        std::vector<int> start(static_cast<std::size_t>(columns) + seed % 5);
        std::iota(start.begin(), start.end(), 0);
        EXPECT_EQ(IOptimal(candidates).GetDesign(0, 0, 1000, &start, {}),
                  oracles::IOptimalOracle(candidates).Run(start, 1000).design)
            << "seed " << seed;
    }
}

TEST(IOptimal, OnGridsWithTiesReachesTheValueOfThePlainForm) {
    // Pairs that are equal by symmetry are told apart by rounding in the plain form, so the designs
    // may differ; every single step must gain what the best step gains.
    const auto candidates = QuadraticGrid(2, 5);
    const oracles::IOptimalOracle oracle(candidates);
    const IOptimal search(candidates);
    for (int seed = 0; seed < 10; ++seed) {
        std::vector<int> design = search.GetDesign(9, seed, 1, nullptr, {});
        oracles::IOptimalOracle::Search plain{{}, design, oracle.IValue(design)};
        plain.pool.resize(25);
        std::iota(plain.pool.begin(), plain.pool.end(), 0);
        const bool applied = oracle.Apply(plain, oracle.Best(plain));
        const auto next = search.GetDesign(0, 0, 0, &design, {});
        EXPECT_NEAR(oracle.IValue(next), applied ? plain.value : oracle.IValue(design), 1e-10)
            << "seed " << seed;
    }
}

TEST(IOptimal, NeverMakesADesignWorseThanItsStart) {
    const auto candidates = QuadraticGrid(3, 3);
    const IOptimal search(candidates);
    std::mt19937 engine(1);
    for (int trial = 0; trial < 40; ++trial) {
        std::vector<int> start(14);
        std::generate(start.begin(), start.end(), [&engine] { return engine() % 27; });
        const double before = search.GetIValue(start);
        const auto design = search.GetDesign(0, 0, 200, &start, {});
        if (std::isnan(before)) {
            EXPECT_EQ(design, start) << "trial " << trial;
        } else {
            EXPECT_LE(search.GetIValue(design), before * (1 + 1e-12)) << "trial " << trial;
        }
    }
}

// What rounding leaves of a determinant of zero must not be taken for a gain.
TEST(IOptimal, SaturatedStartsNeverEndInASingularDesign) {
    const IOptimal two(QuadraticGrid(2, 3));
    const IOptimal three(QuadraticGrid(3, 3));
    for (int seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        EXPECT_NO_THROW((void)two.GetDesign(6, seed, 200, nullptr, {}));
        EXPECT_NO_THROW((void)three.GetDesign(10, seed, 200, nullptr, {}));
    }
}

TEST(IOptimal, FindsTheBestDesignOfSmallProblems) {
    // The best of five starts against all designs without repetition.
    for (unsigned problem = 1; problem <= 20; ++problem) {
        const auto candidates = RandomCandidates(11, 3, problem);
        const IOptimal search(candidates);
        double found = std::numeric_limits<double>::infinity();
        for (int seed = 0; seed < 5; ++seed) {
            const double value = search.GetIValue(search.GetDesign(5, seed, 100, nullptr, {}));
            found = value < found ? value : found;
        }
        const double best = BruteForce(candidates, 5, false);
        EXPECT_GE(found, best * (1 - 1e-12)) << "problem " << problem;
        EXPECT_LE(found, best * 1.01) << "problem " << problem;
    }
}

TEST(IOptimal, ImprovedStartsComeNearTheBestDesignWithRepetitions) {
    // Within 4 percent: a level that has left cannot come back, so no single search is sure.
    const auto candidates = QuadraticGrid(1, 7);
    const IOptimal search(candidates);
    const double best = BruteForce(candidates, 5, true);
    for (int seed = 0; seed < 20; ++seed) {
        const auto start = search.GetDesign(5, seed, 1, nullptr, {});
        const double value = search.GetIValue(search.GetDesign(0, 0, 100, &start, {}));
        EXPECT_GE(value, best * (1 - 1e-12)) << "seed " << seed;
        EXPECT_LE(value, best * 1.04) << "seed " << seed;
    }
}

TEST(IOptimal, DrawsByThe32BitTwister) {
    // The start shows when no exchange gains: equal candidates but for a sign.
    NCDataMatrix<float> candidates(50, 1);
    for (int row = 1; row <= 50; ++row) {
        candidates(row, 1, row % 2 == 0 ? 1.0F : -1.0F);
    }
    std::mt19937 engine(42);
    std::vector<int> pool(50), expected;
    std::iota(pool.begin(), pool.end(), 0);
    for (int i = 0; i < 6; ++i) {
        const auto at = static_cast<std::size_t>((std::uint64_t{engine()} * pool.size()) >> 32U);
        expected.push_back(pool[at]);
        pool[at] = pool.back();
        pool.pop_back();
    }
    EXPECT_EQ(IOptimal(candidates).GetDesign(6, 42, 10, nullptr, {}), expected);
}

TEST(IOptimal, ARefusedDrawIsRepeated) {
    // Only one pair of rows in a hundred is regular.
    NCDataMatrix<float> candidates(20, 2, 0.0F);
    for (int row = 1; row <= 20; ++row) {
        candidates(row, row == 7 ? 2 : 1, 1.0F);
    }
    const auto design = IOptimal(candidates).GetDesign(2, 3, 1000, nullptr, {});
    EXPECT_THAT(design, testing::Contains(6));
}

TEST(IOptimal, StopsBeforeTheFirstStepWhenAsked) {
    int asked = 0;
    const boost::function<bool()> cancel = [&asked] {
        ++asked;
        return true;
    };
    EXPECT_THROW((void)IOptimal(QuadraticGrid(3, 3)).GetDesign(14, 1, 50, nullptr, cancel),
                 CancelException);
    EXPECT_EQ(asked, 1);
}

TEST(IOptimal, StopsBetweenStepsWhenAsked) {
    const IOptimal search(QuadraticGrid(3, 5));
    int calls = 0;
    const boost::function<bool()> count = [&calls] {
        ++calls;
        return false;
    };
    const auto design = search.GetDesign(14, 1, 50, nullptr, count);
    EXPECT_EQ(design, search.GetDesign(14, 1, 50, nullptr, {}));
    const int all = calls;
    ASSERT_GT(all, 3);
    for (int last = 1; last <= all; ++last) {
        int left = last;
        EXPECT_THROW((void)search.GetDesign(14, 1, 50, nullptr, [&left] { return --left == 0; }),
                     CancelException)
            << "asked " << last << " times";
    }
}

TEST(IOptimal, StopsBetweenDrawsWhenAsked) {
    int left = 4;
    EXPECT_THROW((void)IOptimal(NCDataMatrix<float>(20, 3, 1.0F))
                     .GetDesign(8, 1, 1000000, nullptr, [&left] { return --left == 0; }),
                 CancelException);
}

#ifdef QORVA_HAS_OPENMP
TEST(IOptimal, TheNumberOfThreadsDoesNotMatter) {
    // Large enough for threads, and full of pairs that are equal by symmetry.
    const IOptimal search(QuadraticGrid(4, 7));
    const int before = omp_get_max_threads();
    std::vector<int> start(100);
    for (std::size_t i = 0; i < start.size(); ++i) {
        start[i] = static_cast<int>(i * 24);
    }
    std::vector<std::vector<int>> designs;
    for (const int threads : {1, 2, 3, 5}) {
        omp_set_num_threads(threads);
        designs.push_back(search.GetDesign(0, 0, 8, &start, {}));
    }
    omp_set_num_threads(before);
    EXPECT_THAT(designs, testing::Each(designs[0]));
}
#endif

}  // namespace
