// What blocking costs: for every offered block count, which effects go with the blocks. Seen from
// the words and, for designs that can be built here, from their runs.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "designs/factorial/FF2.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "frame/generators/Generators.h"
#include "tests/oracles/GeneratorAlgebra.h"
#include "tests/oracles/GeneratorSelectorsOracle.h"
#include "tests/support/TestFactors.h"

namespace {

using Blocks = std::vector<int>;
using oracles::Words;

/// A builder of a family that only tells its number; block counts depend on nothing else of it.
class FamilyOfNumber : public DesignBuilder {
  public:
    explicit FamilyOfNumber(EDesign::Type type) : DesignBuilder("", "", ""), type_(type) {}

    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    std::unique_ptr<NCDesign> Build(const Factors& /*factors*/,
                                    const DesignOptions& /*options*/,
                                    bool* /*cancel*/) const override {
        return nullptr;
    }
    unsigned int GetDefaultRuns(const Factors& /*factors*/,
                                EObjective::Type /*objective*/) const override {
        return 0;
    }
    unsigned int GetMinimumCenterPoints() const override { return 0; }
    std::vector<unsigned int> GetLegalRuns(const Factors& /*factors*/,
                                           const DesignOptions& /*options*/) const override {
        return {};
    }
    unsigned char GetPriority(const Factors& /*factors*/) const override { return 0; }
    EDesign::Type IsDesign() const override { return type_; }
    bool IsValid(const Factors& /*factors*/, const DesignOptions& /*options*/) const override {
        return false;
    }
    EModel::Type GetDefaultModel(const Factors& /*factors*/,
                                 EObjective::Type /*objective*/) const override {
        return EModel::None;
    }

  private:
    EDesign::Type type_;
};

Blocks LegalBlocks(EDesign::Type type, int factors, unsigned runs, bool noBlocks = false) {
    DesignOptions options;
    options.SetRuns(runs);
    return FamilyOfNumber(type).GetLegalBlocks(
        TestFactors().Quantitatives(factors), options, noBlocks);
}

/// The word of a family with some block generators, by the literal selectors.
oracles::Word Word(EDesign::Type type, int index, int factors, int runs, int blockGens) {
    switch (type) {
        case EDesign::FF2:
            return oracles::GenFullFactorial(index, runs, blockGens);
        case EDesign::FFR_III:
            return oracles::Gen3(index, factors, runs, blockGens);
        case EDesign::FFR_IV:
            return oracles::Gen4(index, factors, runs, blockGens);
        default:
            return oracles::Gen5(index, factors, runs, blockGens);
    }
}

/// Block generators to look at: the logarithm of a quarter of the runs, 3 at most.
int MostBlockGenerators(int runs) {
    int most = 0;
    while (most < 3 && (8 << most) <= runs) {
        ++most;
    }
    return most;
}

Blocks LiteralFactorialBlocks(EDesign::Type type, int factors, int runs) {
    Blocks blocks{1};
    if (factors > 31) {
        return blocks;
    }
    for (int i = 1; i <= MostBlockGenerators(runs); ++i) {
        if (Word(type, -i, factors, runs, i) != 0) {
            blocks.push_back(1 << i);
        }
    }
    return blocks;
}

Blocks LiteralCompositeBlocks(int factors, int runs) {
    Blocks blocks{1};
    if (factors > 31) {
        return blocks;
    }
    blocks.push_back(2);
    for (int i = 1; i <= MostBlockGenerators(runs); ++i) {
        const int cubeRuns = runs - 2 * factors;
        if (oracles::Gen5(0, factors, cubeRuns, i) == 5 &&
            oracles::Gen5(-i, factors, cubeRuns, i) != 0) {
            blocks.push_back((1 << i) + 1);
        }
    }
    return blocks;
}

const std::vector<EDesign::Type>& Factorials() {
    static const std::vector<EDesign::Type> types{
        EDesign::FF2, EDesign::FFR_III, EDesign::FFR_IV, EDesign::FFR_V};
    return types;
}

const std::vector<int>& PowerOfTwoRuns() {
    static const std::vector<int> runs{1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048, 4096};
    return runs;
}

/// One offer of a factorial family and the words that its design would be built from.
struct Offer {
    EDesign::Type type;
    int factors;
    int runs;
    int blocks;
    Words factorWords;
    Words blockWords;

    [[nodiscard]] std::string Name() const {
        return "type " + std::to_string(type) + ", " + std::to_string(factors) + " factors, " +
               std::to_string(runs) + " runs, " + std::to_string(blocks) + " blocks";
    }
    [[nodiscard]] bool HasHoles() const {
        return std::find(factorWords.begin(), factorWords.end(), 0) != factorWords.end();
    }
    [[nodiscard]] Generators ToGenerators() const {
        Generators generators(runs);
        int index = 1;
        for (const Words& words : {factorWords, blockWords}) {
            for (const unsigned short word : words) {
                generators.SetGenerator(index++, word);
            }
        }
        return generators;
    }
    [[nodiscard]] bool IsBuildable() const {
        DesignOptions options;
        options.SetBlocks(static_cast<unsigned>(blocks));
        std::string message;
        return ToGenerators().IsValid(
            TestFactors().Quantitatives(factors), options, false, message);
    }
};

GeneratorWord EngineWord(EDesign::Type type, int index, int factors, int runs, int blockGens) {
    const auto count = static_cast<unsigned>(factors);
    switch (type) {
        case EDesign::FF2:
            return Generators::GetGenFullFactorial(index, runs, blockGens);
        case EDesign::FFR_III:
            return Generators::GetGen3(
                index, count, static_cast<unsigned>(runs), static_cast<unsigned>(blockGens));
        case EDesign::FFR_IV:
            return Generators::GetGen4(index, count, runs, blockGens);
        default:
            return Generators::GetGen5(index, count, runs, blockGens);
    }
}

/// All offers of two blocks and more, with the engine's words. A full factorial has the runs of its
/// factors; fractions are asked for every run count.
std::vector<Offer> AllOffers() {
    std::vector<Offer> offers;
    for (const EDesign::Type type : Factorials()) {
        for (int factors = 1; factors <= (type == EDesign::FF2 ? 11 : 31); ++factors) {
            for (const int runs : PowerOfTwoRuns()) {
                if (type == EDesign::FF2 && runs != 1 << factors) {
                    continue;
                }
                for (const int blocks : LegalBlocks(type, factors, static_cast<unsigned>(runs))) {
                    Offer offer{type, factors, runs, blocks, {}, {}};
                    const int blockGens = blocks >= 8 ? 3 : blocks >= 4 ? 2 : blocks - 1;
                    for (int i = 1; i <= factors && blocks > 1; ++i) {
                        offer.factorWords.push_back(EngineWord(type, i, factors, runs, blockGens));
                    }
                    for (int i = 1; i <= blockGens; ++i) {
                        offer.blockWords.push_back(EngineWord(type, -i, factors, runs, blockGens));
                    }
                    if (blocks > 1) {
                        offers.push_back(offer);
                    }
                }
            }
        }
    }
    return offers;
}

/// Whether each block has as many runs, and every factor as many highs as lows in each of them, so
/// that no main effect is confounded with blocks.
bool IsBalancedInEveryBlock(const NCDataMatrix<float>& matrix, int blocks) {
    const int factors = matrix.SizeColumns() - 1;
    std::map<float, int> sizes;
    std::map<float, std::vector<float>> sums;
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        const float block = matrix(row, factors + 1);
        ++sizes[block];
        std::vector<float>& sum = sums[block];
        sum.resize(static_cast<std::size_t>(factors));
        for (int column = 1; column <= factors; ++column) {
            sum[static_cast<std::size_t>(column) - 1] += matrix(row, column);
        }
    }
    bool balanced = static_cast<int>(sizes.size()) == blocks;
    for (int block = 1; block <= blocks; ++block) {
        const float code = static_cast<float>(64 + block);
        balanced =
            balanced && sizes[code] * blocks == matrix.SizeRows() &&
            std::all_of(sums[code].begin(), sums[code].end(), [](float s) { return s == 0; });
    }
    return balanced;
}

TEST(LegalBlocksProof, FactorialsFollowTheirTables) {
    for (const EDesign::Type type : Factorials()) {
        for (int factors = 0; factors <= 34; ++factors) {
            for (int runs = 0; runs <= 520; ++runs) {
                ASSERT_EQ(LegalBlocks(type, factors, static_cast<unsigned>(runs)),
                          LiteralFactorialBlocks(type, factors, runs))
                    << "type " << type << ", " << factors << " factors, " << runs << " runs";
            }
            for (const int runs : PowerOfTwoRuns()) {
                ASSERT_EQ(LegalBlocks(type, factors, static_cast<unsigned>(runs)),
                          LiteralFactorialBlocks(type, factors, runs))
                    << "type " << type << ", " << factors << " factors, " << runs << " runs";
            }
        }
    }
}

TEST(LegalBlocksProof, CompositesFollowTheirTables) {
    for (int factors = 0; factors <= 34; ++factors) {
        for (int runs = 0; runs <= 2200; ++runs) {
            ASSERT_EQ(LegalBlocks(EDesign::CCC, factors, static_cast<unsigned>(runs)),
                      LiteralCompositeBlocks(factors, runs))
                << factors << " factors, " << runs << " runs";
        }
    }
}

TEST(LegalBlocksProof, FullFactorialsByTheirRuns) {
    EXPECT_EQ(LegalBlocks(EDesign::FF2, 2, 4), Blocks{1});
    EXPECT_EQ(LegalBlocks(EDesign::FF2, 3, 8), (Blocks{1, 2}));
    EXPECT_EQ(LegalBlocks(EDesign::FF2, 4, 16), (Blocks{1, 2, 4}));
    for (int factors = 5; factors <= 10; ++factors) {
        EXPECT_EQ(LegalBlocks(EDesign::FF2, factors, 1U << factors), (Blocks{1, 2, 4, 8}))
            << factors;
    }
}

TEST(LegalBlocksProof, FractionsByTheirFactorsAndRuns) {
    struct Fact {
        EDesign::Type type;
        int runs;
        int firstFactor;
        int lastFactor;
        Blocks blocks;
    };
    const std::vector<Fact> facts{
        {EDesign::FFR_III, 4, 3, 3, {1}},
        {EDesign::FFR_III, 8, 5, 6, {1, 2}},
        {EDesign::FFR_III, 8, 7, 7, {1}},
        {EDesign::FFR_III, 16, 9, 12, {1, 2, 4}},
        {EDesign::FFR_III, 16, 13, 14, {1, 2}},
        {EDesign::FFR_III, 16, 15, 15, {1}},
        {EDesign::FFR_III, 32, 17, 24, {1, 2, 4, 8}},
        {EDesign::FFR_III, 32, 25, 28, {1, 2, 4}},
        {EDesign::FFR_III, 32, 29, 30, {1, 2}},
        {EDesign::FFR_III, 32, 31, 31, {1}},
        {EDesign::FFR_IV, 8, 4, 4, {1, 2}},
        {EDesign::FFR_IV, 16, 6, 8, {1, 2, 4}},
        {EDesign::FFR_IV, 32, 7, 16, {1, 2, 4, 8}},
        {EDesign::FFR_IV, 64, 9, 25, {1, 2, 4, 8}},
        {EDesign::FFR_IV, 64, 26, 29, {1, 2, 4}},
        {EDesign::FFR_IV, 64, 30, 31, {1, 2}},
        {EDesign::FFR_IV, 128, 12, 25, {1, 2, 4, 8}},
        {EDesign::FFR_IV, 128, 26, 29, {1, 2, 4}},
        {EDesign::FFR_IV, 128, 30, 31, {1, 2}},
        {EDesign::FFR_IV, 256, 17, 25, {1, 2, 4, 8}},
        {EDesign::FFR_IV, 256, 26, 29, {1, 2, 4}},
        {EDesign::FFR_IV, 256, 30, 31, {1, 2}},
        {EDesign::FFR_V, 16, 5, 5, {1, 2, 4}},
        {EDesign::FFR_V, 32, 6, 6, {1, 2, 4, 8}},
        {EDesign::FFR_V, 64, 7, 8, {1, 2, 4, 8}},
        {EDesign::FFR_V, 128, 9, 11, {1, 2, 4, 8}},
        {EDesign::FFR_V, 256, 12, 17, {1, 2, 4, 8}},
        {EDesign::FFR_V, 512, 18, 21, {1, 2, 4, 8}},
        {EDesign::FFR_V, 1024, 22, 25, {1, 2, 4, 8}},
        {EDesign::FFR_V, 1024, 26, 29, {1, 2, 4}},
    };
    for (const Fact& fact : facts) {
        for (int factors = fact.firstFactor; factors <= fact.lastFactor; ++factors) {
            EXPECT_EQ(LegalBlocks(fact.type, factors, static_cast<unsigned>(fact.runs)),
                      fact.blocks)
                << "type " << fact.type << ", " << factors << " factors, " << fact.runs << " runs";
        }
    }
}

TEST(LegalBlocksProof, CompositesOfferStarBlocksByTheirFactors) {
    for (int factors = 2; factors <= 21; ++factors) {
        Blocks expected{1, 2};
        const bool three =
            factors == 4 || (factors >= 6 && factors <= 16) || (factors >= 18 && factors <= 21);
        const bool all = factors == 7 || (factors >= 12 && factors <= 14) || factors == 18;
        const bool five = all || factors == 8;
        if (three) {
            expected.push_back(3);
        }
        if (five) {
            expected.push_back(5);
        }
        if (all) {
            expected.push_back(9);
        }
        const int cube = factors < 5 ? 1 << factors : 1 << Generators::GetBaseFactors5(factors);
        EXPECT_EQ(LegalBlocks(EDesign::CCC, factors, static_cast<unsigned>(cube + 2 * factors)),
                  expected)
            << factors;
    }
}

TEST(LegalBlocksProof, NoMainEffectGoesWithTheBlocks) {
    for (const Offer& offer : AllOffers()) {
        Words mains = offer.factorWords;
        std::erase(mains, 0);
        EXPECT_FALSE(oracles::Meet(oracles::BlockEffects(offer.blockWords), mains)) << offer.Name();
    }
}

TEST(LegalBlocksProof, BlockContrastsAreIndependent) {
    for (const Offer& offer : AllOffers()) {
        const Words effects = oracles::BlockEffects(offer.blockWords);
        EXPECT_FALSE(oracles::Meet(effects, {0})) << offer.Name();
        EXPECT_FALSE(oracles::HasTwice(effects)) << offer.Name();
    }
}

TEST(LegalBlocksProof, OnlyEightBlocksOf128RunsHaveFactorsWithoutAWord) {
    for (const Offer& offer : AllOffers()) {
        const bool known = offer.runs == 128 && offer.blocks == 8 && offer.factors >= 12 &&
                           offer.factors <= 25 && offer.type != EDesign::FF2;
        EXPECT_EQ(offer.HasHoles(), known) << offer.Name();
    }
}

TEST(LegalBlocksProof, OffersThatValidationRefusesAreTheseOnly) {
    for (const Offer& offer : AllOffers()) {
        if (offer.runs <= 1LL << offer.factors) {
            const bool foreignLetter = offer.type == EDesign::FFR_V && offer.runs == 1024 &&
                                       offer.blocks == 4 && offer.factors >= 27;
            // Four factors at resolution V are a full factorial of 16 runs, which 8 runs lack.
            const bool halved =
                offer.type == EDesign::FFR_V && offer.runs == 8 && offer.factors == 4;
            EXPECT_EQ(offer.IsBuildable(), !offer.HasHoles() && !foreignLetter && !halved)
                << offer.Name();
        }
    }
}

TEST(LegalBlocksProof, BuiltDesignsAreBalancedInEveryBlock) {
    int built = 0;
    for (const Offer& offer : AllOffers()) {
        // More runs than the full factorial would need a base column that is no factor's.
        if (!offer.IsBuildable() || offer.runs > 1LL << offer.factors) {
            continue;
        }
        NCDataMatrix<float> matrix = NCDesign::MakeFFDesignTable(
            TestFactors().Quantitatives(offer.factors), offer.runs, true, false);
        offer.ToGenerators().AdjustDesignMatrix(offer.factors, matrix);
        EXPECT_TRUE(IsBalancedInEveryBlock(matrix, offer.blocks)) << offer.Name();
        ++built;
    }
    EXPECT_GT(built, 300);
}

TEST(LegalBlocksProof, BlocksByAMainEffectAreSeen) {
    for (const bool sound : {true, false}) {
        NCDataMatrix<float> matrix =
            NCDesign::MakeFFDesignTable(TestFactors().Quantitatives(3), 8, true, false);
        Generators generators(8);
        generators.SetGenerator(1, Generators::A);
        generators.SetGenerator(2, Generators::B);
        generators.SetGenerator(3, Generators::C);
        generators.SetGenerator(4, sound ? generators.GetGeneratorWord("abc") : Generators::B);
        generators.AdjustDesignMatrix(3, matrix);
        EXPECT_EQ(IsBalancedInEveryBlock(matrix, 2), sound);
    }
}

TEST(LegalBlocksProof, FullFactorialBuilderMakesBalancedBlocks) {
    const FF2Builder builder("", "", "");
    for (int factors = 2; factors <= 10; ++factors) {
        const TestFactors testFactors = TestFactors().Quantitatives(factors);
        DesignOptions options(builder, testFactors);
        options.SetCenterPoints(0);
        for (const int blocks : builder.GetLegalBlocks(testFactors, options, false)) {
            if (blocks > 1) {
                options.SetBlocks(static_cast<unsigned>(blocks));
                const auto design = builder.Build(testFactors, options);
                ASSERT_NE(design, nullptr) << factors << " factors, " << blocks << " blocks";
                ASSERT_EQ(design->GetDesignMatrix()->SizeRows(), 1 << factors);
                EXPECT_TRUE(IsBalancedInEveryBlock(*design->GetDesignMatrix(), blocks))
                    << factors << " factors, " << blocks << " blocks";
            }
        }
    }
}

TEST(LegalBlocksProof, BoxBehnkenByItsFactors) {
    const std::map<int, Blocks> expected{{4, {1, 3}},
                                         {5, {1, 2}},
                                         {6, {1, 2}},
                                         {7, {1, 2}},
                                         {9, {1, 5, 10}},
                                         {10, {1, 2}},
                                         {12, {1, 2}}};
    for (int factors = 0; factors <= 34; ++factors) {
        const auto found = expected.find(factors);
        EXPECT_EQ(LegalBlocks(EDesign::BB, factors, 100),
                  found != expected.end() ? found->second : Blocks{1})
            << factors;
    }
}

TEST(LegalBlocksProof, PlackettBurmanNeedsASpareColumn) {
    for (int factors = 1; factors <= 31; ++factors) {
        for (unsigned runs = 0; runs <= 36; ++runs) {
            const bool spare = factors < static_cast<int>(runs) - 1;
            EXPECT_EQ(LegalBlocks(EDesign::PB, factors, runs), spare ? (Blocks{1, 2}) : Blocks{1})
                << factors << " factors, " << runs << " runs";
        }
    }
    EXPECT_EQ(LegalBlocks(EDesign::PB, 32, 36), Blocks{1});
}

TEST(LegalBlocksProof, OtherFamiliesAreNotBlocked) {
    const std::set<int> blocked{EDesign::FF2,
                                EDesign::FFR_III,
                                EDesign::FFR_IV,
                                EDesign::FFR_V,
                                EDesign::PB,
                                EDesign::BB,
                                EDesign::CCC,
                                EDesign::DOpt};
    for (int type = 0; type <= 40; ++type) {
        if (!blocked.contains(type)) {
            for (const int factors : {1, 4, 7, 12}) {
                EXPECT_EQ(LegalBlocks(static_cast<EDesign::Type>(type), factors, 64), Blocks{1})
                    << type;
            }
        }
    }
}

TEST(LegalBlocksProof, NoFamilyIsBlockedAgainstTheCallersWish) {
    for (int type = 0; type <= 40; ++type) {
        EXPECT_EQ(LegalBlocks(static_cast<EDesign::Type>(type), 7, 64, true), Blocks{1}) << type;
    }
}

TEST(LegalBlocksProof, NoFamilyIsBlockedBeyond31Factors) {
    for (int type = 0; type <= 40; ++type) {
        EXPECT_EQ(LegalBlocks(static_cast<EDesign::Type>(type), 32, 256), Blocks{1}) << type;
    }
    EXPECT_GT(LegalBlocks(EDesign::FFR_IV, 31, 64).size(), 1U);
}

}  // namespace
