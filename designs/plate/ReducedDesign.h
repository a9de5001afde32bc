#pragma once

#include <memory>
#include <string>
#include <vector>

#include "designs/plate/CustomREDMUPDesign.h"
#include "designs/plate/TableColumns.h"
#include "foundation/stream/Export.h"
#include "frame/NCDesign.h"

class ReducedDesign;

/// A classical design with some runs removed or repeated, so that it fits a plate's side.
class QORVA_EXPORT ReducedDesignClass : public NCDesign {
  public:
    /// Builds the whole design; the options must be valid for the factors. The matrix stays empty
    /// when the options' runs make another classical design than the row list is for.
    /// @throws Exception when the finished design would have more than cMaxFinishedRuns runs
    ReducedDesignClass(const Factors& factors,
                       const DesignOptions& options,
                       const ReducedDesign& row);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
};

/// A plate row made from a classical design. It serves exactly one side of a plate, or requests
/// without a run limit, one model, and factors that match its columns in any order. Rows of a
/// quadratic model are valid under the optimization objective only and are never the default of a
/// plate, whose sub-designs are for screening: a host asks for them.
class QORVA_EXPORT ReducedDesign : public CustomREDMUPDesign {
  public:
    /// @param runs of the finished row, the base's least centre points included
    /// @param reduced the listed runs are removed; otherwise each is repeated once
    /// @param rowList runs of the classical design, counted from 1, ascending; a run to repeat may
    ///        stand in it several times. They name runs of the table in the caller's factor order.
    /// @param description empty: the display name stands in its place
    ReducedDesign(TableColumns columns,
                  EModel::Type model,
                  EDesign::Type baseType,
                  unsigned int runs,
                  bool reduced,
                  std::vector<int> rowList,
                  const char* displayName,
                  const char* shortString,
                  unsigned int strength = 1,
                  const char* description = "");
    using CustomREDMUPDesign::IsValid;

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              const DesignOptions& options) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override;
    [[nodiscard]] std::string GetDescription() const override;
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
    [[nodiscard]] EDesign::Type GetBaseDesignType() const override { return baseType_; }

    /// The classical builder, asked for at every call; empty when there is none.
    [[nodiscard]] std::shared_ptr<const DesignBuilder> GetBaseBuilder() const;
    /// Of the finished row, without further centre points and copies.
    [[nodiscard]] unsigned int GetRuns() const { return runs_; }
    [[nodiscard]] bool IsReduced() const { return reduced_; }
    [[nodiscard]] const std::vector<int>& GetRowList() const { return rowList_; }
    /// Run count or run limit of the classical design behind one of this row. Away from 0 it stops
    /// at 0 instead of wrapping around.
    [[nodiscard]] unsigned int ToBase(unsigned int runs) const;

  private:
    [[nodiscard]] unsigned int ListSize() const {
        return static_cast<unsigned int>(rowList_.size());
    }
    [[nodiscard]] unsigned int FromBase(unsigned int runs) const;

    TableColumns columns_;
    int objectiveClass_;
    EModel::Type model_;
    EDesign::Type baseType_;
    unsigned int runs_;
    bool reduced_;
    std::vector<int> rowList_;
};
