#include "host/ShowCommand.h"

#include <fmt/format.h>

#include "host/GeneratorText.h"
#include "host/OptimalResults.h"
#include "host/Project.h"
#include "host/TextTable.h"

namespace {

std::string RangeText(const StudyFactor& factor) {
    std::string text;
    if (factor.type == CEType::Multilevel) {
        for (const float setting : factor.settings) {
            text += fmt::format("{}{}", text.empty() ? "" : ", ", setting);
        }
    } else if (factor.type == CEType::Qualitative) {
        for (const std::string& level : factor.levels) {
            text += (text.empty() ? "" : ", ") + level;
        }
    } else {
        text = fmt::format("{} to {}", factor.low, factor.high);
    }
    return text;
}

std::string FactorsText(const StudyFactors& factors) {
    std::vector<std::vector<std::string>> lines;
    for (const StudyFactor& factor : factors.All()) {
        lines.push_back(
            {factor.name, CEType::GetString(factor.type), RangeText(factor), factor.unit});
    }
    if (const auto& filler = factors.GetFiller()) {
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(filler->place),
                     {filler->name, "Filler", "the rest", filler->unit});
    }
    return FormatTable({"Factor", "Type", "Settings", "Unit"}, lines);
}

void PrintStudy(const Study& study, std::ostream& out) {
    const auto print = [&](std::string_view label, const std::string& text) {
        if (!text.empty()) {
            out << fmt::format("{:<12}{}\n", label, text);
        }
    };
    print("Study", study.name.empty() ? study.file : study.name);
    print("About", study.description);
    print("Source", study.citation);
    out << '\n' << FactorsText(study.factors) << '\n';
}

void PrintOptions(const Project& project, std::ostream& out) {
    const DesignOptions& options = project.options;
    const auto print = [&](std::string_view label, const auto& value) {
        out << fmt::format("{:<17}{}\n", label, value);
    };
    print("Design",
          fmt::format(
              "{} ({})", project.builder->GetShortString(), project.builder->GetDisplayName()));
    print("Objective", EObjective::GetString(options.GetObjective()));
    print("Model", EModel::GetString(options.GetModel()));
    print("Runs", options.GetRuns());
    print("Centre points", options.GetCenterPoints());
    print("Replicated runs", options.GetReplicatedRuns());
    print("Replicates", options.GetReplicates());
    print("Blocks", options.GetBlocks());
    if (options.GetStarDistance() != DesignOptions::cNoStarDistance) {
        print("Star distance", options.GetStarDistance());
    }
    if (const Generators* generators = options.GetGenerators()) {
        print("Generators", GeneratorText::TextOf(*generators, project.study.factors));
    }
    if (project.isFoldedOver) {
        print("Folded over", "yes, the mirror image of the runs stands behind them");
    }
    print("Seed", project.seed);
    out << '\n';
}

}  // namespace

void RunShow(const ShowArguments& arguments, std::ostream& out) {
    const Project project = LoadProject(arguments.project);
    const WorksheetTable table =
        MakeWorksheetTable(project.Runs(), project.study.factors, arguments.coded);
    PrintStudy(project.study, out);
    PrintOptions(project, out);
    if (const auto design = LoadOptimalDesign(project, arguments.project)) {
        out << FormatOptimalResults(*design, project.study.factors, project.options) << '\n';
    }
    out << FormatTable(table.header, table.lines);
}
