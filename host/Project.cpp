#include "host/Project.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/HostError.h"
#include "host/Proposals.h"
#include "host/StudyFile.h"

namespace {

constexpr int cVersion = 1;
// Candidates of a search; more do not fit into a memory of today.
constexpr int cMostCandidateRows = 10'000'000;

// Reads of one section that say where something is missing.
class SectionReader {
  public:
    SectionReader(const ConfigurationSection& root, const char* name, const std::string& path)
        : section_(root.OpenSection(name)), name_(name), path_(path) {
        if (!section_) {
            FailWith(fmt::format(
                "{}: this is no project of ncdoe: the section \"{}\" is missing.", path, name));
        }
    }

    [[nodiscard]] int Int(const char* key) const {
        int value = 0;
        Require(section_->ReadInt(key, &value), key);
        return value;
    }
    [[nodiscard]] bool Bool(const char* key) const {
        bool value = false;
        Require(section_->ReadBool(key, &value), key);
        return value;
    }
    [[nodiscard]] std::string Text(const char* key) const {
        std::string value;
        Require(section_->ReadString(key, &value), key);
        return value;
    }
    [[nodiscard]] NCDataMatrix<float> Matrix(const char* key) const {
        NCDataMatrix<float> value;
        Require(section_->ReadMatrix(key, &value), key);
        return value;
    }
    [[nodiscard]] std::vector<int> Ints(const char* key) const {
        std::vector<int> value;
        Require(section_->ReadIntVector(key, &value), key);
        return value;
    }
    [[nodiscard]] std::vector<std::string> Texts(const char* key) const {
        std::vector<std::string> value;
        Require(section_->ReadStringList(key, &value, ';') > 0, key);
        return value;
    }

  private:
    void Require(bool wasRead, const char* key) const {
        if (!wasRead) {
            FailWith(
                fmt::format("{}: the value \"{}\" of the section \"{}\" is missing or of "
                            "another kind.",
                            path_,
                            key,
                            name_));
        }
    }

    std::unique_ptr<const ConfigurationSection> section_;
    const char* name_;
    const std::string& path_;
};

void SaveWorksheet(const Project& project, ConfigurationSection& root) {
    const auto section = root.OpenOrCreateSection("Worksheet");
    section->WriteMatrix("DesignMatrix", project.matrix);
    section->WriteBool("Coded", project.form.coded);
    section->WriteBool("Pseudo", project.form.pseudo);
    section->WriteInt("Blocks", project.form.blocks);
    section->WriteBool("FoldedOver", project.isFoldedOver);
    // As text, since the store's whole numbers have a sign.
    section->WriteKey("Seed", fmt::format("{}", project.seed));
    section->WriteIntVector("RunOrder", project.runOrder);
}

std::uint32_t ReadSeed(const SectionReader& worksheet, const std::string& path) {
    const std::string text = worksheet.Text("Seed");
    unsigned long long seed = 0;
    const bool digits = !text.empty() && text.size() <= 10 &&
                        std::all_of(text.begin(), text.end(), [](char letter) {
                            return letter >= '0' && letter <= '9';
                        });
    if (digits) {
        seed = std::stoull(text);
    }
    if (!digits || seed > UINT32_MAX) {
        FailWith(fmt::format("{}: the seed {} must be a whole number from 0 to {}.",
                             path,
                             Quoted(text),
                             UINT32_MAX));
    }
    return static_cast<std::uint32_t>(seed);
}

void RequirePermutation(std::vector<int> order, int rows, const std::string& path) {
    std::sort(order.begin(), order.end());
    bool fits = order.size() == static_cast<std::size_t>(rows);
    for (std::size_t i = 0; fits && i < order.size(); ++i) {
        fits = order[i] == static_cast<int>(i) + 1;
    }
    if (!fits) {
        FailWith(
            fmt::format("{}: the run order must hold every number from 1 to {} once.", path, rows));
    }
}

void LoadWorksheet(Project& project, const ConfigurationSection& root, const std::string& path) {
    const SectionReader worksheet(root, "Worksheet", path);
    project.matrix = worksheet.Matrix("DesignMatrix");
    project.form.coded = worksheet.Bool("Coded");
    project.form.pseudo = worksheet.Bool("Pseudo");
    project.form.blocks = worksheet.Int("Blocks");
    project.isFoldedOver = worksheet.Bool("FoldedOver");
    if (project.form.blocks < 1 || project.form.blocks > StudyLimits::cMaxRuns) {
        FailWith(fmt::format("{}: the block count {} must be from 1 to {}.",
                             path,
                             project.form.blocks,
                             StudyLimits::cMaxRuns));
    }
    project.seed = ReadSeed(worksheet, path);
    project.runOrder = worksheet.Ints("RunOrder");
    RequirePermutation(project.runOrder, project.matrix.SizeRows(), path);
}

BuilderHandle LoadBuilder(const ConfigurationSection& root, const std::string& path) {
    const std::string name =
        SectionReader(root, "DesignBuilder", path).Texts("DesignNameAndDesciption").front();
    BuilderHandle builder = FindBuilder(name);
    if (!builder) {
        FailWith(fmt::format("{}: the design {} is unknown.", path, Quoted(name)));
    }
    return builder;
}

// Row numbers decide how often candidates are repeated, and so how much memory is taken.
void RequireResults(const D_Optimal& design, const std::string& path) {
    if (design.GetResults().empty()) {
        FailWith(fmt::format("{}: the project has no results of its search.", path));
    }
    for (const DOptResults& result : design.GetResults()) {
        const bool fits = !result.rows.empty() &&
                          static_cast<long long>(result.rows.size()) <= StudyLimits::cMaxRuns &&
                          std::ranges::all_of(result.rows, [](int row) {
                              return row >= 1 && row <= cMostCandidateRows;
                          });
        if (!fits) {
            FailWith(
                fmt::format("{}: a result of the search picks candidates that cannot be.", path));
        }
    }
    const int count = static_cast<int>(design.GetResults().size());
    if (design.GetSelectedIndex() < 0 || design.GetSelectedIndex() >= count) {
        FailWith(fmt::format("{}: the selected result {} is none of the {} there are.",
                             path,
                             design.GetSelectedIndex() + 1LL,
                             count));
    }
}

}  // namespace

std::vector<WorksheetRun> Project::Runs() const {
    std::vector<WorksheetRun> runs = DecodeRuns(matrix, study.factors, form);
    for (std::size_t i = 0; i < runs.size(); ++i) {
        runs[i].runOrder = runOrder.at(i);
    }
    return runs;
}

void SaveProject(const Project& project, const NCDesign& design, const std::string& path) {
    ConfigurationStore store;
    const auto root = store.OpenRoot();
    root->OpenOrCreateSection("Project")->WriteInt("Version", cVersion);
    const auto study = root->OpenOrCreateSection("Study");
    study->WriteKey("File", project.study.file);
    study->WriteKey("Text", project.study.text);
    project.builder->Save(root.get());
    project.options.Save(root.get());
    design.Save(root.get());
    SaveWorksheet(project, *root);
    store.SaveToFile(path);
}

Project LoadProject(const std::string& path) {
    const ConfigurationStore store = ConfigurationStore::LoadFromFile(path);
    const auto root = store.OpenRoot();
    const int version = SectionReader(*root, "Project", path).Int("Version");
    if (version != cVersion) {
        FailWith(fmt::format("{}: the project has version {}; this program reads version {}.",
                             path,
                             version,
                             cVersion));
    }
    Project project;
    const SectionReader study(*root, "Study", path);
    project.study = ReadStudy(study.Text("Text"), path + ": study");
    project.study.file = study.Text("File");
    project.builder = LoadBuilder(*root, path);
    static_cast<void>(SectionReader(*root, "Design", path));
    project.options = MakeOptions(*project.builder, ConditionsOf(project.study));
    if (!project.options.Load(root.get())) {
        FailWith(
            fmt::format("{}: this is no project of ncdoe: the section \"DesignOptions\" is "
                        "missing.",
                        path));
    }
    LoadWorksheet(project, *root, path);
    if (const auto* family =
            dynamic_cast<const D_OptimalOptions*>(project.options.GetDesignSpecificOptions())) {
        RequireSound(*family, project.study.factors, project.options.GetBlocks(), path);
    }
    return project;
}

std::unique_ptr<D_Optimal> LoadOptimalDesign(const Project& project, const std::string& path) {
    if (!IsDOptimal(*project.builder)) {
        return nullptr;
    }
    const ConfigurationStore store = ConfigurationStore::LoadFromFile(path);
    auto design = std::make_unique<D_Optimal>(project.study.factors, *store.OpenRoot());
    RequireResults(*design, path);
    return design;
}
