#pragma once

#include <memory>
#include <vector>

#include "designs/plate/CustomREDMUPDesign.h"
#include "designs/plate/TableColumns.h"
#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"
#include "frame/NCDesign.h"

/// A design that stands in a literal table of as many runs as a plate's side has wells.
class QORVA_EXPORT PreCreatedDesignClass : public NCDesign {
  public:
    /// Builds the whole design; factors and columns must match one to one.
    /// @param table [runs x factors], its columns in the order of `columns`
    /// @throws Exception when the finished design would have more than cMaxFinishedRuns runs
    PreCreatedDesignClass(const Factors& factors,
                          const DesignOptions& options,
                          const TableColumns& columns,
                          const NCDataMatrix<float>& table);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
};

/// A plate row with a table of its own. It serves exactly one side of a plate, or requests without
/// a run limit, one model, and factors that match its columns in any order. As with ReducedDesign,
/// rows of a quadratic model are valid under the optimization objective only.
class QORVA_EXPORT PreCreatedDesign : public CustomREDMUPDesign {
  public:
    /// @param matrix [runs x columns]: -1 and 1 in columns of 2 levels, -1, 0 and 1 in those of 3,
    ///        letter codes from 65 in those of more
    PreCreatedDesign(TableColumns columns,
                     EModel::Type model,
                     NCDataMatrix<float> matrix,
                     const char* displayName,
                     const char* shortString,
                     unsigned int strength = 1);
    using CustomREDMUPDesign::GetDefaultRuns;
    using CustomREDMUPDesign::IsValid;

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 0; }
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
    [[nodiscard]] EDesign::Type GetBaseDesignType() const override { return EDesign::Plugin; }

  private:
    TableColumns columns_;
    int objectiveClass_;
    EModel::Type model_;
    unsigned int runs_;
    NCDataMatrix<float> matrix_;
};
