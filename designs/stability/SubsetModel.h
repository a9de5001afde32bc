#pragma once

#include <vector>

#include "designs/stability/SubsetSplit.h"
#include "foundation/mat/DlibMatrix.h"
#include "foundation/mat/NCDataMatrix.h"

class Factors;

/// One subset: one row a run, one column a factor, level numbers from 1.
using LevelMatrix = dlib::matrix<int>;

/// How level numbers become model columns: the main effects of a subset, without a constant.
///
/// A Multilevel factor's setting is scaled to -1 to 1, on the working scale of its transform, if it
/// has one; level 0 stands for its middle setting. A Qualitative level is a row of the coding
/// matrix. Any other factor has -1 for level 1 and +1 otherwise.
class SubsetModel {
  public:
    explicit SubsetModel(const Factors& factors);

    /// [runs x expanded factor count]; a level that the factor does not have leaves -99.
    [[nodiscard]] NCDataMatrix<float> MakeDesignMatrix(LevelRows rows) const;
    /// Condition number of the design matrix, infinite when it is singular to the last digit; -99
    /// when it is empty, has fewer rows than columns, or has no decomposition.
    [[nodiscard]] float GetConditionNumber(LevelRows rows) const;

  private:
    struct Coding {
        bool twoLevel = false;
        int levels = 0;
        int width = 1;
        std::vector<float> cells;  // [levels + 1 x width], from level 0
    };
    [[nodiscard]] static Coding CodeMultilevel(const Factors& factors, int factor);
    [[nodiscard]] static Coding CodeQualitative(const Factors& factors, int factor);

    std::vector<Coding> codings_;
    int width_ = 0;
};

/// SubsetModel::GetConditionNumber of a subset.
/// @throws dlib::fatal_error when the subset has runs but fewer columns than factors
[[nodiscard]] float GetConditionNo(const LevelMatrix& subset, const Factors& factors);
