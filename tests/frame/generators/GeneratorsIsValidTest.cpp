#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/DesignOptions.h"
#include "frame/generators/Generators.h"
#include "tests/support/TestFactors.h"

namespace {

const std::string cHeader = "Invalid generator definitions:\n\n";
const std::string cCount = "Invalid number of generator definitions:\n\n";

/// Words of the columns 1, 2 and so on; "" is a hole.
Generators With(char maxChar, const std::vector<std::string>& words) {
    Generators generators(4);
    generators.SetMaxChar(maxChar);
    for (std::size_t i = 0; i < words.size(); ++i) {
        generators.SetGenerator(static_cast<int>(i) + 1,
                                generators.GetGeneratorWord(words[i].c_str()));
    }
    return generators;
}

/// What validation says about a design; empty when it is content.
std::string Complaints(const Generators& generators,
                       int factors,
                       unsigned blocks = 1,
                       bool hasStarBlock = false) {
    DesignOptions options;
    options.SetBlocks(blocks);
    std::string message = "what stood here before";
    const bool valid =
        generators.IsValid(TestFactors().Quantitatives(factors), options, hasStarBlock, message);
    EXPECT_EQ(valid, message.empty()) << message;
    return message;
}

/// The words of a selector for a blocked or whole fraction.
Generators FromSelector(unsigned factors, int runs, int blockGens) {
    Generators generators(runs);
    for (unsigned i = 1; i <= factors; ++i) {
        generators.SetGenerator(static_cast<int>(i),
                                Generators::GetGen5(static_cast<int>(i), factors, runs, blockGens));
    }
    for (int i = 1; i <= blockGens; ++i) {
        generators.SetGenerator(static_cast<int>(factors) + i,
                                Generators::GetGen5(-i, factors, runs, blockGens));
    }
    return generators;
}

TEST(GeneratorsIsValid, FractionWithAllItsWordsIsValid) {
    EXPECT_EQ(Complaints(With('c', {"a", "b", "c", "abc"}), 4), "");
}

TEST(GeneratorsIsValid, NegativeBaseFactorsAndProductsAreValid) {
    EXPECT_EQ(Complaints(With('b', {"-a", "b", "-ab"}), 3), "");
}

TEST(GeneratorsIsValid, BaseFactorsMayStandAnywhere) {
    EXPECT_EQ(Complaints(With('b', {"ab", "b", "a"}), 3), "");
}

TEST(GeneratorsIsValid, MissingBaseFactorIsTold) {
    EXPECT_EQ(Complaints(With('c', {"a", "b", "abc"}), 3),
              cHeader + "Missing base generator:  c\n");
}

TEST(GeneratorsIsValid, EveryMissingBaseFactorIsToldInOrder) {
    EXPECT_EQ(Complaints(With('d', {"b", "abc"}), 2),
              cHeader +
                  "Missing base generator:  a\n"
                  "Missing base generator:  c\n"
                  "Missing base generator:  d\n");
}

TEST(GeneratorsIsValid, BaseFactorBehindAHoleIsMissing) {
    EXPECT_EQ(Complaints(With('b', {"a", "", "b"}), 3),
              cHeader + "Missing base generator:  b\n" + cCount);
}

TEST(GeneratorsIsValid, LetterBeyondTheHighestIsTold) {
    EXPECT_EQ(Complaints(With('b', {"a", "b", "-abc"}), 3),
              cHeader + "Base generator not valid for the current design: -abc\n");
}

TEST(GeneratorsIsValid, OnlyTheFirstIllegalWordIsTold) {
    EXPECT_EQ(Complaints(With('b', {"a", "b", "c", "d"}), 4),
              cHeader + "Base generator not valid for the current design: c\n");
}

TEST(GeneratorsIsValid, WordWithoutLettersIsToldAsEmpty) {
    Generators generators = With('b', {"a", "b"});
    generators.SetGenerator(3, Generators::BLOCK);
    EXPECT_EQ(Complaints(generators, 3),
              cHeader + "Base generator not valid for the current design: <empty>\n");
}

TEST(GeneratorsIsValid, SignAloneIsALegalWord) {
    Generators generators = With('b', {"a", "b"});
    generators.SetGenerator(3, Generators::NEGATIVE);
    EXPECT_EQ(Complaints(generators, 3), "");
}

TEST(GeneratorsIsValid, DuplicateIsTold) {
    EXPECT_EQ(Complaints(With('b', {"a", "b", "ab", "ab"}), 4),
              cHeader + "Duplicate generators: ab\n");
}

TEST(GeneratorsIsValid, DuplicateIsSeenThroughTheSignAndToldAsTheFirst) {
    EXPECT_EQ(Complaints(With('b', {"-a", "b", "a"}), 3), cHeader + "Duplicate generators: -a\n");
}

TEST(GeneratorsIsValid, WordStandingThreeTimesIsToldForEveryPair) {
    EXPECT_EQ(Complaints(With('b', {"a", "b", "ab", "-ab", "ab"}), 5),
              cHeader +
                  "Duplicate generators: ab\n"
                  "Duplicate generators: ab\n"
                  "Duplicate generators: -ab\n");
}

TEST(GeneratorsIsValid, DuplicateBehindAHoleIsNotLookedAt) {
    EXPECT_EQ(Complaints(With('b', {"a", "b", "", "a"}), 4), cCount);
}

TEST(GeneratorsIsValid, BlockGeneratorEqualToAFactorIsADuplicate) {
    EXPECT_EQ(Complaints(With('b', {"a", "b", "ab", "ab"}), 3, 2),
              cHeader + "Duplicate generators: ab\n");
}

TEST(GeneratorsIsValid, ChecksComplainInTheirOrderUnderOneHeader) {
    EXPECT_EQ(Complaints(With('c', {"b", "b", "abcd", "a"}), 3),
              cHeader +
                  "Missing base generator:  c\n"
                  "Base generator not valid for the current design: abcd\n"
                  "Duplicate generators: b\n" +
                  cCount);
}

TEST(GeneratorsIsValid, WrongCountAloneHasNoFurtherHeader) {
    EXPECT_EQ(Complaints(With('b', {"a", "b", "ab"}), 2), cCount);
    EXPECT_EQ(Complaints(With('b', {"a", "b"}), 3), cCount);
}

TEST(GeneratorsIsValid, NoWordsLackTheFirstBaseFactor) {
    EXPECT_EQ(Complaints(Generators(1), 3), cHeader + "Missing base generator:  a\n" + cCount);
}

TEST(GeneratorsIsValid, NoWordsForNoFactorsLackTheBaseFactorOnly) {
    EXPECT_EQ(Complaints(Generators(1), 0), cHeader + "Missing base generator:  a\n");
}

TEST(GeneratorsIsValid, BlocksNeedAsManyGeneratorsAsTheirLogarithm) {
    const std::vector<std::string> words{"a", "b", "c", "d", "abc", "acd", "abd"};
    for (const unsigned blocks : {0U, 1U, 2U, 3U, 4U, 5U, 7U, 8U, 15U}) {
        const int generators = blocks >= 8 ? 3 : blocks >= 4 ? 2 : blocks >= 2 ? 1 : 0;
        for (int given = 0; given <= 3; ++given) {
            const std::vector<std::string> some(words.begin(), words.begin() + 4 + given);
            EXPECT_EQ(Complaints(With('d', some), 4, blocks), given == generators ? "" : cCount)
                << blocks << " blocks, " << given << " generators";
        }
    }
}

TEST(GeneratorsIsValid, StarBlockNeedsNoGenerator) {
    const std::vector<std::string> words{"a", "b", "c", "d", "abc", "acd", "abd"};
    for (const unsigned blocks : {0U, 1U, 2U, 3U, 4U, 5U, 8U, 9U}) {
        const int generators = blocks >= 9 ? 3 : blocks >= 5 ? 2 : blocks >= 3 ? 1 : 0;
        for (int given = 0; given <= 3; ++given) {
            const std::vector<std::string> some(words.begin(), words.begin() + 4 + given);
            EXPECT_EQ(Complaints(With('d', some), 4, blocks, true),
                      given == generators ? "" : cCount)
                << blocks << " blocks, " << given << " generators";
        }
    }
}

TEST(GeneratorsIsValid, HoleWithTheRightNumberOfWordsInFrontFails) {
    EXPECT_EQ(Complaints(With('b', {"a", "b", "ab", "", "a"}), 3), cCount);
}

TEST(GeneratorsIsValid, HoleWithTheRightLastIndexFails) {
    EXPECT_EQ(Complaints(With('b', {"a", "b", "", "ab"}), 4), cCount);
}

TEST(GeneratorsIsValid, WordsBehindThe51stAreNotLookedAt) {
    Generators generators = With('b', {"a", "b", "ab"});
    generators.SetGenerator(52, generators.GetGeneratorWord("xyz"));
    generators.SetGenerator(53, Generators::A);
    EXPECT_EQ(Complaints(generators, 3), "");
}

TEST(GeneratorsIsValid, The51stWordIsLookedAt) {
    Generators generators = With('b', {"a", "b", "ab"});
    generators.SetGenerator(51, Generators::A);
    EXPECT_EQ(Complaints(generators, 3), cCount);
}

TEST(GeneratorsIsValid, EightBlocksOf12To25FactorsIn128RunsHaveHoles) {
    for (unsigned factors = 12; factors <= 25; ++factors) {
        const Generators generators = FromSelector(factors, 128, 3);
        EXPECT_EQ(Complaints(generators, static_cast<int>(factors), 8), cCount) << factors;
    }
}

TEST(GeneratorsIsValid, FourBlocksOf27To29FactorsIn1024RunsNeedAnEleventhBaseFactor) {
    for (unsigned factors = 27; factors <= 29; ++factors) {
        EXPECT_EQ(Complaints(FromSelector(factors, 1024, 2), static_cast<int>(factors), 4),
                  cHeader + "Base generator not valid for the current design: bcdfk\n")
            << factors;
    }
}

TEST(GeneratorsIsValid, FourBlocksOf22To26FactorsIn1024RunsAreValid) {
    for (unsigned factors = 22; factors <= 26; ++factors) {
        EXPECT_EQ(Complaints(FromSelector(factors, 1024, 2), static_cast<int>(factors), 4), "")
            << factors;
    }
}

TEST(GeneratorsIsValid, ResolutionThreeIn64RunsEndsAt51Factors) {
    for (unsigned factors = 32; factors <= 63; ++factors) {
        Generators generators(64);
        for (int i = 1; i <= static_cast<int>(factors); ++i) {
            generators.SetGenerator(i, Generators::GetGen3(i, factors, 64, 0));
        }
        EXPECT_EQ(Complaints(generators, static_cast<int>(factors)), factors <= 51 ? "" : cCount)
            << factors;
    }
}

TEST(GeneratorsIsValid, HighestLetterBeyondKHasNoWord) {
    Generators generators = With('c', {"a", "b", "c"});
    generators.SetMaxChar(static_cast<char>('k' + 1));
    EXPECT_EQ(Complaints(generators, 3),
              cHeader +
                  "Missing base generator:  d\n"
                  "Missing base generator:  e\n"
                  "Missing base generator:  f\n"
                  "Missing base generator:  g\n"
                  "Missing base generator:  h\n"
                  "Missing base generator:  i\n"
                  "Missing base generator:  j\n"
                  "Missing base generator:  k\n"
                  "Missing base generator:  l\n");
}

TEST(GeneratorsIsValid, HighestCharOfAllEnds) {
    Generators generators = With('c', {"a", "b", "c"});
    generators.SetMaxChar(static_cast<char>(127));
    EXPECT_NE(Complaints(generators, 3), "");
}

TEST(GeneratorsIsValid, LowestCharOfAllLeavesNoLegalWord) {
    Generators generators = With('c', {"a", "b", "c"});
    generators.SetMaxChar('\0');
    EXPECT_EQ(Complaints(generators, 3),
              cHeader + "Base generator not valid for the current design: a\n");
}

TEST(GeneratorsIsValid, EveryWholeFractionOfResolutionFiveIsValid) {
    for (unsigned factors = 5; factors <= 32; ++factors) {
        const int runs = 1 << Generators::GetBaseFactors5(static_cast<int>(factors));
        EXPECT_EQ(Complaints(FromSelector(factors, runs, 0), static_cast<int>(factors)), "")
            << factors;
    }
}

}  // namespace
