#include "designs/stability/J2Builder.h"

#include <algorithm>

#include "designs/optimal/DOptFactorAdapter.h"
#include "designs/optimal/TermCounts.h"
#include "designs/stability/J2Design.h"
#include "designs/stability/J2Options.h"
#include "designs/stability/J2Terms.h"
#include "frame/DesignOptions.h"
#include "frame/FamilyRules.h"

namespace {

constexpr int cDefaultRepetitions = 10;
constexpr unsigned int cDefaultReplicatedRuns = 3;
constexpr unsigned int cMaxExpandedFactors = 32;
/// Up to so many expanded factors a screening looks for interactions.
constexpr unsigned int cMaxInteractionFactors = 4;
constexpr unsigned int cMinLevels = 3;
constexpr unsigned int cMostRuns = 255;
constexpr unsigned int cMinLegalRunSpan = 24;
/// Fewer combinations than these are better run in full.
constexpr unsigned long long cManyCombinations = 24;
constexpr unsigned char cStrongPriority = 4;
constexpr unsigned char cWeakPriority = 27;

const D_OptimalOptions* FamilyOptions(const DesignOptions& options) {
    return dynamic_cast<const D_OptimalOptions*>(options.GetDesignSpecificOptions());
}

int FactorCount(const Factors& factors) {
    return static_cast<int>(factors.GetDesignFactorCount());
}

bool HasLevels(const Factors& factors, int factor) {
    const CEType::EType type = factors.GetFactorType(factor);
    return type == CEType::Multilevel || type == CEType::Qualitative;
}

bool HasManyLevels(const Factors& factors) {
    for (int factor = 0; factor < FactorCount(factors); ++factor) {
        if (HasLevels(factors, factor) && factors.GetLevelCount(factor) >= cMinLevels) {
            return true;
        }
    }
    return false;
}

unsigned int MostMultilevelLevels(const Factors& factors) {
    unsigned int most = 0;
    for (int factor = 0; factor < FactorCount(factors); ++factor) {
        if (factors.GetFactorType(factor) == CEType::Multilevel) {
            most = std::max(most, factors.GetLevelCount(factor));
        }
    }
    return most;
}

// The terms of a model in whole, the constant and one run more.
unsigned int RunsForModel(const Factors& factors, EModel::Type model, unsigned int blocks) {
    const DOptFactorAdapter adapter(factors, blocks);
    const DOpt::TermCounts terms(adapter);
    int count = terms.Quadratic();
    if (model == EModel::Linear) {
        count = terms.Linear();
    } else if (model == EModel::Interaction) {
        count = terms.Interaction();
    }
    return static_cast<unsigned int>(count) + 2;
}

unsigned int WidthOfFactor(const Factors& factors, int factor, unsigned int blocks) {
    if (factor == FactorCount(factors)) {
        return blocks - 1;  // the block
    }
    return factors.GetExpandedVariableCount(factor);
}

unsigned int RunsForTerms(const Factors& factors,
                          const D_OptimalOptions::Model& terms,
                          unsigned int blocks) {
    J2Terms::RequireFactors(terms, FactorCount(factors));
    unsigned int runs = 1;
    for (const std::vector<int>& term : terms) {
        unsigned int columns = 1;
        for (const int factor : term) {
            columns *= WidthOfFactor(factors, factor, blocks);
        }
        runs += columns;
    }
    return runs;
}

unsigned int SpareRuns(EObjective::Type objective) {
    return DesignBuilder::GetDefaultDF(objective) - 1;
}

}  // namespace

std::unique_ptr<NCDesign> J2Builder::Build(const Factors& factors,
                                           const DesignOptions& options,
                                           bool* cancel) const {
    return IsValid(factors, options) ? std::make_unique<J2Design>(type_, factors, options, cancel)
                                     : nullptr;
}

unsigned int J2Builder::GetDefaultRuns(const Factors& factors, EObjective::Type objective) const {
    return std::max(RunsForModel(factors, GetDefaultModel(factors, objective), 1),
                    MostMultilevelLevels(factors)) +
           SpareRuns(objective);
}

unsigned int J2Builder::GetDefaultRuns(const Factors& factors, const DesignOptions& options) const {
    return MinimumRuns(factors, options) + SpareRuns(options.GetObjective());
}

unsigned int J2Builder::GetDefaultCenterPoints(EObjective::Type /*objective*/) const {
    return 0;
}

unsigned int J2Builder::GetDefaultReplicatedRuns() const {
    return cDefaultReplicatedRuns;
}

std::vector<unsigned int> J2Builder::GetLegalRuns(const Factors& factors,
                                                  const DesignOptions& options) const {
    const unsigned int least = MinimumRuns(factors, options);
    const unsigned int most = std::max(cMostRuns, least + cMinLegalRunSpan);
    std::vector<unsigned int> legal;
    legal.reserve(most - least + 1);
    for (unsigned int runs = least; runs <= most; ++runs) {
        legal.push_back(runs);
    }
    return legal;
}

unsigned char J2Builder::GetPriority(const Factors& factors) const {
    unsigned long long product = 1;
    bool hasManyLevels = false;
    for (int factor = 0; factor < FactorCount(factors); ++factor) {
        const CEType::EType type = factors.GetFactorType(factor);
        if (type == CEType::Quantitative || type == CEType::Formulation) {
            product *= 2;
        } else if (HasLevels(factors, factor)) {
            const unsigned int levels = factors.GetLevelCount(factor);
            product *= levels;
            // Deliberate: a Qualitative factor does not count here.
            hasManyLevels = hasManyLevels || (type == CEType::Multilevel && levels >= cMinLevels);
        } else {
            return cWeakPriority;
        }
        // Held at the bound, so that no count of factors overflows; a factor without levels still
        // makes it 0.
        product = std::min(product, cManyCombinations);
    }
    return hasManyLevels && product >= cManyCombinations ? cStrongPriority : cWeakPriority;
}

bool J2Builder::IsREDMUPRecommended(const Factors& /*factors*/,
                                    const DesignOptions& /*options*/) const {
    return false;
}

bool J2Builder::IsValid(const Factors& factors, const DesignOptions& options) const {
    const unsigned int least = MinimumRuns(factors, options);
    if (options.GetRuns() < least || (options.GetMaxRuns() != 0 && options.GetMaxRuns() < least)) {
        return false;
    }
    return factors.GetDesignFactorCountExpanded() <= cMaxExpandedFactors &&
           HasManyLevels(factors) &&
           options.GetModel() == GetDefaultModel(factors, options.GetObjective()) &&
           FamilyRules::IsFillerFree(factors) && !FamilyRules::HasConstraints(options) &&
           factors.IsProcessOnly();
}

EModel::Type J2Builder::GetDefaultModel(const Factors& factors, EObjective::Type objective) const {
    if (FamilyRules::IsResponseSurface(objective)) {
        return EModel::Quadratic;
    }
    const bool few = factors.GetDesignFactorCountExpanded() <= cMaxInteractionFactors;
    return objective == EObjective::Screening && few && !factors.IsMixtureOnly()
               ? EModel::Interaction
               : EModel::Linear;
}

std::shared_ptr<DesignSpecificOptions> J2Builder::GetDefaultDesignSpecificOptions(
    const Factors& factors, const DesignOptions& options) const {
    auto family = std::make_shared<J2Options>(*this, factors, options);
    family->SetRepetitions(cDefaultRepetitions);
    family->SetRunRange(0);
    return family;
}

unsigned int J2Builder::GetRecommendedReplicatedRuns() const {
    return cDefaultReplicatedRuns;
}

unsigned int J2Builder::MinimumRuns(const Factors& factors, const DesignOptions& options) const {
    const unsigned int blocks = std::max(options.GetBlocks(), 1U);
    unsigned int runs = 0;
    if (const D_OptimalOptions* family = FamilyOptions(options)) {
        runs = RunsForTerms(factors, family->GetModel(IsDesign(), factors, options), blocks);
    } else {
        const EModel::Type model = options.GetModel() != EModel::None
                                       ? options.GetModel()
                                       : GetDefaultModel(factors, options.GetObjective());
        runs = RunsForModel(factors, model, blocks);
    }
    return std::max(runs, MostMultilevelLevels(factors));
}
