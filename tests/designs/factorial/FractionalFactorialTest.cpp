#include "designs/factorial/FractionalFactorial.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <typeinfo>
#include <vector>

#include "designs/factorial/FFR_III.h"
#include "designs/factorial/FFR_IV.h"
#include "designs/factorial/FFR_V.h"
#include "foundation/util/NCInternalError.h"
#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "frame/generators/Generators.h"
#include "tests/support/TestFactors.h"

namespace {

using Matrix = NCDataMatrix<float>;

TestFactors Quantitatives(int count) {
    TestFactors factors;
    factors.Quantitatives(count);
    return factors;
}

const DesignBuilder& Builder(EDesign::Type type) {
    return *AllDesigns::GetDesignBuilder(type, "");
}

Matrix Built(EDesign::Type type, const Factors& factors, const DesignOptions& options) {
    const auto design = Builder(type).Build(factors, options);
    return design ? *design->GetDesignMatrix() : Matrix();
}

Generators Words(int runs, const std::vector<const char*>& words) {
    Generators generators(runs);
    int index = 1;
    for (const char* word : words) {
        generators.SetGenerator(index++, generators.GetGeneratorWord(word));
    }
    return generators;
}

// Options of the half fraction of four factors, with user words.
DesignOptions HalfFraction(const Factors& factors, const std::vector<const char*>& words) {
    DesignOptions options(Builder(EDesign::FFR_IV), factors);
    const Generators generators = Words(8, words);
    options.SetGenerators(&generators);
    return options;
}

}  // namespace

TEST(FractionalFactorial, HalfFractionOfThreeFactorsIsWrittenOut) {
    const TestFactors factors = Quantitatives(3);
    const DesignOptions options(Builder(EDesign::FFR_III), factors);
    EXPECT_EQ(
        Built(EDesign::FFR_III, factors, options),
        (Matrix{
            {-1, -1, 1}, {1, -1, -1}, {-1, 1, -1}, {1, 1, 1}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}}));
}

TEST(FractionalFactorial, TwoBlocksAddAColumnOfLetters) {
    const TestFactors factors = Quantitatives(5);
    DesignOptions options(Builder(EDesign::FFR_III), factors);
    options.SetBlocks(2);
    options.SetCenterPoints(0);
    // d = ab, e = ac, blocks by bc.
    EXPECT_EQ(Built(EDesign::FFR_III, factors, options),
              (Matrix{{-1, -1, -1, 1, 1, 66},
                      {1, -1, -1, -1, -1, 66},
                      {-1, 1, -1, -1, 1, 65},
                      {1, 1, -1, 1, -1, 65},
                      {-1, -1, 1, 1, -1, 65},
                      {1, -1, 1, -1, 1, 65},
                      {-1, 1, 1, -1, -1, 66},
                      {1, 1, 1, 1, 1, 66}}));
}

TEST(FractionalFactorial, CentrePointsTakeTurnsInTheBlocks) {
    const TestFactors factors = Quantitatives(5);
    DesignOptions options(Builder(EDesign::FFR_III), factors);
    options.SetBlocks(2);
    const Matrix matrix = Built(EDesign::FFR_III, factors, options);
    ASSERT_EQ(matrix.SizeRows(), 11);
    EXPECT_EQ(matrix(9, 6), 65);
    EXPECT_EQ(matrix(10, 6), 66);
    EXPECT_EQ(matrix(11, 6), 65);
}

TEST(FractionalFactorial, LevelFactorsHoldLetterCodes) {
    TestFactors factors;
    factors.Quantitative().Qualitative(2).MultilevelOf(2);
    DesignOptions options(Builder(EDesign::FFR_III), factors);
    options.SetCenterPoints(1);
    EXPECT_EQ(Built(EDesign::FFR_III, factors, options),
              (Matrix{{-1, 65, 66}, {1, 65, 65}, {-1, 66, 65}, {1, 66, 66}, {0, 65, 65}}));
}

TEST(FractionalFactorial, ReplicatesRepeatCentrePointsAndReplicatedRuns) {
    const TestFactors factors = Quantitatives(3);
    DesignOptions options(Builder(EDesign::FFR_III), factors);
    options.SetReplicatedRuns(1);
    options.SetReplicates(2);
    EXPECT_EQ(Built(EDesign::FFR_III, factors, options).SizeRows(), (4 + 1 + 3) * 3);
}

TEST(FractionalFactorial, UserGeneratorsAreUsed) {
    const TestFactors factors = Quantitatives(4);
    const DesignOptions options = HalfFraction(factors, {"a", "b", "c", "-abc"});
    const Matrix matrix = Built(EDesign::FFR_IV, factors, options);
    ASSERT_EQ(matrix.SizeRows(), 11);
    for (int row = 1; row <= 8; ++row) {
        EXPECT_EQ(matrix(row, 4), -matrix(row, 1) * matrix(row, 2) * matrix(row, 3)) << row;
    }
}

TEST(FractionalFactorial, UserGeneratorsGivenAsFactorNumbersAreUsed) {
    const TestFactors factors = Quantitatives(4);
    DesignOptions options(Builder(EDesign::FFR_IV), factors);
    ASSERT_TRUE(options.SetGenerators(std::vector<std::vector<int>>{{1}, {2}, {4}, {-1, 2}}));
    const Matrix matrix = Built(EDesign::FFR_IV, factors, options);
    for (int row = 1; row <= 8; ++row) {
        EXPECT_EQ(matrix(row, 4), -matrix(row, 1) * matrix(row, 2)) << row;
    }
}

TEST(FractionalFactorial, UserGeneratorsMakeTheBlocks) {
    const TestFactors factors = Quantitatives(4);
    DesignOptions options = HalfFraction(factors, {"a", "b", "c", "abc", "ab"});
    options.SetBlocks(2);
    const Matrix matrix = Built(EDesign::FFR_IV, factors, options);
    for (int row = 1; row <= 8; ++row) {
        EXPECT_EQ(matrix(row, 5), matrix(row, 1) * matrix(row, 2) > 0 ? 66 : 65) << row;
    }
}

TEST(FractionalFactorial, UserGeneratorsWithoutBlockWordsGiveWayToTheDefaultOnes) {
    const TestFactors factors = Quantitatives(4);
    DesignOptions options = HalfFraction(factors, {"a", "b", "c", "-abc"});
    options.SetBlocks(2);
    DesignOptions plain(Builder(EDesign::FFR_IV), factors);
    plain.SetBlocks(2);
    EXPECT_EQ(Built(EDesign::FFR_IV, factors, options), Built(EDesign::FFR_IV, factors, plain));
}

TEST(FractionalFactorial, UserGeneratorsOfALargerFractionGiveWayToTheDefaultOnes) {
    const TestFactors factors = Quantitatives(7);
    DesignOptions options(Builder(EDesign::FFR_IV), factors);
    const Generators large = Words(32, {"a", "b", "c", "d", "e", "abcd", "abde"});
    options.SetGenerators(&large);
    ASSERT_EQ(options.GetRuns(), 16U);
    const DesignOptions plain(Builder(EDesign::FFR_IV), factors);
    EXPECT_EQ(Built(EDesign::FFR_IV, factors, options), Built(EDesign::FFR_IV, factors, plain));
}

// Three letters in 16 runs: every run of the 8-run fraction stands twice.
TEST(FractionalFactorial, UserGeneratorsOfASmallerFractionRepeatIt) {
    const TestFactors factors = Quantitatives(6);
    DesignOptions options(Builder(EDesign::FFR_IV), factors);
    const Generators small = Words(8, {"a", "b", "c", "ab", "ac", "bc"});
    options.SetGenerators(&small);
    options.SetCenterPoints(0);
    const Matrix matrix = Built(EDesign::FFR_IV, factors, options);
    ASSERT_EQ(matrix.SizeRows(), 16);
    for (int row = 1; row <= 8; ++row) {
        EXPECT_TRUE(std::ranges::equal(matrix.RowSpan(row), matrix.RowSpan(row + 8))) << row;
    }
}

TEST(FractionalFactorial, ABlockWordIsNoBaseFactor) {
    // The letter c has no factor column, only a block column, whose table cells mean nothing.
    const TestFactors factors = Quantitatives(3);
    DesignOptions options(Builder(EDesign::FFR_III), factors);
    const Generators generators = Words(16, {"a", "b", "c", "d"});
    options.SetGenerators(&generators);
    options.SetBlocks(2);
    options.SetRuns(16);
    EXPECT_THROW(Built(EDesign::FFR_III, factors, options), Exception);
}

TEST(FractionalFactorial, DefaultGeneratorsAreNotWrittenBack) {
    const TestFactors factors = Quantitatives(4);
    const DesignOptions options(Builder(EDesign::FFR_IV), factors);
    EXPECT_FALSE(Built(EDesign::FFR_IV, factors, options).IsEmpty());
    EXPECT_EQ(options.GetGenerators(), nullptr);
}

TEST(FractionalFactorial, ARunCountWithoutATableEndsInTheGeneratorError) {
    const TestFactors factors = Quantitatives(7);
    DesignOptions options(Builder(EDesign::FFR_IV), factors);
    options.SetRuns(64);
    try {
        Built(EDesign::FFR_IV, factors, options);
        FAIL() << "no exception";
    } catch (const Exception& exception) {
        EXPECT_THAT(exception.what(),
                    testing::StartsWith("Generator error: Invalid generator definitions:\n\n"
                                        "Missing base generator:  a\n"));
    }
}

TEST(FractionalFactorial, AnInvalidRequestGivesAnEmptyHandle) {
    const TestFactors factors = Quantitatives(8);
    const DesignOptions options(Builder(EDesign::FFR_III), factors);
    EXPECT_EQ(Builder(EDesign::FFR_III).Build(factors, options), nullptr);
}

TEST(FractionalFactorial, TooManyReplicatesAreRefused) {
    const TestFactors factors = Quantitatives(4);
    DesignOptions options(Builder(EDesign::FFR_IV), factors);
    options.SetReplicates(1'000'000);
    EXPECT_THROW(Built(EDesign::FFR_IV, factors, options), Exception);
}

TEST(FractionalFactorial, ACloneIsOfTheSameClassAndSharesTheMatrix) {
    const TestFactors factors = Quantitatives(7);
    for (const EDesign::Type type : {EDesign::FFR_III, EDesign::FFR_IV, EDesign::FFR_V}) {
        const auto design = Builder(type).Build(factors, DesignOptions(Builder(type), factors));
        const NCDesign& original = *design;
        const auto clone = original.Clone();
        const NCDesign& copy = *clone;
        EXPECT_EQ(copy.GetDesignMatrix(), original.GetDesignMatrix());
        EXPECT_EQ(typeid(copy), typeid(original));
    }
}

TEST(FractionalFactorial, MadeGeneratorsAreTheFamilysWords) {
    const TestFactors factors = Quantitatives(7);
    const auto generators = FFR_IV(factors).MakeGenerators(7, 16, 0);
    EXPECT_EQ(*generators, Words(16, {"a", "b", "c", "d", "abc", "bcd", "acd"}));
}

TEST(FractionalFactorial, MadeGeneratorsEndWithTheBlockWords) {
    const TestFactors factors = Quantitatives(6);
    const auto generators = FFR_V(factors).MakeGenerators(6, 32, 1);
    EXPECT_EQ(*generators, Words(32, {"a", "b", "c", "d", "e", "abce", "abcd"}));
}

TEST(UpdateDesign, FollowsNewGenerators) {
    const TestFactors factors = Quantitatives(4);
    DesignOptions options = HalfFraction(factors, {"a", "b", "c", "abc"});
    FFR_IV design(factors);
    design.GenerateDesign(factors, options, 0, 1.0F);
    options.GetGenerators()->SetGenerator(4, Generators::A | Generators::B | Generators::NEGATIVE);
    design.UpdateDesign(options, factors);
    const Matrix& matrix = *design.GetDesignMatrix();
    ASSERT_EQ(matrix.SizeRows(), 11);
    for (int row = 1; row <= 8; ++row) {
        EXPECT_EQ(matrix(row, 4), -matrix(row, 1) * matrix(row, 2)) << row;
    }
}

TEST(UpdateDesign, TakesGeneratorsWithoutACheck) {
    const TestFactors factors = Quantitatives(4);
    DesignOptions options = HalfFraction(factors, {"a", "b", "c", "c"});
    FFR_IV design(factors);
    design.UpdateDesign(options, factors);
    const Matrix& matrix = *design.GetDesignMatrix();
    for (int row = 1; row <= 8; ++row) {
        EXPECT_EQ(matrix(row, 4), matrix(row, 3)) << row;
    }
}

TEST(UpdateDesign, AddsNoReplicatedRuns) {
    const TestFactors factors = Quantitatives(4);
    DesignOptions options = HalfFraction(factors, {"a", "b", "c", "abc"});
    options.SetReplicatedRuns(2);
    options.SetReplicates(1);
    FFR_IV design(factors);
    design.UpdateDesign(options, factors);
    EXPECT_EQ(design.GetDesignMatrix()->SizeRows(), (8 + 3) * 2);
}

TEST(UpdateDesign, KeepsReplicatedRunsInTheOptions) {
    const TestFactors factors = Quantitatives(4);
    DesignOptions options = HalfFraction(factors, {"a", "b", "c", "abc"});
    options.SetReplicatedRuns(2);
    FFR_IV(factors).UpdateDesign(options, factors);
    EXPECT_EQ(options.GetReplicatedRuns(), 2U);
}

TEST(UpdateDesign, GivesCentrePointsLevelsAndBlocks) {
    TestFactors factors;
    factors.Quantitatives(3).Qualitative(2);
    DesignOptions options = HalfFraction(factors, {"a", "b", "c", "abc", "ab"});
    options.SetBlocks(2);
    options.SetCenterPoints(2);
    FFR_IV design(factors);
    design.UpdateDesign(options, factors);
    const Matrix& matrix = *design.GetDesignMatrix();
    EXPECT_THAT(std::vector<float>(matrix.RowSpan(9).begin(), matrix.RowSpan(9).end()),
                testing::ElementsAre(0, 0, 0, 65, 65));
    EXPECT_THAT(std::vector<float>(matrix.RowSpan(10).begin(), matrix.RowSpan(10).end()),
                testing::ElementsAre(0, 0, 0, 65, 66));
}

TEST(UpdateDesign, WithoutGeneratorsIsRefusedAndChangesNothing) {
    const TestFactors factors = Quantitatives(4);
    DesignOptions options(Builder(EDesign::FFR_IV), factors);
    FFR_IV design(factors);
    design.GenerateDesign(factors, options, 0, 1.0F);
    const auto before = design.GetDesignMatrix();
    EXPECT_THROW(design.UpdateDesign(options, factors), InvalidOperationException);
    EXPECT_EQ(design.GetDesignMatrix(), before);
}

TEST(UpdateDesign, GeneratorsBeyondTheTableAreRefusedAndChangeNothing) {
    const TestFactors factors = Quantitatives(4);
    DesignOptions options(Builder(EDesign::FFR_IV), factors);
    FFR_IV design(factors);
    design.GenerateDesign(factors, options, 0, 1.0F);
    const auto before = design.GetDesignMatrix();
    const Generators generators = Words(8, {"a", "b", "c", "abck"});
    options.SetGenerators(&generators);
    EXPECT_THROW(design.UpdateDesign(options, factors), NCInternalError);
    EXPECT_EQ(design.GetDesignMatrix(), before);
}

TEST(UpdateDesign, MoreBaseFactorsThanTheRunsHoldAreRefusedAndChangeNothing) {
    const TestFactors factors = Quantitatives(4);
    DesignOptions options(Builder(EDesign::FFR_IV), factors);
    FFR_IV design(factors);
    design.GenerateDesign(factors, options, 0, 1.0F);
    const auto before = design.GetDesignMatrix();
    const Generators generators = Words(16, {"a", "b", "c", "d"});
    options.SetGenerators(&generators);
    EXPECT_THROW(design.UpdateDesign(options, factors), Exception);
    EXPECT_EQ(design.GetDesignMatrix(), before);
}
