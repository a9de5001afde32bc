#include "evaluation/AliasStructure.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

#include "evaluation/RegularFraction.h"
#include "evaluation/SignColumns.h"
#include "foundation/utl/Exceptions.h"

namespace NCDOE {

namespace {

using Effect = AliasStructure::Effect;
using Word = AliasStructure::Word;

constexpr int cMaxFactors = 64;
// All defining words are listed up to 2^10 - 1 of them.
constexpr std::size_t cMaxListedGenerators = 10;
// Longest word looked for when there are too many words to list.
constexpr int cMaxSearchedLength = 6;
constexpr float cFirstCode = 65.0F;

// An effect with the bits of its column.
struct EffectColumn {
    Effect effect;
    std::vector<std::uint64_t> bits;
};

// -1 or 1, or 0 for a centre point's cell.
int SignOf(float cell, int row, int column) {
    if (cell == -1.0F || cell == cFirstCode) {
        return -1;
    }
    if (cell == 1.0F || cell == cFirstCode + 1) {
        return 1;
    }
    if (cell != 0.0F) {
        throw Exception(ExceptionMessage::translate(
                            "Aliases are told for two-level designs only: run {1} of factor {2} is "
                            "at {3}. The levels are -1 and 1, or the codes 65 and 66.")
                        << row << column << cell);
    }
    return 0;
}

// Numbers of the runs without a 0, counted from 1.
std::vector<int> FactorialRuns(const NCDataMatrix<float>& matrix, int factorCount) {
    std::vector<int> runs;
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        bool centre = false;
        for (int column = 1; column <= factorCount; ++column) {
            centre = SignOf(matrix(row, column), row, column) == 0 || centre;
        }
        if (!centre) {
            runs.push_back(row);
        }
    }
    return runs;
}

SignColumns SignsOf(const NCDataMatrix<float>& matrix,
                    const std::vector<int>& runs,
                    int factorCount) {
    SignColumns signs(static_cast<int>(runs.size()), factorCount);
    for (std::size_t i = 0; i < runs.size(); ++i) {
        for (int column = 1; column <= factorCount; ++column) {
            if (SignOf(matrix(runs[i], column), runs[i], column) < 0) {
                signs.SetNegative(static_cast<int>(i), column - 1);
            }
        }
    }
    return signs;
}

// The mean, the main effects and the two-factor interactions, in this order.
std::vector<EffectColumn> EffectsUpToTwoFactors(const SignColumns& signs) {
    std::vector<EffectColumn> effects;
    effects.push_back({{}, std::vector<std::uint64_t>(signs.Column(0).size(), 0)});
    for (int a = 0; a < signs.Columns(); ++a) {
        const auto bits = signs.Column(a);
        effects.push_back({{a}, {bits.begin(), bits.end()}});
    }
    for (int a = 0; a < signs.Columns(); ++a) {
        for (int b = a + 1; b < signs.Columns(); ++b) {
            effects.push_back({{a, b}, signs.Product(signs.Column(a), signs.Column(b))});
        }
    }
    return effects;
}

// The Krawtchouk polynomials K_j(weight) for j from 0 to n, by their recurrence
// (j + 1) K_(j+1)(w) = (n - 2 w) K_j(w) - (n - j + 1) K_(j-1)(w).
std::vector<long double> Krawtchouk(int n, int weight) {
    std::vector<long double> values(static_cast<std::size_t>(n) + 1);
    values[0] = 1;
    for (int j = 0; j < n; ++j) {
        const auto at = static_cast<std::size_t>(j);
        const long double before = j > 0 ? values[at - 1] : 0;
        values[at + 1] = (static_cast<long double>(n - 2 * weight) * values[at] -
                          static_cast<long double>(n - j + 1) * before) /
                         static_cast<long double>(j + 1);
    }
    return values;
}

// How many pairs of runs differ in d factors, by d. In a regular fraction every run sees the same
// distances, so those from the first run serve, `runs` times.
std::vector<long double> DistanceCounts(const std::vector<std::uint64_t>& rows,
                                        int factorCount,
                                        bool isRegular) {
    std::vector<long double> counts(static_cast<std::size_t>(factorCount) + 1);
    const std::size_t seen = isRegular ? 1 : rows.size();
    const long double times = isRegular ? static_cast<long double>(rows.size()) : 1;
    for (std::size_t i = 0; i < seen; ++i) {
        for (const std::uint64_t row : rows) {
            counts[static_cast<std::size_t>(std::popcount(rows[i] ^ row))] += times;
        }
    }
    return counts;
}

// Word lengths from the distances between the runs (MacWilliams' transform).
std::vector<double> WordLengthPattern(const std::vector<std::uint64_t>& rows,
                                      int factorCount,
                                      bool isRegular) {
    const auto counts = DistanceCounts(rows, factorCount, isRegular);
    std::vector<long double> sums(counts.size());
    for (int distance = 0; distance <= factorCount; ++distance) {
        const long double count = counts[static_cast<std::size_t>(distance)];
        if (count == 0) {
            continue;
        }
        const auto polynomial = Krawtchouk(factorCount, distance);
        for (std::size_t j = 0; j < sums.size(); ++j) {
            sums[j] += count * polynomial[j];
        }
    }
    const auto pairs =
        static_cast<long double>(rows.size()) * static_cast<long double>(rows.size());
    std::vector<double> pattern;
    pattern.reserve(sums.size());
    for (std::size_t j = 1; j < sums.size(); ++j) {
        // The sums are whole numbers; what differs is rounding.
        const long double whole = std::round(sums[j]);
        pattern.push_back(
            static_cast<double>((isRegular ? std::round(whole / pairs) * pairs : whole) / pairs));
    }
    return pattern;
}

// Largest |inner product with the mean| of the products of `count` columns.
int LargestCharacteristic(const SignColumns& signs,
                          int count,
                          int firstColumn,
                          const std::vector<std::uint64_t>& product) {
    int largest = 0;
    for (int column = firstColumn; column + count <= signs.Columns(); ++column) {
        if (count == 1) {
            largest =
                std::max(largest, std::abs(signs.InnerProduct(product, signs.Column(column))));
        } else {
            largest = std::max(
                largest,
                LargestCharacteristic(
                    signs, count - 1, column + 1, signs.Product(product, signs.Column(column))));
        }
    }
    return largest;
}

double Resolution(const std::vector<double>& pattern, const SignColumns& signs, bool isRegular) {
    const auto first = std::find_if(pattern.begin(), pattern.end(), [](double n) { return n > 0; });
    if (first == pattern.end()) {
        return std::numeric_limits<double>::infinity();
    }
    const int length = static_cast<int>(first - pattern.begin()) + 1;
    if (isRegular) {
        return length;
    }
    const std::vector<std::uint64_t> mean(signs.Column(0).size(), 0);
    const int largest = LargestCharacteristic(signs, length, 0, mean);
    return length + 1 - static_cast<double>(largest) / signs.Runs();
}

Word WordOfMask(const RegularFraction& fraction, std::uint64_t mask) {
    Word word;
    bool negative = false;
    for (int column = 0; column < static_cast<int>(fraction.codes.size()); ++column) {
        if ((mask >> column & 1U) != 0) {
            word.factors.push_back(column);
            negative ^= fraction.negative[static_cast<std::size_t>(column)];
        }
    }
    word.sign = negative ? -1 : 1;
    return word;
}

std::vector<std::uint64_t> GeneratorMasks(const RegularFraction& fraction) {
    std::vector<std::uint64_t> masks;
    for (int column = 0; column < static_cast<int>(fraction.codes.size()); ++column) {
        const auto& base = fraction.baseColumns;
        if (std::find(base.begin(), base.end(), column) != base.end()) {
            continue;
        }
        std::uint64_t mask = std::uint64_t{1} << column;
        for (std::size_t i = 0; i < base.size(); ++i) {
            if ((fraction.codes[static_cast<std::size_t>(column)] >> i & 1U) != 0) {
                mask |= std::uint64_t{1} << base[i];
            }
        }
        masks.push_back(mask);
    }
    return masks;
}

std::vector<std::uint64_t> AllProducts(const std::vector<std::uint64_t>& generators) {
    std::vector<std::uint64_t> masks{0};
    for (const std::uint64_t generator : generators) {
        const std::size_t before = masks.size();
        for (std::size_t i = 0; i < before; ++i) {
            masks.push_back(masks[i] ^ generator);
        }
    }
    masks.erase(masks.begin());
    return masks;
}

void ForEachSubset(int columns, int size, int first, std::uint64_t mask, const auto& visit) {
    if (size == 0) {
        visit(mask);
        return;
    }
    for (int column = first; column + size <= columns; ++column) {
        ForEachSubset(columns, size - 1, column + 1, mask | std::uint64_t{1} << column, visit);
    }
}

std::uint64_t CodeOfMask(const RegularFraction& fraction, std::uint64_t mask) {
    std::uint64_t code = 0;
    for (; mask != 0; mask &= mask - 1) {
        code ^= fraction.codes[static_cast<std::size_t>(std::countr_zero(mask))];
    }
    return code;
}

// The words of one length: two halves with the same code meet in the middle.
std::vector<std::uint64_t> WordsOfLength(const RegularFraction& fraction, int length) {
    const int columns = static_cast<int>(fraction.codes.size());
    std::unordered_multimap<std::uint64_t, std::uint64_t> halves;
    ForEachSubset(columns, length / 2, 0, 0, [&](std::uint64_t mask) {
        halves.emplace(CodeOfMask(fraction, mask), mask);
    });
    std::vector<std::uint64_t> words;
    ForEachSubset(columns, length - length / 2, 0, 0, [&](std::uint64_t mask) {
        const auto [begin, end] = halves.equal_range(CodeOfMask(fraction, mask));
        for (auto half = begin; half != end; ++half) {
            if ((half->second & mask) == 0) {
                words.push_back(half->second | mask);
            }
        }
    });
    std::sort(words.begin(), words.end());
    words.erase(std::unique(words.begin(), words.end()), words.end());
    return words;
}

std::vector<Word> DefiningWords(const RegularFraction& fraction,
                                const std::vector<std::uint64_t>& generators,
                                double resolution) {
    std::vector<std::uint64_t> masks;
    if (generators.size() <= cMaxListedGenerators) {
        masks = AllProducts(generators);
    } else if (resolution <= cMaxSearchedLength) {
        masks = WordsOfLength(fraction, static_cast<int>(resolution));
    }
    std::vector<Word> words;
    words.reserve(masks.size());
    for (const std::uint64_t mask : masks) {
        words.push_back(WordOfMask(fraction, mask));
    }
    std::sort(words.begin(), words.end(), [](const Word& a, const Word& b) {
        return std::pair(a.factors.size(), a.factors) < std::pair(b.factors.size(), b.factors);
    });
    return words;
}

// Groups effects whose columns agree up to the sign, in the order of their first effects.
std::vector<AliasStructure::AliasSet> AliasSets(const std::vector<EffectColumn>& effects,
                                                const SignColumns& signs) {
    std::map<std::vector<std::uint64_t>, std::size_t> setOf;
    std::vector<AliasStructure::AliasSet> sets;
    std::vector<std::uint64_t> allNegative(signs.Column(0).size(), 0);
    for (int run = 0; run < signs.Runs(); ++run) {
        allNegative[static_cast<std::size_t>(run) / 64] |= std::uint64_t{1} << (run % 64);
    }
    for (const EffectColumn& column : effects) {
        // The sign of the first run is the column's; up to it, columns of one set are the same.
        const bool negative = (column.bits.front() & 1U) != 0;
        const auto key = negative ? signs.Product(column.bits, allNegative) : column.bits;
        const auto [found, isNew] = setOf.emplace(key, sets.size());
        if (isNew) {
            sets.emplace_back();
        }
        AliasStructure::AliasSet& set = sets[found->second];
        set.effects.push_back(column.effect);
        set.signs.push_back(negative ? -1 : 1);
    }
    std::erase_if(sets, [](const auto& set) { return set.effects.size() < 2; });
    for (AliasStructure::AliasSet& set : sets) {
        for (int& sign : set.signs) {
            sign *= set.signs.front() < 0 && &sign != &set.signs.front() ? -1 : 1;
        }
        set.signs.front() = 1;
    }
    return sets;
}

std::vector<AliasStructure::PartialAlias> PartialAliases(const std::vector<EffectColumn>& effects,
                                                         const SignColumns& signs) {
    std::vector<AliasStructure::PartialAlias> aliases;
    for (int a = 1; a <= signs.Columns(); ++a) {
        const EffectColumn& mainEffect = effects[static_cast<std::size_t>(a)];
        for (std::size_t b = 1; b < effects.size(); ++b) {
            const int product = signs.InnerProduct(mainEffect.bits, effects[b].bits);
            if (product != 0 && std::abs(product) != signs.Runs()) {
                aliases.push_back({mainEffect.effect,
                                   effects[b].effect,
                                   static_cast<double>(product) / signs.Runs()});
            }
        }
    }
    return aliases;
}

// For every block a column of bits of its runs.
std::vector<std::vector<std::uint64_t>> BlockRuns(const NCDataMatrix<float>& matrix,
                                                  const std::vector<int>& runs,
                                                  int blockColumn,
                                                  std::size_t words) {
    std::map<float, std::vector<std::uint64_t>> blocks;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        auto& bits = blocks[matrix(runs[i], blockColumn)];
        bits.resize(words);
        bits[i / 64] |= std::uint64_t{1} << (i % 64);
    }
    std::vector<std::vector<std::uint64_t>> result;
    result.reserve(blocks.size());
    for (auto& [letter, bits] : blocks) {
        result.push_back(std::move(bits));
    }
    return result;
}

// Share of the sum of squares about the mean that lies between the blocks.
double ShareBetweenBlocks(const EffectColumn& effect,
                          const std::vector<std::vector<std::uint64_t>>& blocks,
                          const SignColumns& signs) {
    double between = 0;
    for (const auto& block : blocks) {
        int size = 0;
        int negative = 0;
        for (std::size_t i = 0; i < block.size(); ++i) {
            size += std::popcount(block[i]);
            negative += std::popcount(block[i] & effect.bits[i]);
        }
        const double sum = size - 2.0 * negative;
        between += sum * sum / size;
    }
    const double total = signs.Sum(effect.bits);
    const double aboutMean = signs.Runs() - total * total / signs.Runs();
    return aboutMean > 0 ? (between - total * total / signs.Runs()) / aboutMean : 0;
}

std::vector<AliasStructure::BlockConfounding> ConfoundedWithBlocks(
    const std::vector<EffectColumn>& effects,
    const std::vector<std::vector<std::uint64_t>>& blocks,
    const SignColumns& signs) {
    // Shares below this are rounding of sums of whole numbers.
    constexpr double cSmallestShare = 1e-12;
    std::vector<AliasStructure::BlockConfounding> confounded;
    for (std::size_t i = 1; i < effects.size(); ++i) {
        const double share = ShareBetweenBlocks(effects[i], blocks, signs);
        if (share > cSmallestShare) {
            confounded.push_back({effects[i].effect, share});
        }
    }
    return confounded;
}

void RequireSize(const NCDataMatrix<float>& matrix, int factorCount) {
    if (factorCount < 1 || factorCount > cMaxFactors || matrix.SizeColumns() < factorCount ||
        matrix.SizeColumns() > factorCount + 1) {
        throw Exception(ExceptionMessage::translate(
                            "Aliases are told for designs of 1 to {1} factors; the design has {2} "
                            "columns for {3} factors.")
                        << cMaxFactors << matrix.SizeColumns() << factorCount);
    }
}

}  // namespace

AliasStructure ComputeAliasStructure(const NCDataMatrix<float>& matrix, int factorCount) {
    RequireSize(matrix, factorCount);
    const std::vector<int> runs = FactorialRuns(matrix, factorCount);
    if (runs.empty()) {
        throw Exception(ExceptionMessage::translate(
            "Aliases are told for designs with runs; the design has none but centre points."));
    }
    const SignColumns signs = SignsOf(matrix, runs, factorCount);
    const std::vector<std::uint64_t> rows = signs.Rows();
    const auto fraction = RegularFraction::Find(rows, factorCount);
    const std::vector<EffectColumn> effects = EffectsUpToTwoFactors(signs);

    AliasStructure structure;
    structure.runs = signs.Runs();
    structure.isRegular = fraction.has_value();
    structure.wordLengthPattern = WordLengthPattern(rows, factorCount, structure.isRegular);
    structure.resolution = Resolution(structure.wordLengthPattern, signs, structure.isRegular);
    if (fraction) {
        const std::vector<std::uint64_t> generators = GeneratorMasks(*fraction);
        for (const std::uint64_t mask : generators) {
            structure.generators.push_back(WordOfMask(*fraction, mask));
        }
        structure.definingWords = DefiningWords(*fraction, generators, structure.resolution);
    }
    structure.aliasSets = AliasSets(effects, signs);
    structure.partialAliases = PartialAliases(effects, signs);
    if (matrix.SizeColumns() > factorCount) {
        const auto blocks = BlockRuns(matrix, runs, factorCount + 1, signs.Column(0).size());
        structure.blockConfounding = ConfoundedWithBlocks(effects, blocks, signs);
    }
    return structure;
}

}  // namespace NCDOE
