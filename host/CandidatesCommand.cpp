#include "host/CandidatesCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "host/CandidateFile.h"
#include "host/FilePaths.h"
#include "host/HostError.h"
#include "host/Interrupt.h"
#include "host/Notes.h"
#include "host/StudyFile.h"

namespace {

constexpr std::array<EModel::Type, 4> cMixtureModels{
    EModel::Linear, EModel::Quadratic, EModel::SpecialCubic, EModel::Cubic};

bool IsMixtureModel(EModel::Type model) {
    return std::ranges::find(cMixtureModels, model) != cMixtureModels.end();
}

// What is printed about a set.
struct Summary {
    std::optional<EModel::Type> processModel;  // of a generated set with such factors
    std::optional<EModel::Type> mixtureModel;
    DOpt::NumData counts;
    unsigned long long combinations = 1;
    int rows = 0;
    int columns = 0;
    std::optional<CandidateFile> read;  // a set that came from a file
};

bool HasMixture(const Study& study) {
    return study.factors.GetMixtureFactorCount() > 0;
}

// Factors with a range of their own. Formulation factors beside a filler are among them.
bool HasProcess(const Study& study) {
    return std::ranges::any_of(study.factors.All(), [&study](const StudyFactor& factor) {
        return factor.type == CEType::Quantitative ||
               (factor.type == CEType::Formulation && !HasMixture(study));
    });
}

EModel::Type ProcessModel(const CandidatesArguments& arguments, const Study& study) {
    if (arguments.model.empty()) {
        return study.model.value_or(EModel::Linear);
    }
    const EModel::Type model = EModel::GetType(arguments.model);
    if (model == EModel::None) {
        FailWith(
            fmt::format("--model: {} is no model; allowed are linear, interaction, quadratic, "
                        "special cubic, cubic and linear+quadratic.",
                        Quoted(arguments.model)));
    }
    return model;
}

EModel::Type MixtureModel(const CandidatesArguments& arguments,
                          const Study& study,
                          EModel::Type processModel) {
    if (arguments.mixtureModel.empty()) {
        return IsMixtureModel(processModel) ? processModel : EModel::Linear;
    }
    const EModel::Type model = EModel::GetType(arguments.mixtureModel);
    if (!IsMixtureModel(model)) {
        FailWith(
            fmt::format("--mixture-model: {} is no mixture model; allowed are linear, quadratic, "
                        "special cubic and cubic.",
                        Quoted(arguments.mixtureModel)));
    }
    if (!HasMixture(study)) {
        FailWith("--mixture-model: the study has no formulation factors that add up to 1.");
    }
    return model;
}

unsigned int LimitOf(const CandidatesArguments& arguments) {
    const long long limit = arguments.limit.value_or(CandidatesArguments::cDefaultCells);
    if (limit < 1 || limit > CandidatesArguments::cMostCells) {
        FailWith(fmt::format("--limit: {} must be a whole number from 1 to {}.",
                             limit,
                             CandidatesArguments::cMostCells));
    }
    return static_cast<unsigned int>(limit);
}

unsigned int BlocksOf(const Study& study) {
    return static_cast<unsigned int>(CandidateColumns(study)) -
           study.factors.GetDesignFactorCountExpanded() + 1;
}

unsigned long long LevelCombinations(const Study& study) {
    unsigned long long product = BlocksOf(study);
    for (int factor = 0; factor < static_cast<int>(study.factors.All().size()); ++factor) {
        const CEType::EType type = study.factors.GetFactorType(factor);
        if (type == CEType::Multilevel || type == CEType::Qualitative) {
            product *= study.factors.GetLevelCount(factor);
        }
    }
    return product;
}

DesignOptions MakeOptions(const CandidatesArguments& arguments, const Study& study) {
    auto family = std::make_shared<D_OptimalOptions>();
    const EModel::Type model = ProcessModel(arguments, study);
    family->SetDOptMixtureModel(MixtureModel(arguments, study, model));
    family->SetUsePotentialTerms(!arguments.noPotentialTerms);
    family->SetConstraints(study.constraints, study.factors);
    DesignOptions options;
    options.SetModel(model);
    options.SetBlocks(BlocksOf(study));
    options.SetDesignSpecificOptions(family);
    return options;
}

CandidateSet Generate(const Study& study, const DesignOptions& options, unsigned int limit) {
    DOpt::NumData counts;
    const NCDataMatrix<float> rows =
        DOpt::GenerateCandidateset(nullptr, study.factors, options, false, &counts, nullptr, limit);
    CandidateSet set;
    set.SetCandidateSet(rows, counts);
    return set;
}

Summary Summarise(const CandidateSet& set, const Study& study) {
    Summary summary;
    summary.counts = set.GetNumData();
    summary.combinations = LevelCombinations(study);
    summary.rows = set.SizeRows();
    summary.columns = set.SizeColumns();
    return summary;
}

std::string CountText(int count) {
    return count < 0 ? "not counted" : fmt::format("{}", count);
}

void PrintText(const Summary& summary, const Study& study, std::ostream& out) {
    const auto print = [&](std::string_view label, const std::string& value) {
        out << fmt::format("{:<30}{}\n", label, value);
    };
    print("Study", study.name.empty() ? study.file : study.name);
    if (summary.processModel) {
        print("Process model", EModel::GetString(*summary.processModel));
    }
    if (summary.mixtureModel) {
        print("Mixture model", EModel::GetString(*summary.mixtureModel));
    }
    print("Extreme vertices", CountText(summary.counts.ExtVert));
    print("Edge points", CountText(summary.counts.NumEdges));
    print("Higher-dimensional centroids", CountText(summary.counts.NumHiDimCent));
    print("Level combinations", fmt::format("{}", summary.combinations));
    print("Rows", fmt::format("{}", summary.rows));
    print("Columns", fmt::format("{}", summary.columns));
    if (summary.read) {
        print("Rows outside the study",
              summary.read->misfits == 0
                  ? "0"
                  : fmt::format("{}; {}", summary.read->misfits, summary.read->firstMisfit));
    }
}

json_value CountToJson(int count) {
    return count < 0 ? json_value() : json_value(count);
}

json_value ToJson(const Summary& summary) {
    json_value value = json_value::make_object();
    const auto model = [&](const char* name, const std::optional<EModel::Type>& type) {
        if (type) {
            value.put_child(name) = EModel::ToJson(*type);
        }
    };
    model("processModel", summary.processModel);
    model("mixtureModel", summary.mixtureModel);
    value.put_child("extremeVertices") = CountToJson(summary.counts.ExtVert);
    value.put_child("edgePoints") = CountToJson(summary.counts.NumEdges);
    value.put_child("higherDimensionalCentroids") = CountToJson(summary.counts.NumHiDimCent);
    value.put_child("levelCombinations") = static_cast<long long>(summary.combinations);
    value.put_child("rows") = summary.rows;
    value.put_child("columns") = summary.columns;
    if (summary.read) {
        value.put_child("rowsOutside") = summary.read->misfits;
        value.put_child("firstRowOutside") =
            summary.read->misfits == 0 ? json_value() : json_value(summary.read->firstMisfit);
    }
    return value;
}

// Options that would have no effect are a misunderstanding.
void RequireOneWay(const CandidatesArguments& arguments) {
    const bool generates = !arguments.model.empty() || !arguments.mixtureModel.empty() ||
                           arguments.noPotentialTerms || arguments.limit ||
                           !arguments.output.empty();
    if (!arguments.candidates.empty() && generates) {
        FailWith(
            "--candidates: a file is only checked; --model, --mixture-model, "
            "--no-potential-terms, --limit and -o are for a new set.");
    }
    if (!arguments.output.empty() && IsSameFile(arguments.output, arguments.study)) {
        FailWith(fmt::format("-o: {} is the study itself; choose another file.", arguments.output));
    }
}

Summary CheckFile(const CandidatesArguments& arguments, const Study& study) {
    CandidateFile file = ReadCandidateFile(arguments.candidates, study);
    Summary summary = Summarise(file.set, study);
    summary.read = std::move(file);
    return summary;
}

Summary MakeSet(const CandidatesArguments& arguments, const Study& study, std::ostream& err) {
    const DesignOptions options = MakeOptions(arguments, study);
    const CandidateSet set = Generate(study, options, LimitOf(arguments));
    Interrupt::ThrowIfRequested();
    if (!arguments.output.empty()) {
        if (!set.WriteToFile(arguments.output, nullptr, nullptr, nullptr)) {
            FailWith(fmt::format("{}: the candidate set has no rows to write.", arguments.output));
        }
        err << fmt::format("{}: {} candidates\n", arguments.output, set.SizeRows());
    }
    Summary summary = Summarise(set, study);
    if (HasProcess(study)) {
        summary.processModel = options.GetModel();
    }
    if (HasMixture(study)) {
        summary.mixtureModel =
            dynamic_cast<const D_OptimalOptions&>(*options.GetDesignSpecificOptions())
                .GetMixtureModel();
    }
    return summary;
}

}  // namespace

void RunCandidates(const CandidatesArguments& arguments, std::ostream& out, std::ostream& err) {
    RequireOneWay(arguments);
    const Study study = ReadStudyFile(arguments.study);
    PrintNotes(study, err);
    const Summary summary =
        arguments.candidates.empty() ? MakeSet(arguments, study, err) : CheckFile(arguments, study);
    if (arguments.json) {
        out << ToJson(summary).to_text(2) << '\n';
    } else {
        PrintText(summary, study, out);
    }
}
