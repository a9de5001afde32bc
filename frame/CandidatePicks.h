#pragma once

#include <vector>

#include "foundation/stream/Export.h"

/// What a design tells of the candidates that it was picked from. Families whose runs are rows of a
/// candidate set derive from this besides NCDesign.
///
/// The rows that a search picked from had, from the top: the inclusions, the candidates (of one
/// layer), and further copies of all candidates where more rows were needed than there were.
class QORVA_EXPORT CandidatePicks {
  public:
    CandidatePicks() = default;
    CandidatePicks(const CandidatePicks&) = default;
    CandidatePicks& operator=(const CandidatePicks&) = default;
    virtual ~CandidatePicks();

    /// Whether every layer of the candidate set has picks of its own. A design without layers
    /// answers for the whole set as if it were layer 1.
    [[nodiscard]] virtual bool IsLayered() const = 0;
    /// 1 without layers.
    [[nodiscard]] virtual int GetLayerCount() const = 0;
    /// The rows of the selected result in run order, counted from 1 within the layer's rows; empty
    /// without a result.
    /// @param layer counted from 1
    [[nodiscard]] virtual const std::vector<int>& GetPickedRows(int layer) const = 0;
    /// How many of the first rows were inclusions.
    [[nodiscard]] virtual int GetInclusionRows(int layer) const = 0;
};
