#pragma once

#include "designs/optimal/D_OptimalOptions.h"
#include "foundation/stream/Export.h"

/// The options of reduced combinatorial designs. Of the inherited ones the search uses the
/// repetitions, the run range, the figure that picks the best design, and the model, whose main
/// effects tell which factors get a column.
class QORVA_EXPORT J2Options : public D_OptimalOptions {
  public:
    static constexpr int cDefaultLevels = 2;
    static constexpr int cMaxLevels = 255;

    J2Options() = default;
    /// The defaults of a family for its factors.
    J2Options(const DesignBuilder& builder, const Factors& factors, const DesignOptions& options);

    /// Coded levels, evenly spaced from -1 to 1, of every factor without levels of its own:
    /// 2 to cMaxLevels. The search refuses others where there is such a factor.
    [[nodiscard]] int GetLevels() const { return levels_; }
    void SetLevels(int levels) { levels_ = levels; }

    /// Writes the inherited options, and the levels to "J2Options" beside them.
    void Save(ConfigurationSection* section) const override;
    /// False when the inherited options are missing. Levels that are missing count as 2.
    bool Load(const ConfigurationSection* section) override;

  private:
    int levels_ = cDefaultLevels;
};
