#include "host/DesignMaker.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/CombinatorialRequest.h"
#include "host/CombinatorialResults.h"
#include "host/FoldOver.h"
#include "host/GeneratorText.h"
#include "host/HostError.h"
#include "host/Interrupt.h"
#include "host/JsonPlace.h"
#include "host/OptimalResults.h"
#include "host/Proposals.h"

namespace {

// The engine's status of a search that the user stopped.
constexpr int cUserBreak = 6011;
// More blocks than a D-optimal design can have; the legal ones are told later.
constexpr unsigned int cMostBlocksOfAModel = 10;

// A count that the user gave, and where.
struct Given {
    std::string place;  // "--runs" or "study.json: options.runs"
    long long count = 0;
};

std::optional<Given> GivenCount(const std::optional<long long>& requested,
                                std::string_view option,
                                const Study& study,
                                std::string_view member) {
    if (requested) {
        if (*requested < 0 || *requested > StudyLimits::cMaxRuns) {
            FailWith(fmt::format("{}: {} must be a whole number from 0 to {}.",
                                 option,
                                 *requested,
                                 StudyLimits::cMaxRuns));
        }
        return Given{std::string(option), *requested};
    }
    if (study.options.has_child(member)) {
        return Given{fmt::format("{}: options.{}", study.file, member),
                     study.options.get_child(member).get_integer()};
    }
    return std::nullopt;
}

unsigned int CountOf(const Given& given) {
    return static_cast<unsigned int>(given.count);
}

BuilderHandle NamedBuilder(const std::string& name) {
    BuilderHandle builder = FindBuilder(name);
    if (!builder) {
        FailWith(fmt::format("--design: {} is no design; known are {}.",
                             Quoted(name),
                             ListOf(AllDesignNames(), "and")));
    }
    return builder;
}

BuilderHandle StrongestBuilder(const Study& study, const Conditions& conditions) {
    std::vector<Proposal> proposals = Propose(conditions);
    if (proposals.empty()) {
        ThrowNoValidDesign(fmt::format("{}: no design is valid for this study.", study.file),
                           conditions,
                           AllDesigns::ClassicDesigns().GetAllDesigns());
    }
    return proposals.front().builder;
}

// Layers have no JSON form.
json_value JsonOf(const DesignOptions& options) {
    DesignOptions plain = options;
    if (dynamic_cast<const OnionOptions*>(options.GetDesignSpecificOptions()) != nullptr) {
        plain.SetDesignSpecificOptions(nullptr);
    }
    return plain.ToJson();
}

// The study's members over those of the family, for a family that has options of its own.
json_value SpecificOptions(const DesignOptions& options,
                           const DesignBuilder& builder,
                           const JsonPlace& place) {
    const json_value all = JsonOf(options);
    const bool has = all.has_child("designSpecificOptions") &&
                     all.get_child("designSpecificOptions").is_object();
    if (!has) {
        place.Fail(fmt::format("the design {} has no options of its own.",
                               Quoted(builder.GetShortString())));
    }
    json_value merged = all.get_child("designSpecificOptions");
    std::vector<std::string_view> known;
    for (unsigned long long i = 0; i < merged.get_length(); ++i) {
        known.push_back(all.get_child("designSpecificOptions").get_child_name(i));
    }
    place.RequireMembers(known);
    for (unsigned long long i = 0; i < place.Value().get_length(); ++i) {
        merged.put_child(place.Value().get_child_name(i)) = place.Value().get_child(i);
    }
    return merged;
}

// Reads the study's options over the family's defaults. The family's own options are touched only
// where the study names them, since nothing else needs their JSON form.
void OverlayStudyOptions(DesignOptions& options, const DesignBuilder& builder, const Study& study) {
    json_value root = json_value::make_object();
    root.put_child("options") = study.options;
    const JsonPlace place = JsonPlace(root, study.file).Member("options");
    json_value overlaid = json_value::make_object();
    const json_value defaults = JsonOf(options);
    for (unsigned long long i = 0; i < defaults.get_length(); ++i) {
        const std::string& name = defaults.get_child_name(i);
        if (name != "designSpecificOptions" && name != "generators") {
            overlaid.put_child(name) = defaults.get_child(i);
        }
    }
    for (unsigned long long i = 0; i < study.options.get_length(); ++i) {
        const std::string& name = study.options.get_child_name(i);
        // Centre points are set already; whether the others are legal depends on all the rest, so
        // they are set last.
        if (name == "centerPoints" || name == "runs" || name == "blocks" || name == "generators" ||
            name == "modelTerms") {
            continue;
        }
        overlaid.put_child(name) = name == "designSpecificOptions"
                                       ? SpecificOptions(options, builder, place.Member(name))
                                       : study.options.get_child(i);
    }
    try {
        options.FromJson(overlaid);
    } catch (const Exception& exception) {
        place.Fail(exception.what());
    } catch (const InvalidOperationException& exception) {
        // A member of the family's own options is of another kind than the family reads.
        place.Fail(exception.what());
    }
}

template <class Count>
void RequireLegal(const Given& given,
                  const std::vector<Count>& legal,
                  const DesignBuilder& builder,
                  std::string_view what) {
    const std::vector<long long> counts(legal.begin(), legal.end());
    if (std::find(counts.begin(), counts.end(), given.count) == counts.end()) {
        FailWith(fmt::format("{}: {} cannot have {} {}; allowed: {}.",
                             given.place,
                             builder.GetShortString(),
                             given.count,
                             what,
                             counts.empty() ? "none" : CountsText(counts)));
    }
}

void RequireCenterPoints(const Given& given, const DesignBuilder& builder) {
    if (given.count > 0 && !builder.IsCenterPointsAllowed()) {
        FailWith(fmt::format(
            "{}: {} takes no centre points; allowed: 0.", given.place, builder.GetShortString()));
    }
    if (given.count < static_cast<long long>(builder.GetMinimumCenterPoints())) {
        FailWith(fmt::format("{}: {} needs centre points; allowed: {} or more.",
                             given.place,
                             builder.GetShortString(),
                             builder.GetMinimumCenterPoints()));
    }
}

// Generators that the user gave, and where.
struct GivenGenerators {
    std::string place;
    Generators generators;
};

std::optional<GivenGenerators> ReadGenerators(const Study& study, const DesignRequest& request) {
    const int factorCount = static_cast<int>(study.factors.GetDesignFactorCount());
    if (request.generators) {
        const std::string place = "--generators";
        return GivenGenerators{place, GeneratorText::Read(*request.generators, factorCount, place)};
    }
    if (!study.options.has_child("generators")) {
        return std::nullopt;
    }
    const json_value& value = study.options.get_child("generators");
    const std::string place = study.file + ": options.generators";
    return GivenGenerators{place,
                           value.is_string()
                               ? GeneratorText::Read(value.get_string(), factorCount, place)
                               : GeneratorText::FromJson(value, place)};
}

void RequireGeneratorsTaken(const std::optional<GivenGenerators>& given,
                            const DesignBuilder& builder) {
    if (!given || GeneratorText::TakesGenerators(builder)) {
        return;
    }
    std::vector<std::string> takers;
    for (const BuilderHandle& other : AllDesigns::AllPossibleDesigns().GetAllDesigns()) {
        if (GeneratorText::TakesGenerators(*other)) {
            takers.push_back(other->GetShortString());
        }
    }
    FailWith(fmt::format("{}: the design {} takes no generators; those that do are {}.",
                         given->place,
                         builder.GetShortString(),
                         ListOf(takers, "and")));
}

// Runs and blocks that the generators make unless the user says otherwise.
std::optional<Given> CountOrGenerated(std::optional<Given> count,
                                      const std::optional<GivenGenerators>& generators,
                                      long long generated) {
    return count || !generators ? std::move(count) : Given{generators->place, generated};
}

void SetRunsAndBlocks(DesignOptions& options,
                      const DesignBuilder& builder,
                      const Study& study,
                      const DesignRequest& request) {
    const Factors& factors = study.factors;
    const std::optional<GivenGenerators> generators = ReadGenerators(study, request);
    RequireGeneratorsTaken(generators, builder);
    const long long generatedRuns =
        generators ? GeneratorText::RunsOf(generators->generators, builder, factors) : 0;
    const long long generatedBlocks =
        generators ? GeneratorText::BlocksOf(generators->generators, builder, factors) : 0;
    if (const auto given = CountOrGenerated(
            GivenCount(request.runs, "--runs", study, "runs"), generators, generatedRuns)) {
        RequireLegal(*given, builder.GetLegalRuns(factors, options), builder, "runs");
        options.SetRuns(CountOf(*given));
    }
    if (const auto given = CountOrGenerated(
            GivenCount(request.blocks, "--blocks", study, "blocks"), generators, generatedBlocks)) {
        RequireLegal(*given, builder.GetLegalBlocks(factors, options, false), builder, "blocks");
        options.SetBlocks(CountOf(*given));
    }
    if (generators) {
        GeneratorText::RequireFit(
            generators->generators, builder, factors, options, generators->place);
        options.SetGenerators(&generators->generators);
    }
}

void SetCounts(DesignOptions& options,
               const DesignBuilder& builder,
               const Study& study,
               const DesignRequest& request) {
    if (const auto given =
            GivenCount(request.centerPoints, "--center-points", study, "centerPoints")) {
        RequireCenterPoints(*given, builder);
        options.SetCenterPoints(CountOf(*given));
    }
    if (const auto given =
            GivenCount(request.replicates, "--replicates", study, "replicatedDesigns")) {
        options.SetReplicates(CountOf(*given));
    }
    if (const auto given =
            GivenCount(request.replicatedRuns, "--replicated-runs", study, "replicatedRuns")) {
        options.SetReplicatedRuns(CountOf(*given));
    }
    SetRunsAndBlocks(options, builder, study, request);
}

void RequireTotal(const DesignOptions& options, const Study& study) {
    const auto wide = [](unsigned int count) { return static_cast<unsigned long long>(count); };
    const unsigned long long once = wide(options.GetRuns()) + options.GetCenterPoints();
    if (options.GetMaxRuns() != DesignOptions::cNoRunLimit && once > options.GetMaxRuns()) {
        FailWith(
            fmt::format("{}: options.maxRuns: {} runs and {} centre points exceed the run "
                        "limit of {}.",
                        study.file,
                        options.GetRuns(),
                        options.GetCenterPoints(),
                        options.GetMaxRuns()));
    }
    const unsigned long long total =
        (once + options.GetReplicatedRuns()) * (wide(options.GetReplicates()) + 1);
    if (total > static_cast<unsigned long long>(StudyLimits::cMaxRuns)) {
        FailWith(
            fmt::format("{}: the design would have {} runs with its centre points and "
                        "replicates; allowed are {}.",
                        study.file,
                        total,
                        StudyLimits::cMaxRuns));
    }
}

Conditions RequestedConditions(const Study& study, const DesignRequest& request) {
    Conditions conditions = ConditionsOf(study);
    if (!request.model.empty()) {
        conditions.model = EModel::GetType(request.model);
        if (*conditions.model == EModel::None) {
            FailWith(
                fmt::format("--model: {} is no model; allowed are linear, interaction, "
                            "quadratic, special cubic, cubic and linear+quadratic.",
                            Quoted(request.model)));
        }
    }
    if (request.centerPoints && *request.centerPoints >= 0 &&
        *request.centerPoints <= StudyLimits::cMaxRuns) {
        conditions.centerPoints = static_cast<unsigned int>(*request.centerPoints);
    }
    return conditions;
}

// The blocks as they are asked for, since the model of a D-optimal design depends on them; whether
// they are legal is judged with the runs.
void PrepareOptimal(BuiltDesign& built, const Study& study, const DesignRequest& request) {
    RequireLayeredDesign(request.onion, *built.builder);
    OptimalRequest optimal = request.optimal;
    if (IsOnion(*built.builder)) {
        built.notes = ApplyOnionRequest(
            request.onion, optimal.candidates, study, *built.builder, built.options);
        optimal.candidates.clear();
    }
    RequireOptimalDesign(optimal, *built.builder);
    if (!IsDOptimal(*built.builder)) {
        return;
    }
    if (const auto blocks = GivenCount(request.blocks, "--blocks", study, "blocks")) {
        built.options.SetBlocks(std::clamp(CountOf(*blocks), 1U, cMostBlocksOfAModel));
    }
    built.notes = ApplyOptimalRequest(request.optimal, study, *built.builder, built.options);
}

void PrepareCombinatorial(BuiltDesign& built, const Study& study, const DesignRequest& request) {
    RequireLevelsTaken(request, *built.builder);
    if (IsCombinatorial(*built.builder)) {
        ApplyCombinatorialRequest(request, study, *built.builder, built.options);
    }
}

void SelectResult(BuiltDesign& built, const Study& study, long long number) {
    auto* const design = dynamic_cast<D_Optimal*>(built.design.get());
    if (design != nullptr) {
        SelectOptimalResult(*design, number, study.factors, built.options, "--select");
    } else if (auto* const reduced = dynamic_cast<J2Design*>(built.design.get())) {
        SelectCombinatorialResult(*reduced, number);
    }
}

// The engine says what failed but not for which design.
std::unique_ptr<NCDesign> Build(const BuiltDesign& built, const Study& study) {
    try {
        return built.builder->Build(study.factors, built.options);
    } catch (const CancelException&) {
        if (!IsDOptimal(*built.builder)) {
            throw;
        }
        throw StoppedWork(D_Optimal::GetErrorString(cUserBreak, nullptr));
    } catch (const Exception& exception) {
        // A search that was stopped before it found a design says only that there is none.
        Interrupt::ThrowIfRequested();
        const unsigned int blocks = built.options.GetBlocks();
        FailWith(fmt::format("{}: the design {} cannot be built for {} factors and {} runs{}: {}",
                             study.file,
                             built.builder->GetShortString(),
                             study.factors.GetDesignFactorCount(),
                             built.options.GetRuns(),
                             blocks > 1 ? fmt::format(" in {} blocks", blocks) : "",
                             Trimmed(exception.what())));
    }
}

std::string Refusal(const BuiltDesign& built, const Study& study) {
    return fmt::format("{}: the design {} is not valid for this study.",
                       study.file,
                       built.builder->GetShortString());
}

// A series of design sets is no worksheet of runs.
void RequireWorksheetDesign(const DesignBuilder& builder) {
    if (EDesign::IsStabilityDesign(builder.IsDesign())) {
        FailWith(fmt::format("The design {} is made by the command {}.",
                             Quoted(builder.GetShortString()),
                             builder.IsDesign() == EDesign::Stability ? "stability" : "subsets"));
    }
}

BuilderHandle ChooseBuilder(const Study& study,
                            const DesignRequest& request,
                            const Conditions& conditions) {
    const std::string& name = request.design.empty() ? study.design : request.design;
    BuilderHandle builder = name.empty() ? StrongestBuilder(study, conditions) : NamedBuilder(name);
    RequireWorksheetDesign(*builder);
    return builder;
}

}  // namespace

BuiltDesign PrepareDesign(const Study& study, const DesignRequest& request) {
    const Conditions conditions = RequestedConditions(study, request);
    BuiltDesign built;
    built.builder = ChooseBuilder(study, request, conditions);
    const DesignBuilder& builder = *built.builder;
    if (builder.IsDesign() == EDesign::REDMUP) {
        FailWith(fmt::format("{}: the design {} is made by the command plate.",
                             study.file,
                             Quoted(builder.GetShortString())));
    }
    built.options = MakeOptions(builder, conditions);
    OverlayStudyOptions(built.options, builder, study);
    PrepareOptimal(built, study, request);
    PrepareCombinatorial(built, study, request);
    if (!KeepsRunLimit(built.options) || !KeepsConstraints(builder, conditions) ||
        !builder.IsValid(study.factors, built.options, false, false)) {
        ThrowNoValidDesign(Refusal(built, study), conditions, {built.builder});
    }
    SetCounts(built.options, builder, study, request);
    if (IsOnion(builder)) {
        const auto runs = GivenCount(request.runs, "--runs", study, "runs");
        FitLayerRuns(request.onion, runs ? runs->place : "", study.factors, built.options);
    }
    RequireTotal(built.options, study);
    if (IsCombinatorial(builder)) {
        RequireNoReplicates(study, built.options);
    }
    if (IsDOptimal(builder)) {
        RequireSearchable(built.options);
        built.options.SetModel(SearchedModel(built.options));
    }
    return built;
}

BuiltDesign MakeDesign(const Study& study, const DesignRequest& request) {
    BuiltDesign built = PrepareDesign(study, request);
    built.design = Build(built, study);
    if (!built.design || !built.design->GetDesignMatrix()) {
        ThrowNoValidDesign(
            Refusal(built, study), RequestedConditions(study, request), {built.builder});
    }
    if (auto* const layered = dynamic_cast<OnionDesign*>(built.design.get())) {
        SelectAskedRuns(*layered, built.options);
    }
    if (request.optimal.select) {
        SelectResult(built, study, *request.optimal.select);
    }
    if (request.foldOver) {
        MakeFoldOver(built, study);
    }
    return built;
}
