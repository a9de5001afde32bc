#pragma once

#include <memory>
#include <vector>

#include "foundation/stream/Export.h"
#include "foundation/utl/JsonValue.h"
#include "frame/EDesign.h"
#include "frame/EModel.h"
#include "frame/EObjective.h"

class ConfigurationSection;
class DesignBuilder;
class DesignSpecificOptions;
class Factors;
class Generators;

/// What the user can set for a design. A copy shares its generators and its family options with its
/// source.
class QORVA_EXPORT DesignOptions {
  public:
    /// The value of maxRuns that means no limit.
    static constexpr unsigned int cNoRunLimit = 12000;
    static constexpr float cNoStarDistance = -99.0F;

    DesignOptions() = default;
    /// The defaults of a family: the screening model's objective, or optimization where the family
    /// has no screening model.
    DesignOptions(const DesignBuilder& builder, const Factors& factors);
    /// The family's defaults under a chosen objective, models and run limit. The mixture model
    /// applies where both factors and family are mixture only.
    DesignOptions(const DesignBuilder& builder,
                  const Factors& factors,
                  EObjective::Type objective,
                  EModel::Type processModel,
                  EModel::Type mixtureModel,
                  unsigned int maxRuns);

    [[nodiscard]] unsigned int GetBlocks() const { return blocks_; }
    void SetBlocks(unsigned int blocks) { blocks_ = blocks; }
    /// Design runs, without centre points, replicated runs and replicates.
    [[nodiscard]] unsigned int GetRuns() const { return runs_; }
    void SetRuns(unsigned int runs) { runs_ = runs; }
    [[nodiscard]] unsigned int GetCenterPoints() const { return centerPoints_; }
    void SetCenterPoints(unsigned int centerPoints) { centerPoints_ = centerPoints; }
    /// Extra runs that repeat existing runs.
    [[nodiscard]] unsigned int GetReplicatedRuns() const { return replicatedRuns_; }
    void SetReplicatedRuns(unsigned int replicatedRuns) { replicatedRuns_ = replicatedRuns; }
    /// Extra copies of the whole design.
    [[nodiscard]] unsigned int GetReplicates() const { return replicates_; }
    void SetReplicates(unsigned int replicates) { replicates_ = replicates; }
    /// Limit on runs and centre points; `cNoRunLimit` means none.
    [[nodiscard]] unsigned int GetMaxRuns() const { return maxRuns_; }
    void SetMaxRuns(unsigned int maxRuns) { maxRuns_ = maxRuns; }
    /// Of central composite designs, in coded units.
    [[nodiscard]] float GetStarDistance() const { return starDistance_; }
    void SetStarDistance(float starDistance) { starDistance_ = starDistance; }
    [[nodiscard]] EObjective::Type GetObjective() const { return objective_; }
    void SetObjective(EObjective::Type objective) { objective_ = objective; }
    [[nodiscard]] EModel::Type GetModel() const { return model_; }
    void SetModel(EModel::Type model) { model_ = model; }
    /// The family whose builder made these options.
    [[nodiscard]] EDesign::Type GetCreatedFromDesign() const { return createdFromDesign_; }

    /// Borrowed; null when there are none.
    [[nodiscard]] const Generators* GetGenerators() const { return generators_.get(); }
    [[nodiscard]] Generators* GetGenerators() { return generators_.get(); }
    /// Stores a new copy; null removes the generators.
    void SetGenerators(const Generators* generators);
    /// Builds generators from words of signed factor numbers. The words of one number are the base
    /// factors, which get the letters a, b, c in ascending order of their numbers; a longer word is
    /// the product of base factors, negative when it holds an odd count of negative numbers.
    /// Returns false, with nothing changed, for an empty word, a base factor given twice, a number
    /// without a base factor, more than 11 base factors or more than 55 words.
    bool SetGenerators(const std::vector<std::vector<int>>& words);

    /// The family's own options, borrowed; null when there are none.
    [[nodiscard]] const DesignSpecificOptions* GetDesignSpecificOptions() const {
        return designSpecificOptions_.get();
    }
    [[nodiscard]] DesignSpecificOptions* GetDesignSpecificOptions() {
        return designSpecificOptions_.get();
    }
    /// The handle must have been made with the concrete type.
    void SetDesignSpecificOptions(std::shared_ptr<DesignSpecificOptions> options) {
        designSpecificOptions_ = std::move(options);
    }

    /// Fits runs and centre points under the run limit: centre points give way first, then the runs
    /// fall to a legal count, then centre points grow back into the room that is left. Returns
    /// whether they fit now.
    bool AssureMaxRuns(const DesignBuilder& builder, const Factors& factors);

    /// Writes the child section "DesignOptions".
    void Save(ConfigurationSection* section) const;
    /// Reads the child section "DesignOptions"; false when there is none. Family options are loaded
    /// into the present object, if any.
    /// @throws Exception for a negative count; the options stay.
    bool Load(const ConfigurationSection* section);
    /// The form for exchange. Objective, model and creating family are no part of it.
    [[nodiscard]] json_value ToJson() const;
    /// Reads that form; a value that is no object changes nothing.
    /// @throws Exception when "runs" or "centerPoints" is missing, or a count is out of range; the
    ///         options stay.
    void FromJson(const json_value& value);

  private:
    void SetStarDistanceAndRuns(const DesignBuilder& builder, const Factors& factors);

    unsigned int blocks_ = 1;
    unsigned int runs_ = 0;
    unsigned int centerPoints_ = 3;
    unsigned int replicatedRuns_ = 0;
    unsigned int replicates_ = 0;
    unsigned int maxRuns_ = cNoRunLimit;
    float starDistance_ = 1.0F;
    EObjective::Type objective_ = EObjective::Screening;
    EModel::Type model_ = EModel::Linear;
    std::shared_ptr<Generators> generators_;
    std::shared_ptr<DesignSpecificOptions> designSpecificOptions_;
    EDesign::Type createdFromDesign_ = EDesign::None;
};
