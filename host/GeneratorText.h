#pragma once

#include <optional>
#include <string>

#include "QORVAncdoe.h"

/// Generator words as users write and read them, by the letters of FactorLetters:
///   "E=ABCD, F=-ABC, Block1=ACD"
/// Every factor that is not on a left side is a base factor. A right side may name generated
/// factors, too: in "E=ABCD, F=BCE" the word of F is AD.
namespace GeneratorText {

/// Reads that form, or, when the text begins with '[', the array of words of the options' JSON
/// form.
/// @param place what messages begin with, such as "--generators"
/// @throws Exception for a letter or block that is unknown or stands twice, a word that is empty,
/// that
///         comes out as fewer than two base factors or goes back to its own factor
[[nodiscard]] Generators Read(const std::string& text, int factorCount, const std::string& place);

/// Reads the array of words of the options' JSON form, whose letters a to k stand for the base
/// factors: ["a", "b", "c", "abc"].
/// @throws Exception for anything but an array of such words
[[nodiscard]] Generators FromJson(const json_value& value, const std::string& place);

/// "D=ABC, Block1=AB"; empty when all words are base factors.
[[nodiscard]] std::string TextOf(const Generators& generators, const Factors& factors);

/// The family makes its designs by generators.
[[nodiscard]] bool TakesGenerators(const DesignBuilder& builder);
/// Runs of the family that the words ask for when the user names no count, star runs included.
[[nodiscard]] long long RunsOf(const Generators& generators,
                               const DesignBuilder& builder,
                               const Factors& factors);
/// Blocks that the block words ask for, the block of star runs included.
[[nodiscard]] long long BlocksOf(const Generators& generators,
                                 const DesignBuilder& builder,
                                 const Factors& factors);

/// The engine takes its own generators, without a word, where the user's do not fit. This tells
/// beforehand.
/// @throws Exception saying which words do not fit the runs and blocks of the options
void RequireFit(const Generators& generators,
                const DesignBuilder& builder,
                const Factors& factors,
                const DesignOptions& options,
                const std::string& place);

}  // namespace GeneratorText
