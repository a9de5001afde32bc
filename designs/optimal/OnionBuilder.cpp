#include "designs/optimal/OnionBuilder.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <utility>

#include "designs/optimal/GenerateCandidateset.h"
#include "designs/optimal/OnionDesign.h"
#include "designs/optimal/OnionLayerSearch.h"
#include "designs/optimal/OnionOptions.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "frame/FamilyRules.h"
#include "frame/NCDesign.h"

namespace {

constexpr int cUsualLayers = 3;
constexpr unsigned int cMinFactors = 2;
constexpr unsigned int cMaxFactors = 32;
constexpr int cSpareRunsOfLayer = 15;
/// Candidates for each run of a layer.
constexpr double cCandidatesPerRun = 1.5;
/// Below so many candidates one run for every two of them is too much.
constexpr long long cFewCandidates = 30;
constexpr int cMaxRuns = static_cast<int>(DesignOptions::cNoRunLimit);
constexpr unsigned char cWeakPriority = 24;
/// Candidates come from text files with six digits, and from planes that were cut in float: a run
/// that is off by this part of what is added up lies on the bound, and so is acceptable.
constexpr double cDigitsKept = 1e-5;

const OnionOptions* FamilyOptions(const DesignOptions& options) {
    return dynamic_cast<const OnionOptions*>(options.GetDesignSpecificOptions());
}

int CountOf(const Factors& factors) {
    return static_cast<int>(factors.GetDesignFactorCount());
}

/// 0 without layers.
int LayersOf(const DesignOptions& options) {
    const OnionOptions* family = FamilyOptions(options);
    return family != nullptr ? family->GetLayerCount() : 0;
}

// As Constraint::IsConstrained, but for the tolerance.
bool Keeps(std::span<const float> run, const NCDOE::Constraint& constraint) {
    double sum = 0;
    double size = std::fabs(constraint.value);
    for (const NCDOE::Constraint::Term& term : constraint.terms) {
        if (term.factor < 0 || static_cast<std::size_t>(term.factor) >= run.size()) {
            throw Exception(ExceptionMessage::translate("Constraint is out of bounds."));
        }
        const float setting = run[static_cast<std::size_t>(term.factor)];
        if (setting == NCDataMatrix<float>::cMissing) {
            return false;
        }
        const double part = static_cast<double>(setting) * term.coefficient;
        sum += part;
        size += std::fabs(part);
    }
    const double excess =
        constraint.greaterOrEqual ? constraint.value - sum : sum - constraint.value;
    return excess <= cDigitsKept * size;
}

// The nearest int.
int ToInt(long long number) {
    return static_cast<int>(std::clamp<long long>(
        number, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

// Runs that each layer may have for every term, over all layers. The centroid is not counted.
long long LayersServed(unsigned long long candidates, int terms) {
    const auto others = static_cast<long long>(candidates) - 1;
    return others / (2LL * terms) - (others < cFewCandidates ? 1 : 0);
}

bool HasModelOfObjective(const DesignOptions& options) {
    const EModel::Type model = options.GetModel();
    if (FamilyRules::IsResponseSurface(options.GetObjective())) {
        return model == EModel::Quadratic;
    }
    return !FamilyRules::IsScreening(options.GetObjective()) ||
           FamilyRules::IsLinearOrInteraction(model);
}

bool HasLegalFactors(const Factors& factors) {
    const unsigned int count = factors.GetDesignFactorCount();
    return count >= cMinFactors && count <= cMaxFactors && factors.GetQualitativeCount() == 0 &&
           factors.GetMultilevelCount() == 0 && factors.IsProcessOnly() && !factors.HasFiller();
}

}  // namespace

std::unique_ptr<NCDesign> OnionBuilder::Build(const Factors& factors,
                                              const DesignOptions& options,
                                              bool* cancel) const {
    if (!IsValid(factors, options)) {
        return nullptr;
    }
    DesignOptions searched = options;
    if (FamilyOptions(options) == nullptr) {
        auto family = GetDefaultDesignSpecificOptions(factors, options);
        // What the options of another family say of the region and its candidates holds here, too.
        if (const DesignSpecificOptions* given = options.GetDesignSpecificOptions()) {
            family->SetConstraints(given->GetConstraints(), factors);
            family->SetCandidateSet(given->GetCandidateSet());
        }
        searched.SetDesignSpecificOptions(std::move(family));
    }
    return std::make_unique<OnionDesign>(factors, searched, cancel);
}

EModel::Type OnionBuilder::GetDefaultModel(const Factors& factors,
                                           EObjective::Type objective) const {
    constexpr unsigned int cManyFactors = 6;
    switch (objective) {
        case EObjective::Screening:
            return factors.GetDesignFactorCountExpanded() < cManyFactors ? EModel::Interaction
                                                                         : EModel::Linear;
        case EObjective::Optimization:
        case EObjective::SystemCharacterization:
            return EModel::Quadratic;
        case EObjective::RobustnessVerification:
            return EModel::Linear;
        default:
            return EModel::None;
    }
}

unsigned int OnionBuilder::GetDefaultRuns(const Factors& factors,
                                          EObjective::Type objective) const {
    DesignOptions options(*this, factors);
    options.SetObjective(objective);
    options.SetModel(GetDefaultModel(factors, objective));
    const int layers = GetDefaultLayers(options, CountOf(factors));
    if (auto* family = dynamic_cast<OnionOptions*>(options.GetDesignSpecificOptions())) {
        family->SetLayers(layers, *this, factors, options);
    }
    return DefaultRuns(factors, options);
}

unsigned int OnionBuilder::GetDefaultRuns(const Factors& factors,
                                          const DesignOptions& options) const {
    return DefaultRuns(factors, options);
}

std::vector<unsigned int> OnionBuilder::GetLegalRuns(const Factors& factors,
                                                     const DesignOptions& options) const {
    const int layers = std::max(LayersOf(options), 1);
    if (layers == 1 && GetDefaultLayers(options, CountOf(factors)) < 1) {
        return {};
    }
    const EModel::Type model = options.GetModel() != EModel::None
                                   ? options.GetModel()
                                   : GetDefaultModel(factors, options.GetObjective());
    const int terms = GetDefaultNoModelTerms(model, CountOf(factors));
    long long high = 0;
    for (int layer = 1; layer <= layers && high < cMaxRuns; ++layer) {
        high += GetMaximumRunsPerLayer(options, terms, layer);
    }
    const auto others = static_cast<long long>(GetNumValidScores(options)) - 1;
    if (others > 0 && static_cast<double>(high) * cCandidatesPerRun > static_cast<double>(others)) {
        high = static_cast<long long>(static_cast<double>(others) / cCandidatesPerRun);
    }
    std::vector<unsigned int> legal;
    for (long long runs = GetMinimumRuns(factors, options);
         runs <= std::min<long long>(high, cMaxRuns);
         ++runs) {
        legal.push_back(static_cast<unsigned int>(runs));
    }
    return legal;
}

unsigned char OnionBuilder::GetPriority(const Factors& factors) const {
    const unsigned int count = factors.GetDesignFactorCountExpanded();
    return count >= cPriorityColumns ? cWeakPriority : GetTablePriority(EDesign::OnionDOpt, count);
}

bool OnionBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    if (!HasModelOfObjective(options) || !HasLegalFactors(factors)) {
        return false;
    }
    const int terms = GetDefaultNoModelTerms(options.GetModel(), CountOf(factors));
    if (GetMinimumRunsPerLayer(terms) > static_cast<long long>(options.GetMaxRuns())) {
        return false;
    }
    const unsigned long long candidates = GetNumValidScores(options);
    return candidates == 0 || (terms > 0 && LayersServed(candidates, terms) >= 2);
}

std::shared_ptr<DesignSpecificOptions> OnionBuilder::GetDefaultDesignSpecificOptions(
    const Factors& factors, const DesignOptions& options) const {
    return std::make_shared<OnionOptions>(*this, factors, options);
}

int OnionBuilder::GetMaximumRunsPerLayer(const DesignOptions& options, int terms, int layer) const {
    const int layers = std::max(LayersOf(options), 1);
    const unsigned long long candidates = GetNumValidScores(options);
    if (candidates == 1 || layer > layers) {
        return cMaxRuns;
    }
    const int most = ToInt(static_cast<long long>(terms) + cSpareRunsOfLayer);
    if (candidates == 0) {
        return most;  // nothing is known of the candidates
    }
    const auto others = static_cast<long long>(candidates) - 1;
    const long long ofLayer = others / layers + (layers - layer + 1 > others % layers ? 1 : 0);
    return most * cCandidatesPerRun > static_cast<double>(ofLayer)
               ? static_cast<int>(static_cast<double>(ofLayer) / cCandidatesPerRun)
               : most;
}

int OnionBuilder::GetRecommendedRunsPerLayer(unsigned int terms, bool first) const {
    return ToInt(static_cast<long long>(terms) + (first ? 1 : 3));
}

int OnionBuilder::GetMinimumRunsPerLayer(int terms) const {
    return ToInt(static_cast<long long>(terms) + 1);
}

int OnionBuilder::GetDefaultLayers(const DesignOptions& options, int factorCount) {
    const unsigned long long candidates = GetNumValidScores(options);
    if (candidates == 0) {
        return cUsualLayers;
    }
    const int terms = GetDefaultNoModelTerms(options.GetModel(), factorCount);
    const long long served = terms > 0 ? LayersServed(candidates, terms) : 0;
    return served < 2 ? 0 : static_cast<int>(std::min<long long>(served, cUsualLayers));
}

int OnionBuilder::GetDefaultNoModelTerms(EModel::Type model, int factorCount) {
    const long long factors = factorCount;
    const long long pairs = factors * (factors - 1) / 2;
    switch (model) {
        case EModel::Linear:
            return ToInt(factors + 1);
        case EModel::Interaction:
            return ToInt(1 + pairs + factors);
        case EModel::Quadratic:
            return ToInt(factors + 1 + pairs + factors);
        default:
            return 0;
    }
}

NCDataMatrix<float> OnionBuilder::GenerateCandidateset(int layer,
                                                       const DesignOptions& options,
                                                       const Factors& factors) {
    const OnionOptions* family = FamilyOptions(options);
    if (family == nullptr) {
        return {};
    }
    // Layers count from 0 here, as nowhere else.
    const LayerOption& layerOption = family->GetLayer(layer + 1);
    // Candidates are repeated until there are as many as runs.
    if (layerOption.Runs > NCDesign::cMaxFinishedRuns) {
        throw Exception(
            ExceptionMessage::translate("Layer {1} has {2} runs. It may have at most {3} runs.")
            << layer + 1 << layerOption.Runs << NCDesign::cMaxFinishedRuns);
    }
    const DesignOptions ofLayer = OnionLayers::MakeModelOptions(layerOption, factors, options);
    return DOpt::GenerateCandidateset(nullptr, factors, ofLayer, true, nullptr, nullptr, 0);
}

unsigned long long OnionBuilder::GetNumValidScores(const DesignOptions& options) {
    if (!FamilyRules::HasConstraints(options)) {
        return 0;
    }
    const DesignSpecificOptions& family = *options.GetDesignSpecificOptions();
    const auto& constraints = family.GetConstraints().GetConstraints();
    const CandidateSet& candidates = family.GetCandidateSet();
    unsigned long long count = 0;
    for (int row = 1; row <= candidates.SizeRows(); ++row) {
        const auto keeps = [run = candidates.RowSpan(row)](const NCDOE::Constraint& constraint) {
            return Keeps(run, constraint);
        };
        count += std::ranges::all_of(constraints, keeps) ? 1U : 0U;
    }
    return count;
}

int OnionBuilder::GetRecommendedRuns(const Factors& factors, const DesignOptions& options) const {
    const int count = CountOf(factors);
    const int own = LayersOf(options);
    const int layers = own > 0 ? own : GetDefaultLayers(options, count);
    if (layers < 1) {
        return 0;
    }
    const auto terms = [count](EModel::Type model) {
        return static_cast<unsigned int>(GetDefaultNoModelTerms(model, count));
    };
    return GetRecommendedRunsPerLayer(terms(options.GetModel()), false) +
           GetRecommendedRunsPerLayer(terms(EModel::Linear), true) * (layers - 1);
}

int OnionBuilder::GetMinimumRuns(const Factors& factors, const DesignOptions& options) const {
    const int count = CountOf(factors);
    int layers = std::max(LayersOf(options), 1);
    if (layers == 1) {
        layers = GetDefaultLayers(options, count);
    }
    if (layers < 1) {
        return 0;
    }
    const auto least = [&](EModel::Type model) {
        return GetMinimumRunsPerLayer(GetDefaultNoModelTerms(model, count));
    };
    const EModel::Type model = options.GetModel();
    const bool full =
        model == EModel::Interaction ||
        (model == EModel::Quadratic && FamilyRules::IsResponseSurface(options.GetObjective()));
    return least(full ? model : EModel::Linear) + (layers - 1) * least(EModel::Linear);
}

unsigned int OnionBuilder::DefaultRuns(const Factors& factors, const DesignOptions& options) const {
    const long long recommended = GetRecommendedRuns(factors, options);
    const long long limit = options.GetMaxRuns();
    if (limit == 0) {
        return static_cast<unsigned int>(recommended);
    }
    const long long spare = GetDefaultDF(options.GetObjective());
    const long long runs = std::min(limit, recommended);
    // Deliberate: a limit below the fewest runs gives these, and the design is not valid.
    const long long least = GetMinimumRuns(factors, options);
    return static_cast<unsigned int>(
        limit - runs >= spare ? runs : limit - std::min(limit - least, spare));
}
