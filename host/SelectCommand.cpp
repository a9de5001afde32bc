#include "host/SelectCommand.h"

#include <fmt/format.h>

#include "foundation/utl/QvFile.h"
#include "host/FilePaths.h"
#include "host/HostError.h"
#include "host/Interrupt.h"
#include "host/OptimalResults.h"
#include "host/Project.h"

void RunSelect(const SelectArguments& arguments, std::ostream& out, std::ostream& err) {
    const std::string& saved = arguments.saved.empty() ? arguments.project : arguments.saved;
    if (!arguments.output.empty() &&
        (IsSameFile(arguments.output, saved) || IsSameFile(arguments.output, arguments.project))) {
        FailWith(fmt::format("-o: {} is the project; choose another file.", arguments.output));
    }
    Project project = LoadProject(arguments.project);
    const auto design = LoadOptimalDesign(project, arguments.project);
    if (design == nullptr && EDesign::IsJ2(project.builder->IsDesign())) {
        FailWith(
            fmt::format("{}: the runs of J2's other results are not kept; ask for one of them "
                        "by --select when the design is built.",
                        arguments.project));
    }
    if (design == nullptr) {
        FailWith(fmt::format("{}: the design {} has no results to select from; only DOpt has.",
                             arguments.project,
                             project.builder->GetShortString()));
    }
    SelectOptimalResult(
        *design, arguments.number, project.study.factors, project.options, "RESULT");
    project.matrix = *design->GetDesignMatrix();
    project.runOrder =
        MakeRunOrder(DecodeRuns(project.matrix, project.study.factors, project.form), project.seed);
    const std::string csv = ToCsv(MakeWorksheetTable(project.Runs(), project.study.factors, false));
    Interrupt::ThrowIfRequested();
    // The project last: a worksheet that cannot be written leaves it as it was.
    if (arguments.output.empty()) {
        out << csv << std::flush;
        if (!out) {
            FailWith("The output cannot be written.");
        }
    } else {
        QvFile::ReplaceAll(arguments.output, csv);
    }
    SaveProject(project, *design, saved);
    (arguments.output.empty() ? err : out)
        << FormatOptimalResults(*design, project.study.factors, project.options);
    err << fmt::format("{}: {} runs, seed {}\n",
                       project.builder->GetDisplayName(),
                       project.matrix.SizeRows(),
                       project.seed);
}
