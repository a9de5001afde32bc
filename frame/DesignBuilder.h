#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "foundation/stream/Export.h"
#include "frame/EDesign.h"
#include "frame/EModel.h"
#include "frame/EObjective.h"

class ConfigurationSection;
class DesignOptions;
class DesignSpecificOptions;
class Factors;
class NCDesign;

/// Descriptor and factory of one design family. It answers every question before a design exists
/// and builds the design. Builders have no state and are never changed once registered, so they are
/// safe to use from any thread.
class QORVA_EXPORT DesignBuilder {
  public:
    static constexpr int cPriorityRows = 41;
    static constexpr int cPriorityColumns = 49;
    using PriorityTable = std::array<std::array<unsigned char, cPriorityColumns>, cPriorityRows>;
    /// Strength of proposal by design type (row) and factor count (column): the smaller, the
    /// stronger; 0 means no opinion.
    static const PriorityTable priority;

    DesignBuilder(const char* shortString, const char* displayName, const char* description)
        : shortString_(shortString), displayName_(displayName), description_(description) {}
    DesignBuilder(const DesignBuilder&) = default;
    DesignBuilder& operator=(const DesignBuilder&) = default;

    /// A new design over `factors`, which must outlive it; an empty handle for a request that is
    /// not valid.
    /// @param cancel set by the caller to stop a long search, or null
    /// @throws Exception where a family can fail while it generates; CancelException on a stop
    [[nodiscard]] virtual std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                          const DesignOptions& options,
                                                          bool* cancel = nullptr) const = 0;
    /// 0 where the family has no design for the factors.
    [[nodiscard]] virtual unsigned int GetDefaultRuns(const Factors& factors,
                                                      EObjective::Type objective) const = 0;
    [[nodiscard]] virtual unsigned int GetDefaultRuns(const Factors& factors,
                                                      const DesignOptions& options) const;
    /// @param maxRuns run limit that a family may look at
    [[nodiscard]] virtual EModel::Type GetDefaultProcessModel(const Factors& factors,
                                                              EObjective::Type objective,
                                                              unsigned int maxRuns) const;
    [[nodiscard]] virtual EModel::Type GetDefaultMixtureModel(const Factors& factors,
                                                              EObjective::Type objective,
                                                              unsigned int maxRuns) const;
    [[nodiscard]] virtual bool IsPMInteractionDefault(const Factors& factors,
                                                      const DesignOptions& options) const;
    /// -99 for families without star points.
    [[nodiscard]] virtual float GetDefaultStarDistance(unsigned int factorCount,
                                                       const DesignOptions& options) const;
    [[nodiscard]] virtual unsigned int GetMinimumCenterPoints() const = 0;
    [[nodiscard]] virtual unsigned int GetDefaultCenterPoints(EObjective::Type objective) const;
    [[nodiscard]] virtual unsigned int GetDefaultReplicatedRuns() const;
    /// Tells two builders of one type apart; empty for nearly all.
    [[nodiscard]] virtual std::string GetDesignData() const;
    [[nodiscard]] virtual std::string GetDisplayName() const;
    [[nodiscard]] virtual std::string GetShortString() const;
    [[nodiscard]] virtual std::string GetDescription() const;
    /// Ascending.
    [[nodiscard]] virtual std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const = 0;
    /// Block counts that the options' run count allows; 1 comes first. Only 1 with `noBlocks`.
    [[nodiscard]] virtual std::vector<int> GetLegalBlocks(const Factors& factors,
                                                          const DesignOptions& options,
                                                          bool noBlocks) const;
    /// Strength of proposal: the smaller, the stronger; 0 means no opinion.
    [[nodiscard]] virtual unsigned char GetPriority(const Factors& factors) const = 0;
    [[nodiscard]] virtual EDesign::Type IsDesign() const = 0;
    [[nodiscard]] virtual bool IsCenterPointsAllowed() const;
    [[nodiscard]] virtual bool IsMixtureOnlyDesign() const;
    /// May serve as a part of a plate design.
    [[nodiscard]] virtual bool IsREDMUPRecommended(const Factors& factors,
                                                   const DesignOptions& options) const;
    /// The family's own rules.
    [[nodiscard]] virtual bool IsValid(const Factors& factors,
                                       const DesignOptions& options) const = 0;
    /// The form below with the family's default options under a run limit.
    [[nodiscard]] virtual bool IsValid(const Factors& factors,
                                       bool computerGeneratedOnly,
                                       bool redmupOnly,
                                       int maxRuns) const;
    /// The family's own rules, for computer-generated families only, or for parts of plate designs
    /// only, where so asked.
    [[nodiscard]] virtual bool IsValid(const Factors& factors,
                                       const DesignOptions& options,
                                       bool computerGeneratedOnly,
                                       bool redmupOnly) const;
    /// Writes the builder's texts to the child section "DesignBuilder".
    virtual void Save(ConfigurationSection* section) const;
    /// Reads them back; false, with nothing changed, unless there are exactly three.
    virtual bool Load(const ConfigurationSection* section);
    /// None where the family has no model for the objective.
    [[nodiscard]] virtual EModel::Type GetDefaultModel(const Factors& factors,
                                                       EObjective::Type objective) const = 0;
    /// New options of the family, or an empty handle where it has none of its own.
    [[nodiscard]] virtual std::shared_ptr<DesignSpecificOptions> GetDefaultDesignSpecificOptions(
        const Factors& factors, const DesignOptions& options) const;
    virtual ~DesignBuilder();

    /// Degrees of freedom to leave for error under an objective.
    [[nodiscard]] static unsigned int GetDefaultDF(EObjective::Type objective);

  protected:
    /// Entry of the priority table; counts beyond its last column take that column's value.
    [[nodiscard]] static unsigned char GetTablePriority(EDesign::Type type,
                                                        unsigned int factorCount);

  private:
    std::string shortString_;
    std::string displayName_;
    std::string description_;
};
