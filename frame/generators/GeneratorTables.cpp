#include "frame/generators/GeneratorTables.h"

#include <vector>

#include "foundation/mat/NCMatUtilities.h"

namespace {

constexpr unsigned long long cLetters = 6;

GeneratorWord LetterWord(unsigned long long letter) {
    return static_cast<GeneratorWord>(Generators::A >> letter);
}

std::vector<GeneratorWord> MakeGenI3_32_63() {
    std::vector<GeneratorWord> rows;
    for (const unsigned long long size : {1ULL, 3ULL, 4ULL, 2ULL, 5ULL, 6ULL}) {
        for (const auto& subset : NCMatUtilities::combnk(cLetters, size)) {
            GeneratorWord word = 0;
            for (const unsigned long long letter : subset) {
                word = static_cast<GeneratorWord>(word | LetterWord(letter));
            }
            rows.push_back(word);
        }
    }
    return rows;
}

}  // namespace

namespace GeneratorTables {

GeneratorWord GenI3_32_63(int index) {
    static const std::vector<GeneratorWord> rows = MakeGenI3_32_63();
    return index >= 1 && index <= static_cast<int>(rows.size())
               ? rows[static_cast<std::size_t>(index) - 1]
               : Generators::NONE;
}

}  // namespace GeneratorTables
