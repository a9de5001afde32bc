#include <algorithm>
#include <cmath>
#include <random>
#include <set>
#include <vector>

#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "tests/oracles/ModelOracles.h"
#include "tests/support/OpenDesign.h"
#include "tests/support/TestFactors.h"
#include "tests/support/ValidatingScope.h"

namespace {

using Table = NCDataMatrix<float>;

DesignOptions Repeating(unsigned count) {
    DesignOptions options;
    options.SetReplicatedRuns(count);
    return options;
}

// A trial design needs two factors, so a single one is repeated without it.
Table OneFactor(int rows) {
    Table table(rows, 1);
    for (int row = 1; row <= rows; ++row) {
        table(row, 1, static_cast<float>(row) / 10);
    }
    return table;
}

Table Repeated(const Factors& factors, const Table& table, unsigned count) {
    OpenDesign design(factors, table);
    design.AddReplicatedRuns(factors, Repeating(count));
    return design.Matrix();
}

bool HasRow(const Table& table, int rows, const NCDataVector<float>& run) {
    for (int row = 1; row <= rows; ++row) {
        if (table.GetRow(row) == run) {
            return true;
        }
    }
    return false;
}

// The first rows are those of the table, the rest are as many copies of them as were asked for.
void ExpectRepeats(const Table& repeated, const Table& table, unsigned count) {
    ASSERT_EQ(repeated.SizeRows(), table.SizeRows() + static_cast<int>(count));
    for (int row = 1; row <= repeated.SizeRows(); ++row) {
        if (row <= table.SizeRows()) {
            EXPECT_EQ(repeated.GetRow(row), table.GetRow(row)) << row;
        } else {
            EXPECT_TRUE(HasRow(table, table.SizeRows(), repeated.GetRow(row))) << row;
        }
    }
}

TEST(ReplicatedRuns, NoneLeaveTheMatrixItself) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    OpenDesign design(factors, NCDesign::MakeFFDesignTable(factors, 8, false, false));
    const auto before = design.GetDesignMatrix();
    design.AddReplicatedRuns(factors, Repeating(0));
    EXPECT_EQ(design.GetDesignMatrix(), before);
}

TEST(ReplicatedRuns, AsManyRowsAreAddedAsAskedForEachACopy) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const Table table = NCDesign::MakeFFDesignTable(factors, 8, false, false);
    for (const unsigned count : {1U, 2U, 3U, 7U, 8U, 9U, 20U}) {
        SCOPED_TRACE(count);
        ExpectRepeats(Repeated(factors, table, count), table, count);
    }
}

TEST(ReplicatedRuns, LevelFactorsAreCopiedToo) {
    const TestFactors factors = TestFactors().Quantitative().Qualitative(3).MultilevelOf(2);
    const Table table = NCDesign::MakeFFDesignTable(factors, 12, false, false);
    ExpectRepeats(Repeated(factors, table, 5), table, 5);
}

TEST(ReplicatedRuns, BlockColumnIsCopiedToo) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const Table table{{-1, -1, 65}, {1, -1, 66}, {-1, 1, 66}, {1, 1, 65}};
    OpenDesign design(factors, table);
    DesignOptions options = Repeating(3);
    options.SetBlocks(2);
    design.AddReplicatedRuns(factors, options);
    ExpectRepeats(design.Matrix(), table, 3);
}

TEST(ReplicatedRuns, MatrixIsStoredThroughTheOverrideAndClonesKeepTheirs) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    OpenDesign design(factors, OneFactor(4));
    const auto clone = design.Clone();
    design.AddReplicatedRuns(factors, Repeating(2));
    EXPECT_EQ(*clone->GetDesignMatrix(), OneFactor(4));
}

TEST(ReplicatedRuns, ReproducibleFallbackTakesTheFirstRunsInOrder) {
    const ValidatingScope validating;
    const TestFactors factors = TestFactors().Quantitatives(1);
    const Table repeated = Repeated(factors, OneFactor(5), 3);
    ASSERT_EQ(repeated.SizeRows(), 8);
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(repeated(5 + i, 1), repeated(i, 1)) << i;
    }
}

TEST(ReplicatedRuns, ReproducibleFallbackWrapsAround) {
    const ValidatingScope validating;
    const TestFactors factors = TestFactors().Quantitatives(1);
    const Table repeated = Repeated(factors, OneFactor(3), 7);
    ASSERT_EQ(repeated.SizeRows(), 10);
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(repeated(4 + i, 1), repeated(1 + i % 3, 1)) << i;
    }
}

TEST(ReplicatedRuns, ShuffledFallbackRepeatsEveryRunOnceBeforeAnyTwice) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    const Table repeated = Repeated(factors, OneFactor(6), 6);
    std::set<float> added;
    for (int row = 7; row <= 12; ++row) {
        added.insert(repeated(row, 1));
    }
    EXPECT_EQ(added.size(), 6U);
}

TEST(ReplicatedRuns, ShuffledFallbackWrapsAroundInItsOwnOrder) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    const Table repeated = Repeated(factors, OneFactor(4), 12);
    for (int row = 9; row <= 16; ++row) {
        EXPECT_EQ(repeated(row, 1), repeated(row - 4, 1)) << row;
    }
}

TEST(ReplicatedRuns, FallbackShufflesUnlessResultsMustRepeat) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    // Ten shuffles of 20 runs all begin with the same run with a chance of 20^-9.
    std::set<float> first;
    for (int i = 0; i < 10; ++i) {
        first.insert(Repeated(factors, OneFactor(20), 1)(21, 1));
    }
    EXPECT_GT(first.size(), 1U);
}

// log10 |X'X| of a linear model.
double LogDeterminant(const Table& runs) {
    const auto linear = [](const oracles::Run& x) {
        oracles::Run terms{1};
        terms.insert(terms.end(), x.begin(), x.end());
        return terms;
    };
    const oracles::Table model = oracles::ModelMatrix(runs, runs.SizeColumns(), linear);
    return static_cast<double>(
        oracles::LogDeterminant(oracles::Product(oracles::Transposed(model), model)));
}

// The best that repeating any two runs can reach, by trying all pairs.
double BestOfAllPairs(const Table& table) {
    double best = -1e9;
    for (int i = 1; i <= table.SizeRows(); ++i) {
        for (int j = i; j <= table.SizeRows(); ++j) {
            Table repeated = table;
            repeated.InsertRow(table.SizeRows() + 1, table.GetRow(i));
            repeated.InsertRow(table.SizeRows() + 2, table.GetRow(j));
            best = std::max(best, LogDeterminant(repeated));
        }
    }
    return best;
}

TEST(ReplicatedRuns, RunsThatAddMostToTheDeterminantAreRepeated) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    int good = 0;
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937 engine(seed);
        Table table(9, 2);
        for (float& cell : table.Cells()) {
            cell = static_cast<float>(engine() % 21) / 10 - 1;
        }
        // 99 percent as a share of the third root: three columns.
        const double bound = BestOfAllPairs(table);
        const double reached = LogDeterminant(Repeated(factors, table, 2));
        EXPECT_LE(reached, bound + 1e-9) << "seed " << seed;
        good += reached >= bound + 3 * std::log10(0.99) ? 1 : 0;
    }
    EXPECT_GE(good, 18);
}

TEST(ReplicatedRuns, RunsOfAnUncodedDesignAreChosenInRealUnits) {
    const TestFactors factors = TestFactors().Quantitative(100, 200).Quantitative(0, 1);
    // The two centre runs add least.
    const Table table{{100, 0}, {200, 1}, {150, 0.5F}, {150, 0.5F}, {100, 1}, {200, 0}};
    OpenDesign design(factors, table);
    design.coded = false;
    design.AddReplicatedRuns(factors, Repeating(4));
    const Table repeated = design.Matrix();
    ASSERT_EQ(repeated.SizeRows(), 10);
    for (int row = 7; row <= 10; ++row) {
        EXPECT_NE(repeated(row, 1), 150) << row;
    }
}

TEST(ReplicatedRuns, CodeThatNoLevelHasIsAFaultOfTheDesign) {
    const TestFactors factors = TestFactors().Qualitative(2).Quantitatives(1);
    OpenDesign design(factors, Table{{65, -1}, {66, 1}, {-99, 0}});
    EXPECT_THROW(design.AddReplicatedRuns(factors, Repeating(1)), InvalidOperationException);
}

TEST(ReplicatedRuns, MatrixWithoutRowsStaysWithoutRows) {
    const TestFactors factors = TestFactors().Quantitatives(1);
    EXPECT_EQ(Repeated(factors, Table(0, 1), 3).SizeRows(), 0);
}

}  // namespace
