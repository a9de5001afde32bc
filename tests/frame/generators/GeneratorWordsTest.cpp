#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/generators/Generators.h"
#include "tests/support/TestFactors.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Shows what only derived classes reach.
class Inner : public Generators {
  public:
    using Generators::DWBitCount;
    using Generators::Generators;
    using Generators::PrimaryFactorCount;
    using Generators::WBitCount;
};

GeneratorWord Parse(const char* text) {
    return Generators(4).GetGeneratorWord(text);
}

/// The answer of IsLegal and what it leaves in the buffer.
struct Legality {
    bool legal;
    std::string buffer;
    bool operator==(const Legality&) const = default;
};

Legality LegalityOf(std::string text, char maxChar) {
    Generators generators(4);
    generators.SetMaxChar(maxChar);
    const bool legal = generators.IsLegal(text.data());
    return {legal, text};
}

TestFactors ThreeFactors() {
    return TestFactors().Quantitatives(3);
}

/// Three factors and three block generators.
Generators WithBlocks() {
    Generators generators(64);
    const std::vector<const char*> words{"a", "b", "c", "abc", "ade", "-bf"};
    for (std::size_t i = 0; i < words.size(); ++i) {
        generators.SetGenerator(static_cast<int>(i) + 1, Parse(words[i]));
    }
    return generators;
}

TEST(GeneratorWords, LettersAreTheHighBitsInOrder) {
    const std::vector<GeneratorWord> letters{Generators::A,
                                             Generators::B,
                                             Generators::C,
                                             Generators::D,
                                             Generators::E,
                                             Generators::F,
                                             Generators::G,
                                             Generators::H,
                                             Generators::I,
                                             Generators::J,
                                             Generators::K};
    for (std::size_t i = 0; i < letters.size(); ++i) {
        EXPECT_EQ(letters[i], 0x8000 >> i) << i;
    }
}

TEST(GeneratorWords, MarksHaveTheirBits) {
    EXPECT_EQ(Generators::BLOCK, 0x0002);
    EXPECT_EQ(Generators::NEGATIVE, 0x0001);
    EXPECT_EQ(Generators::NONE, 0x0000);
    EXPECT_EQ(Generators::GetGeneratorNEGATIVE(), 1);
    EXPECT_EQ(Generators::cMinChar, 'a');
}

TEST(GeneratorWords, ParsesASignedProduct) {
    EXPECT_EQ(Parse("-ab"), 0xC000 | Generators::NEGATIVE);
}

TEST(GeneratorWords, WritesASignedProduct) {
    EXPECT_EQ(Generators::GetGeneratorString(0xC001), "-ab");
}

TEST(GeneratorWords, ParsesUpperCaseInAnyOrder) {
    EXPECT_EQ(Parse("BA"), 0xC000);
    EXPECT_EQ(Generators::GetGeneratorString(Parse("BA")), "ab");
}

TEST(GeneratorWords, IgnoresForeignCharactersAndTakesTheSignAnywhere) {
    EXPECT_EQ(Parse("a1-"), 0x8000 | Generators::NEGATIVE);
    EXPECT_EQ(Parse("l z\xC3\xA4;"), 0);
}

TEST(GeneratorWords, RepeatsAreHarmlessToTheParser) {
    EXPECT_EQ(Parse("aAa--b"), 0xC001);
}

TEST(GeneratorWords, EmptyTextIsNoWord) {
    EXPECT_EQ(Parse(""), 0);
    EXPECT_EQ(Generators::GetGeneratorString(0), "");
}

TEST(GeneratorWords, AllElevenLettersParseAndWrite) {
    EXPECT_EQ(Parse("abcdefghijk"), 0xFFE0);
    EXPECT_EQ(Parse("KJIHGFEDCBA"), 0xFFE0);
    EXPECT_EQ(Generators::GetGeneratorString(0xFFE0), "abcdefghijk");
}

TEST(GeneratorWords, BitsWithoutALetterWriteNothing) {
    EXPECT_EQ(Generators::GetGeneratorString(0x001E), "");
    EXPECT_EQ(Generators::GetGeneratorString(0x801F), "-a");
}

TEST(GeneratorWords, EveryWordSurvivesWritingAndParsing) {
    for (unsigned bits = 0; bits <= 0xFFFF; ++bits) {
        const auto word = static_cast<GeneratorWord>(bits);
        const std::string text = Generators::GetGeneratorString(word);
        ASSERT_EQ(Parse(text.c_str()), bits & 0xFFE1u) << text;
    }
}

TEST(GeneratorWordsIsLegal, LowerCasesTheCallersText) {
    EXPECT_EQ(LegalityOf("AB", 'd'), (Legality{true, "ab"}));
    EXPECT_EQ(LegalityOf("-DCA", 'd'), (Legality{true, "-dca"}));
}

TEST(GeneratorWordsIsLegal, LowerCasesAnIllegalTextToo) {
    EXPECT_EQ(LegalityOf("AAXYZ", 'd'), (Legality{false, "aaxyz"}));
}

TEST(GeneratorWordsIsLegal, SignStandsInFrontOnly) {
    EXPECT_FALSE(LegalityOf("a-b", 'd').legal);
    EXPECT_FALSE(LegalityOf("ab-", 'd').legal);
    EXPECT_FALSE(LegalityOf("--a", 'd').legal);
    EXPECT_TRUE(LegalityOf("-ab", 'd').legal);
}

TEST(GeneratorWordsIsLegal, NoLetterStandsTwice) {
    EXPECT_FALSE(LegalityOf("aa", 'd').legal);
    EXPECT_FALSE(LegalityOf("aA", 'd').legal);
    EXPECT_FALSE(LegalityOf("abca", 'd').legal);
}

TEST(GeneratorWordsIsLegal, SignAloneIsLegal) {
    EXPECT_TRUE(LegalityOf("-", 'd').legal);
}

TEST(GeneratorWordsIsLegal, EmptyTextIsNot) {
    EXPECT_FALSE(LegalityOf("", 'd').legal);
}

TEST(GeneratorWordsIsLegal, LettersEndAtTheHighestOne) {
    EXPECT_TRUE(LegalityOf("abd", 'd').legal);
    EXPECT_FALSE(LegalityOf("abe", 'd').legal);
    EXPECT_FALSE(LegalityOf("`", 'd').legal);
    EXPECT_FALSE(LegalityOf("1", 'd').legal);
    EXPECT_FALSE(LegalityOf("\xC3\xA4", 'd').legal);
}

TEST(GeneratorWordsMaxChar, IsTheLastBaseFactorOfTheRuns) {
    EXPECT_EQ(Generators(3).GetMaxChar(), 'a');
    EXPECT_EQ(Generators(4).GetMaxChar(), 'b');
    EXPECT_EQ(Generators(8).GetMaxChar(), 'c');
    EXPECT_EQ(Generators(16).GetMaxChar(), 'd');
    EXPECT_EQ(Generators(2048).GetMaxChar(), 'k');
}

TEST(GeneratorWordsMaxChar, StaysAtTheFirstLetterBelowFourRuns) {
    for (const int runs : {-2147483647, -8, -1, 0, 1, 2, 3}) {
        EXPECT_EQ(Generators(runs).GetMaxChar(), 'a') << runs;
    }
}

TEST(GeneratorWordsMaxChar, CountsWholePowersOfTwoOnly) {
    for (int runs = 4; runs <= 2048; ++runs) {
        char expected = 'a';
        for (int power = 4; power <= runs; power *= 2) {
            ++expected;
        }
        ASSERT_EQ(Generators(runs).GetMaxChar(), expected) << runs;
    }
}

TEST(GeneratorWordsMaxChar, CanBeSet) {
    Generators generators(4);
    generators.SetMaxChar('h');
    EXPECT_EQ(generators.GetMaxChar(), 'h');
}

TEST(GeneratorWordsSet, NewObjectHasNoWords) {
    const Generators generators(2048);
    for (int index = 0; index <= 48; ++index) {
        EXPECT_EQ(generators.GetGenerator(ThreeFactors(), index, ""), 0) << index;
    }
}

TEST(GeneratorWordsSet, IndicesOutside1To55ChangeNothing) {
    const Generators before = WithBlocks();
    for (const int index : {-2147483647, -1, 0, 56, 57, 2147483647}) {
        Generators after = before;
        after.SetGenerator(index, Generators::A);
        EXPECT_EQ(after, before) << index;
    }
}

TEST(GeneratorWordsSet, EveryIndexFrom1To55Counts) {
    const Generators before(4);
    for (int index = 1; index <= 55; ++index) {
        Generators after = before;
        after.SetGenerator(index, Generators::A);
        EXPECT_NE(after, before) << index;
    }
}

TEST(GeneratorWordsSet, EqualityLooksAtTheHighestLetter) {
    Generators changed(8);
    EXPECT_EQ(changed, Generators(8));
    changed.SetMaxChar('d');
    EXPECT_NE(changed, Generators(8));
}

TEST(GeneratorWordsSet, CopiesAreIndependent) {
    const Generators original = WithBlocks();
    Generators copy = original;
    copy.SetGenerator(1, Generators::K);
    EXPECT_EQ(original, WithBlocks());
    EXPECT_NE(copy, original);
}

TEST(GeneratorWordsGet, BlockNamesGiveTheWordsBehindTheFactors) {
    const Generators generators = WithBlocks();
    EXPECT_EQ(generators.GetGenerator(ThreeFactors(), 1, "$B1"), Parse("abc"));
    EXPECT_EQ(generators.GetGenerator(ThreeFactors(), 1, "$B2"), Parse("ade"));
    EXPECT_EQ(generators.GetGenerator(ThreeFactors(), 1, "$B3"), Parse("-bf"));
}

TEST(GeneratorWordsGet, ProductsOfBlocksCancelCommonLettersAndSigns) {
    const Generators generators = WithBlocks();
    EXPECT_EQ(generators.GetGenerator(ThreeFactors(), 1, "$B1$B2"), Parse("bcde"));
    EXPECT_EQ(generators.GetGenerator(ThreeFactors(), 1, "$B1$B3"), Parse("-acf"));
    EXPECT_EQ(generators.GetGenerator(ThreeFactors(), 1, "$B2$B3"), Parse("-abdef"));
    EXPECT_EQ(generators.GetGenerator(ThreeFactors(), 1, "$B1$B2$B3"), Parse("-cdef"));
}

TEST(GeneratorWordsGet, OtherNamesGiveTheWordOfTheIndex) {
    const Generators generators = WithBlocks();
    for (const char* name : {"", "A", "$B4", "$B2$B1", "$B1 ", "$b1", "$B"}) {
        EXPECT_EQ(generators.GetGenerator(ThreeFactors(), 2, name), Generators::B) << name;
    }
}

TEST(GeneratorWordsGet, IndicesOutside1To48GiveNothing) {
    Generators generators(2048);
    for (int index = 1; index <= 55; ++index) {
        generators.SetGenerator(index, Generators::A);
    }
    for (const int index : {-2147483647, -1, 0, 49, 55, 56, 2147483647}) {
        EXPECT_EQ(generators.GetGenerator(ThreeFactors(), index, "X"), 0) << index;
    }
    EXPECT_EQ(generators.GetGenerator(ThreeFactors(), 1, "X"), Generators::A);
    EXPECT_EQ(generators.GetGenerator(ThreeFactors(), 48, "X"), Generators::A);
}

TEST(GeneratorWordsGet, BlockNamesBehindTheLastWordGiveNothing) {
    Generators generators(2048);
    for (int index = 1; index <= 55; ++index) {
        generators.SetGenerator(index, Generators::A);
    }
    const TestFactors factors = TestFactors().Quantitatives(54);
    EXPECT_EQ(generators.GetGenerator(factors, 1, "$B1"), Generators::A);
    EXPECT_EQ(generators.GetGenerator(factors, 1, "$B2"), 0);
    EXPECT_EQ(generators.GetGenerator(TestFactors().Quantitatives(200), 1, "$B1$B2$B3"), 0);
}

TEST(GeneratorWordsRows, AreTheColumnNumbersOfTheLetters) {
    EXPECT_THAT(Generators::GetRows(Parse("a")), ElementsAre(1));
    EXPECT_THAT(Generators::GetRows(Parse("k")), ElementsAre(11));
    EXPECT_THAT(Generators::GetRows(Parse("gca")), ElementsAre(1, 3, 7));
}

TEST(GeneratorWordsRows, IgnoreTheSignAndBitsWithoutALetter) {
    EXPECT_THAT(Generators::GetRows(Parse("-bd")), ElementsAre(2, 4));
    EXPECT_THAT(Generators::GetRows(0x001F), IsEmpty());
    EXPECT_THAT(Generators::GetRows(0), IsEmpty());
}

TEST(GeneratorWordsNames, BlockGeneratorsAndTheirProducts) {
    EXPECT_STREQ(Generators::GetBlockGen(1), "$B1");
    EXPECT_STREQ(Generators::GetBlockGen(2), "$B2");
    EXPECT_STREQ(Generators::GetBlockGen(3), "$B3");
    EXPECT_STREQ(Generators::GetBlockGen(4), "$B1$B2");
    EXPECT_STREQ(Generators::GetBlockGen(5), "$B1$B3");
    EXPECT_STREQ(Generators::GetBlockGen(6), "$B2$B3");
    EXPECT_STREQ(Generators::GetBlockGen(7), "$B1$B2$B3");
}

TEST(GeneratorWordsNames, OtherNumbersHaveNone) {
    for (const int number : {-2147483647, -1, 0, 8, 2147483647}) {
        EXPECT_STREQ(Generators::GetBlockGen(number), "") << number;
    }
}

TEST(GeneratorWordsNames, BaseFactorsOfResolutionFive) {
    const std::vector<int> expected{0, 0, 0, 0, 0, 4,  5,  6,  6,  7,  7,  7,  8,  8,  8,  8,  8,
                                    8, 9, 9, 9, 9, 10, 10, 10, 10, 10, 10, 10, 10, 11, 11, 11, 0};
    for (std::size_t factors = 0; factors < expected.size(); ++factors) {
        EXPECT_EQ(Generators::GetBaseFactors5(static_cast<int>(factors)), expected[factors])
            << factors;
    }
    EXPECT_EQ(Generators::GetBaseFactors5(-5), 0);
}

TEST(GeneratorWordsCount, BitsOfShortAndLongNumbers) {
    const Inner generators(4);
    EXPECT_EQ(generators.WBitCount(0), 0);
    EXPECT_EQ(generators.WBitCount(0x8001), 2);
    EXPECT_EQ(generators.WBitCount(0xFFFF), 16);
    EXPECT_EQ(generators.DWBitCount(0), 0);
    EXPECT_EQ(generators.DWBitCount(0x80010001U), 3);
    EXPECT_EQ(generators.DWBitCount(0xFFFFFFFFU), 32);
}

TEST(GeneratorWordsCount, PrimaryFactorsAreSinglesOfEitherSign) {
    Inner generators(16);
    generators.SetGenerator(1, Parse("a"));
    generators.SetGenerator(2, Parse("-b"));
    generators.SetGenerator(3, Parse("ab"));
    generators.SetGenerator(4, Generators::NEGATIVE);
    generators.SetGenerator(51, Parse("c"));
    generators.SetGenerator(52, Parse("d"));  // behind the words that count
    EXPECT_EQ(generators.PrimaryFactorCount(), 3);
}

}  // namespace
