#include <array>
#include <cstddef>

#include "designs/factorial/FF2.h"
#include "designs/factorial/FF3.h"
#include "designs/factorial/FFM.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "tests/support/TestFactors.h"

namespace {

constexpr std::size_t cLiteralColumns = 33;

// Written out, one row for each design type: strength of proposal for 0 to 32 factors.
// clang-format off
constexpr std::array<std::array<int, cLiteralColumns>, 35> cExpected{{
    {{ 0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 0
    {{ 0,  1,  1,  1,  1,  7,  8,  8,  6,  8,  8,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 1
    {{ 0, 16, 16, 16, 16, 16, 16,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 2
    {{ 0,  2, 25, 25, 25, 25, 25, 25, 25, 25, 25,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 3
    {{ 0,  0,  3,  4,  4,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 4
    {{ 0,  0,  4,  5,  5,  4,  5,  5,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 5
    {{ 0,  0,  5,  6,  6,  5,  6,  6,  4,  5,  5,  5,  5,  5,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 6
    {{ 0,  0,  6,  7,  7,  6,  7,  7,  5,  6,  6,  6,  6,  6,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 7
    {{ 0,  0,  0,  2,  0,  2,  2,  2,  0,  1,  1,  1,  2,  2,  2,  3,  0,  1,  1,  1,  1,  3,  3,  3,  3,  3,  2,  2,  2,  2,  2,  2,  0}},  // 8
    {{ 0,  0,  0,  0,  2,  0,  1,  1,  1,  2,  2,  2,  1,  1,  1,  1,  1,  3,  3,  3,  3,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1,  1}},  // 9
    {{ 0,  0,  0,  0,  0,  1,  3,  3,  2,  3,  3,  3,  3,  3,  3,  4,  3,  4,  4,  4,  4,  4,  4,  4,  4,  4,  4,  4,  4,  4,  0,  0,  0}},  // 10
    {{ 0,  0,  2,  3,  3,  3,  4,  4,  3,  4,  4,  4,  4,  4,  4,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  2,  3,  3,  3,  3,  3,  3,  2}},  // 11
    {{26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26, 26}},  // 12
    {{ 0,  0,  0, 14, 15, 14, 14, 11, 14, 11, 14, 14,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 13
    {{ 0,  0, 13, 13, 14, 13, 13, 14, 13, 14, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 14
    {{ 0,  0, 12, 12, 13, 12, 12, 13, 12, 13, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 15
    {{ 0,  0, 11, 11, 11, 11, 11, 12, 11, 12, 11, 11, 11, 11, 11, 11, 11, 11, 11, 11, 11, 11,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 16
    {{ 0,  0,  0,  0, 12,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 17
    {{ 0,  0,  0,  0, 16,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 18
    {{ 0,  0, 18, 18, 18, 18, 18, 18, 18, 18, 18, 17, 17, 17, 17, 17, 17, 17, 17, 17, 17,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 19
    {{ 0,  0, 17, 17, 17, 17, 17, 17, 17, 17, 17, 19, 19, 19, 19, 19, 19, 19, 19, 19, 19,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 20
    {{ 0,  0, 19, 19, 19, 19, 19, 19, 19, 19, 19, 18, 18, 18, 18, 18, 18, 18, 18, 18, 18,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 21
    {{ 0,  0, 20, 20, 21, 21, 20, 20, 20, 20, 20, 20, 20,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 22
    {{ 0,  0, 21, 21, 20, 20, 21, 21, 21, 21, 21, 21, 21,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 23
    {{ 0,  0, 22, 22, 22, 22, 22, 22, 22, 22, 22, 22, 22,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 24
    {{ 0,  0, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 25
    {{ 0,  0, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24, 24}},  // 26
    {{ 0, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29, 29}},  // 27
    {{ 0, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23}},  // 28
    {{ 0, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23}},  // 29
    {{ 0, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23}},  // 30
    {{ 0, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23}},  // 31
    {{ 0, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23, 23}},  // 32
    {{27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27, 27}},  // 33
    {{ 0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0}},  // 34
}};
// clang-format on

int Priority(std::size_t type, std::size_t count) {
    return DesignBuilder::priority[type][count];
}

TEST(PriorityTable, HasFortyOneRowsOfFortyNineColumns) {
    EXPECT_EQ(DesignBuilder::priority.size(), 41U);
    EXPECT_EQ(DesignBuilder::priority[0].size(), 49U);
}

TEST(PriorityTable, EveryRowHasItsNumbers) {
    for (std::size_t type = 0; type < cExpected.size(); ++type) {
        for (std::size_t count = 0; count < cLiteralColumns; ++count) {
            EXPECT_EQ(Priority(type, count), cExpected[type][count])
                << "type " << type << ", " << count << " factors";
        }
    }
}

TEST(PriorityTable, ColumnsBehindTheThirtySecondRepeatIt) {
    for (std::size_t type = 0; type < cExpected.size(); ++type) {
        for (std::size_t count = cLiteralColumns; count < 49; ++count) {
            EXPECT_EQ(Priority(type, count), cExpected[type][32])
                << "type " << type << ", " << count << " factors";
        }
    }
}

TEST(PriorityTable, RowsBehindTheThirtyFourthAreZero) {
    for (std::size_t type = 35; type < 41; ++type) {
        for (std::size_t count = 0; count < 49; ++count) {
            EXPECT_EQ(Priority(type, count), 0) << "type " << type << ", " << count << " factors";
        }
    }
}

TEST(PriorityTable, SingleEntriesAreAsPublished) {
    EXPECT_EQ(Priority(1, 5), 7);
    EXPECT_EQ(Priority(1, 11), 0);
    EXPECT_EQ(Priority(26, 48), 24);
}

TEST(Priority, FF2ReadsItsRowByExpandedCount) {
    const FF2Builder builder("FF2", "", "");
    EXPECT_EQ(builder.GetPriority(TestFactors().Quantitatives(5)), 7);
    EXPECT_EQ(builder.GetPriority(TestFactors().Quantitatives(8)), 6);
    // Five model columns of three factors.
    EXPECT_EQ(builder.GetPriority(TestFactors().Quantitatives(2).Qualitative(4)), 7);
}

TEST(Priority, FF3ReadsItsRowByFactorCount) {
    const FF3Builder builder("FF3", "", "");
    EXPECT_EQ(builder.GetPriority(TestFactors().Quantitatives(6)), 16);
    EXPECT_EQ(builder.GetPriority(TestFactors().Quantitatives(7)), 0);
    // Eight model columns of four factors.
    EXPECT_EQ(builder.GetPriority(
                  TestFactors().Qualitative(3).Qualitative(3).Qualitative(3).Qualitative(3)),
              16);
}

TEST(Priority, CountsBehindTheTableTakeItsLastColumn) {
    const FF2Builder builder("FF2", "", "");
    EXPECT_EQ(builder.GetPriority(TestFactors().Quantitatives(48)), 0);
    EXPECT_EQ(builder.GetPriority(TestFactors().Quantitatives(49)), 0);
    EXPECT_EQ(builder.GetPriority(TestFactors().Qualitative(200)), 0);
}

// The row of FFM by expanded count, or 1 where its factorial needs fewer runs than the D-optimal
// design with interactions and its own row is weaker than that of D-optimal designs.
int ExpectedPriorityOfFFM(const FFMBuilder& builder, const Factors& factors) {
    const std::size_t columns = factors.GetDesignFactorCountExpanded();
    const auto optimal = AllDesigns::GetDesignBuilder(EDesign::DOpt, "");
    if (optimal) {
        DesignOptions options(*optimal, factors);
        options.SetObjective(EObjective::Screening);
        options.SetModel(EModel::Interaction);
        if (builder.GetDefaultRuns(factors, EObjective::Screening) <
                optimal->GetDefaultRuns(factors, options) &&
            cExpected[3][columns] > cExpected[26][columns]) {
            return 1;
        }
    }
    return cExpected[3][columns];
}

TEST(Priority, FFMReadsItsRowUnlessItIsSmallerThanTheOptimalDesign) {
    const FFMBuilder builder("FFM", "", "");
    for (const unsigned levels : {2U, 3U, 4U, 6U}) {
        const TestFactors factors = TestFactors().Qualitative(levels).Quantitative();
        EXPECT_EQ(builder.GetPriority(factors), ExpectedPriorityOfFFM(builder, factors)) << levels;
    }
}

TEST(Priority, FFMHasNoOpinionBeyondFortyEightColumns) {
    EXPECT_EQ(FFMBuilder("FFM", "", "").GetPriority(TestFactors().Qualitative(60)), 0);
}

}  // namespace
