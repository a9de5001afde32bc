#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "designs/stability/StabilityDesignData.h"
#include "designs/stability/StabilityOptions.h"
#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"
#include "frame/NCDesign.h"

class NCProgress;

/// A series of subsets of a full factorial, one for each point in time of a stability study, or the
/// subsets of one division as a generalized subset design.
///
/// The assembled matrix has the design set's letter code in its first column, 65 for the first set
/// in use, and the factors behind. A change of one subset, such as centre points, shows there and
/// in the names only after SpecifyUsedDesigns.
///
/// The names of combinations are found on first use and kept: until then concurrent readers of one
/// design must be kept apart.
class QORVA_EXPORT StabilityDesign : public NCDesign {
  public:
    using UsedDesigns = std::vector<std::pair<int, int>>;

    /// Generates all subsets that the options ask for, with a progress.
    /// @param type EDesign::Stability or EDesign::GeneralizedSubset
    /// @param cancel read at every safe point of the search; null allowed
    /// @throws Exception for a reduction of 0, an index outside 1 to the reduction, options of
    ///         another family, and a design of more than NCDesign::cMaxFinishedRuns runs;
    ///         CancelException on a stop or when the memory is exhausted
    StabilityDesign(EDesign::Type type,
                    const Factors& factors,
                    const DesignOptions& options,
                    const bool* cancel = nullptr);
    /// Loads what Save wrote.
    StabilityDesign(EDesign::Type type,
                    const Factors& factors,
                    const ConfigurationSection& section);

    /// With subsets of its own.
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
    void Save(ConfigurationSection* section) const override;
    bool Load(const ConfigurationSection* section) override;
    /// On the assembled matrix and on every subset.
    void AdjustCenterPoints(const Factors& factors, const DesignOptions& options) override;
    [[nodiscard]] EDesign::Type IsDesign() const { return type_; }

    /// Makes all subsets of one reduction, in place of those it had.
    /// @param progress may be null, as cancel
    void GenerateDesigns(int reduction,
                         int secondsToWait,
                         bool preferBalance,
                         const Factors& factors,
                         NCProgress* progress,
                         const bool* cancel = nullptr);
    /// Assembles the design matrix of these sets, in this order; a set that was not generated adds
    /// no runs.
    /// @throws Exception when it would have more than NCDesign::cMaxFinishedRuns runs; the design
    ///         stays
    void SpecifyUsedDesigns(const UsedDesigns& used);
    /// Reduction and index of the sets in use, in time order.
    [[nodiscard]] const UsedDesigns& GetUsedDesigns() const { return used_; }
    /// The sets in use, each once, by reduction and index.
    [[nodiscard]] UsedDesigns GetUniqueUsedDesignsets() const;

    using NCDesign::GetDesignMatrix;
    /// An empty handle for a reduction or an index (from 1) that was not generated.
    [[nodiscard]] std::shared_ptr<StabilityDesignData> GetDesign(int reduction, int index) const;
    /// The runs of a set, borrowed; the assembled matrix for (-1, -1). Index 0 counts as 1. Null
    /// for what was not generated.
    [[nodiscard]] const NCDataMatrix<float>* GetDesignMatrix(int reduction, int index) const;
    /// The ordinal-th reduction, from 1, in ascending order; -1 when there is none.
    [[nodiscard]] int GetReduction(unsigned long long ordinal) const;
    [[nodiscard]] int GetNumberOfReductions() const { return static_cast<int>(designs_.size()); }

    /// The middle of every factor: the middle level of a Multilevel factor (rounded up), the first
    /// of a Qualitative one, and 0.
    [[nodiscard]] NCDataVector<float> GetCenterpoint(const Factors& factors) const;
    /// The name of a run, with or without the design set's code before the factors; empty when
    /// there is none.
    [[nodiscard]] std::string GetCombination(const NCDataVector<float>& row,
                                             const Factors& factors) const;
    [[nodiscard]] int GetNumberOfCombinations(const Factors& factors) const;
    /// "c7" for 7.
    [[nodiscard]] static std::string GetFormulationString(int number);
    /// All names of combinations, "c2" before "c10".
    [[nodiscard]] std::vector<std::string> GetFormulationVector(const Factors& factors) const;
    /// For every run of the sets in use, the set's name.
    [[nodiscard]] std::vector<std::string> GetSettingsVector() const;
    /// For every run of the sets in use, the point in time of its set, or the set's number from 0
    /// where `times` ends before.
    [[nodiscard]] std::vector<float> GetDesignSetVector(const std::vector<float>& times) const;
    /// Appends a name and a combination for every run of the assembled matrix: "c7-T3" with the
    /// point in time for a stability design, "c7-C:2" with the set for a generalized subset design.
    void GetStabilityDesignNames(std::vector<std::string>& names,
                                 std::vector<std::string>& combinations,
                                 const std::vector<float>& times,
                                 const Factors& factors) const;

  private:
    StabilityDesign(const StabilityDesign&) = default;

    void SpecifyFromOptions(const Factors& factors, const DesignOptions& options);
    void LoadReductions(const ConfigurationSection& section);
    void LoadCombinationIDMap(const Factors& factors) const;
    void LoadStabilityCombinationIDMap(const Factors& factors) const;
    static void ConvertMatrixToFactorSettings(NCDataMatrix<float>& matrix, const Factors& factors);
    [[nodiscard]] bool IsCenterPointIncluded() const;

    std::map<int, std::vector<std::shared_ptr<StabilityDesignData>>> designs_;  // by reduction
    UsedDesigns used_;
    mutable std::map<std::string, NCDataVector<float>> combinations_;
    mutable int combinationCount_ = 0;  // 0 until the names are found
    EDesign::Type type_;
};

/// Stability designs and generalized subset designs of process factors. Asked for by name: they are
/// not proposed, and their runs follow from the options of the family alone.
class QORVA_EXPORT StabilityDesignBuilder : public DesignBuilder {
  public:
    StabilityDesignBuilder(EDesign::Type type,
                           const char* shortString,
                           const char* displayName,
                           const char* description)
        : DesignBuilder(shortString, displayName, description), type_(type) {}
    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    /// @throws CancelException on a stop or when the memory is exhausted; an Exception gives an
    ///         empty handle
    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 0; }
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return type_; }
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
    [[nodiscard]] std::shared_ptr<DesignSpecificOptions> GetDefaultDesignSpecificOptions(
        const Factors& factors, const DesignOptions& options) const override;

  private:
    EDesign::Type type_;
};
