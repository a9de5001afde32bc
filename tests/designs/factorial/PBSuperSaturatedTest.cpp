#include "designs/factorial/PBSuperSaturated.h"

#include <algorithm>
#include <cmath>

#include "tests/support/BuiltDesign.h"
#include "tests/support/DesignMatchers.h"

namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using Table = NCDataMatrix<float>;

constexpr auto cType = EDesign::PB_SS;

TestFactors Many(int count) {
    return TestFactors().Quantitatives(count);
}

unsigned RunsFor(int count) {
    return built::BuilderOf(cType).GetDefaultRuns(Many(count), EObjective::Screening);
}

bool IsValidFor(const Factors& factors) {
    return built::BuilderOf(cType).IsValid(factors,
                                           DesignOptions(built::BuilderOf(cType), factors));
}

std::vector<unsigned> LegalRuns(int count, unsigned maxRuns) {
    const TestFactors factors = Many(count);
    DesignOptions options(built::BuilderOf(cType), factors);
    options.SetMaxRuns(maxRuns);
    return built::BuilderOf(cType).GetLegalRuns(factors, options);
}

Table CoreOf(int count, unsigned runs = 0) {
    const TestFactors factors = Many(count);
    return built::MatrixOf(cType, factors, built::CoreOptions(cType, factors, runs));
}

Table ComplementOf(int count, unsigned runs = 0) {
    const TestFactors factors = Many(count);
    const DesignOptions options = built::CoreOptions(cType, factors, runs);
    return PBSuperSaturated(factors, options).MakeComplementaryHalf(factors, options);
}

double ColumnProduct(const Table& table, int i, int j) {
    double sum = 0;
    for (int row = 1; row <= table.SizeRows(); ++row) {
        sum += table(row, i) * table(row, j);
    }
    return sum;
}

// E(s^2): mean square of the products of two columns (Booth and Cox 1962).
double MeanSquareProduct(const Table& table) {
    double sum = 0;
    int pairs = 0;
    for (int i = 1; i <= table.SizeColumns(); ++i) {
        for (int j = 1; j < i; ++j, ++pairs) {
            sum += std::pow(ColumnProduct(table, i, j), 2);
        }
    }
    return sum / pairs;
}

// Least E(s^2) of balanced designs of n runs and m factors (Nguyen 1996; Tang and Wu 1997).
double LeastMeanSquareProduct(int runs, int factors) {
    return static_cast<double>(runs) * runs * (factors - runs + 1) / ((factors - 1.0) * (runs - 1));
}

double LargestProduct(const Table& table) {
    double largest = 0;
    for (int i = 1; i <= table.SizeColumns(); ++i) {
        for (int j = 1; j < i; ++j) {
            largest = std::max(largest, std::abs(ColumnProduct(table, i, j)));
        }
    }
    return largest;
}

TEST(PBSuperSaturated, RunCountsAreHalvesOfTheNextWholeDesign) {
    EXPECT_EQ(RunsFor(0), 0);
    EXPECT_EQ(RunsFor(1), 4);
    EXPECT_EQ(RunsFor(6), 4);
    EXPECT_EQ(RunsFor(7), 6);
    EXPECT_EQ(RunsFor(12), 8);
    EXPECT_EQ(RunsFor(31), 18);
    EXPECT_EQ(RunsFor(32), 0);
}

TEST(PBSuperSaturated, OnlyMoreFactorsThanRunsAreValid) {
    EXPECT_TRUE(IsValidFor(Many(12)));
    EXPECT_TRUE(IsValidFor(Many(5)));
    EXPECT_FALSE(IsValidFor(Many(3)));
    EXPECT_FALSE(IsValidFor(Many(4)));
    for (int count = 0; count <= 40; ++count) {
        EXPECT_EQ(IsValidFor(Many(count)),
                  RunsFor(count) > 0 && static_cast<int>(RunsFor(count)) < count)
            << count << " factors";
    }
}

TEST(PBSuperSaturated, TheRulesOfTheWholeDesignHold) {
    EXPECT_FALSE(IsValidFor(Many(12).Qualitative(3)));
    EXPECT_FALSE(IsValidFor(Many(12).Formulation()));
    const TestFactors factors = Many(12);
    DesignOptions options(built::BuilderOf(cType), factors);
    options.SetMaxRuns(7);
    EXPECT_FALSE(built::BuilderOf(cType).IsValid(factors, options));
    options.SetMaxRuns(8);
    EXPECT_TRUE(built::BuilderOf(cType).IsValid(factors, options));
}

TEST(PBSuperSaturated, LegalRunsStayBelowTheFactors) {
    EXPECT_THAT(LegalRuns(12, 12000), ElementsAre(8, 10));
    EXPECT_THAT(LegalRuns(20, 12000), ElementsAre(12, 14, 16, 18));
    EXPECT_THAT(LegalRuns(20, 14), ElementsAre(12, 14));
    EXPECT_THAT(LegalRuns(20, 11), IsEmpty());
    EXPECT_THAT(LegalRuns(4, 12000), IsEmpty());
}

TEST(PBSuperSaturated, EveryOfferedDesignIsABalancedHalf) {
    for (int count = 5; count <= 31; ++count) {
        for (const unsigned runs : LegalRuns(count, 12000)) {
            const Table half = CoreOf(count, runs);
            ASSERT_EQ(half.SizeRows(), static_cast<int>(runs)) << count << " factors";
            ASSERT_EQ(half.SizeColumns(), count);
            ASSERT_THAT(half.Cells(), Each(::testing::AnyOf(-1, 1)))
                << count << " factors, " << runs << " runs";
            ASSERT_THAT(half, IsBalanced(Many(count))) << count << " factors, " << runs << " runs";
        }
    }
}

TEST(PBSuperSaturated, BothHalvesMakeTheWholeOrthogonalDesign) {
    for (int count = 5; count <= 31; ++count) {
        for (const unsigned runs : LegalRuns(count, 12000)) {
            Table whole = CoreOf(count, runs);
            EXPECT_THAT(whole, Not(HasOrthogonalColumns())) << count << " factors";
            whole.ConcatRows(ComplementOf(count, runs));
            EXPECT_EQ(whole.SizeRows(), 2 * static_cast<int>(runs));
            EXPECT_THAT(whole, HasOrthogonalColumns()) << count << " factors, " << runs << " runs";
        }
    }
}

TEST(PBSuperSaturated, TheHalvesAreTheRunsOfBothSignsOfTheBranchingColumn) {
    const Table whole = PB::MakePBDesignTable(13, 16, false);
    const Table half = CoreOf(12);
    const Table complement = ComplementOf(12);
    int low = 0;
    int high = 0;
    for (int row = 1; row <= 16; ++row) {
        std::vector<float> run = built::RowOf(whole, row);
        const bool below = run.back() < 0;
        run.pop_back();
        EXPECT_EQ(below ? built::RowOf(half, ++low) : built::RowOf(complement, ++high), run)
            << "row " << row;
    }
    EXPECT_EQ(low, 8);
    EXPECT_EQ(high, 8);
}

TEST(PBSuperSaturated, TheHalvesOfEqualRunsAreSeenAsNotComplementary) {
    Table twice = CoreOf(12);
    twice.ConcatRows(CoreOf(12));
    EXPECT_THAT(twice, Not(HasOrthogonalColumns()));
}

TEST(PBSuperSaturated, MakingTheOtherHalfLeavesTheDesign) {
    const TestFactors factors = Many(12);
    const DesignOptions options = built::CoreOptions(cType, factors);
    const PBSuperSaturated design(factors, options);
    const Table before = *design.GetDesignMatrix();
    static_cast<void>(design.MakeComplementaryHalf(factors, options));
    EXPECT_EQ(*design.GetDesignMatrix(), before);
}

TEST(PBSuperSaturated, FullHalvesReachTheLeastMeanSquareProduct) {
    // All 2n - 2 columns beside the branching one: Lin (1993), Technometrics 35, shows that such
    // halves reach the bound.
    for (int runs = 4; runs <= 16; runs += 2) {
        const int count = 2 * runs - 2;
        EXPECT_NEAR(MeanSquareProduct(CoreOf(count, static_cast<unsigned>(runs))),
                    LeastMeanSquareProduct(runs, count),
                    1e-9)
            << runs << " runs";
    }
}

TEST(PBSuperSaturated, SixRunsOfTenFactorsHaveMeanSquareProductFour) {
    // Lin (1993): 6^2 / 9.
    EXPECT_NEAR(MeanSquareProduct(CoreOf(10)), 4.0, 1e-12);
}

TEST(PBSuperSaturated, MeanSquareProductIsNeverBelowTheBound) {
    for (int count = 5; count <= 31; ++count) {
        for (const unsigned runs : LegalRuns(count, 12000)) {
            EXPECT_GE(MeanSquareProduct(CoreOf(count, runs)) + 1e-9,
                      LeastMeanSquareProduct(static_cast<int>(runs), count))
                << count << " factors, " << runs << " runs";
        }
    }
}

TEST(PBSuperSaturated, AFlippedCellIsSeenInTheMeanSquareProduct) {
    Table broken = CoreOf(22);
    broken(3, 5, -broken(3, 5));
    EXPECT_GT(std::abs(MeanSquareProduct(broken) - LeastMeanSquareProduct(12, 22)), 1e-3);
}

TEST(PBSuperSaturated, NoTwoFactorsAreOneWhereTheWholeIsNotRegular) {
    for (const int runs : {6, 10, 12, 14, 18}) {
        const int count = std::min(2 * runs - 2, 31);
        EXPECT_LT(LargestProduct(CoreOf(count, static_cast<unsigned>(runs))), runs)
            << runs << " runs";
    }
}

TEST(PBSuperSaturated, SomeFactorsAreOneWhereTheWholeIsRegular) {
    for (const int runs : {4, 8, 16}) {
        EXPECT_EQ(LargestProduct(CoreOf(2 * runs - 2, static_cast<unsigned>(runs))), runs)
            << runs << " runs";
    }
}

TEST(PBSuperSaturated, LevelFactorsAndCentrePointsAreFinishedAsElsewhere) {
    const TestFactors factors = Many(11).Qualitative(2);
    const Table table = built::MatrixOf(cType, factors);
    EXPECT_EQ(table.SizeRows(), 11);
    EXPECT_THAT(table, HasCentrePointRows(3, factors));
    EXPECT_THAT(built::ColumnOf(table, 12), Each(::testing::AnyOf(65, 66)));
}

TEST(PBSuperSaturated, TheOtherHalfStaysCoded) {
    const TestFactors factors = Many(11).Qualitative(2);
    const DesignOptions options = built::CoreOptions(cType, factors);
    EXPECT_THAT(PBSuperSaturated(factors, options).MakeComplementaryHalf(factors, options).Cells(),
                Each(::testing::AnyOf(-1, 1)));
}

TEST(PBSuperSaturated, OnlyOneBlockIsLegal) {
    const TestFactors factors = Many(12);
    const DesignBuilder& builder = built::BuilderOf(cType);
    EXPECT_THAT(builder.GetLegalBlocks(factors, DesignOptions(builder, factors), false),
                ElementsAre(1));
}

TEST(PBSuperSaturated, PriorityIsThatOfTheWholeDesign) {
    for (const int count : {2, 8, 12, 16, 60}) {
        EXPECT_EQ(built::BuilderOf(cType).GetPriority(Many(count)),
                  built::BuilderOf(EDesign::PB).GetPriority(Many(count)));
    }
    EXPECT_EQ(built::BuilderOf(cType).GetPriority(Many(8)), 3);
}

TEST(PBSuperSaturated, CloneKeepsClassAndMatrix) {
    const TestFactors factors = Many(12);
    const auto design = built::BuilderOf(cType).Build(factors, built::CoreOptions(cType, factors));
    const auto clone = design->Clone();
    EXPECT_NE(dynamic_cast<const PBSuperSaturated*>(clone.get()), nullptr);
    EXPECT_EQ(clone->GetDesignMatrix(), design->GetDesignMatrix());
}

}  // namespace
