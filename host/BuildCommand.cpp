#include "host/BuildCommand.h"

#include <fmt/format.h>

#include <random>

#include "foundation/utl/QvFile.h"
#include "host/CombinatorialResults.h"
#include "host/FilePaths.h"
#include "host/HostError.h"
#include "host/Interrupt.h"
#include "host/Notes.h"
#include "host/OptimalResults.h"
#include "host/Project.h"
#include "host/StudyFile.h"

namespace {

// Writing over the study, or both results into one file, would lose what the user has.
void RequireDifferentFiles(const BuildArguments& arguments) {
    for (const auto& [option, path] :
         {std::pair{"-o", &arguments.output}, std::pair{"--project", &arguments.project}}) {
        if (!path->empty() && IsSameFile(*path, arguments.study)) {
            FailWith(
                fmt::format("{}: {} is the study itself; choose another file.", option, *path));
        }
    }
    if (!arguments.output.empty() && !arguments.project.empty() &&
        IsSameFile(arguments.output, arguments.project)) {
        FailWith(fmt::format("--project: {} is the worksheet's file, too; choose another file.",
                             arguments.project));
    }
}

Project MakeProject(Study&& study, const BuildArguments& arguments, BuiltDesign& built) {
    Project project;
    project.builder = built.builder;
    project.options = built.options;
    project.matrix = *built.design->GetDesignMatrix();
    project.form = {built.design->IsDesignMatrixCoded(),
                    built.design->IsMixtureOnlyDesign(),
                    static_cast<int>(built.options.GetBlocks())};
    project.isFoldedOver = built.isFoldedOver;
    project.seed = arguments.seed ? *arguments.seed : std::random_device{}();
    project.runOrder =
        MakeRunOrder(DecodeRuns(project.matrix, study.factors, project.form), project.seed);
    project.study = std::move(study);
    return project;
}

}  // namespace

void RunBuild(const BuildArguments& arguments, std::ostream& out, std::ostream& err) {
    RequireDifferentFiles(arguments);
    Study study = ReadStudyFile(arguments.study);
    PrintNotes(study, err);
    if (arguments.validating) {
        D_Optimal::SetValidating();
    }
    BuiltDesign built = MakeDesign(study, arguments.request);
    const Project project = MakeProject(Study(study), arguments, built);
    const std::string csv =
        ToCsv(MakeWorksheetTable(project.Runs(), project.study.factors, arguments.coded));
    const auto* const reduced = dynamic_cast<const J2Design*>(built.design.get());
    if (reduced == nullptr) {
        Interrupt::ThrowIfRequested();
    } else if (Interrupt::IsRequested()) {
        err << fmt::format("Stopped: the design is the best of {} found so far.\n",
                           reduced->GetResults().size());
    }
    // The project last: a worksheet that cannot be written leaves it as it was.
    if (arguments.output.empty()) {
        out << csv << std::flush;
        if (!out) {
            FailWith("The output cannot be written.");
        }
    } else {
        QvFile::ReplaceAll(arguments.output, csv);
    }
    if (!arguments.project.empty()) {
        SaveProject(project, *built.design, arguments.project);
    }
    if (const auto* search = dynamic_cast<const D_Optimal*>(built.design.get())) {
        // The worksheet may have the output for itself.
        (arguments.output.empty() ? err : out)
            << FormatOptimalResults(*search, study.factors, built.options);
    } else if (reduced != nullptr) {
        (arguments.output.empty() ? err : out)
            << FormatCombinatorialResults(*reduced, study.factors, built.options);
    }
    for (const std::string& note : built.notes) {
        err << note << '\n';
    }
    if (const auto* layered = dynamic_cast<const OnionDesign*>(built.design.get())) {
        (arguments.output.empty() ? err : out) << FormatLayers(*layered, built.options);
    }
    err << fmt::format("{}: {} runs, seed {}\n",
                       built.builder->GetDisplayName(),
                       project.matrix.SizeRows(),
                       project.seed);
}
