#pragma once

#include <memory>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/mat/TransformStruct.h"
#include "frame/Factors.h"

/// One factor of a list, by its index counted from 0. Borrows the factors.
class DOptFactorRef {
  public:
    DOptFactorRef(const Factors& factors, int factor) : factors_(&factors), factor_(factor) {}

    /// The i-th level value, counted from 1, of a Multilevel factor.
    /// @throws NCInternalError for another type, or a level that it does not have
    [[nodiscard]] float GetMultilevelSettingOB(int i) const;
    /// The first setting; of a Multilevel factor the last level.
    /// Deliberate: on Multilevel factors the two ends are exchanged, so that high - low may be
    /// negative.
    /// @throws NCInternalError for a Qualitative factor, and without settings; so does GetHigh.
    [[nodiscard]] float GetLow() const;
    /// The last setting; of a Multilevel factor the first level.
    [[nodiscard]] float GetHigh() const;
    /// The identity when the factor has none.
    [[nodiscard]] const TransformStruct& GetTransform() const;
    [[nodiscard]] std::unique_ptr<NCDataMatrix<float>> MakeCodingMatrix() const;

  private:
    const Factors* factors_;
    int factor_;
};
