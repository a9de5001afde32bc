#include "host/Proposals.h"

#include <fmt/format.h>

#include <algorithm>
#include <climits>

#include "host/FactorCountView.h"
#include "host/FactorTypesView.h"
#include "host/HostError.h"
#include "host/Interrupt.h"
#include "host/JsonPlace.h"

namespace {

// The engine's tables of families end here; with more factors nothing new becomes valid.
constexpr unsigned int cMostCountsTried = 48;
// A design that needs more factors than the study has needs only some more.
constexpr unsigned int cMostFactorsAdded = 3;

// Carries constraints to a family that has no options of its own. Final, since the base has no
// virtual destructor.
class ConstraintsAlone final : public DesignSpecificOptions {};

EModel::Type ProcessModel(const DesignBuilder& builder, const Conditions& conditions) {
    return conditions.model ? *conditions.model
                            : builder.GetDefaultProcessModel(
                                  *conditions.factors, conditions.objective, conditions.maxRuns);
}

EModel::Type MixtureModel(const DesignBuilder& builder, const Conditions& conditions) {
    return conditions.model ? *conditions.model
                            : builder.GetDefaultMixtureModel(
                                  *conditions.factors, conditions.objective, conditions.maxRuns);
}

bool AllowsCenterPoints(const DesignBuilder& builder, unsigned int count) {
    return count >= builder.GetMinimumCenterPoints() &&
           (count == 0 || builder.IsCenterPointsAllowed());
}

std::optional<Proposal> ProposeOne(const BuilderHandle& builder, const Conditions& conditions) {
    if (conditions.centerPoints && !AllowsCenterPoints(*builder, *conditions.centerPoints)) {
        return std::nullopt;
    }
    Proposal proposal{builder, MakeOptions(*builder, conditions), 0, {}, {}};
    const Factors& factors = *conditions.factors;
    if (!KeepsRunLimit(proposal.options) || !KeepsConstraints(*builder, conditions) ||
        !builder->IsValid(factors, proposal.options, false, false)) {
        return std::nullopt;
    }
    proposal.priority = builder->GetPriority(factors);
    proposal.legalRuns = builder->GetLegalRuns(factors, proposal.options);
    proposal.legalBlocks = builder->GetLegalBlocks(factors, proposal.options, false);
    return proposal;
}

// The names of the valid designs, the strongest few of them.
std::string NamesOf(const std::vector<Proposal>& proposals) {
    constexpr std::size_t cMostNamed = 3;
    std::vector<std::string> names;
    for (std::size_t i = 0; i < std::min(proposals.size(), cMostNamed); ++i) {
        names.push_back(proposals[i].builder->GetShortString());
    }
    return proposals.size() > cMostNamed ? ListOf(names, "or") + " and others"
                                         : ListOf(names, "or");
}

class ObstacleSearch {
  public:
    ObstacleSearch(const Conditions& conditions, const std::vector<BuilderHandle>& builders)
        : conditions_(conditions), builders_(builders) {}

    std::vector<std::string> Find() {
        TryObjectives();
        TryModels();
        TryRunLimit();
        TryConstraints();
        TryCenterPoints();
        // A smaller count would only cut off the factors whose type is in the way.
        if (!TryMoreCommonTypes()) {
            TryFactorCounts();
        }
        if (obstacles_.empty()) {
            TryRarerTypes();
        }
        if (obstacles_.empty()) {
            obstacles_.emplace_back(
                "no single change of the objective, the model, the factor types, the factor count, "
                "the run limit or the constraints makes a design valid; several conditions "
                "together "
                "stand in the way");
        }
        return obstacles_;
    }

  private:
    void TryObjectives() {
        for (const auto objective : {EObjective::Screening,
                                     EObjective::Optimization,
                                     EObjective::RobustnessVerification,
                                     EObjective::SystemCharacterization}) {
            Conditions other = conditions_;
            other.objective = objective;
            const auto found = Propose(other, builders_);
            if (objective != conditions_.objective && !found.empty()) {
                Add(R"(objective: no design fits "{}"; with "{}" there is {})",
                    EObjective::ToJson(conditions_.objective).get_string(),
                    EObjective::ToJson(objective).get_string(),
                    NamesOf(found));
                return;
            }
        }
    }

    void TryModels() {
        if (!conditions_.model) {
            return;
        }
        Conditions other = conditions_;
        other.model.reset();
        const auto found = Propose(other, builders_);
        if (!found.empty()) {
            Add(R"(model: no design supports "{}"; with "{}" there is {})",
                EModel::ToJson(*conditions_.model).get_string(),
                EModel::ToJson(found.front().options.GetModel()).get_string(),
                NamesOf(found));
        }
    }

    void TryRunLimit() {
        if (conditions_.maxRuns == DesignOptions::cNoRunLimit) {
            return;
        }
        Conditions other = conditions_;
        other.maxRuns = DesignOptions::cNoRunLimit;
        const auto found = Propose(other, builders_);
        if (!found.empty()) {
            const auto smallest =
                std::min_element(found.begin(), found.end(), [](const auto& a, const auto& b) {
                    return a.options.GetRuns() < b.options.GetRuns();
                });
            Add("run limit: no design fits into {} runs with its centre points; {} has {} runs",
                conditions_.maxRuns,
                smallest->builder->GetShortString(),
                smallest->options.GetRuns());
        }
    }

    void TryConstraints() {
        if (conditions_.constraints.IsEmpty()) {
            return;
        }
        Conditions other = conditions_;
        other.constraints = NCDOE::Constraints();
        const auto found = Propose(other, builders_);
        if (!found.empty()) {
            Add("constraints: no design takes them; without them there is {}", NamesOf(found));
        }
    }

    void TryCenterPoints() {
        if (!conditions_.centerPoints) {
            return;
        }
        Conditions other = conditions_;
        other.centerPoints.reset();
        const auto found = Propose(other, builders_);
        if (!found.empty()) {
            Add("centre points: no design takes {}; {} takes {}",
                *conditions_.centerPoints,
                found.front().builder->GetShortString(),
                found.front().options.GetCenterPoints());
        }
    }

    // What would be valid if the factors were of the types that most designs take.
    bool TryMoreCommonTypes() {
        const Factors& factors = *conditions_.factors;
        const bool hasLevels = factors.GetQualitativeCount() + factors.GetMultilevelCount() > 0;
        return (hasLevels &&
                TryTypes(
                    [&](int factor) {
                        const CEType::EType type = factors.GetFactorType(factor);
                        return type == CEType::Multilevel || type == CEType::Qualitative;
                    },
                    CEType::Quantitative,
                    "factor types: no design takes level factors with these numbers of levels; if "
                    "they were quantitative, there would be {}")) ||
               (factors.IsMixtureOnly() &&
                TryTypes([](int) { return true; },
                         CEType::Formulation,
                         "mixture ranges: no design takes the region that they leave, which is no "
                         "simplex; with 0 to 1 for every component there is {}")) ||
               (!factors.IsProcessOnly() &&
                TryTypes([](int) { return true; },
                         CEType::Quantitative,
                         "factor types: no design takes formulation factors; if all factors were "
                         "quantitative, there would be {}"));
    }

    // The last resort, since few designs take nothing but these.
    void TryRarerTypes() {
        const Factors& factors = *conditions_.factors;
        const int last = static_cast<int>(factors.GetDesignFactorCount()) - 1;
        if (!factors.IsMixtureOnly() &&
            TryTypes([](int) { return true; },
                     CEType::Formulation,
                     "factor types: no design takes process factors; if all factors were "
                     "formulation factors, there would be {}")) {
            return;
        }
        static_cast<void>(
            TryTypes([last](int factor) { return factor == last; },
                     CEType::Qualitative,
                     "factor types: no design takes these alone; with three levels of "
                     "the last factor there would be {}"));
    }

    template <class Changes>
    bool TryTypes(const Changes& changes, CEType::EType type, std::string_view pattern) {
        std::vector<std::optional<CEType::EType>> types(
            conditions_.factors->GetDesignFactorCount());
        for (std::size_t factor = 0; factor < types.size(); ++factor) {
            if (changes(static_cast<int>(factor))) {
                types[factor] = type;
            }
        }
        const FactorTypesView view(*conditions_.factors, types);
        Conditions other = conditions_;
        other.factors = &view;
        const auto found = Propose(other, builders_);
        if (!found.empty()) {
            Add(pattern, NamesOf(found));
        }
        return !found.empty();
    }

    void TryFactorCounts() {
        const unsigned int count = conditions_.factors->GetDesignFactorCount();
        for (unsigned int fewer = std::min(count - 1, cMostCountsTried); fewer > 0; --fewer) {
            if (TryFactorCount(fewer, "factor count: {} is too many; there is {} for {}")) {
                return;
            }
        }
        for (unsigned int more = count + 1; more <= count + cMostFactorsAdded; ++more) {
            if (TryFactorCount(more, "factor count: {} is too few; there is {} for {}")) {
                return;
            }
        }
    }

    bool TryFactorCount(unsigned int count, std::string_view pattern) {
        const FactorCountView view(*conditions_.factors, count);
        Conditions other = conditions_;
        other.factors = &view;
        const bool namesMissing = std::any_of(
            other.constraints.GetConstraints().begin(),
            other.constraints.GetConstraints().end(),
            [count](const auto& constraint) {
                return std::any_of(
                    constraint.terms.begin(), constraint.terms.end(), [count](const auto& term) {
                        return term.factor >= static_cast<int>(count);
                    });
            });
        if (namesMissing) {
            return false;
        }
        const auto found = Propose(other, builders_);
        if (!found.empty()) {
            Add(pattern, conditions_.factors->GetDesignFactorCount(), NamesOf(found), count);
        }
        return !found.empty();
    }

    template <class... Arguments>
    void Add(std::string_view pattern, const Arguments&... arguments) {
        obstacles_.push_back(fmt::vformat(pattern, fmt::make_format_args(arguments...)));
    }

    const Conditions& conditions_;
    const std::vector<BuilderHandle>& builders_;
    std::vector<std::string> obstacles_;
};

}  // namespace

Conditions ConditionsOf(const Study& study) {
    Conditions conditions;
    conditions.factors = &study.factors;
    conditions.constraints = study.constraints;
    conditions.objective = study.objective;
    conditions.model = study.model;
    conditions.maxRuns = study.MaxRuns();
    if (study.options.has_child("centerPoints")) {
        conditions.centerPoints =
            static_cast<unsigned int>(study.options.get_child("centerPoints").get_integer());
    }
    return conditions;
}

DesignOptions MakeOptions(const DesignBuilder& builder, const Conditions& conditions) {
    DesignOptions options(builder,
                          *conditions.factors,
                          conditions.objective,
                          ProcessModel(builder, conditions),
                          MixtureModel(builder, conditions),
                          conditions.maxRuns);
    if (conditions.centerPoints) {
        options.SetCenterPoints(*conditions.centerPoints);
    }
    if (!conditions.constraints.IsEmpty()) {
        if (options.GetDesignSpecificOptions() == nullptr) {
            options.SetDesignSpecificOptions(std::make_shared<ConstraintsAlone>());
        }
        options.GetDesignSpecificOptions()->SetConstraints(conditions.constraints,
                                                           *conditions.factors);
    }
    return options;
}

bool KeepsRunLimit(const DesignOptions& options) {
    return options.GetMaxRuns() == DesignOptions::cNoRunLimit ||
           options.GetRuns() + options.GetCenterPoints() <= options.GetMaxRuns();
}

bool KeepsConstraints(const DesignBuilder& builder, const Conditions& conditions) {
    return conditions.constraints.IsEmpty() || builder.IsDesign() != EDesign::DefinitiveScreening;
}

std::vector<Proposal> Propose(const Conditions& conditions,
                              const std::vector<BuilderHandle>& builders) {
    std::vector<Proposal> proposals;
    for (const BuilderHandle& builder : builders) {
        Interrupt::ThrowIfRequested();
        try {
            if (auto proposal = ProposeOne(builder, conditions)) {
                proposals.push_back(std::move(*proposal));
            }
        } catch (const Exception&) {
            // A family that raises an error over the factors has no design for them; the others
            // may have one.
            continue;
        }
    }
    std::stable_sort(proposals.begin(), proposals.end(), [](const auto& a, const auto& b) {
        const auto strength = [](const Proposal& proposal) {
            return proposal.priority == 0 ? UINT_MAX : proposal.priority;
        };
        return strength(a) < strength(b);
    });
    return proposals;
}

std::vector<Proposal> Propose(const Conditions& conditions) {
    return Propose(conditions, AllDesigns::ClassicDesigns().GetAllDesigns());
}

std::vector<std::string> FindObstacles(const Conditions& conditions,
                                       const std::vector<BuilderHandle>& builders) {
    return ObstacleSearch(conditions, builders).Find();
}

void ThrowNoValidDesign(const std::string& what,
                        const Conditions& conditions,
                        const std::vector<BuilderHandle>& builders) {
    std::string text = what;
    for (const std::string& obstacle : FindObstacles(conditions, builders)) {
        text += "\n  " + obstacle;
    }
    throw NoValidDesign(text);
}

std::string CountsText(const std::vector<long long>& counts) {
    std::vector<std::string> parts;
    for (std::size_t i = 0; i < counts.size();) {
        std::size_t end = i;
        while (end + 1 < counts.size() && counts[end + 1] == counts[end] + 1) {
            ++end;
        }
        // Two neighbours are shorter as two numbers.
        if (end > i + 1) {
            parts.push_back(fmt::format("{} to {}", counts[i], counts[end]));
            i = end + 1;
        } else {
            parts.push_back(fmt::format("{}", counts[i]));
            ++i;
        }
    }
    return ListOf(parts, "and");
}
