#pragma once

#include <vector>

#include "foundation/stream/Export.h"
#include "frame/CEType.h"
#include "frame/EDesign.h"
#include "frame/EModel.h"

class Factors;

/// The terms of a regression model. A term is a list of factor indices, counted from 0 in the
/// caller's order; its length is the term's degree and a repeated index is a power: {} is the
/// constant, {i} a main effect, {i, j} an interaction, {i, i} a square, {i, i, j} a cubic term. The
/// index one past the last factor stands for the block. A Qualitative factor's index stands for all
/// its expanded variables.
namespace ModelTerms {

using Term = std::vector<int>;
using List = std::vector<Term>;

/// What the choice of terms looks at in one factor.
struct Factor {
    CEType::EType type = CEType::Quantitative;
    unsigned int levels = 0;  // of a Multilevel or Qualitative factor
};

/// The model that is asked for, by the two kinds of factors.
struct Request {
    EModel::Type process = EModel::None;  // of all factors but Formulation
    EModel::Type mixture = EModel::None;  // of Formulation factors
    bool processMixtureInteraction = false;
    unsigned int blocks = 1;
    /// DefinitiveScreening has no interactions, J2 no squares of factors with 2 levels.
    EDesign::Type design = EDesign::DOpt;
};

[[nodiscard]] QORVA_EXPORT std::vector<Factor> Describe(const Factors& factors);

/// The full model of a request: constant, main effects, block, interactions, squares, cubic pairs
/// of Formulation factors (both {i, i, j} and {i, j, j}), cubes, in this order.
[[nodiscard]] QORVA_EXPORT List Make(const std::vector<Factor>& factors, const Request& request);

}  // namespace ModelTerms
