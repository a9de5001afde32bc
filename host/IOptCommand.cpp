#include "host/IOptCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <boost/function.hpp>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>
#include <utility>

#include "foundation/utl/QvFile.h"
#include "host/Figures.h"
#include "host/FilePaths.h"
#include "host/HostError.h"
#include "host/Interrupt.h"
#include "host/JsonPlace.h"
#include "host/JudgedDesign.h"
#include "host/ModelColumns.h"
#include "host/Notes.h"
#include "host/SettingsGrid.h"
#include "host/StudyFile.h"

namespace {

constexpr long long cMostLevels = 1001;
constexpr long long cMostStarts = 10'000;
constexpr unsigned int cMostSteps = 1000;

long long CountIn(const std::optional<long long>& given,
                  long long otherwise,
                  long long least,
                  long long most,
                  const char* option) {
    const long long count = given.value_or(otherwise);
    if (count < least || count > most) {
        FailWith(fmt::format(
            "{}: {} must be a whole number from {} to {}.", option, count, least, most));
    }
    return count;
}

// The grid and the model over it.
struct Task {
    Study study;
    ModelTermsText::Terms terms;
    SettingsGrid grid;
    NCDataMatrix<float> model;
};

void RequireTellable(const NCDOE::ModelMatrix& model, const StudyFactors& factors) {
    const std::vector<std::string> names = ColumnNames(model, factors, 1);
    const std::vector<std::string> dependent = DependentColumns(model.rows, names);
    if (!dependent.empty()) {
        FailWith(
            fmt::format("--levels: the {} points of the grid tell only {} of the {} columns of the "
                        "model apart; combinations of those before them are {}. Choose more levels "
                        "or a smaller model.",
                        model.rows.SizeRows(),
                        names.size() - dependent.size(),
                        names.size(),
                        ShortListOf(dependent)));
    }
}

void RequireRuns(long long runs, const NCDataMatrix<float>& model) {
    if (runs < model.SizeColumns()) {
        FailWith(fmt::format(
            "--runs: {} are too few; the model has {} columns.", runs, model.SizeColumns()));
    }
    if (runs > model.SizeRows()) {
        FailWith(
            fmt::format("--runs: {} are more than the grid has points, {}; choose more levels.",
                        runs,
                        model.SizeRows()));
    }
}

void NoteUnusedOptions(const Study& study, std::ostream& err) {
    std::vector<std::string> unused;
    for (const char* const option :
         {"centerPoints", "replicatedDesigns", "replicatedRuns", "runs", "designSpecificOptions"}) {
        if (study.options.has_child(option)) {
            unused.push_back(Quoted(option));
        }
    }
    if (!unused.empty()) {
        err << fmt::format(
            "{}: iopt does not use the options {}.\n", study.file, ListOf(unused, "and"));
    }
}

Task MakeTask(const IOptArguments& arguments, std::ostream& err) {
    Task task;
    task.study = ReadStudyFile(arguments.study);
    PrintNotes(task.study, err);
    if (task.study.options.has_child("blocks") &&
        task.study.options.get_child("blocks").get_integer() > 1) {
        FailWith(
            fmt::format("{}: options.blocks: iopt makes designs without blocks.", task.study.file));
    }
    if (arguments.runs.value_or(0) > task.study.MaxRuns() &&
        task.study.MaxRuns() != DesignOptions::cNoRunLimit) {
        FailWith(fmt::format("--runs: {} are more than the run limit of the study, {}.",
                             *arguments.runs,
                             task.study.MaxRuns()));
    }
    NoteUnusedOptions(task.study, err);
    task.terms = TermsOfStudy(task.study, arguments.model, arguments.modelTerms);
    task.grid = MakeSettingsGrid(
        task.study,
        CountIn(arguments.levels, IOptArguments::cDefaultLevels, 2, cMostLevels, "--levels"));
    NCDOE::ModelMatrix model =
        NCDOE::MakeModelMatrix(task.study.factors, task.terms, task.grid.points, 1);
    RequireTellable(model, task.study.factors);
    task.model = std::move(model.rows);
    return task;
}

// The best of several searches.
struct Found {
    std::vector<int> rows;  // points of the grid, from 0, ascending
    double value = std::numeric_limits<double>::infinity();
    double worst = 0;
    int designs = 0;  // of regular condition
    int best = 0;     // of the same value as the best
};

void Note(Found& found, std::vector<int> rows, double value) {
    constexpr double cSame = 1e-6;
    if (std::isnan(value)) {
        return;
    }
    ++found.designs;
    found.worst = std::max(found.worst, value);
    if (value < found.value * (1 - cSame)) {
        found.rows = std::move(rows);
        found.best = 1;
        found.value = value;
    } else if (value <= found.value * (1 + cSame)) {
        ++found.best;
    }
}

Found Search(const Task& task, unsigned int runs, long long starts, std::uint32_t seed) {
    const NCDOE::IOptimal search(task.model);
    NCProgress progress("Searching...", 0, static_cast<float>(starts), false, false, true, "");
    std::mt19937 seeds(seed);
    Found found;
    for (long long start = 0; start < starts; ++start) {
        constexpr std::uint32_t cPositive = 0x7fffffff;
        const int own = static_cast<int>(seeds() & cPositive);
        try {
            std::vector<int> rows =
                search.GetDesign(runs, own, cMostSteps, nullptr, Interrupt::IsRequested);
            const double value = search.GetIValue(rows);
            Note(found, std::move(rows), value);
        } catch (const NCError&) {
            // No regular start was drawn; another seed may draw one.
        } catch (const std::logic_error&) {
            // Rounding led this search astray.
        }
        if (!progress.SetValue(static_cast<float>(start + 1))) {
            throw CancelException();
        }
    }
    if (found.rows.empty()) {
        FailWith(
            fmt::format("--runs: none of {} searches found a design of {} runs of regular "
                        "condition; ask for more runs or more --starts.",
                        starts,
                        runs));
    }
    std::ranges::sort(found.rows);
    return found;
}

NCDataMatrix<float> RunsOf(const Found& found, const NCDataMatrix<float>& points) {
    NCDataMatrix<float> runs(static_cast<int>(found.rows.size()), points.SizeColumns());
    int next = 0;
    for (const int row : found.rows) {
        std::ranges::copy(points.RowSpan(row + 1), runs.RowSpan(++next).begin());
    }
    return runs;
}

void PrintFound(const Task& task,
                const Found& found,
                const NCDataMatrix<float>& runs,
                long long starts,
                std::ostream& out) {
    const auto print = [&out](const char* label, const std::string& value) {
        out << fmt::format("{:<32}{}\n", label, value);
    };
    print("Model", ModelTermsText::TextOf(task.terms, task.study.factors));
    print("Columns of the model", fmt::format("{}", task.model.SizeColumns()));
    print("Points of the grid",
          task.grid.all == task.grid.points.SizeRows()
              ? fmt::format("{}", task.grid.all)
              : fmt::format("{} of {}", task.grid.points.SizeRows(), task.grid.all));
    print("Runs", fmt::format("{}", runs.SizeRows()));
    bool stop = false;
    out << Figures::Lines(DesignStatistics::CalculateStatistics(
        task.study.factors, task.terms, runs, &task.grid.points, false, 1, stop));
    print("Searches",
          fmt::format("{}, of which {} ended at the I-value {}; the worst ended at {}",
                      starts,
                      found.best,
                      Figures::Text(found.value),
                      Figures::Text(found.worst)));
}

std::string Worksheet(const NCDataMatrix<float>& matrix,
                      const StudyFactors& factors,
                      std::uint32_t seed) {
    std::vector<WorksheetRun> runs = DecodeRuns(matrix, factors, {false, false, 1});
    const std::vector<int> order = MakeRunOrder(runs, seed);
    for (std::size_t i = 0; i < runs.size(); ++i) {
        runs[i].runOrder = order[i];
    }
    return ToCsv(MakeWorksheetTable(runs, factors, false));
}

}  // namespace

void RunIOpt(const IOptArguments& arguments, std::ostream& out, std::ostream& err) {
    if (!arguments.output.empty() && IsSameFile(arguments.output, arguments.study)) {
        FailWith(fmt::format("-o: {} is the study itself; choose another file.", arguments.output));
    }
    const long long runs = CountIn(arguments.runs, 0, 1, StudyLimits::cMaxRuns, "--runs");
    const long long starts =
        CountIn(arguments.starts, IOptArguments::cDefaultStarts, 1, cMostStarts, "--starts");
    const Task task = MakeTask(arguments, err);
    RequireRuns(runs, task.model);
    const std::uint32_t seed = arguments.seed ? *arguments.seed : std::random_device{}();
    const Found found = Search(task, static_cast<unsigned int>(runs), starts, seed);
    const NCDataMatrix<float> design = RunsOf(found, task.grid.points);
    const std::string csv = Worksheet(design, task.study.factors, seed);
    Interrupt::ThrowIfRequested();
    if (arguments.output.empty()) {
        out << csv;
    } else {
        QvFile::ReplaceAll(arguments.output, csv);
    }
    // The worksheet may have the output for itself.
    PrintFound(task, found, design, starts, arguments.output.empty() ? err : out);
    err << fmt::format("I-optimal: {} runs, seed {}\n", runs, seed);
}
