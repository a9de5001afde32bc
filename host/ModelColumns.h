#pragma once

#include <string>
#include <vector>

#include "host/Study.h"

/// The names of the columns of a model matrix: "constant", "Temperature*Catalyst=B", "Flow^2",
/// "Block=2".
[[nodiscard]] std::vector<std::string> ColumnNames(const NCDOE::ModelMatrix& model,
                                                   const StudyFactors& factors,
                                                   int blocks);

/// The names of those columns that are combinations of earlier ones.
[[nodiscard]] std::vector<std::string> DependentColumns(const NCDataMatrix<float>& rows,
                                                        const std::vector<std::string>& names);

/// "A, B and C", with a long list cut short.
[[nodiscard]] std::string ShortListOf(std::vector<std::string> names);
