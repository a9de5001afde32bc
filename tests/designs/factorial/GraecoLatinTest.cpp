#include "designs/factorial/GraecoLatin.h"

#include <string>
#include <thread>

#include "foundation/utl/Exceptions.h"
#include "tests/support/BuiltDesign.h"
#include "tests/support/DesignMatchers.h"

namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Not;
using Table = NCDataMatrix<float>;

struct Family {
    EDesign::Type type;
    int runs;
    int minFactors;
    int columns;
};

constexpr Family cFamilies[] = {
    {EDesign::L9, 9, 2, 4},
    {EDesign::L18, 18, 2, 8},
    {EDesign::L27, 27, 5, 13},
    {EDesign::L36, 36, 2, 13},
};

// Opens the cells of a design class.
template <class Design>
class Opened : public Design {
  public:
    using Design::Design;
    using Design::GetDesignCoding;
};

Table CoreOf(EDesign::Type type, const Factors& factors) {
    return built::MatrixOf(type, factors, built::CoreOptions(type, factors));
}

TestFactors QualitativesOf(int count, unsigned levels) {
    TestFactors factors;
    for (int i = 0; i < count; ++i) {
        factors.Qualitative(levels);
    }
    return factors;
}

// The whole array in letter codes: all factors at three levels, in L18 the first at two.
TestFactors WholeArrayFactors(const Family& family) {
    TestFactors factors = QualitativesOf(1, family.type == EDesign::L18 ? 2 : 3);
    for (int i = 1; i < family.columns; ++i) {
        factors.Qualitative(3);
    }
    return factors;
}

bool IsValidFor(EDesign::Type type, const Factors& factors) {
    return built::BuilderOf(type).IsValid(factors, DesignOptions(built::BuilderOf(type), factors));
}

TEST(GraecoLatin, EveryArrayHasItsShape) {
    for (const Family& family : cFamilies) {
        const Table array = CoreOf(family.type, WholeArrayFactors(family));
        EXPECT_EQ(array.SizeRows(), family.runs);
        EXPECT_EQ(array.SizeColumns(), family.columns);
    }
}

TEST(GraecoLatin, EveryColumnIsBalanced) {
    for (const Family& family : cFamilies) {
        const TestFactors factors = WholeArrayFactors(family);
        EXPECT_THAT(CoreOf(family.type, factors), IsBalanced(factors)) << family.runs << " runs";
    }
}

TEST(GraecoLatin, EveryPairOfColumnsHasAllPairsOfLevelsEquallyOften) {
    for (const Family& family : cFamilies) {
        EXPECT_THAT(CoreOf(family.type, WholeArrayFactors(family)), HasProportionalFrequencies())
            << family.runs << " runs";
    }
}

TEST(GraecoLatin, TheProofSeesEveryChangedCell) {
    for (const Family& family : cFamilies) {
        const TestFactors factors = WholeArrayFactors(family);
        const Table array = CoreOf(family.type, factors);
        for (int row = 1; row <= array.SizeRows(); ++row) {
            for (int column = 1; column <= array.SizeColumns(); ++column) {
                Table broken = array;
                broken(row, column, array(row, column) == 65 ? 66.0F : 65.0F);
                ASSERT_THAT(broken, Not(HasProportionalFrequencies()))
                    << family.runs << " runs, row " << row << ", column " << column;
            }
        }
    }
}

TEST(GraecoLatin, TheNineRunsAreTheGraecoLatinSquareOfOrderThree) {
    // Columns 3 and 4 of L9 are the two orthogonal Latin squares of order 3 over the rows and
    // columns of a 3 x 3 square, each made from the other by exchanging two of its rows.
    const Table array = CoreOf(EDesign::L9, QualitativesOf(4, 3));
    const std::string latin = "ABCBCACAB";
    const std::string greek = "ABCCABBCA";
    for (int row = 0; row < 9; ++row) {
        EXPECT_EQ(array(row + 1, 1), 65 + row / 3);
        EXPECT_EQ(array(row + 1, 2), 65 + row % 3);
        EXPECT_EQ(array(row + 1, 3), latin[static_cast<std::size_t>(row)]) << "row " << row;
        EXPECT_EQ(array(row + 1, 4), greek[static_cast<std::size_t>(row)]) << "row " << row;
    }
}

TEST(GraecoLatin, SquaresAndMainEffectsOfQuantitativeFactorsAreOrthogonal) {
    const Table array = CoreOf(EDesign::L27, TestFactors().Quantitatives(13));
    Table both = array;
    for (float& cell : both.Cells()) {
        cell *= cell;
    }
    both.ConcatColumns(array);
    EXPECT_THAT(both, HasOrthogonalColumns());
}

TEST(GraecoLatin, CellsOutsideTheArrayAreZero) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    const Opened<L9> design(factors, built::CoreOptions(EDesign::L9, factors));
    EXPECT_EQ(design.GetDesignCoding(0, 1), 0);
    EXPECT_EQ(design.GetDesignCoding(10, 1), 0);
    EXPECT_EQ(design.GetDesignCoding(1, 0), 0);
    EXPECT_EQ(design.GetDesignCoding(1, 5), 0);
    EXPECT_EQ(design.GetDesignCoding(9, 1), 3);
    EXPECT_EQ(design.GetDesignCoding(9, 4), 1);
}

TEST(GraecoLatin, TwoLevelFactorInThirdPlaceTakesTheTwoLevelColumn) {
    const TestFactors factors = TestFactors()
                                    .Qualitative(3)
                                    .Quantitative()
                                    .Qualitative(2)
                                    .MultilevelOf(3)
                                    .Quantitative()
                                    .Qualitative(3);
    const Table array = CoreOf(EDesign::L18, factors);
    EXPECT_THAT(built::ColumnOf(array, 3), Each(::testing::AnyOf(65, 66)));
    EXPECT_THAT(built::ColumnOf(array, 1), Each(::testing::AnyOf(65, 66, 67)));
    EXPECT_THAT(built::ColumnOf(array, 2), Each(::testing::AnyOf(-1, 0, 1)));
    EXPECT_THAT(array, IsBalanced(factors));
    EXPECT_THAT(array, HasProportionalFrequencies());
}

TEST(GraecoLatin, TheColumnsBehindTheTwoLevelColumnKeepTheirOrder) {
    const Table first = CoreOf(
        EDesign::L18, TestFactors().Qualitative(2).Qualitative(3).Qualitative(3).Qualitative(3));
    const Table third = CoreOf(
        EDesign::L18, TestFactors().Qualitative(3).Qualitative(3).Qualitative(2).Qualitative(3));
    Table expected = first;
    expected.RearrangeColumns({2, 3, 1, 4});
    EXPECT_EQ(third, expected);
}

TEST(GraecoLatin, LastQuantitativeFactorStandsInForTheTwoLevelFactor) {
    const Table array = CoreOf(EDesign::L18, TestFactors().Quantitatives(7).MultilevelOf(3));
    EXPECT_THAT(built::ColumnOf(array, 7), Each(::testing::AnyOf(-1, 1)));
    EXPECT_THAT(built::ColumnOf(array, 6), ::testing::Contains(0));
    EXPECT_THAT(built::ColumnOf(array, 8), ::testing::Contains(66));
}

TEST(GraecoLatin, LastFormulationFactorStandsInWhereTheSumIsFree) {
    const TestFactors factors =
        TestFactors().Quantitative().Formulation().MultilevelOf(3).WithFiller(true);
    const Table array = CoreOf(EDesign::L18, factors);
    EXPECT_THAT(built::ColumnOf(array, 2), Each(::testing::AnyOf(-1, 1)));
    EXPECT_THAT(built::ColumnOf(array, 1), ::testing::Contains(0));
}

TEST(GraecoLatin, BuildingWithAMovedColumnLeavesTheArrayAsItWas) {
    const TestFactors inOrder = WholeArrayFactors(cFamilies[1]);
    const Table before = CoreOf(EDesign::L18, inOrder);
    static_cast<void>(CoreOf(EDesign::L18, TestFactors().Quantitatives(8)));
    EXPECT_EQ(CoreOf(EDesign::L18, inOrder), before);
}

TEST(GraecoLatin, BuildsWithDifferentTwoLevelColumnsMayRunAtOnce) {
    const TestFactors first = WholeArrayFactors(cFamilies[1]);
    const TestFactors last = TestFactors().Quantitatives(8);
    const Table expectedFirst = CoreOf(EDesign::L18, first);
    const Table expectedLast = CoreOf(EDesign::L18, last);
    int differences = 0;
    std::thread other([&] {
        for (int i = 0; i < 500; ++i) {
            differences += CoreOf(EDesign::L18, first) == expectedFirst ? 0 : 1;
        }
    });
    for (int i = 0; i < 500; ++i) {
        EXPECT_EQ(CoreOf(EDesign::L18, last), expectedLast);
    }
    other.join();
    EXPECT_EQ(differences, 0);
}

TEST(GraecoLatin, CentrePointsStandAtMiddleAndFirstLevels) {
    const TestFactors factors = TestFactors().Quantitative().MultilevelOf(3).Qualitative(3);
    const Table array = built::MatrixOf(EDesign::L9, factors);
    EXPECT_EQ(array.SizeRows(), 12);
    EXPECT_THAT(array, HasCentrePointRows(3, factors));
}

TEST(GraecoLatin, TwoLevelColumnHasNoLevelBetween) {
    // A 0 left behind by the middle entry would be taken for a centre point.
    const TestFactors factors = TestFactors().MultilevelOf(2).MultilevelOf(3);
    const Table array = CoreOf(EDesign::L18, factors);
    EXPECT_THAT(built::ColumnOf(array, 1), Each(::testing::AnyOf(65, 66)));
    EXPECT_THAT(array, IsBalanced(factors));
}

TEST(GraecoLatin, ReplicatesCopyTheWholeDesign) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options(built::BuilderOf(EDesign::L9), factors);
    options.SetReplicates(2);
    const Table array = built::MatrixOf(EDesign::L9, factors, options);
    ASSERT_EQ(array.SizeRows(), 36);
    for (int row = 1; row <= 12; ++row) {
        EXPECT_EQ(built::RowOf(array, row), built::RowOf(array, row + 24)) << "row " << row;
    }
}

TEST(GraecoLatin, TooManyReplicatesRaise) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    DesignOptions options(built::BuilderOf(EDesign::L9), factors);
    options.SetReplicates(4'000'000'000U);
    EXPECT_THROW(static_cast<void>(built::BuilderOf(EDesign::L9).Build(factors, options)),
                 Exception);
}

TEST(GraecoLatin, RunsAreOfferedWithinTheFamilysFactorCounts) {
    for (const Family& family : cFamilies) {
        const DesignBuilder& builder = built::BuilderOf(family.type);
        for (int count = 0; count <= 20; ++count) {
            const bool inside = count >= family.minFactors && count <= family.columns;
            const TestFactors factors = TestFactors().Quantitatives(count);
            EXPECT_EQ(builder.GetDefaultRuns(factors, EObjective::Screening),
                      inside ? family.runs : 0)
                << family.runs << " runs, " << count << " factors";
            EXPECT_EQ(IsValidFor(family.type, factors), inside)
                << family.runs << " runs, " << count << " factors";
        }
    }
}

TEST(GraecoLatin, LegalRunsAreTheDefaultRunsAlone) {
    const TestFactors factors = TestFactors().Quantitatives(5);
    EXPECT_THAT(built::BuilderOf(EDesign::L27).GetLegalRuns(factors, DesignOptions()),
                ElementsAre(27));
}

TEST(GraecoLatin, LevelCountsOtherThanThreeAreInvalid) {
    for (const Family& family : cFamilies) {
        const TestFactors others = TestFactors().Quantitatives(family.columns - 1);
        EXPECT_FALSE(IsValidFor(family.type, TestFactors(others).Qualitative(4)));
        EXPECT_TRUE(IsValidFor(family.type, TestFactors(others).Qualitative(3)));
        EXPECT_EQ(IsValidFor(family.type, TestFactors(others).Qualitative(2)),
                  family.type == EDesign::L18);
    }
}

TEST(GraecoLatin, OneTwoLevelFactorIsTheMostOfL18) {
    EXPECT_TRUE(IsValidFor(EDesign::L18, TestFactors().Qualitative(2).MultilevelOf(3)));
    EXPECT_FALSE(
        IsValidFor(EDesign::L18, TestFactors().Qualitative(2).MultilevelOf(2).Quantitative()));
}

TEST(GraecoLatin, L18NeedsATwoLevelOrAContinuousFactor) {
    EXPECT_FALSE(IsValidFor(EDesign::L18, QualitativesOf(3, 3)));
    EXPECT_TRUE(IsValidFor(EDesign::L18, TestFactors().Qualitative(3).Quantitative()));
}

TEST(GraecoLatin, MixturesFillersConstraintsAndOtherModelsAreInvalid) {
    for (const Family& family : cFamilies) {
        const DesignBuilder& builder = built::BuilderOf(family.type);
        const int count = family.columns;
        EXPECT_FALSE(IsValidFor(family.type, TestFactors().Quantitatives(count - 1).Formulation()));
        EXPECT_FALSE(IsValidFor(family.type, TestFactors().Quantitatives(count).WithFiller(false)));
        EXPECT_TRUE(IsValidFor(family.type, TestFactors().Quantitatives(count).WithFiller(true)));
        // Valid but for the one thing changed each time.
        const TestFactors fitting = TestFactors().Quantitatives(count);
        const DesignOptions valid(builder, fitting);
        ASSERT_TRUE(builder.IsValid(fitting, valid));
        DesignOptions options = valid;
        options.SetModel(EModel::Interaction);
        EXPECT_FALSE(builder.IsValid(fitting, options));
        options = valid;
        options.SetObjective(EObjective::Optimization);
        EXPECT_FALSE(builder.IsValid(fitting, options));
        options = valid;
        options.SetMaxRuns(static_cast<unsigned>(family.runs) - 1);
        EXPECT_FALSE(builder.IsValid(fitting, options));
        options = valid;
        built::Constrain(options, fitting);
        EXPECT_FALSE(builder.IsValid(fitting, options));
        EXPECT_EQ(builder.Build(fitting, options), nullptr);
    }
}

TEST(GraecoLatin, PriorityCountsFactorsNotColumns) {
    EXPECT_EQ(built::BuilderOf(EDesign::L9).GetPriority(QualitativesOf(2, 3)), 3);
    EXPECT_EQ(built::BuilderOf(EDesign::L18).GetPriority(QualitativesOf(5, 3)), 4);
    EXPECT_EQ(built::BuilderOf(EDesign::L27).GetPriority(QualitativesOf(8, 3)), 4);
    EXPECT_EQ(built::BuilderOf(EDesign::L36).GetPriority(QualitativesOf(13, 3)), 6);
}

TEST(GraecoLatin, DefaultModelIsLinearForScreeningOnly) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    const DesignBuilder& builder = built::BuilderOf(EDesign::L9);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::Screening), EModel::Linear);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::RobustnessVerification), EModel::Linear);
    EXPECT_EQ(builder.GetDefaultModel(factors, EObjective::Optimization), EModel::None);
}

TEST(GraecoLatin, CloneSharesTheMatrix) {
    const TestFactors factors = TestFactors().Quantitatives(4);
    const auto design =
        built::BuilderOf(EDesign::L18).Build(factors, built::CoreOptions(EDesign::L18, factors));
    const auto clone = design->Clone();
    EXPECT_EQ(clone->GetDesignMatrix(), design->GetDesignMatrix());
    EXPECT_NE(dynamic_cast<const L18*>(clone.get()), nullptr);
}

}  // namespace
