#pragma once

#include <memory>
#include <string>
#include <vector>

#include "designs/plate/CustomREDMUPDesign.h"
#include "foundation/stream/Export.h"
#include "frame/NCDesign.h"

class LevelsDuplicate;

/// A single-factor design that stands a whole number of times. With a qualitative factor it has as
/// many runs as the run limit says: the first levels in order fill what the copies leave over.
class QORVA_EXPORT LevelsDuplicateClass : public NCDesign {
  public:
    /// Builds the whole design; the options must be valid for the factors.
    /// @throws Exception when the finished design would have more than cMaxFinishedRuns runs
    LevelsDuplicateClass(const Factors& factors,
                         const DesignOptions& options,
                         const LevelsDuplicate& builder);
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;

  private:
    void FillUpLevels(unsigned int runs);
};

/// One level factor whose levels go `times` times, but not `times` + 1 times, into the run limit.
class QORVA_EXPORT LevelsDuplicate : public CustomREDMUPDesign {
  public:
    /// @param times above 0
    explicit LevelsDuplicate(unsigned int times);
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
    [[nodiscard]] EDesign::Type GetBaseDesignType() const override { return EDesign::Levels; }

    /// The builder of the design that is repeated.
    [[nodiscard]] virtual std::shared_ptr<const DesignBuilder> GetBaseBuilder() const;
    [[nodiscard]] unsigned int GetTimes() const { return times_; }

  private:
    unsigned int times_;
};
