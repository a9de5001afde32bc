#pragma once

#include <map>

#include "foundation/mat/NCDataMatrix.h"

/// The matrices behind the definitive screening designs.
namespace DefinitiveScreeningTables {

/// Matrices [2m x m] by column count m, 4 to 30. Rows 2k - 1 and 2k are each other's mirror image,
/// with their only 0 in column k; every other cell is -1 or 1. The odd rows form a regular square
/// matrix.
///
/// Largest inner product of two columns: 0 for even m, the odd rows then being a conference matrix;
/// 4 for m = 22, where there is none; 2, the least possible, for odd m; 6 for m = 21.
/// DefinitiveScreeningTest proves all of it.
///
/// Built on the first call, then only read: safe from any thread.
[[nodiscard]] const std::map<int, NCDataMatrix<float>>& GetMatrices();

}  // namespace DefinitiveScreeningTables
