#include "host/StudyFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "foundation/utl/QvFile.h"
#include "host/DesignNames.h"
#include "host/FactorReader.h"
#include "host/HostError.h"
#include "host/JsonPlace.h"

namespace {

constexpr std::array<EObjective::Type, 4> cObjectives{EObjective::Screening,
                                                      EObjective::Optimization,
                                                      EObjective::RobustnessVerification,
                                                      EObjective::SystemCharacterization};
constexpr std::array<EModel::Type, 6> cModels{EModel::Linear,
                                              EModel::Interaction,
                                              EModel::Quadratic,
                                              EModel::SpecialCubic,
                                              EModel::Cubic,
                                              EModel::LinearQuadratic};

// The JSON texts of a vocabulary, for messages.
template <class Vocabulary, class Types>
std::string TextsOf(const Types& types) {
    std::vector<std::string> texts;
    texts.reserve(types.size());
    for (const auto type : types) {
        texts.push_back(fmt::format("\"{}\"", Vocabulary::ToJson(type).get_string()));
    }
    return ListOf(texts, "and");
}

EObjective::Type ReadObjective(const JsonPlace& place) {
    const EObjective::Type objective = EObjective::FromJson(place.Value());
    if (objective == EObjective::None) {
        place.Refuse("is no objective; allowed are " + TextsOf<EObjective>(cObjectives));
    }
    return objective;
}

EModel::Type ReadModel(const JsonPlace& place) {
    const EModel::Type model = EModel::FromJson(place.Value());
    if (model == EModel::None) {
        place.Refuse("is no model; allowed are " + TextsOf<EModel>(cModels));
    }
    return model;
}

std::string ReadDesign(const JsonPlace& place) {
    std::string name = place.Name();
    if (!FindBuilder(name)) {
        place.Refuse("is no design; known are " + ListOf(AllDesignNames(), "and"));
    }
    return name;
}

NCDOE::Constraint::Term ReadTerm(const JsonPlace& place, const StudyFactors& factors) {
    place.RequireMembers({"factor", "coefficient"});
    const JsonPlace named = place.Member("factor");
    NCDOE::Constraint::Term term;
    const std::string name = named.Name();
    term.factor = factors.Find(name);
    if (factors.GetFiller() && factors.GetFiller()->name == name) {
        named.Refuse("is the filler; constrain the other formulation factors instead");
    }
    if (term.factor < 0) {
        named.Refuse("is no factor of the study");
    }
    term.coefficient = place.Member("coefficient").WideNumber();
    return term;
}

bool ReadIsGreater(const JsonPlace& place) {
    const std::string relation = place.Text();
    if (relation != "<=" && relation != ">=") {
        place.Refuse(R"(is no relation; allowed are "<=" and ">=")");
    }
    return relation == ">=";
}

NCDOE::Constraint ReadConstraint(const JsonPlace& place, const StudyFactors& factors) {
    place.RequireMembers({"terms", "bound", "relation"});
    NCDOE::Constraint constraint;
    for (const JsonPlace& element : place.Member("terms").Elements(1, StudyLimits::cMaxFactors)) {
        constraint.terms.push_back(ReadTerm(element, factors));
    }
    constraint.value = place.Member("bound").WideNumber();
    constraint.greaterOrEqual = ReadIsGreater(place.Member("relation"));
    return constraint;
}

// The engine's own check, one constraint at a time, so that its message gets a place.
void RequireAccepted(const NCDOE::Constraint& constraint,
                     const StudyFactors& factors,
                     const JsonPlace& place) {
    try {
        DesignSpecificOptions().SetConstraints(NCDOE::Constraints({constraint}), factors);
    } catch (const Exception& exception) {
        place.Fail(exception.what());
    }
}

NCDOE::Constraints ReadConstraints(const JsonPlace& place, const StudyFactors& factors) {
    std::vector<NCDOE::Constraint> constraints;
    for (const JsonPlace& element : place.Elements(0, StudyLimits::cMaxConstraints)) {
        constraints.push_back(ReadConstraint(element, factors));
        RequireAccepted(constraints.back(), factors, element);
    }
    return NCDOE::Constraints(std::move(constraints));
}

// Kinds and limits only: what a family allows is known once the family is.
json_value ReadOptions(const JsonPlace& place) {
    place.RequireMembers({"blocks",
                          "runs",
                          "centerPoints",
                          "replicatedDesigns",
                          "replicatedRuns",
                          "maxRuns",
                          "starDistance",
                          "generators",
                          "modelTerms",
                          "designSpecificOptions"});
    const auto check = [&](std::string_view name, long long least) {
        if (place.Has(name)) {
            static_cast<void>(place.Member(name).WholeNumber(least, StudyLimits::cMaxRuns));
        }
    };
    check("blocks", 1);
    check("runs", 1);
    check("centerPoints", 0);
    check("replicatedDesigns", 0);
    check("replicatedRuns", 0);
    check("maxRuns", 1);
    if (place.Has("starDistance") && place.Member("starDistance").Number() <= 0) {
        place.Member("starDistance").Refuse("must be above 0");
    }
    if (place.Has("generators") && !place.Member("generators").Value().is_array() &&
        !place.Member("generators").Value().is_string()) {
        place.Member("generators")
            .Refuse(R"(must be an array of words or a text such as "E=ABCD")");
    }
    if (place.Has("modelTerms")) {
        static_cast<void>(place.Member("modelTerms").Text());
    }
    return place.Value();
}

// Brings the ranges of mixture factors to what some blend can reach, and tells the user so.
void FitMixtureRanges(Study& study) {
    const StudyFactors before = study.factors;
    try {
        MixtureUtilities::AdjustedMixtureRanges(study.factors);
    } catch (const Exception& exception) {
        FailWith(fmt::format("{}: factors: {}", study.file, exception.what()));
    }
    for (std::size_t i = 0; i < before.All().size(); ++i) {
        const StudyFactor& was = before.All()[i];
        const StudyFactor& is = study.factors.All()[i];
        if (was.low == is.low && was.high == is.high) {
            continue;
        }
        if (is.low >= is.high) {
            FailWith(
                fmt::format("{}: factors: the other formulation factors leave {} no range: it "
                            "can only be {}.",
                            study.file,
                            Quoted(is.name),
                            is.low));
        }
        study.notes.push_back(
            fmt::format("{}: the range of {} is tightened to {} to {}, which is "
                        "what blends can reach.",
                        study.file,
                        Quoted(is.name),
                        is.low,
                        is.high));
    }
}

// A text of any length. Control characters but line ends and tabs are refused, since such texts are
// printed on terminals.
std::string ReadText(const JsonPlace& root, std::string_view name) {
    if (!root.Has(name)) {
        return {};
    }
    std::string text = root.Member(name).Text();
    const bool isPlain = std::all_of(text.begin(), text.end(), [](char letter) {
        return (static_cast<unsigned char>(letter) >= 0x20 && letter != 0x7F) || letter == '\n' ||
               letter == '\t';
    });
    if (!isPlain) {
        root.Member(name).Refuse("must be a text without control characters");
    }
    return text;
}

}  // namespace

unsigned int Study::MaxRuns() const {
    return options.has_child("maxRuns")
               ? static_cast<unsigned int>(options.get_child("maxRuns").get_integer())
               : DesignOptions::cNoRunLimit;
}

Study ReadStudyFile(const std::string& path) {
    return ReadStudy(QvFile::ReadAll(path, StudyLimits::cMaxFileBytes), path);
}

Study ReadStudy(const std::string& text, const std::string& file) {
    const json_value tree = json_value::parse(text, file);
    const JsonPlace root(tree, file);
    root.RequireMembers({"name",
                         "description",
                         "source",
                         "factors",
                         "constraints",
                         "objective",
                         "model",
                         "design",
                         "options"});
    Study study;
    study.file = file;
    study.name = root.Has("name") ? root.Member("name").Name() : std::string();
    study.description = ReadText(root, "description");
    study.citation = ReadText(root, "source");
    study.factors = ReadFactors(root.Member("factors"));
    FitMixtureRanges(study);
    if (root.Has("constraints")) {
        study.constraints = ReadConstraints(root.Member("constraints"), study.factors);
    }
    if (root.Has("objective")) {
        study.objective = ReadObjective(root.Member("objective"));
    }
    if (root.Has("model")) {
        study.model = ReadModel(root.Member("model"));
    }
    if (root.Has("design")) {
        study.design = ReadDesign(root.Member("design"));
    }
    if (root.Has("options")) {
        study.options = ReadOptions(root.Member("options"));
    }
    study.text = tree.to_text();
    return study;
}
