#pragma once

#include "foundation/mat/NCDataMatrix.h"

class ConfigurationSection;

/// How design matrices are stored: a child section "FMatrix" with the sizes "NCols" and "NRows" and
/// one list of numbers a row, "R1" and so on.
namespace MatrixSection {

/// Replaces a matrix saved before.
void SaveMatrix(ConfigurationSection* section, const NCDataMatrix<float>& matrix);
/// False, with the matrix unchanged, when there is none, or its size is below 1 or beyond any
/// design. Cells without a stored number are missing (-99).
[[nodiscard]] bool LoadMatrix(const ConfigurationSection* section, NCDataMatrix<float>* matrix);
void Remove(ConfigurationSection* section);

}  // namespace MatrixSection
