#pragma once

#include <memory>
#include <string>

#include "foundation/util/ConfigurationNode.h"

/// The text form of a tree of configuration sections: one JSON object
///   {"format": "QORVA configuration", "version": 1, "root": section}
/// where a section is {"keys": {name: {kind: value}}, "sections": [{"name": ..., and as a
/// section}]}. Vectors and matrices of numbers are texts of numbers separated by single blanks,
/// with the numbers of rows and columns in front for a matrix: [2, 3, "1 -1 0 0.5 1 -1"].
///
/// @throws InvalidOperationException for a text that is not UTF-8.
[[nodiscard]] std::string WriteConfigurationText(const ConfigurationStore::Node& root);

/// Fills an empty root.
/// @throws Exception naming the source, the place and the reason.
void ReadConfigurationText(const std::string& text,
                           const std::string& source,
                           const std::shared_ptr<ConfigurationStore::Node>& root);
