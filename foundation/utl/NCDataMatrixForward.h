#pragma once

#include "foundation/stream/Export.h"

// The one forward declaration of the matrix, so that it stands in front of the definition wherever
// it is included. It carries the export mark: clang takes the visibility of a class from its first
// declaration, and g++ warns of a mark that comes after the definition.
template <class T>
class QORVA_EXPORT NCDataMatrix;
