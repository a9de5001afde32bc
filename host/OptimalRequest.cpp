#include "host/OptimalRequest.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "host/CandidateFile.h"
#include "host/HostError.h"
#include "host/JsonPlace.h"
#include "host/RunsFile.h"

using SearchLimits::cMostRepetitions;
using SearchLimits::cMostRunRange;

namespace {

// Cells of a candidate set that is made here.
constexpr unsigned int cMostCandidateCells = 10'000'000;

constexpr std::array<std::pair<const char*, EDesign::DOptimalSelectBy>, 4> cFigures{
    {{"g-efficiency", EDesign::GEfficiency},
     {"condition-number", EDesign::ConditionNumber},
     {"log-determinant", EDesign::LogDeterminant},
     {"i-optimality", EDesign::IOptimality}}};

D_OptimalOptions& FamilyOptions(DesignOptions& options) {
    return dynamic_cast<D_OptimalOptions&>(*options.GetDesignSpecificOptions());
}

int CountIn(long long count, long long least, long long most, const char* option) {
    if (count < least || count > most) {
        FailWith(fmt::format(
            "{}: {} must be a whole number from {} to {}.", option, count, least, most));
    }
    return static_cast<int>(count);
}

EDesign::DOptimalSelectBy FigureOf(const std::string& name) {
    std::vector<std::string> names;
    names.reserve(cFigures.size());
    for (const auto& [known, figure] : cFigures) {
        if (EqualsIgnoringCase(known, name)) {
            return figure;
        }
        names.emplace_back(known);
    }
    FailWith(fmt::format("--select-by: {} is no figure to select by; allowed are {}.",
                         Quoted(name),
                         ListOf(names, "and")));
}

std::vector<std::string> QualitativeNames(const StudyFactors& factors) {
    std::vector<std::string> names;
    for (const StudyFactor& factor : factors.All()) {
        if (factor.type == CEType::Qualitative) {
            names.push_back(Quoted(factor.name));
        }
    }
    return names;
}

int BalanceFactor(const std::string& name, const StudyFactors& factors) {
    const int factor = factors.Find(name);
    if (factor >= 0 && factors.GetFactorType(factor) == CEType::Qualitative) {
        return factor;
    }
    const std::vector<std::string> allowed = QualitativeNames(factors);
    const std::string problem =
        factor < 0 ? "is no factor of the study"
                   : fmt::format("is {}; only the levels of a qualitative factor are balanced",
                                 CEType::GetString(factors.GetFactorType(factor)));
    FailWith(fmt::format("--balance-on: {} {}; allowed: {}.",
                         Quoted(name),
                         problem,
                         allowed.empty() ? "none" : ListOf(allowed, "and")));
}

void ApplySearch(const OptimalRequest& request,
                 const StudyFactors& factors,
                 DesignOptions& options) {
    D_OptimalOptions& family = FamilyOptions(options);
    ApplySearchSettings(request, family);
    if (!request.balanceOn.empty()) {
        family.SetBalanceOnFactor(BalanceFactor(request.balanceOn, factors));
    }
    if (request.onlyBalanced) {
        if (family.GetBalanceOnFactor() < 0) {
            FailWith("--only-balanced: the study has no qualitative factor to balance on.");
        }
        family.SetOnlyAllowBalanced(true);
    }
    if (request.noPotentialTerms) {
        family.SetUsePotentialTerms(false);
    }
}

// Whether the model has that power or a higher one of a factor that is no part of a mixture.
bool HasProcessPower(const ModelTermsText::Terms& terms, const Study& study, long power) {
    return std::ranges::any_of(terms, [&study, power](const std::vector<int>& term) {
        return std::ranges::any_of(term, [&](int factor) {
            return std::ranges::count(term, factor) >= power &&
                   (study.factors.GetFactorType(factor) != CEType::Formulation ||
                    !study.factors.IsMixture());
        });
    });
}

// Candidates that can tell squares, and cubes, too: those of the objective may hold the ends of the
// ranges and one centre only, where all squares are the same, or three settings.
CandidateSet CurvedCandidates(const Study& study, const DesignOptions& options) {
    auto family = std::make_shared<D_OptimalOptions>(
        dynamic_cast<const D_OptimalOptions&>(*options.GetDesignSpecificOptions()));
    family->SetUsePotentialTerms(true);
    DesignOptions curved = options;
    curved.SetModel(EModel::Quadratic);
    curved.SetDesignSpecificOptions(family);
    DOpt::NumData counts;
    const NCDataMatrix<float> rows = DOpt::GenerateCandidateset(
        nullptr, study.factors, curved, false, &counts, nullptr, cMostCandidateCells);
    CandidateSet candidates;
    candidates.SetCandidateSet(rows, counts);
    return candidates;
}

// The runs that the engine would give a model of that many terms by default.
unsigned int DefaultRuns(const Study& study,
                         const DesignBuilder& builder,
                         const DesignOptions& options) {
    const auto& optimal = dynamic_cast<const D_OptimalBuilder&>(builder);
    const unsigned int columns = optimal.MinimumRuns(study.factors, options) - 1;
    const unsigned int wanted = columns + DesignBuilder::GetDefaultDF(options.GetObjective());
    const std::vector<unsigned int> legal = builder.GetLegalRuns(study.factors, options);
    const auto found = std::ranges::lower_bound(legal, wanted);
    if (found != legal.end()) {
        return *found;
    }
    return legal.empty() ? wanted : legal.back();
}

void ApplyTerms(const GivenTerms& given,
                const Study& study,
                const DesignBuilder& builder,
                DesignOptions& options) {
    D_OptimalOptions& family = FamilyOptions(options);
    const ModelTermsText::Terms terms =
        ModelTermsText::Read(given.text, study, static_cast<int>(options.GetBlocks()), given.place);
    family.SetModel(terms);
    if (study.factors.IsMixture()) {
        family.SetDOptMixtureModel(MixtureModelFor(terms, study.factors));
    }
    const bool screens = options.GetObjective() == EObjective::Screening ||
                         options.GetObjective() == EObjective::RobustnessVerification;
    const bool isCurved = (screens && HasProcessPower(terms, study, 2)) ||
                          (!family.GetUsePotentialTerms() && HasProcessPower(terms, study, 3));
    if (isCurved && family.GetNewCandidateSet()) {
        family.SetCandidateSet(CurvedCandidates(study, options));
        family.SetNewCandidateSet(false);
    }
    options.SetRuns(DefaultRuns(study, builder, options));
}

void ApplyCandidates(const std::string& path, const Study& study, DesignOptions& options) {
    D_OptimalOptions& family = FamilyOptions(options);
    family.SetCandidateSet(
        ReadFittingCandidates(path, study, static_cast<int>(options.GetBlocks())));
    family.SetNewCandidateSet(false);
}

// Returns what the user should know about the file.
std::vector<std::string> ApplyInclusions(const std::string& path,
                                         const Study& study,
                                         DesignOptions& options) {
    const RunsFile file = ReadRunsFile(path, study, static_cast<int>(options.GetBlocks()));
    D_OptimalOptions& family = FamilyOptions(options);
    family.SetInclusions(file.matrix, study.factors);
    family.SetUseInclusion(true);
    std::vector<std::string> notes;
    notes.reserve(file.notes.size());
    for (const std::string& note : file.notes) {
        notes.push_back(fmt::format("{}: {}", path, note));
    }
    return notes;
}

// A reduced combinatorial design is searched for as well, but not among candidates.
void RequireOptionOfEverySearch(std::string_view option) {
    constexpr std::array<std::string_view, 5> cOfEverySearch{
        "--repetitions", "--run-range", "--select-by", "--model-terms", "--select"};
    if (std::ranges::find(cOfEverySearch, option) == cOfEverySearch.end()) {
        FailWith(
            fmt::format("{}: the design J2 is not picked from candidates; only DOpt is.", option));
    }
}

}  // namespace

EModel::Type MixtureModelFor(const ModelTermsText::Terms& terms, const StudyFactors& factors) {
    std::size_t degree = 1;
    for (const std::vector<int>& term : terms) {
        const auto shares = std::ranges::count_if(term, [&factors](int factor) {
            return factor < static_cast<int>(factors.All().size()) &&
                   factors.GetFactorType(factor) == CEType::Formulation;
        });
        degree = std::max(degree, static_cast<std::size_t>(shares));
    }
    constexpr std::array<EModel::Type, 3> cByDegree{
        EModel::Linear, EModel::Quadratic, EModel::Cubic};
    return cByDegree[std::min(degree, cByDegree.size()) - 1];
}

CandidateSet ReadFittingCandidates(const std::string& path, const Study& study, int blocks) {
    Study blocked = study;
    blocked.options.put_child("blocks") = blocks;
    CandidateFile file = ReadCandidateFile(path, blocked);
    if (file.misfits > 0) {
        FailWith(fmt::format("{}: {} of {} candidates lie outside the study; {}.",
                             path,
                             file.misfits,
                             file.set.SizeRows(),
                             file.firstMisfit));
    }
    return std::move(file.set);
}

void ApplySearchSettings(const OptimalRequest& request, D_OptimalOptions& family) {
    if (request.repetitions) {
        family.SetRepetitions(CountIn(*request.repetitions, 1, cMostRepetitions, "--repetitions"));
    }
    if (request.runRange) {
        family.SetRunRange(CountIn(*request.runRange, 0, cMostRunRange, "--run-range"));
    }
    if (!request.selectBy.empty()) {
        family.SetSelectDesignBy(FigureOf(request.selectBy));
    }
}

bool IsDOptimal(const DesignBuilder& builder) {
    return builder.IsDesign() == EDesign::DOpt;
}

void RequireOptimalDesign(const OptimalRequest& request, const DesignBuilder& builder) {
    if (IsDOptimal(builder)) {
        return;
    }
    const std::array<std::pair<const char*, bool>, 10> given{
        {{"--repetitions", request.repetitions.has_value()},
         {"--run-range", request.runRange.has_value()},
         {"--select-by", !request.selectBy.empty()},
         {"--inclusions", !request.inclusions.empty()},
         {"--candidates", !request.candidates.empty() && !request.candidatesAreForAnyDesign},
         {"--model-terms", request.modelTerms.has_value() && !request.termsAreForAnyDesign},
         {"--balance-on", !request.balanceOn.empty()},
         {"--only-balanced", request.onlyBalanced},
         {"--no-potential-terms", request.noPotentialTerms},
         {"--select", request.select.has_value()}}};
    for (const auto& [option, isGiven] : given) {
        if (isGiven && EDesign::IsJ2(builder.IsDesign())) {
            RequireOptionOfEverySearch(option);
        } else if (isGiven) {
            FailWith(fmt::format("{}: the design {} is not searched for; only DOpt and J2 are.",
                                 option,
                                 builder.GetShortString()));
        }
    }
}

std::optional<GivenTerms> TermsGiven(const std::optional<std::string>& requested,
                                     const Study& study) {
    if (requested) {
        return GivenTerms{"--model-terms", *requested};
    }
    if (study.options.has_child("modelTerms")) {
        return GivenTerms{study.file + ": options.modelTerms",
                          study.options.get_child("modelTerms").get_string()};
    }
    return std::nullopt;
}

std::vector<std::string> ApplyOptimalRequest(const OptimalRequest& request,
                                             const Study& study,
                                             const DesignBuilder& builder,
                                             DesignOptions& options) {
    std::vector<std::string> notes;
    RequireSound(FamilyOptions(options),
                 study.factors,
                 options.GetBlocks(),
                 study.file + ": options.designSpecificOptions");
    ApplySearch(request, study.factors, options);
    if (!request.candidates.empty()) {
        ApplyCandidates(request.candidates, study, options);
    }
    if (!request.inclusions.empty()) {
        notes = ApplyInclusions(request.inclusions, study, options);
    }
    if (const auto given = TermsGiven(request.modelTerms, study)) {
        ApplyTerms(*given, study, builder, options);
    }
    return notes;
}

void RequireSound(const D_OptimalOptions& family,
                  const StudyFactors& factors,
                  unsigned int blocks,
                  const std::string& place) {
    const int count = static_cast<int>(factors.All().size());
    const auto require = [&place](bool isSound, const char* name, auto value) {
        if (!isSound) {
            FailWith(fmt::format("{}: {}: {} is out of range.", place, name, value));
        }
    };
    const int balance = family.GetBalanceOnFactor();
    require(balance == -1 || (balance >= 0 && balance < count &&
                              factors.GetFactorType(balance) == CEType::Qualitative),
            "the number of the factor to balance on",
            balance);
    require(
        family.GetRepetitions() >= 1 && family.GetRepetitions() <= SearchLimits::cMostRepetitions,
        "repetitions",
        family.GetRepetitions());
    require(family.GetRunRange() >= 0 && family.GetRunRange() <= SearchLimits::cMostRunRange,
            "the run range",
            family.GetRunRange());
    DesignOptions blocked;
    blocked.SetBlocks(blocks);
    const int last = blocks > 1 ? count : count - 1;
    for (const std::vector<int>& term : family.GetModel(EDesign::DOpt, factors, blocked)) {
        for (const int factor : term) {
            require(factor >= 0 && factor <= last, "the factor of a model term", factor);
        }
    }
}

EModel::Type SearchedModel(const DesignOptions& options) {
    switch (options.GetModel() == EModel::None ? EObjective::None : options.GetObjective()) {
        case EObjective::Screening:
        case EObjective::RobustnessVerification:
            return EModel::Linear;
        case EObjective::Optimization:
        case EObjective::SystemCharacterization:
            return EModel::Quadratic;
        default:
            return options.GetModel();
    }
}

void RequireSearchable(const DesignOptions& options) {
    const auto* family = dynamic_cast<const D_OptimalOptions*>(options.GetDesignSpecificOptions());
    if (family == nullptr || !family->GetUseInclusion()) {
        return;
    }
    const long long inclusions = family->GetInclusions().SizeRows();
    const long long most = static_cast<long long>(options.GetRuns()) + family->GetRunRange();
    if (inclusions >= most) {
        FailWith(
            fmt::format("--inclusions: {} runs leave no room in a design of {} runs; ask for more "
                        "by --runs.",
                        inclusions,
                        most));
    }
}
