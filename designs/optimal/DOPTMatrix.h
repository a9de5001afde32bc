#pragma once

#include <memory>
#include <string_view>

#include "designs/optimal/OneBasedVec.h"
#include "foundation/mat/NCDataMatrix.h"

/// A matrix of the D-optimal engine, indexed from 1. It adds nothing to its base but its name.
template <class T>
class DOPTMatrix : public NCDataMatrix<T> {
  public:
    DOPTMatrix() = default;
    DOPTMatrix(int rows, int columns, T fill) : NCDataMatrix<T>(rows, columns, fill) {}
    explicit DOPTMatrix(const NCDataMatrix<T>& matrix) : NCDataMatrix<T>(matrix) {}
};

/// Makes the engine's objects. The label says at the call what the object holds, and is not kept.
template <class T>
[[nodiscard]] std::unique_ptr<DOPTMatrix<T>> MakeDOPTMatrix(std::string_view /*label*/,
                                                            int rows,
                                                            int columns,
                                                            T fill) {
    return std::make_unique<DOPTMatrix<T>>(rows, columns, fill);
}

template <class T>
[[nodiscard]] std::unique_ptr<OneBasedVec<T>> MakeOneBasedVec(std::string_view /*label*/,
                                                              int size,
                                                              T fill) {
    return std::make_unique<OneBasedVec<T>>(size, fill);
}
