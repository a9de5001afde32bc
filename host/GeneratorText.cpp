#include "host/GeneratorText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "host/FactorLetters.h"
#include "host/HostError.h"

namespace {

using Words = std::vector<std::vector<int>>;

constexpr int cMostBlockWords = 3;
// The engine tells its words up to here.
constexpr int cMostWords = 48;
constexpr std::string_view cBlock = "Block";

GeneratorWord WordAt(const Generators& generators, const Factors& factors, int index) {
    return generators.GetGenerator(factors, index, "");
}

GeneratorWord Unsigned(GeneratorWord word) {
    return static_cast<GeneratorWord>(word & ~Generators::NEGATIVE);
}

// What a column is called: a factor's letter, or Block1 to Block3 behind the factors.
std::string LabelOf(int index, int factorCount) {
    return index <= factorCount ? FactorLetters::LetterOf(index - 1)
                                : fmt::format("{}{}", cBlock, index - factorCount);
}

int BlockWordCount(const Generators& generators, const Factors& factors) {
    const int factorCount = static_cast<int>(factors.GetDesignFactorCount());
    int count = 0;
    while (WordAt(generators, factors, factorCount + count + 1) != Generators::NONE) {
        ++count;
    }
    return count;
}

bool HasStarRuns(const DesignBuilder& builder) {
    const EDesign::Type type = builder.IsDesign();
    return type == EDesign::CCC || type == EDesign::CCF || type == EDesign::CCO;
}

long long StarRunsOf(const DesignBuilder& builder, const Factors& factors) {
    return HasStarRuns(builder) ? 2LL * factors.GetDesignFactorCount() : 0;
}

// A half open text "E=ABCD, F=..." in its parts "E=ABCD", "F=...".
std::vector<std::string_view> PartsOf(std::string_view text) {
    std::vector<std::string_view> parts;
    while (true) {
        const std::size_t comma = text.find(',');
        parts.push_back(Trimmed(text.substr(0, comma)));
        if (comma == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(comma + 1);
    }
}

// Reads the definitions of one text into words of signed factor numbers.
class DefinitionReader {
  public:
    DefinitionReader(int factorCount, const std::string& place)
        : factorCount_(factorCount),
          place_(place),
          words_(static_cast<std::size_t>(factorCount) + cMostBlockWords) {}

    Words Read(std::string_view text) {
        for (const std::string_view part : PartsOf(text)) {
            ReadDefinition(part);
        }
        ExpandGeneratedFactors();
        MakeBaseFactors();
        DropMissingBlocks();
        return words_;
    }

  private:
    // The word of a factor or a block, and the text that defined it.
    struct Definition {
        std::size_t column;
        std::string_view text;
    };

    void ReadDefinition(std::string_view part) {
        const std::size_t equals = part.find('=');
        if (equals == std::string_view::npos) {
            Fail(part, R"(must be a definition such as "E=ABCD" or "Block1=ABC")");
        }
        const std::size_t column = ReadLeft(Trimmed(part.substr(0, equals)), part);
        if (!words_[column].empty()) {
            Fail(part, "defines a word that is defined already");
        }
        words_[column] = ReadWord(Trimmed(part.substr(equals + 1)), part);
        definitions_.push_back({column, part});
    }

    std::size_t ReadLeft(std::string_view left, std::string_view part) const {
        if (left.size() == 1) {
            return static_cast<std::size_t>(ReadLetter(left.front(), part));
        }
        const bool isBlock = left.size() == cBlock.size() + 1 &&
                             EqualsIgnoringCase(left.substr(0, cBlock.size()), cBlock);
        const int number = isBlock ? left.back() - '0' : 0;
        if (number < 1 || number > cMostBlockWords) {
            Fail(part, "must begin with one factor's letter or with Block1, Block2 or Block3");
        }
        return static_cast<std::size_t>(factorCount_ + number - 1);
    }

    std::vector<int> ReadWord(std::string_view text, std::string_view part) const {
        const bool negative = !text.empty() && text.front() == '-';
        text = Trimmed(text.substr(negative ? 1 : 0));
        if (text.size() < 2) {
            Fail(part, "must have a product of at least two factors on its right side");
        }
        std::vector<int> word;
        for (const char letter : text) {
            const int number = ReadLetter(letter, part) + 1;
            if (std::find(word.begin(), word.end(), number) != word.end()) {
                Fail(part, fmt::format("has the factor {} twice", letter));
            }
            word.push_back(number);
        }
        word.front() *= negative ? -1 : 1;
        return word;
    }

    int ReadLetter(char letter, std::string_view part) const {
        const int factor = FactorLetters::FactorOf(letter, factorCount_);
        if (factor < 0) {
            Fail(part,
                 fmt::format("has {}, which is no factor; the factors are A to {}, without I",
                             Quoted(std::string_view(&letter, 1)),
                             FactorLetters::LetterOf(factorCount_ - 1)));
        }
        return factor;
    }

    // A word may use factors that are generated themselves: each is replaced by its own word, so
    // that base factors alone are left. A factor that stands twice then cancels.
    void ExpandGeneratedFactors() {
        for (const Definition& definition : definitions_) {
            std::vector<std::size_t> open;
            Expand(definition, open);
        }
    }

    void Expand(const Definition& definition, std::vector<std::size_t>& open) {
        if (std::find(open.begin(), open.end(), definition.column) != open.end()) {
            Fail(definition.text, "defines a factor by itself");
        }
        open.push_back(definition.column);
        std::vector<int> expanded;
        bool negative = false;
        const auto multiplyBy = [&](int number) {
            negative ^= number < 0;
            const auto twin = std::find(expanded.begin(), expanded.end(), std::abs(number));
            if (twin != expanded.end()) {
                expanded.erase(twin);
            } else {
                expanded.push_back(std::abs(number));
            }
        };
        for (const int number : words_[definition.column]) {
            const auto column = static_cast<std::size_t>(std::abs(number)) - 1;
            const auto generated =
                std::find_if(definitions_.begin(), definitions_.end(), [column](const auto& other) {
                    return other.column == column;
                });
            if (generated == definitions_.end()) {
                multiplyBy(number);
                continue;
            }
            Expand(*generated, open);
            negative ^= number < 0;
            for (const int factor : std::vector<int>(words_[column])) {
                multiplyBy(factor);
            }
        }
        if (expanded.size() < 2) {
            Fail(definition.text,
                 expanded.empty() ? std::string("comes out as no factor at all")
                                  : fmt::format("comes out as the factor {} alone",
                                                FactorLetters::LetterOf(expanded.front() - 1)));
        }
        std::sort(expanded.begin(), expanded.end());
        expanded.front() *= negative ? -1 : 1;
        words_[definition.column] = expanded;
        open.pop_back();
    }

    void MakeBaseFactors() {
        for (int factor = 0; factor < factorCount_; ++factor) {
            auto& word = words_[static_cast<std::size_t>(factor)];
            if (word.empty()) {
                word = {factor + 1};
            }
        }
    }

    void DropMissingBlocks() {
        const auto firstBlock = words_.begin() + factorCount_;
        const auto isEmpty = [](const std::vector<int>& word) { return word.empty(); };
        const auto end = std::find_if(firstBlock, words_.end(), isEmpty);
        if (!std::all_of(end, words_.end(), isEmpty)) {
            FailWith(fmt::format("{}: {}{} is missing; blocks are numbered from 1 without a gap.",
                                 place_,
                                 cBlock,
                                 end - firstBlock + 1));
        }
        words_.erase(end, words_.end());
    }

    [[noreturn]] void Fail(std::string_view part, std::string_view problem) const {
        FailWith(fmt::format("{}: {} {}.", place_, Quoted(part), problem));
    }

    int factorCount_;
    const std::string& place_;
    Words words_;
    std::vector<Definition> definitions_;
};

Generators FromWords(const Words& words, int factorCount, const std::string& place) {
    const auto baseFactors = std::count_if(
        words.begin(), words.end(), [](const auto& word) { return word.size() == 1; });
    if (baseFactors > static_cast<long>(Generators::cMaxBaseFactors)) {
        FailWith(
            fmt::format("{}: {} of the {} factors are left as base factors; at most {} may be.",
                        place,
                        baseFactors,
                        factorCount,
                        Generators::cMaxBaseFactors));
    }
    DesignOptions options;
    if (static_cast<int>(words.size()) > cMostWords || !options.SetGenerators(words)) {
        FailWith(
            fmt::format("{}: there may be at most {} factors and block words, and there must be "
                        "a base factor.",
                        place,
                        cMostWords));
    }
    return *options.GetGenerators();
}

bool IsWord(const json_value& value) {
    if (!value.is_string()) {
        return false;
    }
    std::string_view text = value.get_string();
    text.remove_prefix(!text.empty() && text.front() == '-' ? 1 : 0);
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char letter) {
        return (letter >= 'a' && letter <= 'k') || (letter >= 'A' && letter <= 'K');
    });
}

// Lower case throughout: the engine tells the highest base factor by the character.
json_value LowerCased(const json_value& word) {
    std::string text = word.get_string();
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'K' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return text;
}

void RequireWordsOfAllFactors(const Generators& generators,
                              const Factors& factors,
                              const std::string& place) {
    const int factorCount = static_cast<int>(factors.GetDesignFactorCount());
    for (int factor = 1; factor <= factorCount; ++factor) {
        if (WordAt(generators, factors, factor) == Generators::NONE) {
            FailWith(fmt::format("{}: the factor {} has no word; each of the {} factors needs one.",
                                 place,
                                 LabelOf(factor, factorCount),
                                 factorCount));
        }
    }
}

void RequireDifferentWords(const Generators& generators,
                           const Factors& factors,
                           int count,
                           const std::string& place) {
    const int factorCount = static_cast<int>(factors.GetDesignFactorCount());
    for (int first = 1; first <= count; ++first) {
        for (int second = first + 1; second <= count; ++second) {
            if (Unsigned(WordAt(generators, factors, first)) ==
                Unsigned(WordAt(generators, factors, second))) {
                FailWith(
                    fmt::format("{}: {} and {} have the same word and could not be told apart.",
                                place,
                                LabelOf(first, factorCount),
                                LabelOf(second, factorCount)));
            }
        }
    }
}

// Blocks take the products of their words, too.
void RequireBlocksClearOfFactors(const Generators& generators,
                                 const Factors& factors,
                                 int blockWords,
                                 const std::string& place) {
    const int factorCount = static_cast<int>(factors.GetDesignFactorCount());
    for (unsigned int subset = 1; subset < 1U << blockWords; ++subset) {
        GeneratorWord product = Generators::NONE;
        std::vector<std::string> labels;
        for (int i = 0; i < blockWords; ++i) {
            if ((subset >> i & 1U) != 0) {
                product = static_cast<GeneratorWord>(
                    product ^ Unsigned(WordAt(generators, factors, factorCount + i + 1)));
                labels.push_back(LabelOf(factorCount + i + 1, factorCount));
            }
        }
        if (product == Generators::NONE) {
            FailWith(fmt::format("{}: the product of {} is the mean; each must be a new word.",
                                 place,
                                 fmt::join(labels, ", ")));
        }
        for (int factor = 1; factor <= factorCount; ++factor) {
            if (Unsigned(WordAt(generators, factors, factor)) == product) {
                FailWith(
                    fmt::format("{}: the factor {} would be lost to the blocks: its word is {} "
                                "{}.",
                                place,
                                LabelOf(factor, factorCount),
                                labels.size() > 1 ? "the product of" : "that of",
                                fmt::join(labels, ", ")));
            }
        }
    }
}

void RequireBlockCount(const DesignOptions& options,
                       const DesignBuilder& builder,
                       int blockWords,
                       const std::string& place) {
    const unsigned int starBlocks = HasStarRuns(builder) && options.GetBlocks() > 1 ? 1 : 0;
    const unsigned int blocks = options.GetBlocks() - starBlocks;
    if (blocks != 1U << blockWords) {
        FailWith(
            fmt::format("{}: {} block words make {} blocks; the design has {}{}. Give one "
                        "block word for 2 blocks, two for 4 and three for 8, such as "
                        "Block1=ABC.",
                        place,
                        blockWords,
                        1U << blockWords,
                        blocks,
                        starBlocks > 0 ? " beside that of the star runs" : ""));
    }
}

// The engine's complaints without the blank lines between them.
std::string Joined(const std::string& message) {
    std::string text;
    for (const char letter : message) {
        if (letter != '\n' || (!text.empty() && text.back() != '\n')) {
            text += letter;
        }
    }
    return std::string(Trimmed(text));
}

}  // namespace

namespace GeneratorText {

Generators Read(const std::string& text, int factorCount, const std::string& place) {
    const std::string_view trimmed = Trimmed(text);
    if (trimmed.empty()) {
        FailWith(fmt::format("{}: no generators are given.", place));
    }
    if (trimmed.front() == '[') {
        return FromJson(json_value::parse(std::string(trimmed), place), place);
    }
    return FromWords(DefinitionReader(factorCount, place).Read(trimmed), factorCount, place);
}

Generators FromJson(const json_value& value, const std::string& place) {
    const bool isList = value.is_array() && value.get_length() > 0 &&
                        value.get_length() <= static_cast<unsigned long long>(cMostWords);
    if (!isList) {
        FailWith(
            fmt::format("{}: generators must be an array of 1 to {} words.", place, cMostWords));
    }
    json_value words = json_value::make_array();
    for (const json_value& element : value.get_array()) {
        if (!IsWord(element)) {
            FailWith(fmt::format(
                "{}: {} must be a word of the letters a to k, which stand for the "
                "base factors, with a '-' in front at most.",
                place,
                element.is_string() ? Quoted(element.get_string()) : element.to_text()));
        }
        words.push_back(LowerCased(element));
    }
    Generators generators(1);
    generators.FromJson(words);
    return generators;
}

std::string TextOf(const Generators& generators, const Factors& factors) {
    const int factorCount = static_cast<int>(factors.GetDesignFactorCount());
    // The factor that stands for each base letter.
    std::vector<int> bases(Generators::cMaxBaseFactors + 1, -1);
    std::vector<int> generated;
    for (int index = 1; index <= cMostWords; ++index) {
        const GeneratorWord word = WordAt(generators, factors, index);
        const std::vector<int> letters = Generators::GetRows(word);
        const bool isBase = index <= factorCount && letters.size() == 1 &&
                            (word & Generators::NEGATIVE) == 0 &&
                            bases[static_cast<std::size_t>(letters.front())] < 0;
        if (isBase) {
            bases[static_cast<std::size_t>(letters.front())] = index - 1;
        } else if (!letters.empty()) {
            generated.push_back(index);
        }
    }
    std::vector<std::string> parts;
    for (const int index : generated) {
        const GeneratorWord word = WordAt(generators, factors, index);
        std::string text = LabelOf(index, factorCount) + "=";
        text += (word & Generators::NEGATIVE) != 0 ? "-" : "";
        for (const int letter : Generators::GetRows(word)) {
            const int base = bases[static_cast<std::size_t>(letter)];
            text += base >= 0 ? FactorLetters::LetterOf(base) : "?";
        }
        parts.push_back(std::move(text));
    }
    return fmt::format("{}", fmt::join(parts, ", "));
}

bool TakesGenerators(const DesignBuilder& builder) {
    const EDesign::Type type = builder.IsDesign();
    return type == EDesign::FFR_III || type == EDesign::FFR_IV || type == EDesign::FFR_V ||
           HasStarRuns(builder);
}

long long RunsOf(const Generators& generators,
                 const DesignBuilder& builder,
                 const Factors& factors) {
    const int letters = generators.GetMaxChar() - Generators::cMinChar + 1;
    return (1LL << std::clamp(letters, 0, 11)) + StarRunsOf(builder, factors);
}

long long BlocksOf(const Generators& generators,
                   const DesignBuilder& builder,
                   const Factors& factors) {
    const int words = std::min(BlockWordCount(generators, factors), cMostBlockWords);
    return (1LL << words) + (words > 0 && HasStarRuns(builder) ? 1 : 0);
}

void RequireFit(const Generators& generators,
                const DesignBuilder& builder,
                const Factors& factors,
                const DesignOptions& options,
                const std::string& place) {
    const int factorCount = static_cast<int>(factors.GetDesignFactorCount());
    const int blockWords = BlockWordCount(generators, factors);
    RequireWordsOfAllFactors(generators, factors, place);
    if (blockWords <= cMostBlockWords) {
        RequireDifferentWords(generators, factors, factorCount + blockWords, place);
        RequireBlocksClearOfFactors(generators, factors, blockWords, place);
        RequireBlockCount(options, builder, blockWords, place);
    }
    std::string message;
    if (!generators.IsValid(factors, options, HasStarRuns(builder), message)) {
        FailWith(fmt::format("{}: {}", place, Joined(message)));
    }
    const long long core = options.GetRuns() - StarRunsOf(builder, factors);
    const long long base = RunsOf(generators, builder, factors) - StarRunsOf(builder, factors);
    if (core % base != 0) {
        FailWith(
            fmt::format("{}: the base factors make {} runs; {} factorial runs are no multiple "
                        "of them.",
                        place,
                        base,
                        core));
    }
}

}  // namespace GeneratorText
