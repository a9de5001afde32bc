#include "designs/factorial/DefinitiveScreening.h"

#include <cmath>
#include <map>
#include <string>

#include "designs/factorial/DefinitiveScreeningTables.h"
#include "tests/oracles/DenseOracles.h"
#include "tests/support/BuiltDesign.h"
#include "tests/support/DesignMatchers.h"

namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using Table = NCDataMatrix<float>;

constexpr auto cType = EDesign::DefinitiveScreening;

const std::map<int, Table>& Matrices() {
    return DefinitiveScreeningTables::GetMatrices();
}

Table OddRows(const Table& design) {
    Table half(design.SizeRows() / 2, design.SizeColumns());
    for (int row = 1; row <= half.SizeRows(); ++row) {
        half.SetRow(row, design.GetRow(2 * row - 1));
    }
    return half;
}

// What breaks the form of pairs of runs with one 0 each; empty when nothing does.
std::string FormFault(const Table& design) {
    const int columns = design.SizeColumns();
    if (design.SizeRows() != 2 * columns) {
        return "the shape";
    }
    for (int row = 1; row <= design.SizeRows(); ++row) {
        for (int column = 1; column <= columns; ++column) {
            const float cell = design(row, column);
            const bool zero = column == (row + 1) / 2;
            const float mirrored = design(row % 2 == 1 ? row + 1 : row - 1, column);
            if (std::abs(cell) != (zero ? 0.0F : 1.0F) || mirrored != -cell ||
                (zero && std::signbit(cell))) {
                return "row " + std::to_string(row) + ", column " + std::to_string(column);
            }
        }
    }
    return "";
}

// How many pairs of columns have which inner product, its sign left out.
std::map<int, int> InnerProducts(const Table& design) {
    std::map<int, int> counts;
    for (int i = 1; i <= design.SizeColumns(); ++i) {
        for (int j = 1; j < i; ++j) {
            float sum = 0;
            for (int row = 1; row <= design.SizeRows(); ++row) {
                sum += design(row, i) * design(row, j);
            }
            ++counts[static_cast<int>(std::abs(sum))];
        }
    }
    return counts;
}

std::map<int, int> ExpectedInnerProducts(int columns) {
    const int pairs = columns * (columns - 1) / 2;
    if (columns == 21) {
        return {{2, 200}, {6, 10}};
    }
    if (columns == 22) {
        return {{0, 209}, {4, 22}};
    }
    return {{columns % 2 == 0 ? 0 : 2, pairs}};
}

// |X'X|^(1/m) over that of orthogonal columns of the same length.
double MainEffectEfficiency(const Table& design) {
    const auto x = oracles::ToTable(design);
    const auto information = oracles::Product(oracles::Transposed(x), x);
    const int columns = design.SizeColumns();
    return static_cast<double>(std::pow(10.0L, oracles::LogDeterminant(information) / columns)) /
           (design.SizeRows() - 2);
}

// Printed rows of the square matrix, as 0, + and -.
std::vector<std::string> PrintedHalf(int columns) {
    std::vector<std::string> rows;
    const Table half = OddRows(Matrices().at(columns));
    for (int row = 1; row <= columns; ++row) {
        rows.emplace_back();
        for (const float cell : half.RowSpan(row)) {
            rows.back() += cell == 0 ? '0' : cell > 0 ? '+' : '-';
        }
    }
    return rows;
}

unsigned RunsFor(const Factors& factors) {
    return built::BuilderOf(cType).GetDefaultRuns(factors, EObjective::Screening);
}

std::vector<unsigned> LegalRuns(const Factors& factors) {
    return built::BuilderOf(cType).GetLegalRuns(factors, DesignOptions());
}

DesignOptions DefaultOptions(const Factors& factors) {
    return {built::BuilderOf(cType), factors};
}

bool IsValidFor(const Factors& factors) {
    return built::BuilderOf(cType).IsValid(factors, DefaultOptions(factors));
}

// The design without its centre points.
Table CoreOf(const Factors& factors, unsigned runs = 0) {
    DesignOptions options = DefaultOptions(factors);
    options.SetCenterPoints(1);
    options.SetRuns(runs > 0 ? runs : options.GetRuns());
    Table table = built::MatrixOf(cType, factors, options);
    table.RemoveRows(table.SizeRows(), 1);
    return table;
}

TEST(DefinitiveScreening, MatricesStandForFourToThirtyColumns) {
    std::vector<int> keys;
    for (const auto& [columns, design] : Matrices()) {
        keys.push_back(columns);
    }
    ASSERT_EQ(keys.size(), 27);
    EXPECT_EQ(keys.front(), 4);
    EXPECT_EQ(keys.back(), 30);
}

TEST(DefinitiveScreening, EveryMatrixIsOfMirroredPairsWithOneZeroEach) {
    for (const auto& [columns, design] : Matrices()) {
        EXPECT_EQ(design.SizeColumns(), columns);
        EXPECT_EQ(FormFault(design), "") << columns << " columns";
        EXPECT_THAT(design, IsFoldOver()) << columns << " columns";
    }
}

TEST(DefinitiveScreening, EveryMatrixHasFullRank) {
    for (const auto& [columns, design] : Matrices()) {
        EXPECT_GT(MainEffectEfficiency(design), 0.86) << columns << " columns";
    }
}

TEST(DefinitiveScreening, EveryColumnHasTheSameSumOfSquares) {
    for (const auto& [columns, design] : Matrices()) {
        for (int column = 1; column <= columns; ++column) {
            float sum = 0;
            for (const float cell : built::ColumnOf(design, column)) {
                sum += cell * cell;
            }
            EXPECT_EQ(sum, 2 * (columns - 1)) << columns << " columns, column " << column;
        }
    }
}

TEST(DefinitiveScreening, InnerProductsAreTheLeastKnown) {
    for (const auto& [columns, design] : Matrices()) {
        EXPECT_EQ(InnerProducts(design), ExpectedInnerProducts(columns)) << columns << " columns";
    }
}

TEST(DefinitiveScreening, EvenSizesAreConferenceMatricesExceptTwentyTwo) {
    for (const auto& [columns, design] : Matrices()) {
        const bool conference = columns % 2 == 0 && columns != 22;
        if (conference) {
            EXPECT_THAT(design, HasOrthogonalColumns()) << columns << " columns";
            EXPECT_NEAR(MainEffectEfficiency(design), 1.0, 1e-9) << columns << " columns";
        } else {
            EXPECT_THAT(design, Not(HasOrthogonalColumns())) << columns << " columns";
        }
    }
}

TEST(DefinitiveScreening, MainEffectsAreClearOfSquaresAndInteractions) {
    for (const auto& [columns, design] : Matrices()) {
        for (int i = 1; i <= columns; ++i) {
            for (int j = i; j <= columns; ++j) {
                for (int k = 1; k <= columns; ++k) {
                    float sum = 0;
                    for (int row = 1; row <= design.SizeRows(); ++row) {
                        sum += design(row, i) * design(row, j) * design(row, k);
                    }
                    ASSERT_EQ(sum, 0) << columns << " columns: " << i << ", " << j << ", " << k;
                }
            }
        }
    }
}

TEST(DefinitiveScreening, TheProofsSeeAChangedCell) {
    for (const auto& [columns, design] : Matrices()) {
        Table flipped = design;
        flipped(3, 1, -flipped(3, 1));
        EXPECT_EQ(FormFault(flipped), "row 3, column 1") << columns << " columns";
        EXPECT_THAT(flipped, Not(IsFoldOver())) << columns << " columns";
        // Flipped in both runs of the pair: the form stays, the inner products do not.
        flipped(4, 1, -flipped(4, 1));
        EXPECT_EQ(FormFault(flipped), "") << columns << " columns";
        EXPECT_NE(InnerProducts(flipped), ExpectedInnerProducts(columns)) << columns << " columns";
    }
}

TEST(DefinitiveScreening, TheRankProofSeesTheSingularCore) {
    // A conference matrix less its first row and column has the inner products, but no inverse.
    Table core = OddRows(Matrices().at(18));
    core.RemoveRows(1, 1);
    core.RemoveColumns(1, 1);
    Table design(34, 17);
    for (int row = 1; row <= 17; ++row) {
        for (int column = 1; column <= 17; ++column) {
            design(2 * row - 1, column, core(row, column));
            design(2 * row, column, 0.0F - core(row, column));
        }
    }
    EXPECT_EQ(FormFault(design), "");
    EXPECT_EQ(InnerProducts(design), ExpectedInnerProducts(17));
    EXPECT_LT(MainEffectEfficiency(design), 0.5);
}

TEST(DefinitiveScreening, SmallestMatricesAreThePrintedOnes) {
    EXPECT_THAT(PrintedHalf(4), ElementsAre("0+--", "-0-+", "--0-", "-++0"));
    EXPECT_THAT(PrintedHalf(5), ElementsAre("0++--", "+0--+", "+-0+-", "+-+0+", "++++0"));
    EXPECT_THAT(PrintedHalf(6),
                ElementsAre("0+----", "+0-++-", "--0+--", "-++0+-", "+-+-0-", "++++-0"));
}

TEST(DefinitiveScreening, SymmetricAndSkewMatricesFollowTheirOrder) {
    // Paley (1933): symmetric for orders of 2 modulo 4, skew for orders of 0 modulo 4.
    for (const int columns : {8, 10, 12, 14, 16, 18, 20, 24, 26, 28, 30}) {
        const Table half = OddRows(Matrices().at(columns));
        const float sign = columns % 4 == 2 ? 1.0F : -1.0F;
        for (int i = 1; i <= columns; ++i) {
            for (int j = 1; j < i; ++j) {
                ASSERT_EQ(half(i, j), sign * half(j, i)) << columns << " columns";
            }
        }
    }
}

TEST(DefinitiveScreening, FirstRunsOfFourFactors) {
    const Table table = CoreOf(TestFactors().Quantitatives(4));
    EXPECT_THAT(built::RowOf(table, 1), ElementsAre(0, 1, -1, -1));
    EXPECT_THAT(built::RowOf(table, 2), ElementsAre(0, -1, 1, 1));
}

TEST(DefinitiveScreening, ThreeFactorsDropTheLastColumnOfFour) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    EXPECT_EQ(RunsFor(factors), 8);
    EXPECT_THAT(LegalRuns(factors), ElementsAre(8, 10, 12));
    Table expected = Matrices().at(4);
    expected.RemoveColumns(4, 1);
    EXPECT_EQ(CoreOf(factors), expected);
}

TEST(DefinitiveScreening, RunsFollowTheFactors) {
    const TestFactors six = TestFactors().Quantitatives(6);
    EXPECT_EQ(RunsFor(six), 12);
    EXPECT_THAT(LegalRuns(six), ElementsAre(12, 14, 16, 18));
    const TestFactors thirty = TestFactors().Quantitatives(30);
    EXPECT_EQ(RunsFor(thirty), 60);
    EXPECT_THAT(LegalRuns(thirty), ElementsAre(60));
}

TEST(DefinitiveScreening, FactorCountsOutsideTheMatricesAreInvalid) {
    for (int count = 0; count <= 40; ++count) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        EXPECT_EQ(IsValidFor(factors), count >= 3 && count <= 30) << count << " factors";
        EXPECT_EQ(RunsFor(factors) > 0, count >= 3 && count <= 30) << count << " factors";
    }
}

TEST(DefinitiveScreening, MoreRunsThanNeededDropTheLastColumns) {
    const TestFactors factors = TestFactors().Quantitatives(9);
    for (const unsigned runs : {18U, 20U, 22U, 24U}) {
        Table expected = Matrices().at(static_cast<int>(runs) / 2);
        expected.RemoveColumns(10, expected.SizeColumns() - 9);
        EXPECT_EQ(CoreOf(factors, runs), expected) << runs << " runs";
    }
}

TEST(DefinitiveScreening, DroppedColumnsLeaveGoodDesigns) {
    for (int count = 3; count <= 30; ++count) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        for (const unsigned runs : LegalRuns(factors)) {
            EXPECT_GT(MainEffectEfficiency(CoreOf(factors, runs)), 0.86)
                << count << " factors, " << runs << " runs";
        }
    }
}

TEST(DefinitiveScreening, CentrePointsAreAddedBehind) {
    const TestFactors factors = TestFactors().Quantitatives(4).MultilevelOf(3);
    const Table table = built::MatrixOf(cType, factors);
    EXPECT_EQ(table.SizeRows(), 13);
    EXPECT_THAT(table, HasCentrePointRows(3, factors));
    EXPECT_THAT(built::ColumnOf(table, 5), Each(::testing::AnyOf(65, 66, 67)));
}

TEST(DefinitiveScreening, AtLeastOneCentrePointIsNeeded) {
    const TestFactors factors = TestFactors().Quantitatives(6);
    DesignOptions options = DefaultOptions(factors);
    options.SetCenterPoints(0);
    EXPECT_FALSE(built::BuilderOf(cType).IsValid(factors, options));
    EXPECT_EQ(built::BuilderOf(cType).Build(factors, options), nullptr);
    options.SetCenterPoints(1);
    EXPECT_TRUE(built::BuilderOf(cType).IsValid(factors, options));
}

TEST(DefinitiveScreening, OnlyScreeningWithAQuadraticModelIsValid) {
    const TestFactors factors = TestFactors().Quantitatives(6);
    const DesignBuilder& builder = built::BuilderOf(cType);
    DesignOptions options = DefaultOptions(factors);
    options.SetObjective(EObjective::RobustnessVerification);
    EXPECT_TRUE(builder.IsValid(factors, options));
    options.SetObjective(EObjective::Optimization);
    EXPECT_FALSE(builder.IsValid(factors, options));
    options = DefaultOptions(factors);
    options.SetModel(EModel::Interaction);
    EXPECT_FALSE(builder.IsValid(factors, options));
}

TEST(DefinitiveScreening, ForeignRunCountsAreInvalid) {
    const TestFactors factors = TestFactors().Quantitatives(6);
    DesignOptions options = DefaultOptions(factors);
    for (unsigned runs = 0; runs <= 70; ++runs) {
        options.SetRuns(runs);
        EXPECT_EQ(built::BuilderOf(cType).IsValid(factors, options),
                  runs >= 12 && runs <= 18 && runs % 2 == 0)
            << runs << " runs";
    }
}

TEST(DefinitiveScreening, FactorsWithoutThreeNumericLevelsAreInvalid) {
    EXPECT_FALSE(IsValidFor(TestFactors().Quantitatives(5).Qualitative(3)));
    EXPECT_FALSE(IsValidFor(TestFactors().Quantitatives(5).MultilevelOf(2)));
    EXPECT_FALSE(IsValidFor(TestFactors().Quantitatives(5).MultilevelOf(4)));
    EXPECT_FALSE(IsValidFor(TestFactors().Quantitatives(5).Formulation()));
    EXPECT_THAT(LegalRuns(TestFactors().Quantitatives(5).Formulation()), IsEmpty());
}

TEST(DefinitiveScreening, FormulationFactorsOfAFreeSumAreProcessFactors) {
    EXPECT_TRUE(IsValidFor(TestFactors().Quantitatives(3).Formulation().WithFiller(true)));
    EXPECT_FALSE(IsValidFor(TestFactors().Quantitatives(3).Formulation().WithFiller(false)));
}

TEST(DefinitiveScreening, FreeSumOffersRunsForLevelFactorsThatAreRefused) {
    const TestFactors factors =
        TestFactors().Quantitatives(3).Formulation().Qualitative(2).WithFiller(true);
    EXPECT_EQ(RunsFor(factors), 10);
    EXPECT_FALSE(IsValidFor(factors));
}

TEST(DefinitiveScreening, RunLimitAndConstraintsAreNotLookedAt) {
    const TestFactors factors = TestFactors().Quantitatives(6);
    DesignOptions options = DefaultOptions(factors);
    options.SetMaxRuns(4);
    built::Constrain(options, factors);
    EXPECT_TRUE(built::BuilderOf(cType).IsValid(factors, options));
}

TEST(DefinitiveScreening, ModelIsQuadraticUnderEveryObjective) {
    const TestFactors factors = TestFactors().Quantitatives(6);
    const DesignBuilder& builder = built::BuilderOf(cType);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::Screening), EModel::Quadratic);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::Optimization), EModel::Quadratic);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::None), EModel::Quadratic);
}

TEST(DefinitiveScreening, PriorityIsTen) {
    EXPECT_EQ(built::BuilderOf(cType).GetPriority(TestFactors().Quantitatives(50)), 10);
}

TEST(DefinitiveScreening, WithoutAMatrixTheDesignStaysEmpty) {
    const TestFactors factors = TestFactors().Quantitatives(6);
    DesignOptions options = DefaultOptions(factors);
    options.SetRuns(13);
    EXPECT_EQ(DefinitiveScreeningDesign(factors, options).GetDesignMatrix(), nullptr);
}

TEST(DefinitiveScreening, BuildingLeavesTheMatricesAsTheyWere) {
    const Table before = Matrices().at(5);
    static_cast<void>(CoreOf(TestFactors().MultilevelOf(3).Quantitatives(3)));
    static_cast<void>(CoreOf(TestFactors().MultilevelOf(3).Quantitatives(4)));
    EXPECT_EQ(Matrices().at(5), before);
}

}  // namespace
