#pragma once

#include <utility>
#include <vector>

#include "foundation/stream/Export.h"
#include "frame/DesignSpecificOptions.h"

/// What the search for subsets is told. Not made by itself: the two classes below hold the subsets.
class QORVA_EXPORT StabilityBaseOptions : public DesignSpecificOptions {
  public:
    /// Time limit of the search for each reduction; 0 means that there is none.
    [[nodiscard]] unsigned long long GetSecondsToWait() const { return secondsToWait_; }
    void SetSecondsToWait(unsigned long long seconds) { secondsToWait_ = seconds; }
    /// Looks for balanced subsets; otherwise for small condition numbers.
    [[nodiscard]] bool GetPreferBalanced() const { return preferBalanced_; }
    void SetPreferBalanced(bool preferBalanced) { preferBalanced_ = preferBalanced; }

    void Save(ConfigurationSection* section) const override;
    bool Load(const ConfigurationSection* section) override;
    /// @throws Exception for a member of another kind; the options stay. So do the classes below.
    void FromJson(const json_value& value) override;
    [[nodiscard]] json_value ToJson() const override;

  private:
    unsigned long long secondsToWait_ = 45;
    bool preferBalanced_ = true;
};

/// The subsets of a stability study, in time order, as pairs of a reduction and an index from 1 to
/// the reduction. By default the full factorial, the three thirds, and the full factorial again.
class QORVA_EXPORT StabilityDesignOptions final : public StabilityBaseOptions {
  public:
    using UsedReductions = std::vector<std::pair<unsigned long long, unsigned long long>>;

    StabilityDesignOptions();

    [[nodiscard]] const UsedReductions& GetUsedReduction() const { return usedReduction_; }
    void SetUsedReduction(const UsedReductions& used) { usedReduction_ = used; }

    void Save(ConfigurationSection* section) const override;
    bool Load(const ConfigurationSection* section) override;
    void FromJson(const json_value& value) override;
    [[nodiscard]] json_value ToJson() const override;

  private:
    UsedReductions usedReduction_;
};

/// The number of subsets of a generalized subset design; all of them are used.
class QORVA_EXPORT GeneralizedSubsetDesignsDesignOptions final : public StabilityBaseOptions {
  public:
    [[nodiscard]] unsigned long long GetReduction() const { return reduction_; }
    void SetReduction(unsigned long long reduction) { reduction_ = reduction; }

    void Save(ConfigurationSection* section) const override;
    bool Load(const ConfigurationSection* section) override;
    void FromJson(const json_value& value) override;
    [[nodiscard]] json_value ToJson() const override;

  private:
    unsigned long long reduction_ = 2;
};
