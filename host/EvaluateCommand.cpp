#include "host/EvaluateCommand.h"

#include <fmt/format.h>

#include <cmath>

#include "host/DesignEvaluation.h"
#include "host/Figures.h"
#include "host/HostError.h"
#include "host/ModelColumns.h"
#include "host/TextTable.h"

namespace {

using Lines = std::vector<std::vector<std::string>>;

// More pairs nobody reads; --all-correlations prints them.
constexpr std::size_t cMostPairs = 100;

double LimitOf(const EvaluateArguments& arguments) {
    const double limit = arguments.correlationLimit.value_or(EvaluateArguments::cDefaultLimit);
    if (!(limit >= 0 && limit <= 1)) {
        FailWith(fmt::format("--correlation-limit: {} must be from 0 to 1.", limit));
    }
    if (arguments.correlationLimit && arguments.allCorrelations) {
        FailWith("--all-correlations: --correlation-limit leaves some out; give one of the two.");
    }
    return limit;
}

void PrintHead(const JudgedDesign& design, const DesignEvaluation& evaluation, std::ostream& out) {
    const auto print = [&out](const char* label, const std::string& value) {
        out << fmt::format("{:<32}{}\n", label, value);
    };
    print("Design", design.name);
    print("Runs", fmt::format("{}", design.runs.SizeRows()));
    print("Model", ModelTermsText::TextOf(design.terms, design.study.factors));
    print("Columns of the model", fmt::format("{}", evaluation.columns.size()));
    print("Candidates", fmt::format("{}", design.candidates.SizeRows()));
    out << Figures::Lines(evaluation.figures);
}

void PrintSingular(const JudgedDesign& design,
                   const DesignEvaluation& evaluation,
                   std::ostream& out) {
    if (evaluation.dependent.empty()) {
        out << "\nA figure of the model cannot be computed for these runs. There are no leverages "
               "and no variances.\n";
        return;
    }
    out << fmt::format(
        "\nThe model is singular for this design: {} runs tell {} of {} columns apart. "
        "Combinations of the columns before them are {}. There are no leverages and no "
        "variances.\n",
        design.runs.SizeRows(),
        evaluation.columns.size() - evaluation.dependent.size(),
        evaluation.columns.size(),
        ShortListOf(evaluation.dependent));
}

void PrintLeverages(const JudgedDesign& design,
                    const DesignEvaluation& evaluation,
                    std::ostream& out) {
    std::vector<WorksheetRun> runs = design.Decoded();
    for (WorksheetRun& run : runs) {
        run.runOrder = run.standardOrder;
    }
    WorksheetTable table = MakeWorksheetTable(runs, design.study.factors, false);
    // The order of a plan has no place here.
    table.header.erase(table.header.begin() + 1);
    table.header.front() = "Run";
    table.header.emplace_back("Leverage");
    for (std::size_t i = 0; i < table.lines.size(); ++i) {
        table.lines[i].erase(table.lines[i].begin() + 1);
        table.lines[i].push_back(fmt::format("{:.4f}", evaluation.leverages[i]));
    }
    out << fmt::format(
               "\nLeverage of each run (mean {:.4f}; 1 means that the run is fitted "
               "exactly)\n",
               static_cast<double>(evaluation.columns.size()) /
                   static_cast<double>(evaluation.leverages.size()))
        << FormatTable(table.header, table.lines);
}

void PrintVariances(const DesignEvaluation& evaluation, std::ostream& out) {
    Lines lines;
    lines.reserve(evaluation.columns.size());
    for (std::size_t i = 0; i < evaluation.columns.size(); ++i) {
        lines.push_back({evaluation.columns[i], fmt::format("{:.4f}", evaluation.variances[i])});
    }
    out << "\nVariance of each coefficient, in units of sigma^2, for factors coded from -1 to 1\n"
        << FormatTable({"Column", "Variance"}, lines);
}

void PrintCorrelations(const DesignEvaluation& evaluation,
                       double limit,
                       bool all,
                       std::ostream& out) {
    Lines lines;
    std::size_t found = 0;
    for (const DesignEvaluation::Correlation& pair : evaluation.correlations) {
        // A correlation of exactly the limit that the user named is not lost to rounding.
        constexpr double cRounding = 1e-6;
        if (!all && std::abs(pair.value) < limit - cRounding) {
            break;
        }
        ++found;
        if (all || lines.size() < cMostPairs) {
            lines.push_back({evaluation.columns[pair.first],
                             evaluation.columns[pair.second],
                             fmt::format("{:.4f}", pair.value + 0.0)});
        }
    }
    const std::string which = all ? "all pairs" : fmt::format("at least {:g} in size", limit);
    out << fmt::format("\nCorrelations of the columns: {}\n", which);
    if (lines.empty()) {
        out << "none\n";
        return;
    }
    out << FormatTable({"Column", "Column", "Correlation"}, lines);
    if (found > lines.size()) {
        out << fmt::format("and {} more\n", found - lines.size());
    }
}

}  // namespace

void RunEvaluate(const EvaluateArguments& arguments, std::ostream& out, std::ostream& err) {
    const double limit = LimitOf(arguments);
    const JudgedDesign design = MakeJudgedDesign(arguments.judged, err);
    const DesignEvaluation evaluation = EvaluateDesign(design);
    PrintHead(design, evaluation, out);
    if (evaluation.leverages.empty()) {
        PrintSingular(design, evaluation, out);
    } else {
        PrintLeverages(design, evaluation, out);
        PrintVariances(evaluation, out);
    }
    PrintCorrelations(evaluation, limit, arguments.allCorrelations, out);
}
