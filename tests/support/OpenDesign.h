#pragma once

#include <functional>
#include <memory>

#include "frame/NCDesign.h"

/// A design whose matrix a test sets, with the protected steps of finishing in the open.
class OpenDesign : public NCDesign {
  public:
    OpenDesign(const Factors& factors, const NCDataMatrix<float>& matrix) : NCDesign(factors) {
        NCDesign::SetDesignMatrix(matrix);
    }
    explicit OpenDesign(const Factors& factors) : NCDesign(factors) {}

    using NCDesign::AddCCRuns;
    using NCDesign::AddReplicatedRuns;
    using NCDesign::AddReplicates;
    using NCDesign::AdjustMultilevelFactors;
    using NCDesign::AdjustQualitativeFactors;
    using NCDesign::MakeLDesignTable;

    std::shared_ptr<NCDesign> Clone() const override { return std::make_shared<OpenDesign>(*this); }
    bool IsDesignMatrixCoded() const override { return coded; }
    int GetDesignCoding(int row, int column) const override {
        return coding ? coding(row, column) : NCDesign::GetDesignCoding(row, column);
    }

    NCDataMatrix<float> Matrix() const { return *GetDesignMatrix(); }

    bool coded = true;
    /// The level of a cell; without it, the base's answer.
    std::function<int(int, int)> coding;
};
