#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/EDesign.h"
#include "frame/EModel.h"

class DesignBuilder;
class DesignOptions;
class DOptFactorAdapter;

/// The options of D-optimal designs: what to search for, from which candidates, and how long.
class QORVA_EXPORT D_OptimalOptions : public DesignSpecificOptions {
  public:
    /// One list of factor indices a term; see ModelTerms.
    using Model = std::vector<std::vector<int>>;

    D_OptimalOptions() = default;
    /// The defaults of a family for its factors: models from the builder, balance on the first
    /// Qualitative factor.
    D_OptimalOptions(const DesignBuilder& builder,
                     const Factors& factors,
                     const DesignOptions& options);

    /// Model of the Formulation factors; the process factors' model is that of DesignOptions.
    [[nodiscard]] EModel::Type GetMixtureModel() const { return mixtureModel_; }
    void SetDOptMixtureModel(EModel::Type model) { mixtureModel_ = model; }
    void SetMixtureModel(EModel::Type model) override { SetDOptMixtureModel(model); }
    /// The figure that picks the best of the generated designs.
    [[nodiscard]] EDesign::DOptimalSelectBy GetSelectDesignBy() const { return selectDesignBy_; }
    void SetSelectDesignBy(EDesign::DOptimalSelectBy by) { selectDesignBy_ = by; }
    /// Whether process and Formulation factors interact in the default model.
    [[nodiscard]] bool GetPMInteraction() const { return pmInteraction_; }
    void SetPMInteraction(bool interaction) { pmInteraction_ = interaction; }
    /// Whether terms beyond the model are guarded against as well, with less weight.
    [[nodiscard]] bool GetUsePotentialTerms() const { return usePotentialTerms_; }
    void SetUsePotentialTerms(bool use) { usePotentialTerms_ = use; }
    /// Factor whose levels are to occur equally often, counted from 0 in the caller's order; -1 for
    /// none.
    [[nodiscard]] int GetBalanceOnFactor() const { return balanceOnFactor_; }
    void SetBalanceOnFactor(int factor) { balanceOnFactor_ = factor; }
    [[nodiscard]] bool GetOnlyAllowBalanced() const { return onlyAllowBalanced_; }
    void SetOnlyAllowBalanced(bool only) { onlyAllowBalanced_ = only; }
    /// Whether the inclusions are forced into the design.
    [[nodiscard]] bool GetUseInclusion() const { return useInclusion_; }
    void SetUseInclusion(bool use) { useInclusion_ = use; }
    /// Whether candidates are generated anew instead of taken from the stored set.
    [[nodiscard]] bool GetNewCandidateSet() const { return newCandidateSet_; }
    void SetNewCandidateSet(bool fresh) { newCandidateSet_ = fresh; }
    /// Searches per run count.
    [[nodiscard]] int GetRepetitions() const { return repetitions_; }
    void SetRepetitions(int repetitions) { repetitions_ = repetitions; }
    /// Run counts searched on either side of the one asked for.
    [[nodiscard]] int GetRunRange() const { return runRange_; }
    void SetRunRange(int runRange) { runRange_ = runRange; }

    /// Runs that must be in the design [runs x expanded factor count], in real units, in the
    /// caller's order.
    [[nodiscard]] const NCDataMatrix<float>& GetInclusions() const { return inclusions_; }
    /// @throws Exception when the inclusions stored so far do not have one column an expanded
    ///         factor; they stay. Deliberate: the stored matrix is tested, not the new one.
    void SetInclusions(const NCDataMatrix<float>& matrix, const Factors& factors);

    /// Sets an explicit model; an empty list goes back to the default model.
    void SetModel(const Model& model);
    /// The explicit model when there is one, else the default model.
    [[nodiscard]] Model GetModel(EDesign::Type type,
                                 const Factors& factors,
                                 const DesignOptions& options) const;
    /// The full model of the options' process model and the own mixture model.
    [[nodiscard]] Model GetDefaultModel(EDesign::Type type,
                                        const Factors& factors,
                                        const DesignOptions& options) const;

    /// The constraints in the form of the engine: one row (a, c) a constraint, which means
    /// a * x + c >= 0. Columns are the Quantitative and Formulation factors in the adapter's order,
    /// then the constant; no rows without constraints.
    /// @throws Exception for a constraint on a factor that the adapter does not have
    [[nodiscard]] std::unique_ptr<NCDataMatrix<float>> GetDOptConstraints(
        const DOptFactorAdapter& adapter) const;

    /// Writes the child section "DesignSpecificOptions": candidate set and inclusions there, the
    /// settings and the explicit model in its child "DOptimalOptions". Constraints have no saved
    /// form.
    void Save(ConfigurationSection* section) const override;
    /// False when one of the two sections is missing. What is not stored stays.
    bool Load(const ConfigurationSection* section) override;
    /// The form for exchange. It has no explicit model and no inclusions.
    /// @throws Exception when the candidate set has layers
    [[nodiscard]] json_value ToJson() const override;
    /// Reads that form; a member that is missing gives the default constructor's value, a value
    /// that is no object changes nothing.
    /// @throws Exception for an ill-formed candidate set; the options stay.
    void FromJson(const json_value& value) override;

  private:
    void SaveSettings(ConfigurationSection* section) const;
    void SaveModel(ConfigurationSection* section) const;
    void LoadSettings(const ConfigurationSection* section);
    void LoadModel(const ConfigurationSection* section);

    EModel::Type mixtureModel_ = EModel::None;
    EDesign::DOptimalSelectBy selectDesignBy_ = EDesign::GEfficiency;
    bool pmInteraction_ = false;
    bool usePotentialTerms_ = true;
    int balanceOnFactor_ = -1;
    bool onlyAllowBalanced_ = false;
    bool useInclusion_ = true;
    bool newCandidateSet_ = true;
    int repetitions_ = 1;
    int runRange_ = 2;
    std::optional<Model> model_;
    NCDataMatrix<float> inclusions_;
};
