#include "frame/generators/Generators.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "foundation/util/NCInternalError.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/IniFileSection.h"
#include "frame/AsciiCase.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FloorLog2.h"

namespace {

constexpr const char* cSection = "Generators";
constexpr const char* cWordsKey = "generators";
constexpr char cListSeparator = ';';
// The words that validation looks at: 48 factors and three block generators.
constexpr int cCheckedWords = 51;
constexpr int cMaxFactorIndex = 48;

constexpr const char* cHeader = "Invalid generator definitions:\n\n";
constexpr const char* cCountMessage = "Invalid number of generator definitions:\n\n";

GeneratorWord Unsigned(GeneratorWord word) {
    return static_cast<GeneratorWord>(word & ~Generators::NEGATIVE);
}

GeneratorWord LetterWord(char letter) {
    return static_cast<GeneratorWord>(Generators::A >> (letter - Generators::cMinChar));
}

// The leading columns of a two-level table, which the words refer to.
NCDataMatrix<float> LeadingColumns(const NCDataMatrix<float>& matrix, int count) {
    NCDataMatrix<float> base(matrix.SizeRows(), count);
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        const auto from = matrix.RowSpan(row);
        std::copy_n(from.begin(), count, base.RowSpan(row).begin());
    }
    return base;
}

void ReplaceLevelCodesBySigns(NCDataMatrix<float>& matrix) {
    for (float& cell : matrix.Cells()) {
        if (cell == Factors::cFirstLevelCode) {
            cell = -1.0F;
        } else if (cell == Factors::cFirstLevelCode + 1) {
            cell = 1.0F;
        }
    }
}

// The run's block letter: each block generator with a positive product (or without letters) adds
// its weight 1, 2, 4. The run whose contrasts are all negative stands in the first block.
float BlockLetter(const NCDataMatrix<float>& base,
                  int row,
                  const std::vector<std::vector<int>>& blockColumns) {
    float letter = Factors::cFirstLevelCode;
    float weight = 1.0F;
    for (const std::vector<int>& columns : blockColumns) {
        float product = 1.0F;
        for (const int column : columns) {
            product *= base(row, column);
        }
        letter += product > 0 ? weight : 0.0F;
        weight *= 2.0F;
    }
    return letter;
}

void WriteBlockColumn(NCDataMatrix<float>& matrix,
                      int blockColumn,
                      const NCDataMatrix<float>& base,
                      const std::vector<std::vector<int>>& blockColumns) {
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        matrix(row, blockColumn, BlockLetter(base, row, blockColumns));
    }
}

bool HasColumns(const std::vector<int>& columns, int count) {
    return columns.empty() || columns.back() <= count;
}

}  // namespace

Generators::Generators(int runs) {
    if (runs >= 4) {
        maxChar_ = static_cast<char>(cMinChar + FloorLog2(runs) - 1);
    }
}

void Generators::SetGenerator(int index, GeneratorWord word) {
    if (index >= 1 && index < static_cast<int>(words_.size())) {
        words_[static_cast<std::size_t>(index)] = word;
    }
}

GeneratorWord Generators::GetGenerator(const Factors& factors, int index, const char* name) const {
    const auto word = [this](std::size_t at) {
        return at < words_.size() ? words_[at] : GeneratorWord{NONE};
    };
    for (int i = 1; i <= 7; ++i) {
        const char* blockName = GetBlockGen(i);
        if (std::strcmp(name, blockName) == 0) {
            GeneratorWord product = NONE;
            for (std::size_t block = 1; block <= 3; ++block) {
                const std::string part = "$B" + std::to_string(block);
                if (std::strstr(blockName, part.c_str()) != nullptr) {
                    product = static_cast<GeneratorWord>(
                        product ^ word(factors.GetDesignFactorCount() + block));
                }
            }
            return product;
        }
    }
    return index >= 1 && index <= cMaxFactorIndex ? words_[static_cast<std::size_t>(index)]
                                                  : GeneratorWord{NONE};
}

GeneratorWord Generators::GetGeneratorWord(const char* text) const {
    GeneratorWord word = NONE;
    for (; *text != '\0'; ++text) {
        const char letter = AsciiCase::ToLower(*text);
        if (letter == '-') {
            word = static_cast<GeneratorWord>(word | NEGATIVE);
        } else if (letter >= 'a' && letter <= 'k') {
            word = static_cast<GeneratorWord>(word | LetterWord(letter));
        }
    }
    return word;
}

std::string Generators::GetGeneratorString(GeneratorWord word) {
    std::string text = (word & NEGATIVE) != 0 ? "-" : "";
    for (const int column : GetRows(word)) {
        text += static_cast<char>(cMinChar + column - 1);
    }
    return text;
}

bool Generators::IsLegal(char* text) const {
    const std::size_t length = std::strlen(text);
    std::transform(text, text + length, text, AsciiCase::ToLower);
    bool legal = length > 0;
    for (std::size_t i = 0; i < length; ++i) {
        const bool twice = std::find(text, text + i, text[i]) != text + i;
        const bool sign = text[i] == '-' && i == 0;
        const bool letter = text[i] >= cMinChar && text[i] <= maxChar_;
        legal = legal && !twice && (sign || letter);
    }
    return legal;
}

bool Generators::IsValid(const Factors& factors,
                         const DesignOptions& options,
                         bool hasStarBlock,
                         std::string& message) const {
    const auto listEnd = words_.begin() + 1 + ListLength();
    std::string complaints;

    // In int, so that the highest char of all does not wrap around.
    for (int code = cMinChar; code <= maxChar_; ++code) {
        const char letter = static_cast<char>(code);
        const bool found = std::any_of(words_.begin() + 1, listEnd, [letter](GeneratorWord word) {
            return letter <= 'k' && Unsigned(word) == LetterWord(letter);
        });
        if (!found) {
            complaints += std::string("Missing base generator:  ") + letter + "\n";
        }
    }
    for (auto word = words_.begin() + 1; word != listEnd; ++word) {
        std::string text = GetGeneratorString(*word);
        if (!IsLegal(text.data())) {
            complaints += "Base generator not valid for the current design: " +
                          (text.empty() ? "<empty>" : text) + "\n";
            break;
        }
    }
    for (auto first = words_.begin() + 1; first != listEnd; ++first) {
        for (auto second = first + 1; second != listEnd; ++second) {
            if (Unsigned(*first) == Unsigned(*second)) {
                complaints += "Duplicate generators: " + GetGeneratorString(*first) + "\n";
            }
        }
    }

    unsigned int blocks = options.GetBlocks();
    if (blocks > 1 && hasStarBlock) {
        --blocks;
    }
    const int expected = static_cast<int>(factors.GetDesignFactorCount()) + FloorLog2(blocks);
    const auto checkedEnd = words_.begin() + 1 + cCheckedWords;
    const bool wordsBehindHole =
        std::any_of(listEnd, checkedEnd, [](GeneratorWord word) { return word != NONE; });

    message = complaints.empty() ? "" : cHeader + complaints;
    // A hole counts as the end: the columns behind it would silently become constant.
    if (ListLength() != expected || wordsBehindHole) {
        message += cCountMessage;
    }
    return message.empty();
}

void Generators::AdjustDesignMatrix(int factorCount, NCDataMatrix<float>& matrix) const {
    const int columns = matrix.SizeColumns();
    const int baseCount = PrimaryFactorCount();
    const auto word = [this](int index) {
        return index >= 1 && index < static_cast<int>(words_.size())
                   ? words_[static_cast<std::size_t>(index)]
                   : GeneratorWord{NONE};
    };
    std::vector<std::vector<int>> blockColumns;
    for (int i = factorCount + 1; word(i) != NONE; ++i) {
        blockColumns.push_back(GetRows(word(i)));
    }
    bool fits = baseCount <= columns;
    for (int column = 1; column <= std::min(columns, factorCount); ++column) {
        fits = fits && HasColumns(GetRows(word(column)), baseCount);
    }
    for (const std::vector<int>& one : blockColumns) {
        fits = fits && (columns <= factorCount || HasColumns(one, baseCount));
    }
    if (!fits) {
        throw NCInternalError("Generators::AdjustDesignMatrix");
    }

    ReplaceLevelCodesBySigns(matrix);
    const NCDataMatrix<float> base = LeadingColumns(matrix, baseCount);
    for (int column = 1; column <= std::min(columns, factorCount); ++column) {
        const float sign = (word(column) & NEGATIVE) != 0 ? -1.0F : 1.0F;
        const std::vector<int> factorsOfColumn = GetRows(word(column));
        for (int row = 1; row <= matrix.SizeRows(); ++row) {
            float product = sign;
            for (const int baseColumn : factorsOfColumn) {
                product *= base(row, baseColumn);
            }
            matrix(row, column, product);
        }
    }
    if (columns > factorCount) {
        WriteBlockColumn(matrix, factorCount + 1, base, blockColumns);
    }
}

void Generators::AdjustDMFFBlock(NCDataMatrix<float>& matrix, int blocks) {
    if (blocks <= 1 || matrix.SizeColumns() < 2) {
        return;
    }
    const int runs = matrix.SizeRows();
    const int count = FloorLog2(blocks);
    const int last = matrix.SizeColumns();
    std::vector<std::vector<int>> blockColumns;
    for (int i = 1; i <= count; ++i) {
        // A single block generator asks for exactly 8 runs or for 16 and more, as its table does.
        blockColumns.push_back(GetRows(GetGenFullFactorial(-i, runs, count)));
    }
    const bool fits = count <= 3 && std::all_of(blockColumns.begin(),
                                                blockColumns.end(),
                                                [last](const std::vector<int>& columns) {
                                                    return HasColumns(columns, last - 1);
                                                });
    if (!fits) {
        return;
    }
    ReplaceLevelCodesBySigns(matrix);
    WriteBlockColumn(matrix, last, LeadingColumns(matrix, last - 1), blockColumns);
}

std::vector<int> Generators::GetRows(GeneratorWord word) {
    std::vector<int> columns;
    for (int i = 0; i < static_cast<int>(cMaxBaseFactors); ++i) {
        if ((word & (A >> i)) != 0) {
            columns.push_back(i + 1);
        }
    }
    return columns;
}

const char* Generators::GetBlockGen(int i) {
    static constexpr std::array<const char*, 8> names{
        "", "$B1", "$B2", "$B3", "$B1$B2", "$B1$B3", "$B2$B3", "$B1$B2$B3"};
    return i >= 1 && i < static_cast<int>(names.size()) ? names[static_cast<std::size_t>(i)] : "";
}

int Generators::GetBaseFactors5(int factors) {
    struct Step {
        int lastFactor;
        int baseFactors;
    };
    static constexpr std::array<Step, 8> steps{
        {{5, 4}, {6, 5}, {8, 6}, {11, 7}, {17, 8}, {21, 9}, {29, 10}, {32, 11}}};
    for (const Step& step : steps) {
        if (factors >= 5 && factors <= step.lastFactor) {
            return step.baseFactors;
        }
    }
    return 0;
}

int Generators::WBitCount(unsigned short value) const {
    return std::popcount(value);
}

int Generators::DWBitCount(unsigned int value) const {
    return std::popcount(value);
}

int Generators::PrimaryFactorCount() const {
    return static_cast<int>(std::count_if(
        words_.begin() + 1, words_.begin() + 1 + cCheckedWords, [this](GeneratorWord word) {
            return WBitCount(Unsigned(word)) == 1;
        }));
}

int Generators::ListLength() const {
    const auto begin = words_.begin() + 1;
    return static_cast<int>(std::find(begin, begin + cCheckedWords, NONE) - begin);
}

void Generators::Save(ConfigurationSection* section) const {
    const auto own = section->OpenOrCreateSection(cSection);
    own->WriteInt("Min", cMinChar);
    own->WriteInt("Max", maxChar_);
    std::vector<std::string> texts;
    std::transform(words_.begin(), words_.end(), std::back_inserter(texts), GetGeneratorString);
    own->WriteStringList(cWordsKey, texts, cListSeparator);
}

bool Generators::Load(const ConfigurationSection* section,
                      const IniFileSection* ini,
                      const std::vector<std::string>& keyNames) {
    if (section == nullptr) {
        const auto old = ini != nullptr ? ini->OpenSection(cSection) : nullptr;
        if (!old || old->GetKeyNames().empty()) {
            return false;
        }
        ReadFromFile(keyNames, ini);
        return true;
    }
    const auto own = section->OpenSection(cSection);
    if (!own) {
        return false;
    }
    int maxChar = 0;
    if (own->ReadInt("Max", &maxChar)) {
        maxChar_ = static_cast<char>(std::clamp<int>(maxChar, 0, 'z'));
    }
    std::vector<std::string> texts;
    own->ReadStringList(cWordsKey, &texts, cListSeparator);
    for (std::size_t i = 0; i < std::min(texts.size(), words_.size()); ++i) {
        words_[i] = GetGeneratorWord(texts[i].c_str());
    }
    return true;
}

void Generators::ReadFromFile(const std::vector<std::string>& keyNames, const IniFileSection* ini) {
    const auto old = ini->OpenSection(cSection);
    if (!old) {
        return;
    }
    int index = 1;
    for (const std::string& key : keyNames) {
        std::string text;
        old->ReadString(key, &text);
        // Deliberate: unlike in the newer form, there is no word of index 0.
        SetGenerator(index++, GetGeneratorWord(text.c_str()));
    }
}

void Generators::Remove(ConfigurationSection* section) {
    section->RemoveSection(cSection);
}

json_value Generators::ToJson() const {
    const auto last = std::find_if(
        words_.rbegin(), words_.rend() - 1, [](GeneratorWord word) { return word != NONE; });
    json_value value = json_value::make_array();
    for (auto word = words_.begin() + 1; word < last.base(); ++word) {
        value.push_back(GetGeneratorString(*word));
    }
    return value;
}

void Generators::FromJson(const json_value& value) {
    maxChar_ = cMinChar;
    if (!value.is_array()) {
        return;
    }
    words_.fill(NONE);
    int index = 1;
    for (const json_value& element : value.get_array()) {
        const std::string text = element.is_string() ? element.get_string() : std::string();
        if (!text.empty()) {
            maxChar_ = std::max(maxChar_, *std::max_element(text.begin(), text.end()));
        }
        SetGenerator(index++, GetGeneratorWord(text.c_str()));
    }
}
