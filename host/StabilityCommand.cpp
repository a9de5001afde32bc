#include "host/StabilityCommand.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <memory>

#include "foundation/utl/QvStdString.h"
#include "host/HostError.h"
#include "host/Notes.h"
#include "host/StudyFile.h"

namespace {

using UsedReductions = StabilityDesignOptions::UsedReductions;

// A whole text as a number, blanks around it allowed; false for anything else.
template <class Number>
bool ParseNumber(const std::string& text, Number& number) {
    const std::string_view trimmed = Trimmed(text);
    const char* const end = trimmed.data() + trimmed.size();
    const auto [rest, error] = std::from_chars(trimmed.data(), end, number);
    return error == std::errc() && rest == end;
}

std::pair<unsigned long long, unsigned long long> ParseSet(const std::string& text) {
    const auto parts = QvStdString::Split(text, ":");
    int reduction = 0;
    int index = 0;
    if (parts.size() != 2 || !ParseNumber(parts[0], reduction) || !ParseNumber(parts[1], index)) {
        FailWith(fmt::format("--used: {} is no design set; wanted is reduction:index, such as 3:1.",
                             Quoted(text)));
    }
    if (reduction < 1 || index < 1 || index > reduction) {
        FailWith(fmt::format(
            "--used: {} is no design set; the reduction must be 1 or more, and the index from 1 to "
            "the reduction.",
            Quoted(text)));
    }
    return {static_cast<unsigned long long>(reduction), static_cast<unsigned long long>(index)};
}

UsedReductions ParseUsed(const std::string& text) {
    UsedReductions used;
    for (const std::string& part : QvStdString::Split(text, ",")) {
        used.push_back(ParseSet(part));
    }
    return used;
}

std::vector<float> ParseTimes(const std::string& text, std::size_t sets) {
    std::vector<float> times;
    if (text.empty()) {
        for (std::size_t i = 0; i < sets; ++i) {
            times.push_back(static_cast<float>(i));
        }
        return times;
    }
    for (const std::string& part : QvStdString::Split(text, ",")) {
        float time = 0;
        if (!ParseNumber(part, time) || !std::isfinite(time)) {
            FailWith(fmt::format("--times: {} is no number.", Quoted(part)));
        }
        times.push_back(time);
    }
    if (times.size() != sets) {
        FailWith(fmt::format(
            "--times: there are {} points in time for {} design sets.", times.size(), sets));
    }
    return times;
}

WorksheetTable MakePlan(const StabilityDesign& design,
                        const std::vector<float>& times,
                        const StudyFactors& factors) {
    std::vector<std::string> names;
    std::vector<std::string> combinations;
    design.GetStabilityDesignNames(names, combinations, times, factors);
    const std::vector<float> points = design.GetDesignSetVector(times);
    const auto& used = design.GetUsedDesigns();
    NCDataMatrix<float> runs = *design.GetDesignMatrix();
    std::vector<std::vector<std::string>> leading;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const float letter = runs(static_cast<int>(i) + 1, 1);
        const auto& [reduction, index] =
            used.at(static_cast<std::size_t>(letter - Factors::cFirstLevelCode));
        leading.push_back(
            {SetName(reduction, index), fmt::format("{}", points[i]), names[i], combinations[i]});
    }
    runs.RemoveColumns(1, 1);
    return MakeRunTable({"Set", "Time", "Name", "Combination"}, leading, runs, factors);
}

}  // namespace

void RunStability(const StabilityArguments& arguments, std::ostream& out, std::ostream& err) {
    const Study study = ReadStudyFile(arguments.study);
    PrintNotes(study, err);
    CheckRequest(arguments.search, study, "a stability design");
    auto options = std::make_shared<StabilityDesignOptions>();
    ApplyStudyOptions(study, EDesign::Stability, *options);
    if (!arguments.used.empty()) {
        options->SetUsedReduction(ParseUsed(arguments.used));
    }
    if (options->GetUsedReduction().empty()) {
        FailWith(fmt::format(
            "{}: options.designSpecificOptions: usedDesigns: there is no design set; wanted is one "
            "at least.",
            study.file));
    }
    const std::vector<float> times =
        ParseTimes(arguments.times, options->GetUsedReduction().size());
    ApplyRequest(arguments.search, *options);
    const auto design = MakeStabilityDesign(EDesign::Stability, study, options);
    AddRuns(arguments.search, study.factors, *design);
    const WorksheetTable plan = MakePlan(*design, times, study.factors);
    WriteOutput(arguments.search, plan);
    PrintRuns(arguments.search, plan, "", out);
    err << fmt::format("{} runs of {} combinations at {} points in time\n",
                       plan.lines.size(),
                       design->GetNumberOfCombinations(study.factors),
                       times.size());
}
