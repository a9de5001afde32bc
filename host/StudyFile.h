#pragma once

#include <string>

#include "host/Study.h"

/// Reads a study file, one JSON object:
///   name, description, source   texts, source being the citation of a published experiment
///   factors                     what is varied, see FactorReader
///   constraints                 [{"terms": [{"factor": name, "coefficient": number}],
///                               "bound": number, "relation": "<=" or ">="}]
///   objective, model, options   as EObjective, EModel and DesignOptions write them in JSON
///   design                      short or display name of a design family
/// Only factors is required. Members that are not listed are refused.
/// @throws Exception naming the file, the JSON path, the value and what is allowed
[[nodiscard]] Study ReadStudyFile(const std::string& path);

/// The same from a text; `file` names it in errors.
[[nodiscard]] Study ReadStudy(const std::string& text, const std::string& file);
