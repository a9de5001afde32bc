#include "designs/factorial/Levels.h"

#include <algorithm>
#include <numeric>

#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"

namespace {

constexpr unsigned int cDefaultRuns = 5;
// A line needs two settings.
constexpr unsigned int cMinRuns = 2;

CEType::EType FirstType(const Factors& factors) {
    return factors.GetDesignFactorCount() > 0 ? factors.GetFactorType(0) : CEType::NotDefined;
}

// Level count of the first factor; 0 when it has no levels.
unsigned int LevelCount(const Factors& factors) {
    const CEType::EType type = FirstType(factors);
    const bool hasLevels = type == CEType::Multilevel || type == CEType::Qualitative;
    return hasLevels ? factors.GetLevelCount(0) : 0;
}

NCDataMatrix<float> EvenlySpaced(int runs) {
    NCDataMatrix<float> table(runs, 1);
    // A single run is never legal, but must not divide by zero.
    const float step = runs > 1 ? 2.0F / static_cast<float>(runs - 1) : 0.0F;
    for (int row = 1; row <= runs; ++row) {
        table(row, 1, static_cast<float>(row - 1) * step - 1.0F);
    }
    return table;
}

// Rows beyond the levels stay blank.
NCDataMatrix<float> OneRunALevel(int runs, unsigned int levels) {
    NCDataMatrix<float> table(runs, 1);
    const int filled = std::min(runs, static_cast<int>(levels));
    for (int row = 1; row <= filled; ++row) {
        table(row, 1, Factors::cFirstLevelCode + static_cast<float>(row - 1));
    }
    return table;
}

}  // namespace

Levels::Levels(const Factors& factors, const DesignOptions& options) : NCDesign(factors) {
    const int runs = static_cast<int>(options.GetRuns());
    const bool quantitative = FirstType(factors) == CEType::Quantitative;
    SetDesignMatrixAndAdd(
        quantitative ? EvenlySpaced(runs) : OneRunALevel(runs, LevelCount(factors)),
        factors,
        options);
}

std::shared_ptr<NCDesign> Levels::Clone() const {
    return std::make_shared<Levels>(*this);
}

std::unique_ptr<NCDesign> LevelsBuilder::Build(const Factors& factors,
                                               const DesignOptions& options,
                                               bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<Levels>(factors, options) : nullptr;
}

unsigned int LevelsBuilder::GetDefaultRuns(const Factors& factors,
                                           EObjective::Type /*objective*/) const {
    return FirstType(factors) == CEType::Quantitative ? cDefaultRuns : LevelCount(factors);
}

std::vector<unsigned int> LevelsBuilder::GetLegalRuns(const Factors& factors,
                                                      const DesignOptions& options) const {
    // Longer designs could not be built: the list must not grow with a limit that means nothing.
    const unsigned int most =
        std::min(options.GetMaxRuns(), static_cast<unsigned int>(NCDesign::cMaxFinishedRuns));
    if (FirstType(factors) == CEType::Quantitative) {
        std::vector<unsigned int> runs(most >= cMinRuns ? most - cMinRuns + 1 : 0);
        std::iota(runs.begin(), runs.end(), cMinRuns);
        return runs;
    }
    const unsigned int levels = LevelCount(factors);
    return levels > 0 && levels <= most ? std::vector<unsigned int>{levels}
                                        : std::vector<unsigned int>();
}

unsigned char LevelsBuilder::GetPriority(const Factors& factors) const {
    return GetTablePriority(EDesign::Levels, factors.GetDesignFactorCountExpanded());
}

bool LevelsBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    const bool surface = FamilyRules::IsResponseSurface(options.GetObjective());
    const EModel::Type model = options.GetModel();
    if ((surface || model == EModel::Quadratic || model == EModel::Cubic) &&
        factors.GetQualitativeCount() > 0) {
        return false;
    }
    if (model == EModel::Interaction || factors.GetDesignFactorCount() != 1) {
        return false;
    }
    // Two settings cannot show a curve.
    if (surface && factors.GetMultilevelCount() > 0 && LevelCount(factors) == 2) {
        return false;
    }
    // Deliberate: a filler is not looked at, unlike in the other families.
    if (FamilyRules::HasConstraints(options) || !factors.IsProcessOnly()) {
        return false;
    }
    const bool quantitative = FirstType(factors) == CEType::Quantitative;
    const unsigned int needed = quantitative ? cMinRuns : LevelCount(factors);
    return options.GetMaxRuns() >= GetMinimumCenterPoints() + needed;
}

EModel::Type LevelsBuilder::GetDefaultModel(const Factors& /*factors*/,
                                            EObjective::Type objective) const {
    if (FamilyRules::IsScreening(objective)) {
        return EModel::Linear;
    }
    return FamilyRules::IsResponseSurface(objective) ? EModel::Quadratic : EModel::None;
}
