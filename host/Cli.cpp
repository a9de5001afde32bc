// The only file that knows the command line library, which is slow to compile.

#include "host/Cli.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <functional>
#include <new>

#include "foundation/utl/Exceptions.h"
#include "host/AliasesCommand.h"
#include "host/BuildCommand.h"
#include "host/CandidatesCommand.h"
#include "host/EvaluateCommand.h"
#include "host/HostError.h"
#include "host/IOptCommand.h"
#include "host/PlateCommand.h"
#include "host/PowerCommand.h"
#include "host/ProposeCommand.h"
#include "host/SelectCommand.h"
#include "host/ShowCommand.h"
#include "host/StabilityCommand.h"
#include "host/SubsetsCommand.h"

namespace {

constexpr const char* cFooter =
    "Exit codes: 0 done, 1 no valid design, 2 bad input or usage, 130 stopped by Ctrl-C.";

// The options of all commands. Declaring them fills the argument records; the command that was
// named is left in `run`.
class CommandLine {
  public:
    CommandLine(std::ostream& out, std::ostream& err)
        : app_("Designs of experiments from a study file: proposes, builds and keeps designs.",
               "ncdoe"),
          out_(out),
          err_(err) {
        app_.set_version_flag("--version", "ncdoe " NCDOE_VERSION);
        app_.require_subcommand(1);
        app_.footer(cFooter);
        AddPropose();
        AddBuild();
        AddShow();
        AddSelect();
        AddAliases();
        AddCandidates();
        AddEvaluate();
        AddPower();
        AddIOpt();
        AddStability();
        AddSubsets();
        AddPlate();
    }

    // Returns 0 when the user asked for help or version, in which case there is nothing to run.
    int Parse(std::vector<std::string> arguments) {
        // The library takes them from the back.
        std::reverse(arguments.begin(), arguments.end());
        try {
            app_.parse(std::move(arguments));
        } catch (const CLI::ParseError& error) {
            run_ = nullptr;
            return app_.exit(error, out_, err_) == 0 ? ExitCode::cDone : ExitCode::cBadInput;
        }
        return ExitCode::cDone;
    }

    void Run() {
        if (run_) {
            run_();
        }
    }

  private:
    void AddPropose() {
        CLI::App* command = app_.add_subcommand("propose", "List the valid designs of a study");
        command->footer(cFooter);
        command->add_option("STUDY", propose_.study, "Study file (JSON)")->required();
        command->add_flag("--json", propose_.json, "Print JSON instead of a table");
        command->callback([this] { run_ = [this] { RunPropose(propose_, out_, err_); }; });
    }

    void AddBuild() {
        CLI::App* command =
            app_.add_subcommand("build", "Build a design and write its worksheet as CSV");
        command->footer(cFooter);
        DesignRequest& request = build_.request;
        command->add_option("STUDY", build_.study, "Study file (JSON)")->required();
        AddDesignOptions(*command, request);
        AddRunOptions(*command, request);
        command->add_option("--seed", build_.seed, "Seed of the run order; default: drawn");
        command->add_flag("--coded", build_.coded, "Write coded values instead of real ones");
        AddOptimalOptions(*command, request.optimal);
        AddTermOption(*command, request.optimal);
        AddOnionOptions(*command, request.onion);
        command->add_option(
            "--levels", request.levels, "J2: coded levels of continuous factors; default: 2");
        command->add_flag("--validating", build_.validating, "Searches repeat exactly");
        command->add_option("-o,--output", build_.output, "Worksheet file; default: the output");
        command->add_option("--project", build_.project, "File to save study and design in");
        command->callback([this] { run_ = [this] { RunBuild(build_, out_, err_); }; });
    }

    // What tells one design of a study from another.
    static void AddDesignOptions(CLI::App& command, DesignRequest& request) {
        command.add_option(
            "--design",
            request.design,
            "Short or display name; default: the study's, else the strongest proposal");
        command.add_option("--model", request.model, "Regression model, such as interaction");
        command.add_option("--runs", request.runs, "Runs without centre points and replicates");
        command.add_option("--blocks", request.blocks, "Number of blocks");
        command.add_option("--generators",
                           request.generators,
                           "Words such as E=ABCD,Block1=ABC, or a JSON array of words");
        command.add_flag("--fold-over", request.foldOver, "Append the mirror image of the runs");
    }

    // Runs beside those of the design proper.
    static void AddRunOptions(CLI::App& command, DesignRequest& request) {
        command.add_option("--center-points", request.centerPoints, "Number of centre points");
        command.add_option("--replicates", request.replicates, "Further copies of the design");
        command.add_option("--replicated-runs", request.replicatedRuns, "Runs to repeat");
    }

    // What steers the search for a D-optimal design.
    static void AddOptimalOptions(CLI::App& command, OptimalRequest& request) {
        command.add_option("--repetitions",
                           request.repetitions,
                           "DOpt, J2: searches of each run count; default: 5, J2 10");
        command.add_option(
            "--run-range",
            request.runRange,
            "DOpt, J2: run counts searched on either side of --runs; default: 2, J2 0");
        command.add_option(
            "--select-by",
            request.selectBy,
            "DOpt, J2: g-efficiency, condition-number, log-determinant or i-optimality");
        command.add_option(
            "--inclusions", request.inclusions, "DOpt: CSV file of runs that the design holds");
        command.add_option("--candidates",
                           request.candidates,
                           "DOpt and OnionDOpt: candidate set file, OnionDOpt also a CSV table; "
                           "default: generated candidates");
        command.add_option("--balance-on",
                           request.balanceOn,
                           "DOpt: qualitative factor whose levels occur equally often");
        command.add_flag("--only-balanced", request.onlyBalanced, "DOpt: balanced results only");
        command.add_flag("--no-potential-terms",
                         request.noPotentialTerms,
                         "DOpt: no guard against terms beyond the model");
        command.add_option(
            "--select",
            request.select,
            "DOpt, J2: number of the result to take; default: the best by --select-by");
    }

    static void AddTermOption(CLI::App& command, OptimalRequest& request) {
        command.add_option("--model-terms",
                           request.modelTerms,
                           "Terms beside the main effects by factor name, such as \"A*B, A^2\"");
    }

    // How an onion design is divided.
    static void AddOnionOptions(CLI::App& command, OnionRequest& request) {
        command.add_option("--layers", request.layers, "OnionDOpt: number of layers");
        command.add_option(
            "--layer-runs", request.layerRuns, "OnionDOpt: runs of each layer, such as 5,5,7");
        command.add_option(
            "--layer-column",
            request.layerColumn,
            "OnionDOpt: column of --candidates that holds the layer, 1 being inmost");
        command.add_option("--score-column",
                           request.scoreColumn,
                           "OnionDOpt: column of --candidates to divide by; default: the distance "
                           "from the centre");
    }

    void AddShow() {
        CLI::App* command = app_.add_subcommand("show", "Print a saved project");
        command->footer(cFooter);
        command->add_option("PROJECT", show_.project, "Project file")->required();
        command->add_flag("--coded", show_.coded, "Print coded values instead of real ones");
        command->callback([this] { run_ = [this] { RunShow(show_, out_); }; });
    }

    void AddSelect() {
        CLI::App* command = app_.add_subcommand(
            "select", "Make another result of a D-optimal search the design of a project");
        command->footer(cFooter);
        command->add_option("PROJECT", select_.project, "Project file")->required();
        command->add_option("RESULT", select_.number, "Number of the result, from 1")->required();
        command->add_option("-o,--output", select_.output, "Worksheet file; default: the output");
        command->add_option("--project", select_.saved, "File to save in; default: PROJECT");
        command->callback([this] { run_ = [this] { RunSelect(select_, out_, err_); }; });
    }

    void AddAliases() {
        CLI::App* command = app_.add_subcommand(
            "aliases", "Print which effects of a two-level design cannot be told apart");
        command->footer(cFooter);
        command->add_option("STUDY", aliases_.study, "Study file (JSON)")->required();
        AddDesignOptions(*command, aliases_.request);
        command->add_flag("--json", aliases_.json, "Print JSON instead of text");
        command->callback([this] { run_ = [this] { RunAliases(aliases_, out_, err_); }; });
    }

    void AddCandidates() {
        CLI::App* command = app_.add_subcommand(
            "candidates", "Generate or check the candidate runs of a constrained region");
        command->footer(cFooter);
        CandidatesArguments& given = candidates_;
        command->add_option("STUDY", given.study, "Study file (JSON)")->required();
        command->add_option("--model",
                            given.model,
                            "Model of the process factors; default: the study's, else linear");
        command->add_option("--mixture-model",
                            given.mixtureModel,
                            "Model of the mixture; default: that of the process factors");
        command->add_flag("--no-potential-terms",
                          given.noPotentialTerms,
                          "Edges get their middle instead of points at their thirds");
        command->add_option(
            "--limit", given.limit, "Numbers (rows times columns) at most; default: 10000000");
        command->add_option("--candidates", given.candidates, "Candidate set file to check");
        command->add_option("-o,--output", given.output, "File to write the candidate set to");
        command->add_flag("--json", given.json, "Print JSON instead of text");
        command->callback([this] { run_ = [this] { RunCandidates(candidates_, out_, err_); }; });
    }

    // The runs to judge: a design to build, a project, or a worksheet.
    static void AddJudged(CLI::App& command, JudgeRequest& judged) {
        command.add_option("SUBJECT", judged.subject, "Study file (JSON) or project file")
            ->required();
        command.add_option(
            "--worksheet", judged.worksheet, "CSV file of the runs to judge instead");
        DesignRequest& request = judged.request;
        AddDesignOptions(command, request);
        AddRunOptions(command, request);
        AddOptimalOptions(command, request.optimal);
        AddTermOption(command, request.optimal);
        AddOnionOptions(command, request.onion);
        command.add_flag("--validating", judged.validating, "Searches repeat exactly");
    }

    void AddEvaluate() {
        CLI::App* command = app_.add_subcommand(
            "evaluate", "Tell how well a design serves a model: figures, leverages, variances");
        command->footer(cFooter);
        AddJudged(*command, evaluate_.judged);
        command->add_option("--correlation-limit",
                            evaluate_.correlationLimit,
                            "Correlations of at least this size are printed; default: 0.3");
        command->add_flag("--all-correlations", evaluate_.allCorrelations, "All of them are");
        command->callback([this] { run_ = [this] { RunEvaluate(evaluate_, out_, err_); }; });
    }

    void AddPower() {
        CLI::App* command = app_.add_subcommand(
            "power", "Tell the chance to detect effects of each term of a model");
        command->footer(cFooter);
        AddJudged(*command, power_.judged);
        command->add_option("--sigma", power_.sigma, "Standard deviation of one run");
        command->add_option(
            "--effects", power_.effects, "Effects in units of sigma; default: 1,2,3");
        command->add_option("--alpha", power_.alpha, "Level of significance; default: 0.05");
        command->add_option(
            "--power", power_.power, "Print the smallest effects detected with this chance");
        command->callback([this] { run_ = [this] { RunPower(power_, out_, err_); }; });
    }

    void AddIOpt() {
        CLI::App* command = app_.add_subcommand(
            "iopt", "Search a design of small average prediction variance on a grid");
        command->footer(cFooter);
        command->add_option("STUDY", iopt_.study, "Study file (JSON)")->required();
        command->add_option("--runs", iopt_.runs, "Number of runs")->required();
        command->add_option(
            "--levels", iopt_.levels, "Settings of a continuous factor on the grid; default: 5");
        command->add_option("--model",
                            iopt_.model,
                            "Regression model; default: the study's, else that of its objective");
        command->add_option("--model-terms",
                            iopt_.modelTerms,
                            "Terms beside the main effects by factor name, such as \"A*B, A^2\"");
        command->add_option("--starts,--repetitions",
                            iopt_.starts,
                            "Searches, each from its own random start; default: 10");
        command->add_option("--seed", iopt_.seed, "Seed of starts and run order; default: drawn");
        command->add_option("-o,--output", iopt_.output, "Worksheet file; default: the output");
        command->callback([this] { run_ = [this] { RunIOpt(iopt_, out_, err_); }; });
    }

    void AddStability() {
        CLI::App* command = app_.add_subcommand(
            "stability", "Lay out the runs of a stability study over its points in time");
        command->footer(cFooter);
        command->add_option("STUDY", stability_.study, "Study file (JSON)")->required();
        command->add_option("--used",
                            stability_.used,
                            "Reduction:index of each point in time, such as 1:1,3:1,3:2,3:3,1:1");
        command->add_option("--times", stability_.times, "Points in time, such as 0,3,6,9,12");
        AddSearchOptions(*command, stability_.search);
        command->callback([this] { run_ = [this] { RunStability(stability_, out_, err_); }; });
    }

    void AddSubsets() {
        CLI::App* command = app_.add_subcommand(
            "subsets", "Divide the full factorial into complementary subsets and judge them");
        command->footer(cFooter);
        command->add_option("STUDY", subsets_.study, "Study file (JSON)")->required();
        command->add_option("--reduction", subsets_.reduction, "Number of subsets; default: 2");
        AddSearchOptions(*command, subsets_.search);
        command->callback([this] { run_ = [this] { RunSubsets(subsets_, out_, err_); }; });
    }

    void AddPlate() {
        CLI::App* command =
            app_.add_subcommand("plate", "Spread a study over microtiter plates, well by well");
        command->footer(cFooter);
        PlateArguments& given = plate_;
        command->add_option("STUDY", given.study, "Study file (JSON)")->required();
        command->add_option("--size", given.size, "Wells of a plate: 96 (default), 384 or 1536");
        command->add_option("--plates", given.plates, "Number of plates; default: 1");
        command->add_option(
            "--horizontal", given.horizontal, "Factors along the columns of the plate, as A,B");
        command->add_option("--vertical", given.vertical, "Factors along its rows, as C,D");
        command->add_option("--horizontal-design",
                            given.horizontalDesign,
                            "Design along the columns; default: the strongest proposal");
        command->add_option("--vertical-design", given.verticalDesign, "Design along the rows");
        command->add_option("--plate-factors",
                            given.plateFactors,
                            "yes: one more column tells the plate's letter; default: no");
        command->add_flag(
            "--validating", given.validating, "The same positions every time, for checks");
        command->add_option("-o,--output", given.output, "CSV file of the runs to write, too");
        command->callback([this] { run_ = [this] { RunPlate(plate_, out_, err_); }; });
    }

    static void AddSearchOptions(CLI::App& command, SubsetSearchRequest& search) {
        command.add_option("--seconds", search.seconds, "Time limit of the search; 0: none");
        command.add_flag("--prefer-condition",
                         search.preferCondition,
                         "Look for small condition numbers instead of balance");
        command.add_option("--center-points",
                           search.centerPoints,
                           "Centre points of every set, or of single ones such as 1:1=3,3:2=1");
        command.add_option("--replicates",
                           search.replicates,
                           "Further copies of every set, or of single ones such as 1:1=1");
        command.add_flag("--csv", search.csv, "Print CSV instead of the table");
        command.add_option("-o,--output", search.output, "CSV file to write, too");
    }

    CLI::App app_;
    std::ostream& out_;
    std::ostream& err_;
    ProposeArguments propose_;
    BuildArguments build_;
    ShowArguments show_;
    SelectArguments select_;
    AliasesArguments aliases_;
    CandidatesArguments candidates_;
    EvaluateArguments evaluate_;
    PowerArguments power_;
    IOptArguments iopt_;
    StabilityArguments stability_;
    SubsetsArguments subsets_;
    PlateArguments plate_;
    std::function<void()> run_;
};

int Run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
    CommandLine commandLine(out, err);
    const int parsed = commandLine.Parse(arguments);
    if (parsed != ExitCode::cDone) {
        return parsed;
    }
    commandLine.Run();
    out.flush();
    if (!out) {
        FailWith("The output cannot be written.");
    }
    return ExitCode::cDone;
}

}  // namespace

int RunCommandLine(const std::vector<std::string>& arguments,
                   std::ostream& out,
                   std::ostream& err) {
    try {
        return Run(arguments, out, err);
    } catch (const NoValidDesign& reason) {
        err << reason.what() << '\n';
        return ExitCode::cNoValidDesign;
    } catch (const StoppedWork& reason) {
        err << reason.what() << '\n';
        return ExitCode::cStopped;
    } catch (const CancelException&) {
        err << "Stopped.\n";
        return ExitCode::cStopped;
    } catch (const Exception& exception) {
        err << exception.what() << '\n';
    } catch (const std::bad_alloc&) {
        err << "Internal error: not enough memory.\n";
    } catch (const std::exception& exception) {
        err << "Internal error: " << exception.what() << '\n';
    }
    return ExitCode::cBadInput;
}
