#include "designs/optimal/D_OptimalBuilder.h"

#include <algorithm>
#include <climits>

#include "designs/optimal/DOptFactorAdapter.h"
#include "designs/optimal/D_Optimal.h"
#include "designs/optimal/D_OptimalOptions.h"
#include "designs/optimal/TermCounts.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "frame/FamilyRules.h"

using DOpt::TermCounts;

namespace {

constexpr int cDefaultRepetitions = 5;
constexpr int cMinRunsOfBlock = 4;
constexpr unsigned int cMinFactors = 2;
constexpr unsigned int cMaxExpandedFactors = 32;
constexpr unsigned int cMinMixtureFactors = 3;
constexpr unsigned int cMaxMixtureFactors = 20;
constexpr unsigned int cMaxCrossedFactors = 18;
constexpr unsigned char cWeakPriority = 24;
// Default models may depend on a run limit; default runs ask for them without one.
constexpr unsigned int cAnyRuns = INT_MAX;

const D_OptimalOptions* FamilyOptions(const DesignOptions& options) {
    return dynamic_cast<const D_OptimalOptions*>(options.GetDesignSpecificOptions());
}

int NumberOfBlocks(const DesignOptions& options) {
    return std::max(static_cast<int>(options.GetBlocks()), 1);
}

/// What the run rule looks at.
struct ModelRequest {
    EModel::Type process = EModel::None;
    EModel::Type mixture = EModel::None;
    bool processMixture = false;
};

ModelRequest MakeModelRequest(const DOptFactorAdapter& adapter, const DesignOptions& options) {
    ModelRequest request;
    request.process = options.GetModel();
    const D_OptimalOptions* family = FamilyOptions(options);
    if (family != nullptr) {
        request.mixture = adapter.IsMixture() ? family->GetMixtureModel() : EModel::None;
        request.processMixture = family->GetPMInteraction();
    }
    return request;
}

int MixtureTerms(const TermCounts& terms, EModel::Type model) {
    switch (model) {
        case EModel::Linear:
            return terms.MixLinear();
        case EModel::Interaction:
            return terms.MixInteraction();
        case EModel::Quadratic:
            return terms.MixQuadratic();
        case EModel::SpecialCubic:
            return terms.MixSpecialCubic();
        case EModel::Cubic:
            return terms.MixCubic();
        default:
            return 0;
    }
}

// The columns of a model, and `spare` runs more.
int RunsForModel(const TermCounts& terms, const ModelRequest& request, int spare) {
    int runs = spare;
    if (request.process == EModel::Linear) {
        runs = terms.Linear() + spare;
    } else if (request.process == EModel::Interaction) {
        const bool few = request.mixture != EModel::None && terms.Interaction() < 4;
        runs = terms.Interaction() + (few ? 4 : spare);
    } else if (request.process >= EModel::Quadratic) {
        // No process model beyond the quadratic one is ever searched for by default.
        runs = terms.Quadratic() + spare;
    }
    runs += MixtureTerms(terms, request.mixture);
    return request.processMixture ? runs + terms.ProcessMixture() : runs;
}

int RunsForObjective(const TermCounts& terms, EObjective::Type objective) {
    switch (objective) {
        case EObjective::Screening:
        case EObjective::RobustnessVerification:
            return RecommendedRunsInteraction(terms);
        case EObjective::Optimization:
        case EObjective::SystemCharacterization:
            return terms.MixQuadratic() + terms.Quadratic() + terms.ProcessMixture() + 7;
        case EObjective::SplitObjective:
            return RecommendedRunsRobust(terms);
        default:
            return 0;
    }
}

// Runs to leave free under a run limit, as a rule for centre points.
int RunsToSpare(const Factors& factors, EObjective::Type objective) {
    if (factors.GetQualitativeCount() > 0) {
        return 0;
    }
    return objective == EObjective::RobustnessVerification ? 1 : 3;
}

int BaseRuns(const Factors& factors, const DesignOptions& options) {
    const DOptFactorAdapter adapter(factors, options.GetBlocks());
    const TermCounts terms(adapter);
    const ModelRequest request = MakeModelRequest(adapter, options);
    const bool noModel = request.process == EModel::None && request.mixture == EModel::None;
    const int degrees = static_cast<int>(DesignBuilder::GetDefaultDF(options.GetObjective()));
    int runs = noModel ? RunsForObjective(terms, options.GetObjective())
                       : RunsForModel(terms, request, 1) + degrees;
    const int maxRuns =
        static_cast<int>(std::min(options.GetMaxRuns(), static_cast<unsigned int>(INT_MAX)));
    if (maxRuns == 0) {
        return runs;
    }
    runs = std::min(runs, maxRuns);
    const int spare = RunsToSpare(factors, options.GetObjective());
    if (maxRuns - runs >= spare) {
        return runs;
    }
    return maxRuns - std::min(maxRuns - RunsForModel(terms, request, 2), spare);
}

// The Formulation factor of the largest range, -1 without a mixture.
int SlackFactor(const Factors& factors) {
    int slack = -1;
    float largest = 0;
    const int count = factors.IsMixture() ? static_cast<int>(factors.GetDesignFactorCount()) : 0;
    for (int factor = 0; factor < count; ++factor) {
        if (factors.GetFactorType(factor) != CEType::Formulation) {
            continue;
        }
        const std::vector<float> settings = factors.GetFactorSettings(factor);
        const float range = settings.empty() ? 0 : settings.back() - settings.front();
        if (slack < 0 || range > largest) {
            slack = factor;
            largest = range;
        }
    }
    return slack;
}

unsigned int WidthOfFactor(const Factors& factors, int factor, int slack, int blocks) {
    if (factor == slack) {
        return 0;
    }
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    if (factor == count && blocks > 1) {
        return static_cast<unsigned int>(blocks - 1);
    }
    // A stored model may name a factor that was taken out since; it has no column.
    return factor >= 0 && factor < count ? factors.GetExpandedVariableCount(factor) : 0;
}

D_OptimalOptions::Model ModelOf(const D_OptimalBuilder& builder,
                                const Factors& factors,
                                const DesignOptions& options) {
    const D_OptimalOptions* family = FamilyOptions(options);
    return family != nullptr ? family->GetModel(EDesign::DOpt, factors, options)
                             : D_OptimalOptions(builder, factors, options)
                                   .GetModel(EDesign::DOpt, factors, options);
}

bool IsModelOfObjective(EObjective::Type objective, EModel::Type model) {
    if (FamilyRules::IsScreening(objective)) {
        return model <= EModel::Interaction;
    }
    if (FamilyRules::IsResponseSurface(objective)) {
        return model == EModel::None || (model >= EModel::Quadratic && model <= EModel::Cubic);
    }
    return true;
}

bool HasFactorsForModels(const Factors& factors, const DesignOptions& options) {
    const D_OptimalOptions* family = FamilyOptions(options);
    const bool mixtureModel = family != nullptr && family->GetMixtureModel() != EModel::None;
    const bool processModel = options.GetModel() != EModel::None;
    return mixtureModel ? processModel || factors.GetMixtureFactorCount() > 0
                        : !processModel || factors.GetProcessFactorCount() > 0;
}

// No factor can show a curvature.
bool IsWithoutThirdLevel(const Factors& factors) {
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    for (int factor = 0; factor < count; ++factor) {
        const CEType::EType type = factors.GetFactorType(factor);
        const bool flat = type == CEType::Qualitative ||
                          (type == CEType::Multilevel && factors.GetLevelCount(factor) <= 2);
        if (!flat) {
            return false;
        }
    }
    return true;
}

bool HasLegalSize(const Factors& factors, const DesignOptions& options) {
    const unsigned int mixture = factors.GetMixtureFactorCount();
    if (factors.GetDesignFactorCount() < cMinFactors ||
        factors.GetDesignFactorCountExpanded() > cMaxExpandedFactors ||
        (mixture > 0 && mixture < cMinMixtureFactors) || mixture > cMaxMixtureFactors) {
        return false;
    }
    const DOptFactorAdapter adapter(factors, options.GetBlocks());
    return !factors.IsProcessAndMixture() || adapter.GetDesignFactorCount() <= cMaxCrossedFactors;
}

}  // namespace

std::unique_ptr<NCDesign> D_OptimalBuilder::Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel) const {
    DesignOptions searched = options;
    if (options.GetModel() != EModel::None) {
        // Deliberate: interactions are searched for as potential terms, not as terms of the model.
        if (FamilyRules::IsScreening(options.GetObjective())) {
            searched.SetModel(EModel::Linear);
        } else if (FamilyRules::IsResponseSurface(options.GetObjective())) {
            searched.SetModel(EModel::Quadratic);
        }
    }
    if (FamilyOptions(options) == nullptr) {
        searched.SetDesignSpecificOptions(GetDefaultDesignSpecificOptions(factors, searched));
    }
    return IsValid(factors, searched) ? std::make_unique<D_Optimal>(factors, searched, cancel)
                                      : nullptr;
}

unsigned int D_OptimalBuilder::GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const {
    // Options ask their family for its runs while they are made.
    thread_local bool running = false;
    if (running) {
        return factors.GetDesignFactorCount();
    }
    struct Guard {
        Guard() { running = true; }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;
        ~Guard() { running = false; }
    };
    const Guard guard;
    DesignOptions options(*this, factors);
    options.SetObjective(objective);
    options.SetModel(GetDefaultProcessModel(factors, objective, cAnyRuns));
    if (auto* family = dynamic_cast<D_OptimalOptions*>(options.GetDesignSpecificOptions())) {
        family->SetDOptMixtureModel(GetDefaultMixtureModel(factors, objective, cAnyRuns));
        family->SetPMInteraction(IsPMInteractionDefault(factors, options));
    }
    return std::min(GetDefaultRuns(factors, options), DesignOptions::cNoRunLimit);
}

unsigned int D_OptimalBuilder::GetDefaultRuns(const Factors& factors,
                                              const DesignOptions& options) const {
    const auto runs = static_cast<unsigned int>(std::max(BaseRuns(factors, options), 0));
    return options.GetMaxRuns() != 0 ? std::min(runs, options.GetMaxRuns()) : runs;
}

EModel::Type D_OptimalBuilder::GetDefaultProcessModel(const Factors& factors,
                                                      EObjective::Type objective,
                                                      unsigned int maxRuns) const {
    const DOptFactorAdapter adapter(factors, 1);
    const TermCounts terms(adapter);
    const auto afford = [maxRuns](int runs) {
        return static_cast<long long>(maxRuns) >= runs ? EModel::Interaction : EModel::Linear;
    };
    switch (objective) {
        case EObjective::Screening:
            if (terms.Mixture() > 0 && terms.Variables() < 9) {
                return afford(RecommendedRunsInteraction(terms));
            }
            if (terms.Mixture() > 0) {
                return terms.Variables() <= 12 && terms.Process() < 6 ? EModel::Interaction
                                                                      : EModel::Linear;
            }
            if (terms.Process() < 7 &&
                afford(RecommendedRunsInteraction(terms)) == EModel::Interaction) {
                return EModel::Interaction;
            }
            return terms.Process() > 4 ? EModel::Linear : afford(RecommendedRunsSmall(terms));
        case EObjective::Optimization:
        case EObjective::SystemCharacterization:
            return EModel::Quadratic;
        case EObjective::SplitObjective:
            return terms.Variables() >= 9 ? EModel::Linear : afford(RecommendedRunsRobust(terms));
        case EObjective::RobustnessVerification:
            return EModel::Linear;
        default:
            return EModel::None;
    }
}

EModel::Type D_OptimalBuilder::GetDefaultMixtureModel(const Factors& factors,
                                                      EObjective::Type objective,
                                                      unsigned int maxRuns) const {
    const DOptFactorAdapter adapter(factors, 1);
    const TermCounts terms(adapter);
    if (terms.Mixture() == 0) {
        return EModel::None;
    }
    switch (objective) {
        case EObjective::Screening:
        case EObjective::RobustnessVerification:
            return EModel::Linear;
        case EObjective::Optimization:
        case EObjective::SystemCharacterization:
            return EModel::Quadratic;
        case EObjective::SplitObjective:
            return terms.Mixture() < 5 &&
                           static_cast<long long>(maxRuns) >= RecommendedRunsMix(terms)
                       ? EModel::Quadratic
                       : EModel::Linear;
        default:
            return EModel::None;
    }
}

bool D_OptimalBuilder::IsPMInteractionDefault(const Factors& factors,
                                              const DesignOptions& options) const {
    // Blocks count as a process factor here.
    const DOptFactorAdapter adapter(factors, options.GetBlocks());
    if (!adapter.IsMixture() || adapter.IsMixtureOnly()) {
        return false;
    }
    switch (options.GetObjective()) {
        case EObjective::Screening:
        case EObjective::SplitObjective:
            return options.GetModel() == EModel::Interaction;
        case EObjective::Optimization:
        case EObjective::SystemCharacterization:
            return true;
        default:
            return false;
    }
}

unsigned int D_OptimalBuilder::MinimumRuns(const Factors& factors,
                                           const DesignOptions& options) const {
    const int slack = SlackFactor(factors);
    const int blocks = NumberOfBlocks(options);
    unsigned int runs = 1;
    for (const std::vector<int>& term : ModelOf(*this, factors, options)) {
        unsigned int columns = 1;
        for (const int factor : term) {
            columns *= WidthOfFactor(factors, factor, slack, blocks);
        }
        runs += columns;
    }
    return runs;
}

std::vector<unsigned int> D_OptimalBuilder::GetLegalRuns(const Factors& factors,
                                                         const DesignOptions& options) const {
    const long long blocks = NumberOfBlocks(options);
    const long long least =
        std::max<long long>(MinimumRuns(factors, options), cMinRunsOfBlock * blocks);
    const long long low = (least + blocks - 1) / blocks * blocks;
    const long long copies = static_cast<long long>(options.GetReplicates()) + 1;
    const long long most = std::min<long long>(options.GetMaxRuns(), NCDesign::cMaxFinishedRuns);
    const long long high = most / copies - options.GetCenterPoints();
    std::vector<unsigned int> legal;
    for (long long runs = low; runs <= high; runs += blocks) {
        legal.push_back(static_cast<unsigned int>(runs));
    }
    return legal;
}

unsigned char D_OptimalBuilder::GetPriority(const Factors& factors) const {
    const unsigned int count = factors.GetDesignFactorCountExpanded();
    return count >= cPriorityColumns ? cWeakPriority : GetTablePriority(EDesign::DOpt, count);
}

bool D_OptimalBuilder::IsREDMUPRecommended(const Factors& /*factors*/,
                                           const DesignOptions& /*options*/) const {
    return false;
}

bool D_OptimalBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    return IsValid(factors, options, false, false);
}

bool D_OptimalBuilder::IsValid(const Factors& factors,
                               const DesignOptions& options,
                               bool /*computerGeneratedOnly*/,
                               bool redmupOnly) const {
    if (!IsModelOfObjective(options.GetObjective(), options.GetModel()) ||
        !HasLegalSize(factors, options) || !HasFactorsForModels(factors, options) ||
        MinimumRuns(factors, options) > options.GetMaxRuns()) {
        return false;
    }
    if (FamilyRules::IsResponseSurface(options.GetObjective()) && IsWithoutThirdLevel(factors)) {
        return false;
    }
    return !redmupOnly || IsREDMUPRecommended(factors, options);
}

EModel::Type D_OptimalBuilder::GetDefaultModel(const Factors& /*factors*/,
                                               EObjective::Type /*objective*/) const {
    throw InvalidOperationException("DOpt::GetDefaultModel");
}

std::shared_ptr<DesignSpecificOptions> D_OptimalBuilder::GetDefaultDesignSpecificOptions(
    const Factors& factors, const DesignOptions& options) const {
    auto family = std::make_shared<D_OptimalOptions>(*this, factors, options);
    family->SetRepetitions(cDefaultRepetitions);
    return family;
}
