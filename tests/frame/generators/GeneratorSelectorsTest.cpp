// Every answer of the selectors against their literal form in tests/oracles.

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "frame/generators/Generators.h"
#include "tests/oracles/GeneratorSelectorsOracle.h"
#include "tests/oracles/GeneratorTablesOracle.h"

namespace {

GeneratorWord Of(const char* letters) {
    return oracles::WordOf(letters);
}

/// Reaches the selectors with block tables, which only the public ones call.
class Inner : public Generators {
  public:
    using Generators::GetGenIFullFactorial;
    using Generators::GetGenII3;
    using Generators::GetGenII4;
    using Generators::GetGenII5;
    using Generators::GetGenIIFullFactorial;
    using Generators::GetGenIII3;
    using Generators::GetGenIII4;
    using Generators::GetGenIII5;
    using Generators::GetGenIIIFullFactorial;
    using Generators::GetGenSingle;
};

using Selector = std::function<GeneratorWord(int index, int factors, int runs, int blockGens)>;

struct Compared {
    std::string name;
    Selector engine;
    Selector literal;
};

std::ostream& operator<<(std::ostream& stream, const Compared& compared) {
    return stream << compared.name;
}

std::vector<Compared> PublicSelectors() {
    return {{"GetGen3",
             [](int index, int factors, int runs, int blockGens) {
                 return Generators::GetGen3(index,
                                            static_cast<unsigned>(factors),
                                            static_cast<unsigned>(runs),
                                            static_cast<unsigned>(blockGens));
             },
             oracles::Gen3},
            {"GetGen4",
             [](int index, int factors, int runs, int blockGens) {
                 return Generators::GetGen4(index, static_cast<unsigned>(factors), runs, blockGens);
             },
             oracles::Gen4},
            {"GetGen5",
             [](int index, int factors, int runs, int blockGens) {
                 return Generators::GetGen5(index, static_cast<unsigned>(factors), runs, blockGens);
             },
             oracles::Gen5}};
}

/// The first request that the two answer differently; empty without one.
std::string FirstDifference(const Compared& compared, const std::vector<int>& runCounts) {
    for (const int runs : runCounts) {
        for (int factors = 0; factors <= 64; ++factors) {
            for (int blockGens = 0; blockGens <= 3; ++blockGens) {
                for (int index = -5; index <= factors + 3; ++index) {
                    const GeneratorWord engine = compared.engine(index, factors, runs, blockGens);
                    const GeneratorWord literal = compared.literal(index, factors, runs, blockGens);
                    if (engine != literal) {
                        return compared.name + "(" + std::to_string(index) + ", " +
                               std::to_string(factors) + ", " + std::to_string(runs) + ", " +
                               std::to_string(blockGens) + ") is " + std::to_string(engine) +
                               " instead of " + std::to_string(literal);
                    }
                }
            }
        }
    }
    return "";
}

/// No runs, the powers of two, and counts beside them that no table has.
std::vector<int> NotableRunCounts() {
    std::vector<int> counts{0};
    for (int runs = 1; runs <= 4096; runs *= 2) {
        counts.insert(counts.end(), {runs, runs + 1, runs * 3});
    }
    return counts;
}

std::vector<int> AllRunCounts(int first, int last) {
    std::vector<int> counts;
    for (int runs = first; runs <= last; ++runs) {
        counts.push_back(runs);
    }
    return counts;
}

class EverySelector : public testing::TestWithParam<Compared> {};

TEST_P(EverySelector, AnswersAllRunCountsUpTo1024AsItsLiteralForm) {
    EXPECT_EQ(FirstDifference(GetParam(), AllRunCounts(0, 1024)), "");
}

TEST_P(EverySelector, AnswersAllRunCountsBeyond1024AsItsLiteralForm) {
    EXPECT_EQ(FirstDifference(GetParam(), AllRunCounts(1025, 2052)), "");
}

TEST_P(EverySelector, GivesNothingForMoreThanThreeBlockGenerators) {
    for (int factors = 0; factors <= 32; ++factors) {
        for (int index = -5; index <= factors + 1; ++index) {
            EXPECT_EQ(GetParam().engine(index, factors, 64, 4), 0) << index << " of " << factors;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Resolutions,
                         EverySelector,
                         testing::ValuesIn(PublicSelectors()),
                         [](const auto& test) { return test.param.name; });

TEST(GeneratorSelectors, ComparisonSeesOneChangedWord) {
    Compared changed = PublicSelectors()[1];
    changed.engine = [](int index, int factors, int runs, int blockGens) {
        const GeneratorWord word =
            Generators::GetGen4(index, static_cast<unsigned>(factors), runs, blockGens);
        return index == 7 && factors == 7 && runs == 16 && blockGens == 0 ? Of("abd") : word;
    };
    EXPECT_NE(FirstDifference(changed, NotableRunCounts()), "");
}

TEST(GeneratorSelectors, FullFactorialAnswersAsItsLiteralForm) {
    for (int blockGens = -1; blockGens <= 4; ++blockGens) {
        for (int runs = 0; runs <= 300; ++runs) {
            for (int index = -6; index <= 13; ++index) {
                ASSERT_EQ(Generators::GetGenFullFactorial(index, runs, blockGens),
                          oracles::GenFullFactorial(index, runs, blockGens))
                    << index << ", " << runs << ", " << blockGens;
            }
        }
    }
}

TEST(GeneratorSelectors, InnerSelectorsIgnoreTheirLastArgument) {
    for (int factors = 0; factors <= 33; ++factors) {
        for (const int runs : NotableRunCounts()) {
            for (int index = -5; index <= factors + 1; ++index) {
                const auto count = static_cast<unsigned>(factors);
                SCOPED_TRACE(testing::Message() << index << ", " << factors << ", " << runs);
                ASSERT_EQ(Inner::GetGenII3(index, count, runs, 7),
                          oracles::GenII3(index, factors, runs));
                ASSERT_EQ(Inner::GetGenII4(index, count, runs, 7),
                          oracles::GenII4(index, factors, runs));
                ASSERT_EQ(Inner::GetGenII5(index, count, runs, 7),
                          oracles::GenII5(index, factors, runs));
                ASSERT_EQ(Inner::GetGenIII3(index, count, runs, 7),
                          oracles::GenIII3(index, factors, runs));
                ASSERT_EQ(Inner::GetGenIII4(index, count, runs, 7),
                          oracles::GenIII4(index, factors, runs));
                ASSERT_EQ(Inner::GetGenIII5(index, count, runs, 7),
                          oracles::GenIII5(index, factors, runs));
            }
        }
    }
}

TEST(GeneratorSelectors, SinglesAreTheElevenLetters) {
    EXPECT_EQ(Inner::GetGenSingle(1), Generators::A);
    EXPECT_EQ(Inner::GetGenSingle(11), Generators::K);
    EXPECT_EQ(Inner::GetGenSingle(0), Generators::NONE);
    EXPECT_EQ(Inner::GetGenSingle(12), Generators::NONE);
    EXPECT_EQ(Inner::GetGenSingle(-1), Generators::NONE);
}

TEST(GeneratorSelectors, LastFactorOfSmallFractions) {
    EXPECT_EQ(Generators::GetGen3(4, 7, 8, 0), Of("ab"));
    EXPECT_EQ(Generators::GetGen4(7, 7, 16, 0), Of("acd"));
    EXPECT_EQ(Generators::GetGen4(7, 7, 32, 0), Of("abde"));
}

TEST(GeneratorSelectors, NoRunsMeanTheNaturalFractionOfResolutionFive) {
    EXPECT_EQ(Generators::GetGen5(7, 7, 0, 0), Of("abcdef"));
    EXPECT_EQ(Generators::GetGen5(8, 8, 0, 0), Of("abef"));
    EXPECT_EQ(Generators::GetGen5(8, 8, 128, 0), Of("abcdefg"));
}

TEST(GeneratorSelectors, SeventeenFactorsCountAsResolutionFour) {
    EXPECT_EQ(Generators::GetGen5(0, 17, 256, 0), 4);
    EXPECT_EQ(Generators::GetGen5(0, 16, 256, 0), 5);
    EXPECT_EQ(Generators::GetGen5(-4, 17, 0, 0), 11);
}

TEST(GeneratorSelectors, SpareRowIsTheBlockGenerator) {
    EXPECT_EQ(Generators::GetGen5(7, 6, 32, 1), Of("abcd"));
    EXPECT_EQ(Generators::GetGen5(-1, 6, 32, 1), Of("abcd"));
}

TEST(GeneratorSelectors, NextTableServesWithoutASpareRow) {
    EXPECT_EQ(Generators::GetGen4(-1, 6, 16, 1), Of("acd"));
}

TEST(GeneratorSelectors, OnlyResolutionThreeTurnsTheClassRowIntoTheSpareRow) {
    EXPECT_EQ(Generators::GetGen3(-4, 5, 8, 1), Of("bc"));
    EXPECT_EQ(Generators::GetGen4(-4, 6, 16, 1), 9);
}

TEST(GeneratorSelectors, SixFactorsInThirtyTwoRunsHaveNoFourBlocksAtResolutionThree) {
    EXPECT_EQ(Inner::GetGenII3(1, 6, 32, 2), 0);
    EXPECT_EQ(Generators::GetGen3(1, 6, 32, 2), 0);
}

TEST(GeneratorSelectors, FullFactorialNeedsExactRunsForTwoBlockGenerators) {
    EXPECT_EQ(Generators::GetGenFullFactorial(-1, 32, 2), Of("abc"));
    EXPECT_EQ(Generators::GetGenFullFactorial(-1, 48, 2), 0);
    EXPECT_EQ(Generators::GetGenFullFactorial(-1, 48, 1), Of("abcd"));
    EXPECT_EQ(Generators::GetGenFullFactorial(-1, 100, 3), 0);
}

TEST(GeneratorSelectors, FullFactorialFactorsAreSinglesWhateverTheRuns) {
    EXPECT_EQ(Inner::GetGenIFullFactorial(3, 5), Of("c"));
    EXPECT_EQ(Inner::GetGenIIFullFactorial(3, 48), Of("c"));
    EXPECT_EQ(Inner::GetGenIIIFullFactorial(3, 100), Of("c"));
    EXPECT_EQ(Generators::GetGenFullFactorial(3, 16, 0), 0);
}

TEST(GeneratorSelectors, ResolutionRowIsAnsweredWithoutLookingForATable) {
    EXPECT_EQ(Generators::GetGen4(0, 5, 16, 0), 4);
    EXPECT_EQ(Generators::GetGen3(0, 4, 8, 0), 3);
    EXPECT_EQ(Generators::GetGen4(1, 5, 16, 0), 0);
    EXPECT_EQ(Generators::GetGen3(1, 4, 8, 0), 0);
}

TEST(GeneratorSelectors, ResolutionFiveFallsToLowerTablesWithTwoBlockGenerators) {
    EXPECT_EQ(Generators::GetGen5(0, 6, 32, 2), 4);
    EXPECT_EQ(Generators::GetGen5(0, 5, 16, 2), 3);
    EXPECT_EQ(Generators::GetGen5(0, 28, 1024, 2), 4);
    EXPECT_EQ(Generators::GetGen5(0, 30, 2048, 2), 0);
}

TEST(GeneratorSelectors, ResolutionFourFallsToResolutionThreeWithOneBlockGenerator) {
    EXPECT_EQ(Generators::GetGen4(0, 5, 8, 1), 3);
    EXPECT_EQ(Generators::GetGen4(-1, 5, 8, 1), Of("bc"));
}

TEST(GeneratorSelectors, NarrowTableOfTwelveToFourteenFactorsGoesFirst) {
    EXPECT_EQ(Generators::GetGen5(9, 12, 0, 2), Of("bdfg"));
    EXPECT_EQ(Generators::GetGen5(9, 11, 0, 2), Of("i"));
}

TEST(GeneratorSelectors, NegativeRowsOfPlainTablesDoNotExist) {
    for (const int index : {-1, -2, -3, -5}) {
        EXPECT_EQ(Generators::GetGen5(index, 8, 64, 0), 0) << index;
        EXPECT_EQ(Generators::GetGen4(index, 8, 32, 0), 0) << index;
        EXPECT_EQ(Generators::GetGen3(index, 7, 8, 0), 0) << index;
    }
}

TEST(GeneratorSelectors, NaturalFractionHasTheBaseFactorsThatAreTold) {
    for (int factors = 5; factors <= 32; ++factors) {
        int singles = 0;
        for (int index = 1; index <= factors; ++index) {
            const GeneratorWord word =
                Generators::GetGen5(index, static_cast<unsigned>(factors), 0, 0);
            singles += Generators::GetRows(word).size() == 1 ? 1 : 0;
        }
        EXPECT_EQ(Generators::GetBaseFactors5(factors), singles) << factors;
    }
}

}  // namespace
