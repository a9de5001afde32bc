#include "host/SubsetsCommand.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <memory>

#include "host/HostError.h"
#include "host/Notes.h"
#include "host/StudyFile.h"
#include "host/TextTable.h"

namespace {

std::string YesNo(bool value) {
    return value ? "yes" : "no";
}

std::string ConditionText(float number) {
    return number == Factors::cNoValue ? "-" : fmt::format("{:.4g}", number);
}

// One line a subset.
std::string FormatQuality(const StabilityDesign& design) {
    std::vector<std::vector<std::string>> lines;
    for (const auto& [reduction, index] : design.GetUsedDesigns()) {
        const auto subset = design.GetDesign(reduction, index);
        const StabilityDesignQuality& quality = subset->GetQuality();
        lines.push_back({SetName(reduction, index),
                         fmt::format("{}", subset->GetDesignMatrix().SizeRows()),
                         YesNo(quality.Unique),
                         YesNo(quality.Balance),
                         YesNo(quality.OA),
                         YesNo(quality.NOA),
                         ConditionText(quality.ConditionNumber),
                         fmt::format("{}", quality.Iterations),
                         fmt::format("{}", fmt::join(quality.Distances, " "))});
    }
    return FormatTable({"Subset",
                        "Runs",
                        "Unique",
                        "Balance",
                        "OA",
                        "NOA",
                        "Condition",
                        "Iterations",
                        "Pairs at squared distance 0 to 9"},
                       lines);
}

WorksheetTable MakeRuns(const StabilityDesign& design, const StudyFactors& factors) {
    std::vector<std::string> names;
    std::vector<std::string> combinations;
    design.GetStabilityDesignNames(names, combinations, {}, factors);
    const auto& used = design.GetUsedDesigns();
    NCDataMatrix<float> runs = *design.GetDesignMatrix();
    std::vector<std::vector<std::string>> leading;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const float letter = runs(static_cast<int>(i) + 1, 1);
        const auto& [reduction, index] =
            used.at(static_cast<std::size_t>(letter - Factors::cFirstLevelCode));
        leading.push_back({SetName(reduction, index), names[i]});
    }
    runs.RemoveColumns(1, 1);
    return MakeRunTable({"Subset", "Name"}, leading, runs, factors);
}

}  // namespace

void RunSubsets(const SubsetsArguments& arguments, std::ostream& out, std::ostream& err) {
    const Study study = ReadStudyFile(arguments.study);
    PrintNotes(study, err);
    CheckRequest(arguments.search, study, "a division into subsets");
    auto options = std::make_shared<GeneralizedSubsetDesignsDesignOptions>();
    ApplyStudyOptions(study, EDesign::GeneralizedSubset, *options);
    if (arguments.reduction) {
        if (*arguments.reduction < 1 || *arguments.reduction > StudyLimits::cMaxRuns) {
            FailWith(fmt::format("--reduction: {} must be a whole number from 1 to {}.",
                                 *arguments.reduction,
                                 StudyLimits::cMaxRuns));
        }
        options->SetReduction(static_cast<unsigned long long>(*arguments.reduction));
    }
    ApplyRequest(arguments.search, *options);
    const auto design = MakeStabilityDesign(EDesign::GeneralizedSubset, study, options);
    AddRuns(arguments.search, study.factors, *design);
    const WorksheetTable runs = MakeRuns(*design, study.factors);
    WriteOutput(arguments.search, runs);
    PrintRuns(arguments.search, runs, FormatQuality(*design) + "\n", out);
    err << fmt::format("{} runs in {} subsets\n", runs.lines.size(), options->GetReduction());
}
