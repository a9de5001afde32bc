#pragma once

#include <string>
#include <vector>

/// The letters by which words name factors: A, B, ... without I, then a, b, ... without i. There
/// are 50; a later factor is named by its number in brackets, as in "[51]".
namespace FactorLetters {

/// @param factor counted from 0
[[nodiscard]] std::string LetterOf(int factor);
/// Factor of a letter, counted from 0; -1 for any other character. Lower-case letters name the
/// factors from the 26th on only where there are so many; in smaller studies they stand for the
/// upper-case ones.
[[nodiscard]] int FactorOf(char letter, int factorCount);
/// "ABD", or "mean" for no factors.
[[nodiscard]] std::string WordOf(const std::vector<int>& factors);

}  // namespace FactorLetters
