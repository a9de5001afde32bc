#include "host/FactorLetters.h"

#include <fmt/format.h>

#include <cctype>
#include <string_view>

namespace {

// Without I, which stands for the mean in words.
constexpr std::string_view cLetters = "ABCDEFGHJKLMNOPQRSTUVWXYZabcdefghjklmnopqrstuvwxyz";
constexpr int cUpperLetters = 25;

}  // namespace

namespace FactorLetters {

std::string LetterOf(int factor) {
    const auto index = static_cast<std::size_t>(factor);
    return index < cLetters.size() ? std::string(1, cLetters[index])
                                   : fmt::format("[{}]", factor + 1);
}

int FactorOf(char letter, int factorCount) {
    if (factorCount <= cUpperLetters && letter >= 'a' && letter <= 'z') {
        letter = static_cast<char>(letter - 'a' + 'A');
    }
    const std::size_t index = cLetters.find(letter);
    return index != std::string_view::npos && static_cast<int>(index) < factorCount
               ? static_cast<int>(index)
               : -1;
}

std::string WordOf(const std::vector<int>& factors) {
    std::string word;
    for (const int factor : factors) {
        word += LetterOf(factor);
    }
    return word.empty() ? "mean" : word;
}

}  // namespace FactorLetters
