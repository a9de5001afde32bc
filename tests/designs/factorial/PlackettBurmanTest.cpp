#include <algorithm>
#include <string>

#include "designs/factorial/PB.h"
#include "foundation/utl/Exceptions.h"
#include "tests/support/BuiltDesign.h"
#include "tests/support/DesignMatchers.h"

namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using Table = NCDataMatrix<float>;

constexpr auto cType = EDesign::PB;
constexpr int cSizes[] = {8, 12, 16, 20, 24, 28, 32, 36};

// All columns of the design of that many runs.
Table Saturated(int runs) {
    return PB::MakePBDesignTable(runs - 1, runs, false);
}

template <std::size_t N>
std::string Text(const PB::Signs<N>& signs) {
    std::string text;
    for (const float sign : signs) {
        text += sign == 1 ? '+' : sign == -1 ? '-' : '?';
    }
    return text;
}

unsigned RunsFor(const Factors& factors) {
    return built::BuilderOf(cType).GetDefaultRuns(factors, EObjective::Screening);
}

std::vector<unsigned> LegalRuns(int factorCount, unsigned maxRuns) {
    const TestFactors factors = TestFactors().Quantitatives(factorCount);
    DesignOptions options(built::BuilderOf(cType), factors);
    options.SetMaxRuns(maxRuns);
    return built::BuilderOf(cType).GetLegalRuns(factors, options);
}

std::unique_ptr<PB> BuiltPB(const Factors& factors, const DesignOptions& options) {
    auto design = built::BuilderOf(cType).Build(factors, options);
    return std::unique_ptr<PB>(dynamic_cast<PB*>(design.release()));
}

// +1 for 0 and the quadratic residues modulo a prime, -1 for the others, by trying all squares.
std::string LegendreText(int prime) {
    std::string text(static_cast<std::size_t>(prime), '-');
    for (int i = 0; i < prime; ++i) {
        text[static_cast<std::size_t>(i * i % prime)] = '+';
    }
    return text;
}

bool IsRotationOf(const std::string& text, const std::string& other) {
    return text.size() == other.size() && (other + other).find(text) != std::string::npos;
}

// Products of two columns over all runs.
double ProductSum(const Table& table, int i, int j) {
    double sum = 0;
    for (int row = 1; row <= table.SizeRows(); ++row) {
        sum += table(row, i) * table(row, j);
    }
    return sum;
}

// A main effect against all products of two others.
double LargestTwoFactorAlias(const Table& table) {
    double largest = 0;
    for (int i = 1; i <= table.SizeColumns(); ++i) {
        for (int j = 1; j < i; ++j) {
            for (int k = 1; k <= table.SizeColumns(); ++k) {
                double sum = 0;
                for (int row = 1; row <= table.SizeRows(); ++row) {
                    sum += table(row, i) * table(row, j) * table(row, k);
                }
                largest = std::max(largest, k != i && k != j ? std::abs(sum) : 0);
            }
        }
    }
    return largest;
}

TEST(PlackettBurman, EverySizeHasOnlySigns) {
    for (const int runs : cSizes) {
        const Table table = Saturated(runs);
        EXPECT_EQ(table.SizeRows(), runs);
        EXPECT_EQ(table.SizeColumns(), runs - 1);
        EXPECT_THAT(table.Cells(), Each(::testing::AnyOf(-1, 1))) << runs << " runs";
    }
}

TEST(PlackettBurman, EverySizeIsBalanced) {
    for (const int runs : cSizes) {
        EXPECT_THAT(Saturated(runs), IsBalanced(TestFactors().Quantitatives(runs - 1)))
            << runs << " runs";
    }
}

TEST(PlackettBurman, EverySizeIsOrthogonal) {
    for (const int runs : cSizes) {
        EXPECT_THAT(Saturated(runs), HasOrthogonalColumns()) << runs << " runs";
    }
}

TEST(PlackettBurman, EverySizeIsOfResolutionThree) {
    for (const int runs : cSizes) {
        EXPECT_THAT(Saturated(runs), HasResolutionAtLeast(3)) << runs << " runs";
    }
    EXPECT_THAT(Saturated(8), Not(HasResolutionAtLeast(4)));
}

TEST(PlackettBurman, TheProofSeesEveryFlippedCell) {
    for (const int runs : cSizes) {
        const Table table = Saturated(runs);
        const TestFactors factors = TestFactors().Quantitatives(runs - 1);
        for (int column = 1; column < runs; ++column) {
            Table broken = table;
            const int row = 1 + (7 * column) % runs;
            broken(row, column, -broken(row, column));
            EXPECT_THAT(broken, Not(HasOrthogonalColumns())) << runs << " runs, " << column;
            EXPECT_THAT(broken, Not(IsBalanced(factors))) << runs << " runs, " << column;
        }
    }
}

TEST(PlackettBurman, AFlippedGeneratorSignIsSeen) {
    // The whole design from a generator with one wrong sign, cell by cell as the table makes it.
    for (std::size_t flipped = 0; flipped < PB::pb20.size(); ++flipped) {
        Table broken = Saturated(20);
        for (int row = 1; row <= 19; ++row) {
            const int column = (row - 1 - static_cast<int>(flipped) + 19) % 19 + 1;
            broken(row, column, -broken(row, column));
        }
        EXPECT_THAT(broken, Not(HasOrthogonalColumns())) << "sign " << flipped;
    }
}

TEST(PlackettBurman, PrimeGeneratorsAreQuadraticResidues) {
    // Plackett and Burman (1946) make the designs of p + 1 runs, p a prime of the form 4t - 1, of
    // the quadratic residues modulo p (Paley 1933); rotations and reversals give the same design.
    const auto isResidueRow = [](std::string text, int prime) {
        const std::string legendre = LegendreText(prime);
        const bool forward = IsRotationOf(text, legendre);
        std::ranges::reverse(text);
        return forward || IsRotationOf(text, legendre);
    };
    EXPECT_TRUE(isResidueRow(Text(PB::pb8), 7));
    EXPECT_TRUE(isResidueRow(Text(PB::pb12), 11));
    EXPECT_TRUE(isResidueRow(Text(PB::pb20), 19));
    EXPECT_TRUE(isResidueRow(Text(PB::pb24), 23));
    EXPECT_FALSE(isResidueRow(Text(PB::pb12).replace(0, 1, "-"), 11));
}

TEST(PlackettBurman, FirstRowsArePublished) {
    // Plackett and Burman (1946), "The design of optimum multifactorial experiments",
    // Biometrika 33.
    EXPECT_EQ(Text(PB::pb8), "+++-+--");
    EXPECT_EQ(Text(PB::pb12), "++-+++---+-");
    EXPECT_EQ(Text(PB::pb16), "++++-+-++--+---");
    EXPECT_EQ(Text(PB::pb20), "++--++++-+-+----++-");
    EXPECT_EQ(Text(PB::pb24), "+++++-+-++--++--+-+----");
}

TEST(PlackettBurman, LargeGeneratorsAreThePublishedRowsTurned) {
    // The same source begins the rows of 32 and 36 runs elsewhere, and reads that of 36 backwards.
    EXPECT_TRUE(IsRotationOf("----+-+-+++-++---+++++--++-+--+", Text(PB::pb32)));
    std::string backwards = Text(PB::pb36);
    std::ranges::reverse(backwards);
    EXPECT_TRUE(IsRotationOf("-+-+++---+++++-+++--+----+-+-++--+-", backwards));
}

TEST(PlackettBurman, PowerOfTwoSizesAreRegularAndTheOthersAreNot) {
    // In a regular fraction the product of any two columns is a third one, up to its sign.
    for (const int runs : cSizes) {
        const bool powerOfTwo = (runs & (runs - 1)) == 0;
        EXPECT_EQ(LargestTwoFactorAlias(Saturated(runs)) == runs, powerOfTwo) << runs << " runs";
    }
}

TEST(PlackettBurman, EightRunsOfThreeFactorsAreThePrintedOnes) {
    const Table table = PB::MakePBDesignTable(3, 8, false);
    EXPECT_THAT(built::RowOf(table, 1), ElementsAre(1, -1, -1));
    EXPECT_THAT(built::RowOf(table, 2), ElementsAre(1, 1, -1));
    EXPECT_THAT(built::RowOf(table, 7), ElementsAre(-1, -1, 1));
    EXPECT_THAT(built::RowOf(table, 8), ElementsAre(-1, -1, -1));
}

TEST(PlackettBurman, FewerFactorsTakeTheFirstColumns) {
    for (const int runs : cSizes) {
        Table all = Saturated(runs);
        all.RemoveColumns(6, runs - 6);
        EXPECT_EQ(PB::MakePBDesignTable(5, runs, false), all) << runs << " runs";
    }
}

TEST(PlackettBurman, OtherRunCountsStayBlank) {
    EXPECT_THAT(PB::MakePBDesignTable(3, 10, false).Cells(), Each(-99));
    EXPECT_THAT(PB::MakePBDesignTable(3, 40, true).Cells(), Each(-99));
}

TEST(PlackettBurman, ColumnsBeyondTheDesignStayBlankButForTheLastRun) {
    for (const int runs : cSizes) {
        const Table table = PB::MakePBDesignTable(runs + 1, runs, false);
        EXPECT_EQ(table(runs, runs + 1), -1) << runs << " runs";
        for (int row = 1; row < runs; ++row) {
            EXPECT_EQ(table(row, runs), -99) << runs << " runs, row " << row;
            EXPECT_EQ(table(row, runs + 1), -99) << runs << " runs, row " << row;
        }
    }
}

TEST(PlackettBurman, BlocksAreOneMoreOrthogonalColumn) {
    const TestFactors factors = TestFactors().Quantitatives(9).Qualitative(2);
    DesignOptions options = built::CoreOptions(cType, factors);
    options.SetBlocks(2);
    const Table table = built::MatrixOf(cType, factors, options);
    ASSERT_EQ(table.SizeColumns(), 11);
    EXPECT_THAT(built::ColumnOf(table, 11), Each(::testing::AnyOf(65, 66)));
    EXPECT_THAT(built::ColumnOf(table, 10), Each(::testing::AnyOf(65, 66)));
    EXPECT_THAT(table, HasOrthogonalColumns());
    EXPECT_THAT(table, IsBalanced(factors));
}

TEST(PlackettBurman, BlocksAreOfferedWhileAColumnIsLeft) {
    const DesignBuilder& builder = built::BuilderOf(cType);
    const TestFactors six = TestFactors().Quantitatives(6);
    const TestFactors seven = TestFactors().Quantitatives(7);
    EXPECT_THAT(builder.GetLegalBlocks(six, DesignOptions(builder, six), false), ElementsAre(1, 2));
    EXPECT_THAT(builder.GetLegalBlocks(seven, DesignOptions(builder, seven), false),
                ElementsAre(1));
}

TEST(PlackettBurman, DesignHasThreeCentrePointsByDefault) {
    const TestFactors factors = TestFactors().Quantitatives(3).Qualitative(2);
    const Table table = built::MatrixOf(cType, factors);
    EXPECT_EQ(table.SizeRows(), 11);
    EXPECT_THAT(table, HasCentrePointRows(3, factors));
}

TEST(PlackettBurman, RunCountsFollowTheFactors) {
    const std::vector<std::pair<int, unsigned>> expected{{0, 0},
                                                         {1, 0},
                                                         {2, 8},
                                                         {7, 8},
                                                         {8, 12},
                                                         {11, 12},
                                                         {12, 16},
                                                         {15, 16},
                                                         {16, 20},
                                                         {19, 20},
                                                         {20, 24},
                                                         {23, 24},
                                                         {24, 28},
                                                         {27, 28},
                                                         {28, 32},
                                                         {31, 32},
                                                         {32, 36},
                                                         {33, 0}};
    for (const auto& [count, runs] : expected) {
        EXPECT_EQ(RunsFor(TestFactors().Quantitatives(count)), runs) << count << " factors";
    }
}

TEST(PlackettBurman, EveryOfferedDesignIsOrthogonal) {
    for (int count = 2; count <= 32; ++count) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        for (const unsigned runs : LegalRuns(count, 12000)) {
            const Table table =
                built::MatrixOf(cType, factors, built::CoreOptions(cType, factors, runs));
            ASSERT_EQ(table.SizeRows(), static_cast<int>(runs));
            ASSERT_THAT(table, HasOrthogonalColumns()) << count << " factors, " << runs << " runs";
        }
    }
}

TEST(PlackettBurman, LegalRunsClimbInFoursUnderTheLimit) {
    EXPECT_THAT(LegalRuns(10, 12000), ElementsAre(12, 16, 20, 24, 28, 32, 36));
    EXPECT_THAT(LegalRuns(10, 20), ElementsAre(12, 16, 20));
    EXPECT_THAT(LegalRuns(10, 11), IsEmpty());
    EXPECT_THAT(LegalRuns(32, 12000), ElementsAre(36));
}

TEST(PlackettBurman, ValidityEndsWithTheTable) {
    const DesignBuilder& builder = built::BuilderOf(cType);
    for (int count = 0; count <= 40; ++count) {
        const TestFactors factors = TestFactors().Quantitatives(count);
        EXPECT_EQ(builder.IsValid(factors, DesignOptions(builder, factors)),
                  count >= 2 && count <= 32)
            << count << " factors";
    }
}

TEST(PlackettBurman, WrongFactorsModelsAndLimitsAreInvalid) {
    const DesignBuilder& builder = built::BuilderOf(cType);
    const auto isValid = [&](const Factors& factors) {
        return builder.IsValid(factors, DesignOptions(builder, factors));
    };
    EXPECT_FALSE(isValid(TestFactors().Quantitatives(3).Qualitative(3)));
    EXPECT_FALSE(isValid(TestFactors().Quantitatives(3).Formulation()));
    EXPECT_FALSE(isValid(TestFactors().Quantitatives(3).WithFiller(false)));
    EXPECT_TRUE(isValid(TestFactors().Quantitatives(3).WithFiller(true)));
    const TestFactors factors = TestFactors().Quantitatives(8);
    const DesignOptions valid(builder, factors);
    ASSERT_TRUE(builder.IsValid(factors, valid));
    DesignOptions options = valid;
    options.SetModel(EModel::Interaction);
    EXPECT_FALSE(builder.IsValid(factors, options));
    options = valid;
    options.SetObjective(EObjective::Optimization);
    EXPECT_FALSE(builder.IsValid(factors, options));
    options = valid;
    options.SetMaxRuns(11);
    EXPECT_FALSE(builder.IsValid(factors, options));
    options = valid;
    built::Constrain(options, factors);
    EXPECT_FALSE(builder.IsValid(factors, options));
    EXPECT_EQ(builder.Build(factors, options), nullptr);
}

TEST(PlackettBurman, DefaultModelIsLinearForScreeningOnly) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    const DesignBuilder& builder = built::BuilderOf(cType);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::RobustnessVerification), EModel::Linear);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::SystemCharacterization), EModel::None);
}

TEST(PlackettBurman, FoldOverReversesTheDesignRunsBehindTheCentrePoints) {
    const TestFactors factors = TestFactors().Quantitatives(5);
    const DesignOptions options(built::BuilderOf(cType), factors);
    const auto design = BuiltPB(factors, options);
    ASSERT_NE(design, nullptr);
    const Table before = *design->GetDesignMatrix();
    ASSERT_EQ(before.SizeRows(), 11);
    design->FoldOver(0, factors, options);
    const Table after = *design->GetDesignMatrix();
    ASSERT_EQ(after.SizeRows(), 19);
    for (int row = 1; row <= 11; ++row) {
        EXPECT_EQ(built::RowOf(after, row), built::RowOf(before, row)) << "row " << row;
    }
    for (int row = 1; row <= 8; ++row) {
        for (int column = 1; column <= 5; ++column) {
            EXPECT_EQ(after(11 + row, column), -before(row, column)) << row << ", " << column;
        }
    }
}

TEST(PlackettBurman, FoldOverAddsNoCentrePoints) {
    const TestFactors factors = TestFactors().Quantitatives(5);
    const DesignOptions options(built::BuilderOf(cType), factors);
    const auto design = BuiltPB(factors, options);
    design->FoldOver(2, factors, options);
    EXPECT_EQ(design->GetDesignMatrix()->SizeRows(), 19);
}

TEST(PlackettBurman, FoldOverReversesLetterCodesLikeAnyValue) {
    const TestFactors factors = TestFactors().Quantitative().Qualitative(2);
    const DesignOptions options = built::CoreOptions(cType, factors);
    const auto design = BuiltPB(factors, options);
    design->FoldOver(0, factors, options);
    EXPECT_EQ((*design->GetDesignMatrix())(9, 2), -(*design->GetDesignMatrix())(1, 2));
    EXPECT_THAT(built::ColumnOf(*design->GetDesignMatrix(), 2), Contains(-66));
}

TEST(PlackettBurman, FoldOverClearsMainEffectsOfTwoFactorInteractions) {
    for (const int runs : cSizes) {
        const TestFactors factors = TestFactors().Quantitatives(std::min(runs - 1, 32));
        const DesignOptions options =
            built::CoreOptions(cType, factors, static_cast<unsigned>(runs));
        const auto design = BuiltPB(factors, options);
        EXPECT_THAT(*design->GetDesignMatrix(), Not(IsFoldOver())) << runs << " runs";
        design->FoldOver(0, factors, options);
        EXPECT_THAT(*design->GetDesignMatrix(), IsFoldOver()) << runs << " runs";
        EXPECT_EQ(LargestTwoFactorAlias(*design->GetDesignMatrix()), 0) << runs << " runs";
    }
}

TEST(PlackettBurman, FoldOverLeavesClonesAsTheyWere) {
    const TestFactors factors = TestFactors().Quantitatives(5);
    const DesignOptions options = built::CoreOptions(cType, factors);
    const auto design = BuiltPB(factors, options);
    const auto clone = design->Clone();
    design->FoldOver(3, factors, options);
    EXPECT_EQ(*clone->GetDesignMatrix(), PB::MakePBDesignTable(5, 8, false));
}

TEST(PlackettBurman, FoldOverWithoutEnoughRunsIsRefused) {
    const TestFactors factors = TestFactors().Quantitatives(5);
    const DesignOptions options = built::CoreOptions(cType, factors);
    const auto design = BuiltPB(factors, options);
    EXPECT_THROW(design->FoldOver(0, factors, built::CoreOptions(cType, factors, 12)),
                 InvalidOperationException);
    design->ClearDesignMatrix();
    EXPECT_THROW(design->FoldOver(0, factors, options), InvalidOperationException);
}

TEST(PlackettBurman, ColumnProductsSumToZeroInTheBandedDesign) {
    // The design of 28 runs by its definition, apart from the matcher.
    const Table table = Saturated(28);
    for (int i = 1; i <= 27; ++i) {
        for (int j = 1; j < i; ++j) {
            EXPECT_EQ(ProductSum(table, i, j), 0) << i << ", " << j;
        }
    }
}

}  // namespace
