#include "host/JudgedDesign.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "foundation/utl/QvFile.h"
#include "host/CombinatorialRequest.h"
#include "host/HostError.h"
#include "host/Notes.h"
#include "host/OnionRequest.h"
#include "host/Project.h"
#include "host/Proposals.h"
#include "host/RunsFile.h"
#include "host/StudyFile.h"

namespace {

using Matrix = NCDataMatrix<float>;
using Terms = ModelTermsText::Terms;

// Cells of a candidate set that is made here.
constexpr unsigned int cMostCandidateCells = 10'000'000;
constexpr std::size_t cMostProjectBytes = std::size_t{1} << 30U;

// A project is a configuration store, which tells its format at its beginning.
bool IsProject(const std::string& path) {
    const std::string text = QvFile::ReadAll(path, cMostProjectBytes);
    constexpr std::size_t cHead = 200;
    const std::string_view head = std::string_view(text).substr(0, cHead);
    return head.find("\"format\"") != std::string_view::npos &&
           head.find("QORVA configuration") != std::string_view::npos;
}

// A project and a worksheet have their runs already.
void RequireNothingToBuild(const DesignRequest& request, const std::string& holder) {
    const OptimalRequest& optimal = request.optimal;
    const std::array<std::pair<const char*, bool>, 15> given{
        {{"--design", !request.design.empty()},
         {"--runs", request.runs.has_value()},
         {"--center-points", request.centerPoints.has_value()},
         {"--replicates", request.replicates.has_value()},
         {"--replicated-runs", request.replicatedRuns.has_value()},
         {"--generators", request.generators.has_value()},
         {"--fold-over", request.foldOver},
         {"--repetitions", optimal.repetitions.has_value()},
         {"--run-range", optimal.runRange.has_value()},
         {"--select-by", !optimal.selectBy.empty()},
         {"--inclusions", !optimal.inclusions.empty()},
         {"--balance-on", !optimal.balanceOn.empty()},
         {"--only-balanced", optimal.onlyBalanced},
         {"--no-potential-terms", optimal.noPotentialTerms},
         {"--select", optimal.select.has_value()}}};
    for (const auto& [option, isGiven] : given) {
        if (isGiven) {
            FailWith(fmt::format("{}: {} holds its runs; no design is built.", option, holder));
        }
    }
    if (const char* option = FirstOption(request.onion)) {
        FailWith(fmt::format("{}: {} holds its runs; no design is built.", option, holder));
    }
}

void AppendLevel(std::vector<float>& row, int level, int levels) {
    const auto coding = Factors::MakeCodingMatrix(CEType::Qualitative, levels);
    const auto codes = coding->RowSpan(level + 1);
    row.insert(row.end(), codes.begin(), codes.end());
}

// Runs in real units with coding columns.
Matrix Expanded(const std::vector<WorksheetRun>& runs, const StudyFactors& factors, int blocks) {
    Matrix matrix(static_cast<int>(runs.size()),
                  static_cast<int>(factors.GetDesignFactorCountExpanded()) + blocks - 1);
    int number = 0;
    for (const WorksheetRun& run : runs) {
        std::vector<float> row;
        for (std::size_t i = 0; i < run.values.size(); ++i) {
            const StudyFactor& factor = factors.All()[i];
            if (factor.type == CEType::Qualitative) {
                AppendLevel(
                    row, static_cast<int>(run.values[i]), static_cast<int>(factor.levels.size()));
            } else {
                row.push_back(run.values[i]);
            }
        }
        if (blocks > 1) {
            AppendLevel(row, run.block - 1, blocks);
        }
        std::ranges::copy(row, matrix.RowSpan(++number).begin());
    }
    return matrix;
}

// What the model and the candidates of a subject are told from.
struct Subject {
    BuilderHandle builder;  // none for a worksheet of a study
    DesignOptions options;
};

const D_OptimalOptions* FamilyOptions(const Subject& subject) {
    return subject.builder && IsDOptimal(*subject.builder)
               ? dynamic_cast<const D_OptimalOptions*>(subject.options.GetDesignSpecificOptions())
               : nullptr;
}

// The options that hold the terms of a search.
const D_OptimalOptions* TermOptions(const Subject& subject) {
    const bool hasTerms =
        subject.builder && (IsDOptimal(*subject.builder) || IsCombinatorial(*subject.builder));
    return hasTerms
               ? dynamic_cast<const D_OptimalOptions*>(subject.options.GetDesignSpecificOptions())
               : nullptr;
}

// The candidates that the layers of an onion design were picked from; null without any.
const CandidateSet* LayeredCandidates(const Subject& subject) {
    const bool isLayered = subject.builder && IsOnion(*subject.builder) &&
                           subject.options.GetDesignSpecificOptions() != nullptr;
    const CandidateSet* set =
        isLayered ? &subject.options.GetDesignSpecificOptions()->GetCandidateSet() : nullptr;
    return set != nullptr && set->SizeRows() > 0 ? set : nullptr;
}

EModel::Type ModelOfObjective(EObjective::Type objective) {
    return objective == EObjective::Optimization || objective == EObjective::SystemCharacterization
               ? EModel::Quadratic
               : EModel::Linear;
}

EModel::Type NamedModel(const std::string& name) {
    const EModel::Type model = EModel::GetType(name);
    if (model == EModel::None) {
        FailWith(
            fmt::format("--model: {} is no model; allowed are linear, interaction, quadratic, "
                        "special cubic, cubic and linear+quadratic.",
                        Quoted(name)));
    }
    return model;
}

// The model by its name for both kinds of factors.
ModelTerms::Request ModelRequestOf(EModel::Type model, const JudgedDesign& design) {
    ModelTerms::Request request;
    request.process = model;
    request.mixture = design.study.factors.IsMixture() ? model : EModel::None;
    request.processMixtureInteraction =
        model != EModel::Linear && design.study.factors.IsProcessAndMixture();
    request.blocks = static_cast<unsigned int>(design.blocks);
    return request;
}

Terms TermsByModel(const Subject& subject, const JudgedDesign& design) {
    const StudyFactors& factors = design.study.factors;
    if (const D_OptimalOptions* family = TermOptions(subject)) {
        return family->GetModel(subject.builder->IsDesign(), factors, subject.options);
    }
    const EModel::Type model =
        subject.options.GetModel() != EModel::None ? subject.options.GetModel() : EModel::Linear;
    ModelTerms::Request request = ModelRequestOf(model, design);
    request.design = subject.builder ? subject.builder->IsDesign() : EDesign::DOpt;
    return ModelTerms::Make(ModelTerms::Describe(factors), request);
}

Terms TermsOf(const JudgeRequest& asked, const Subject& subject, const JudgedDesign& design) {
    const StudyFactors& factors = design.study.factors;
    // A model that is named wins over the terms of the study, but not over those of the request.
    const bool isNamed = !asked.request.model.empty() && !asked.request.optimal.modelTerms;
    if (isNamed) {
        return ModelTerms::Make(ModelTerms::Describe(factors),
                                ModelRequestOf(NamedModel(asked.request.model), design));
    }
    // The options of a search hold its terms, those of the study among them.
    if (!asked.request.optimal.modelTerms && TermOptions(subject) != nullptr) {
        return TermsByModel(subject, design);
    }
    if (const auto given = TermsGiven(asked.request.optimal.modelTerms, design.study)) {
        return ModelTermsText::Read(given->text, design.study, design.blocks, given->place);
    }
    return TermsByModel(subject, design);
}

// The candidates of a search, with the runs on top that were included.
Matrix SearchedCandidates(const D_OptimalOptions& family,
                          const DesignOptions& options,
                          const StudyFactors& factors) {
    const Matrix inclusions = family.GetUseInclusion() ? family.GetInclusions() : Matrix();
    const auto most = static_cast<int>(std::min<long long>(
        static_cast<long long>(options.GetRuns()) + family.GetRunRange(), StudyLimits::cMaxRuns));
    Matrix rows = family.GetCandidateSet().GetMatrix();
    if (family.GetNewCandidateSet() || rows.SizeRows() == 0) {
        DesignOptions largest = options;
        largest.SetRuns(static_cast<unsigned int>(most));
        rows = DOpt::GenerateCandidateset(
            nullptr, factors, largest, true, nullptr, nullptr, cMostCandidateCells);
    } else {
        while (rows.SizeRows() < most - inclusions.SizeRows()) {
            rows.ConcatRows(rows);
        }
    }
    if (inclusions.SizeRows() == 0) {
        return rows;
    }
    if (inclusions.SizeColumns() != rows.SizeColumns()) {
        throw Exception(ExceptionMessage::translate(
            "The inclusions file and the candidate set are not consistent. They don't have the "
            "same variables."));
    }
    Matrix all = inclusions;
    all.ConcatRows(rows);
    return all;
}

bool HasPower(const Terms& terms) {
    return std::ranges::any_of(terms, [](const std::vector<int>& term) {
        return std::ranges::adjacent_find(term) != term.end();
    });
}

// The candidates of the region for a model of that kind.
Matrix RegionCandidates(const JudgedDesign& design, const Subject& subject) {
    auto family = std::make_shared<D_OptimalOptions>();
    const EModel::Type model = HasPower(design.terms) ? EModel::Quadratic : EModel::Linear;
    family->SetDOptMixtureModel(design.study.factors.IsMixture()
                                    ? MixtureModelFor(design.terms, design.study.factors)
                                    : EModel::None);
    family->SetConstraints(design.study.constraints, design.study.factors);
    DesignOptions options = subject.options;
    options.SetModel(model);
    options.SetBlocks(static_cast<unsigned int>(design.blocks));
    options.SetDesignSpecificOptions(family);
    return DOpt::GenerateCandidateset(
        nullptr, design.study.factors, options, false, nullptr, nullptr, cMostCandidateCells);
}

Matrix CandidatesOf(const JudgeRequest& asked,
                    const Subject& subject,
                    const JudgedDesign& design,
                    std::ostream& err) {
    const D_OptimalOptions* family = FamilyOptions(subject);
    if (const CandidateSet* layered = LayeredCandidates(subject)) {
        return layered->GetMatrix();
    }
    // Of a design that was built here, the file's candidates are those of the search.
    if (!asked.request.optimal.candidates.empty() && family == nullptr) {
        return ReadFittingCandidates(asked.request.optimal.candidates, design.study, design.blocks)
            .GetMatrix();
    }
    try {
        return family != nullptr
                   ? SearchedCandidates(*family, subject.options, design.study.factors)
                   : RegionCandidates(design, subject);
    } catch (const Exception& exception) {
        err << fmt::format(
            "There are no candidates to judge predictions over: {} G-efficiency and I-value are "
            "left out.\n",
            exception.what());
        return {};
    }
}

void TakeDesign(JudgedDesign& design, const Matrix& matrix, const DesignForm& form) {
    design.blocks = form.blocks;
    design.runs =
        Expanded(DecodeRuns(matrix, design.study.factors, form), design.study.factors, form.blocks);
}

Subject BuildSubject(const JudgeRequest& asked, JudgedDesign& design, std::ostream& err) {
    DesignRequest request = asked.request;
    request.optimal.termsAreForAnyDesign = true;
    request.optimal.candidatesAreForAnyDesign = true;
    const BuiltDesign built = MakeDesign(design.study, request);
    TakeDesign(design,
               *built.design->GetDesignMatrix(),
               {built.design->IsDesignMatrixCoded(),
                built.design->IsMixtureOnlyDesign(),
                static_cast<int>(built.options.GetBlocks())});
    design.name = built.builder->GetDisplayName();
    for (const std::string& note : built.notes) {
        err << note << '\n';
    }
    err << fmt::format("{}: {} runs\n", design.name, design.runs.SizeRows());
    return {built.builder, built.options};
}

Subject LoadSubject(const JudgeRequest& asked, JudgedDesign& design) {
    const Project project = LoadProject(asked.subject);
    design.study = project.study;
    if (asked.request.blocks) {
        FailWith("--blocks: a project holds its blocks.");
    }
    TakeDesign(design, project.matrix, project.form);
    design.name = project.builder->GetDisplayName();
    return {project.builder, project.options};
}

int BlocksOf(const JudgeRequest& asked, const Study& study) {
    constexpr long long cMost = 1000;
    long long blocks = asked.request.blocks.value_or(1);
    if (!asked.request.blocks && study.options.has_child("blocks")) {
        blocks = study.options.get_child("blocks").get_integer();
    }
    if (blocks < 1 || blocks > cMost) {
        FailWith(fmt::format("{}: {} must be a whole number from 1 to {}.",
                             asked.request.blocks ? "--blocks" : study.file + ": options.blocks",
                             blocks,
                             cMost));
    }
    return static_cast<int>(blocks);
}

Subject StudyAlone(const JudgedDesign& design) {
    Subject subject;
    subject.options.SetObjective(design.study.objective);
    subject.options.SetBlocks(static_cast<unsigned int>(design.blocks));
    subject.options.SetModel(design.study.model.value_or(ModelOfObjective(design.study.objective)));
    return subject;
}

void TakeWorksheet(const std::string& path, JudgedDesign& design, std::ostream& err) {
    RunsFile file = ReadRunsFile(path, design.study, design.blocks);
    for (const std::string& note : file.notes) {
        err << fmt::format("{}: {}\n", path, note);
    }
    design.runs = std::move(file.matrix);
    design.name = path;
}

}  // namespace

std::vector<WorksheetRun> JudgedDesign::Decoded() const {
    return DecodeRuns(runs, study.factors, {false, false, blocks});
}

JudgedDesign MakeJudgedDesign(const JudgeRequest& asked, std::ostream& err) {
    if (asked.validating) {
        D_Optimal::SetValidating();
    }
    JudgedDesign design;
    Subject subject;
    const bool isProject = IsProject(asked.subject);
    if (isProject || !asked.worksheet.empty()) {
        RequireNothingToBuild(asked.request, isProject ? "a project" : "a worksheet");
    }
    if (isProject) {
        subject = LoadSubject(asked, design);
    } else {
        design.study = ReadStudyFile(asked.subject);
        PrintNotes(design.study, err);
        if (asked.worksheet.empty()) {
            subject = BuildSubject(asked, design, err);
        } else {
            design.blocks = BlocksOf(asked, design.study);
            subject = StudyAlone(design);
        }
    }
    if (!asked.worksheet.empty()) {
        TakeWorksheet(asked.worksheet, design, err);
    }
    design.terms = TermsOf(asked, subject, design);
    design.candidates = CandidatesOf(asked, subject, design, err);
    if (design.candidates.SizeRows() > 0 &&
        design.candidates.SizeColumns() != design.runs.SizeColumns()) {
        FailWith(fmt::format("{}: the candidates have {} columns, the runs {}.",
                             asked.subject,
                             design.candidates.SizeColumns(),
                             design.runs.SizeColumns()));
    }
    return design;
}

Terms TermsOfStudy(const Study& study,
                   const std::string& model,
                   const std::optional<std::string>& modelTerms) {
    JudgeRequest asked;
    asked.request.model = model;
    asked.request.optimal.modelTerms = modelTerms;
    JudgedDesign design;
    design.study = study;
    return TermsOf(asked, StudyAlone(design), design);
}
