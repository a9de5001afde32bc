#include "host/OnionRequest.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "foundation/utl/QvStdString.h"
#include "host/CandidateTable.h"
#include "host/Figures.h"
#include "host/HostError.h"
#include "host/TextTable.h"

namespace {

constexpr long long cFewestLayers = 2;
constexpr long long cMostLayers = 100;
constexpr int cMostRunsOfLayer = static_cast<int>(DesignOptions::cNoRunLimit);

const OnionBuilder& Family(const DesignBuilder& builder) {
    return dynamic_cast<const OnionBuilder&>(builder);
}

const OnionBuilder& Family() {
    return Family(*AllDesigns::GetDesignBuilder(EDesign::OnionDOpt, ""));
}

OnionOptions& FamilyOptions(DesignOptions& options) {
    return dynamic_cast<OnionOptions&>(*options.GetDesignSpecificOptions());
}

int CountOf(const StudyFactors& factors) {
    return static_cast<int>(factors.GetDesignFactorCount());
}

int GivenLayers(long long layers, long long most) {
    if (layers < cFewestLayers || layers > most) {
        FailWith(
            fmt::format("--layers: {} must be a whole number from {} to {}; one layer is a "
                        "D-optimal design, DOpt.",
                        layers,
                        cFewestLayers,
                        most));
    }
    return static_cast<int>(layers);
}

// Layers that the table tells: all of 1 to the last one.
int LayersOf(const CandidateTable& table, const OnionRequest& request) {
    const int last = *std::ranges::max_element(table.layers);
    for (int layer = 1; layer <= std::min<long long>(last, cMostLayers); ++layer) {
        if (std::ranges::find(table.layers, layer) == table.layers.end()) {
            FailWith(
                fmt::format("--layer-column: no candidate is in layer {} of {}.", layer, last));
        }
    }
    if (last < cFewestLayers || last > cMostLayers) {
        FailWith(fmt::format("--layer-column: {} has {} layers; allowed are {} to {}.",
                             Quoted(request.layerColumn),
                             last,
                             cFewestLayers,
                             cMostLayers));
    }
    if (request.layers && *request.layers != last) {
        FailWith(fmt::format("--layers: {} layers are asked for, but {} tells {}.",
                             *request.layers,
                             Quoted(request.layerColumn),
                             last));
    }
    return last;
}

// Acceptable candidates that 2 layers take, the one for all layers among them.
int FewestCandidates(int terms) {
    constexpr int cFew = 30;
    const int forTwo = 4 * terms;
    return (forTwo >= cFew ? forTwo : std::min(6 * terms, cFew)) + 1;
}

void RequireEnoughCandidates(const std::string& path,
                             const StudyFactors& factors,
                             const DesignOptions& options) {
    if (OnionBuilder::GetDefaultLayers(options, CountOf(factors)) > 0) {
        return;
    }
    const int terms = OnionBuilder::GetDefaultNoModelTerms(options.GetModel(), CountOf(factors));
    if (terms == 0) {
        FailWith(
            fmt::format("{}: candidates under constraints are divided for a linear, interaction or "
                        "quadratic model; the model is {}.",
                        path,
                        EModel::GetString(options.GetModel())));
    }
    FailWith(
        fmt::format("{}: {} candidates that keep the constraints are too few for layers of "
                    "a model with {} terms; at least {} are needed.",
                    path,
                    OnionBuilder::GetNumValidScores(options) - 1,
                    terms,
                    FewestCandidates(terms) - 1));
}

// Sets the candidates of the options in layers, and tells how many these are.
int DivideCandidates(const OnionRequest& request,
                     const std::string& path,
                     const CandidateTable& table,
                     const StudyFactors& factors,
                     DesignOptions& options) {
    // Undivided at first, for their number.
    FamilyOptions(options).SetCandidateSet(
        DivideIntoLayers(CandidateTable{table.rows, table.names, {}, {}, {}}, 1, factors));
    RequireEnoughCandidates(path, factors, options);
    int layers = 0;
    if (!table.layers.empty()) {
        layers = LayersOf(table, request);
    } else if (request.layers) {
        layers =
            GivenLayers(*request.layers, std::min<long long>(cMostLayers, table.rows.SizeRows()));
    } else {
        layers = OnionBuilder::GetDefaultLayers(options, CountOf(factors));
    }
    if (layers > table.rows.SizeRows()) {
        FailWith(fmt::format(
            "{}: {} candidates do not fill {} layers.", path, table.rows.SizeRows(), layers));
    }
    FamilyOptions(options).SetCandidateSet(DivideIntoLayers(table, layers, factors));
    return layers;
}

void RequireCandidates(const OnionRequest& request) {
    for (const auto& [option, name] : {std::pair{"--layer-column", &request.layerColumn},
                                       std::pair{"--score-column", &request.scoreColumn}}) {
        if (!name->empty()) {
            FailWith(
                fmt::format("{}: it is a column of the table that --candidates names.", option));
        }
    }
}

int LeastRunsOf(const LayerOption& layer, const StudyFactors& factors) {
    return Family().GetMinimumRunsPerLayer(
        OnionBuilder::GetDefaultNoModelTerms(layer.Model, CountOf(factors)));
}

int RunsOfLayer(const std::string& text, int layer, int least) {
    const std::string_view trimmed = Trimmed(text);
    int runs = 0;
    const char* const end = trimmed.data() + trimmed.size();
    const auto [rest, error] = std::from_chars(trimmed.data(), end, runs);
    if (error != std::errc() || rest != end || runs < least || runs > cMostRunsOfLayer) {
        FailWith(fmt::format("--layer-runs: {} must be a whole number from {} to {} for layer {}.",
                             Quoted(text),
                             least,
                             cMostRunsOfLayer,
                             layer));
    }
    return runs;
}

void SetLayerRuns(const std::string& text, const StudyFactors& factors, OnionOptions& family) {
    const std::vector<std::string> parts = QvStdString::Split(text, ",");
    if (static_cast<int>(parts.size()) != family.GetLayerCount()) {
        FailWith(fmt::format("--layer-runs: {} are {} counts for {} layers.",
                             Quoted(text),
                             parts.size(),
                             family.GetLayerCount()));
    }
    std::vector<int> runs;
    runs.reserve(parts.size());
    for (const std::string& part : parts) {
        const int layer = static_cast<int>(runs.size()) + 1;
        runs.push_back(RunsOfLayer(part, layer, LeastRunsOf(family.GetLayer(layer), factors)));
    }
    for (int layer = 1; layer <= family.GetLayerCount(); ++layer) {
        family.GetLayer(layer).Runs = runs[static_cast<std::size_t>(layer) - 1];
    }
}

// The result of a run count with the best G-efficiency, the first on ties; -1 without one.
int BestResultOf(const D_Optimal& design, int runs) {
    int best = -1;
    const std::vector<DOptResults>& results = design.GetResults();
    for (int i = 0; i < static_cast<int>(results.size()); ++i) {
        const DOptResults& result = results[static_cast<std::size_t>(i)];
        if (static_cast<int>(result.rows.size()) == runs &&
            (best < 0 || result.GEff > results[static_cast<std::size_t>(best)].GEff)) {
            best = i;
        }
    }
    return best;
}

std::string CandidatesOf(const D_Optimal& design, const CandidateSet& set, int layer) {
    if (set.HasLayers()) {
        return fmt::format("{}", set.GetNumbers().at(static_cast<std::size_t>(layer) - 1));
    }
    const DOpt::NumData& counts = design.GetNumData();
    return fmt::format("{}", counts.ExtVert + counts.NumEdges + counts.NumHiDimCent);
}

std::vector<std::string> LineOf(const OnionDesign& design, const OnionOptions& family, int layer) {
    const D_Optimal& search = *design.GetResults().at(static_cast<std::size_t>(layer) - 1);
    const DOptResults& result =
        search.GetResults().at(static_cast<std::size_t>(search.GetSelectedIndex()));
    return {fmt::format("{}", layer),
            CandidatesOf(search, family.GetCandidateSet(), layer),
            EModel::GetString(family.GetLayer(layer).Model),
            fmt::format("{}", result.rows.size()),
            Figures::Text(result.CondNo),
            Figures::Text(result.GEff),
            Figures::Text(result.LogDet),
            Figures::Text(result.NormLogDet),
            Figures::Text(result.IOptimality)};
}

std::string NamesOfPicks(const OnionDesign& design, const CandidateSet& set) {
    const std::vector<std::string> names = set.GetUsedScoreNames(design);
    std::string text;
    std::size_t next = 0;
    for (int layer = 1; layer <= design.GetLayerCount() && !names.empty(); ++layer) {
        const auto first = names.begin() + static_cast<std::ptrdiff_t>(next);
        next += design.GetPickedRows(layer).size();
        const auto last = names.begin() + static_cast<std::ptrdiff_t>(next);
        text += fmt::format("Layer {}: {}\n", layer, fmt::join(first, last, ", "));
    }
    return text;
}

}  // namespace

bool IsOnion(const DesignBuilder& builder) {
    return builder.IsDesign() == EDesign::OnionDOpt;
}

const char* FirstOption(const OnionRequest& request) {
    const std::array<std::pair<const char*, bool>, 4> given{
        {{"--layers", request.layers.has_value()},
         {"--layer-runs", request.layerRuns.has_value()},
         {"--layer-column", !request.layerColumn.empty()},
         {"--score-column", !request.scoreColumn.empty()}}};
    const auto* const found =
        std::ranges::find_if(given, [](const auto& one) { return one.second; });
    return found != given.end() ? found->first : nullptr;
}

void RequireLayeredDesign(const OnionRequest& request, const DesignBuilder& builder) {
    const char* option = FirstOption(request);
    if (option != nullptr && !IsOnion(builder)) {
        FailWith(fmt::format("{}: the design {} has no layers; only OnionDOpt has.",
                             option,
                             builder.GetShortString()));
    }
}

std::vector<std::string> ApplyOnionRequest(const OnionRequest& request,
                                           const std::string& candidates,
                                           const Study& study,
                                           const DesignBuilder& builder,
                                           DesignOptions& options) {
    if (!builder.IsValid(study.factors, options)) {
        return {};
    }
    std::vector<std::string> notes;
    int layers = 0;
    if (candidates.empty()) {
        RequireCandidates(request);
        layers = request.layers ? GivenLayers(*request.layers, cMostLayers)
                                : OnionBuilder::GetDefaultLayers(options, CountOf(study.factors));
        notes.emplace_back(
            "Each layer is searched over the candidates that its model generates; --candidates "
            "gives the layers candidates of their own.");
    } else {
        if (!request.layerColumn.empty() && !request.scoreColumn.empty()) {
            FailWith("--score-column: --layer-column tells the layers already.");
        }
        const CandidateTable table =
            ReadCandidateTable(candidates, {request.layerColumn, request.scoreColumn}, study);
        notes = table.notes;
        layers = DivideCandidates(request, candidates, table, study.factors, options);
    }
    const OnionBuilder& family = Family(builder);
    FamilyOptions(options).SetLayers(layers, family, study.factors, options);
    options.SetRuns(family.GetDefaultRuns(study.factors, options));
    options.AssureMaxRuns(builder, study.factors);
    return notes;
}

void FitLayerRuns(const OnionRequest& request,
                  const std::string& runsPlace,
                  const StudyFactors& factors,
                  DesignOptions& options) {
    OnionOptions& family = FamilyOptions(options);
    const auto runs = static_cast<int>(options.GetRuns());
    if (request.layerRuns) {
        SetLayerRuns(*request.layerRuns, factors, family);
        if (!runsPlace.empty() && runs != family.GetTotalRuns()) {
            FailWith(fmt::format("--layer-runs: {} are {} runs, but {} asks for {}.",
                                 Quoted(*request.layerRuns),
                                 family.GetTotalRuns(),
                                 runsPlace,
                                 runs));
        }
        options.SetRuns(static_cast<unsigned int>(family.GetTotalRuns()));
    } else if (!family.SetTotalRuns(runs, factors, options)) {
        FailWith(fmt::format("{}: {} layers cannot have {} runs; the nearest are {}.",
                             runsPlace.empty() ? "--layers" : runsPlace,
                             family.GetLayerCount(),
                             runs,
                             family.GetTotalRuns()));
    }
}

void SelectAskedRuns(OnionDesign& design, const DesignOptions& options) {
    const auto& family = dynamic_cast<const OnionOptions&>(*options.GetDesignSpecificOptions());
    for (int layer = 1; layer <= design.GetLayerCount(); ++layer) {
        const D_Optimal& search = *design.GetResults()[static_cast<std::size_t>(layer) - 1];
        const int best = BestResultOf(search, family.GetLayer(layer).Runs);
        if (best >= 0 && best != search.GetSelectedIndex()) {
            design.SelectDesign(layer, best, options);
        }
    }
}

std::string FormatLayers(const OnionDesign& design, const DesignOptions& options) {
    const auto& family = dynamic_cast<const OnionOptions&>(*options.GetDesignSpecificOptions());
    std::vector<std::vector<std::string>> lines;
    lines.reserve(design.GetResults().size());
    for (int layer = 1; layer <= design.GetLayerCount(); ++layer) {
        lines.push_back(LineOf(design, family, layer));
    }
    return FormatTable({"Layer",
                        "Candidates",
                        "Model",
                        "Runs",
                        "Condition",
                        "G-eff. %",
                        "Log det",
                        "Norm. log det",
                        "I-value"},
                       lines) +
           NamesOfPicks(design, family.GetCandidateSet());
}
