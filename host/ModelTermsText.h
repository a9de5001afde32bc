#pragma once

#include <string>
#include <vector>

#include "host/Study.h"

/// Model terms as a user writes them, by factor name: "A*B, A^2". A name that holds a comma, a
/// star, a caret or quotes stands in double quotes.
namespace ModelTermsText {

using Terms = std::vector<std::vector<int>>;

/// A whole model: the constant, all main effects and the block, which belong to every model, and
/// the terms of the text behind them, each once. Main effects may be named.
/// @param place names the option or file in errors
/// @param blocks number of blocks
/// @throws Exception naming the term and what is wrong: a factor that the study does not have, a
///         product of more than three factors, a power of a factor whose settings have none
[[nodiscard]] Terms Read(const std::string& text,
                         const Study& study,
                         int blocks,
                         const std::string& place);

/// "Temperature*Flow", "Flow^2", "constant" or "block"; names in quotes where Read needs them.
[[nodiscard]] std::string TextOf(const std::vector<int>& term, const StudyFactors& factors);

/// The terms of two or more factors: "A*B, A^2", or "main effects" when there are none.
[[nodiscard]] std::string TextOf(const Terms& terms, const StudyFactors& factors);

}  // namespace ModelTermsText
