#pragma once

#include "host/JsonPlace.h"
#include "host/StudyFactors.h"

/// Reads the "factors" of a study, an array of objects with the members
///   name        required, unique
///   type        required: Quantitative, Multilevel, Qualitative, Formulation, Filler
///   unit        a text
///   low, high   of Quantitative and Formulation, low < high; shares of 1 for Formulation
///   settings    of Multilevel, at least two ascending numbers
///   levels      of Qualitative, at least two different names
///   transform   of Quantitative and Multilevel: a kind's name or {"kind", "scale", "offset",
///               "exponent"}
///   filler      true on a Formulation factor makes it the filler, as does the type Filler; a
///               filler's low and high may be left out
/// A study has at most one filler, and then at least one other formulation factor; their high
/// settings must leave it no negative share, and a share within its own range where it has one.
/// @throws Exception as JsonPlace
[[nodiscard]] StudyFactors ReadFactors(const JsonPlace& place);
