#include "designs/plate/REDMUP.h"

#include <algorithm>
#include <span>

#include "designs/plate/REDMUPOptions.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "frame/FamilyRules.h"
#include "frame/MatrixSection.h"

namespace {

using SubDesign = REDMUPOptions::REDMUPSubDesign;
using Table = NCDataMatrix<float>;

constexpr const char* cDesignSection = "Design";
constexpr const char* cOwnSection = "Redmup";
constexpr unsigned int cDefaultWells = 96;
constexpr const char* cNoVerticalDesign = "Unable to get the vertical design.";
constexpr const char* cNoHorizontalDesign = "Unable to get the horizontal design.";

[[noreturn]] void Fail(const char* text) {
    throw Exception(ExceptionMessage::translate(text));
}

const REDMUPOptions* PlateOptionsOf(const DesignOptions& options) {
    return dynamic_cast<const REDMUPOptions*>(options.GetDesignSpecificOptions());
}

// A family that is asked for other runs than it has may leave cells without a setting.
bool IsComplete(const Table& runs) {
    for (int run = 1; run <= runs.SizeRows(); ++run) {
        const auto cells = runs.RowSpan(run);
        if (std::find(cells.begin(), cells.end(), Table::cMissing) != cells.end()) {
            return false;
        }
    }
    return true;
}

// The runs along one side of the plate, in the order of their positions [size x group factors].
// @throws Exception with `failure` unless the design fills the side and the run order names rows
//         that it has: wells would be left out, or filled from nowhere. Blocks are refused, too:
//         their letters would stand in a factor's column.
Table RunsAlongSide(const SubDesign& design,
                    const Factors& view,
                    unsigned long long size,
                    const char* failure) {
    const auto builder = AllDesigns::GetDesignBuilder(design.designType, design.designData);
    const bool isReady = builder && design.options && design.options->GetBlocks() <= 1;
    const auto built = isReady ? builder->Build(view, *design.options) : nullptr;
    const auto runs = built ? built->GetDesignMatrix() : nullptr;
    const auto hasRow = [&](unsigned int row) {
        return row >= 1 && row <= static_cast<unsigned int>(runs->SizeRows());
    };
    if (!runs || static_cast<unsigned long long>(runs->SizeRows()) != size ||
        runs->SizeColumns() != static_cast<int>(design.factors.size()) ||
        !built->IsDesignMatrixCoded() || !IsComplete(*runs) || design.runOrder.size() != size ||
        !std::all_of(design.runOrder.begin(), design.runOrder.end(), hasRow)) {
        Fail(failure);
    }
    Table ordered(runs->SizeRows(), runs->SizeColumns());
    for (int position = 1; position <= ordered.SizeRows(); ++position) {
        const auto row = runs->RowSpan(
            static_cast<int>(design.runOrder[static_cast<std::size_t>(position - 1)]));
        std::copy(row.begin(), row.end(), ordered.RowSpan(position).begin());
    }
    return ordered;
}

void CopyGroup(std::span<float> run,
               const std::vector<unsigned long long>& group,
               std::span<const float> settings) {
    for (std::size_t i = 0; i < group.size(); ++i) {
        run[group[i]] = settings[i];
    }
}

// The settings of the plate factors, a row for each plate.
// @throws Exception when the factors have more than two levels or do not fit the plates
Table PlateSettings(const Factors& plateFactors, int plates) {
    if (!plateFactors.IsAll2Levels()) {
        Fail("Plate factors should be quantitative or have 2 settings.");
    }
    constexpr unsigned int cMostFactors = 30;
    const unsigned int count = plateFactors.GetDesignFactorCount();
    if (count > cMostFactors || (1 << count) != plates) {
        Fail("Incorrect number of plate factors.");
    }
    return NCDesign::MakeFFDesignTable(plateFactors, plates, false, false);
}

// What is constant on a plate: the settings of the plate factors, a row for each plate, and whether
// the last column holds the plate's letter. Nothing of it is known of a single plate.
struct PlateConstants {
    std::vector<unsigned long long> factors;
    Table settings;
    bool hasLetter = false;

    void CopyTo(std::span<float> run, int plate) const {
        if (!factors.empty()) {
            CopyGroup(run, factors, settings.RowSpan(plate + 1));
        }
        if (hasLetter) {
            run.back() = Factors::cFirstLevelCode + static_cast<float>(plate);
        }
    }
};

PlateConstants ConstantsOf(const REDMUPOptions& plates, const Factors& factors) {
    PlateConstants constants;
    if (plates.GetNumPlates() >= 2) {
        constants.factors = plates.GetPlateFactors(factors);
        constants.hasLetter = plates.GetPlateFactorsUse() != REDMUPOptions::WithoutPlateColumn;
    }
    if (!constants.factors.empty()) {
        constants.settings =
            PlateSettings(REDMUPFactors(constants.factors, factors), plates.GetNumPlates());
    }
    return constants;
}

// The wells of all plates in run order; what nobody sets stays -99.
Table CombineSides(const REDMUPOptions& plates,
                   const PlateConstants& constants,
                   const Table& horizontal,
                   const Table& vertical,
                   int columns) {
    const int count = std::max(plates.GetNumPlates(), 1);
    Table matrix(count * horizontal.SizeRows() * vertical.SizeRows(), columns);
    int run = 1;
    for (int plate = 0; plate < count; ++plate) {
        for (int column = 1; column <= horizontal.SizeRows(); ++column) {
            for (int row = 1; row <= vertical.SizeRows(); ++row, ++run) {
                const auto cells = matrix.RowSpan(run);
                CopyGroup(cells, plates.GetHorizontalDesign().factors, horizontal.RowSpan(column));
                // Second: the vertical design decides on a factor that stands in both groups.
                CopyGroup(cells, plates.GetVerticalDesign().factors, vertical.RowSpan(row));
                constants.CopyTo(cells, plate);
            }
        }
    }
    return matrix;
}

bool IsGroupServed(const SubDesign& design, const Factors& factors, unsigned long long size) {
    return AllDesigns::ClassicAndREDMUPDesigns().IsAnyDesignValid(design.options->GetObjective(),
                                                                  design.options->GetModel(),
                                                                  static_cast<int>(size),
                                                                  *design.GetREDMUPFactors(factors),
                                                                  true);
}

}  // namespace

REDMUP::REDMUP(const Factors& factors, const DesignOptions& options) : NCDesign(factors) {
    GenerateDesign(factors, options);
}

REDMUP::REDMUP(const Factors& factors, const ConfigurationSection& section) : NCDesign(factors) {
    REDMUP::Load(&section);
}

std::shared_ptr<NCDesign> REDMUP::Clone() const {
    return std::make_shared<REDMUP>(*this);
}

void REDMUP::Save(ConfigurationSection* section) const {
    NCDesign::Save(section);
    const auto design = section->OpenOrCreateSection(cDesignSection);
    design->RemoveSection(cOwnSection);
    if (const auto matrix = GetDesignMatrix()) {
        MatrixSection::SaveMatrix(design->OpenOrCreateSection(cOwnSection).get(), *matrix);
    }
}

bool REDMUP::Load(const ConfigurationSection* section) {
    if (!NCDesign::Load(section)) {
        return false;
    }
    ClearDesignMatrix();
    const auto own = section->OpenSection(cDesignSection)->OpenSection(cOwnSection);
    Table matrix;
    if (own && MatrixSection::LoadMatrix(own.get(), &matrix)) {
        SetDesignMatrix(matrix);
    }
    return true;
}

void REDMUP::GenerateDesign(const Factors& factors, const DesignOptions& options) {
    const REDMUPOptions* plates = PlateOptionsOf(options);
    if (plates == nullptr) {
        Fail("Missing RED-MUP options.");
    }
    const auto verticalView = plates->GetVerticalDesign().GetREDMUPFactors(factors);
    const auto horizontalView = plates->GetHorizontalDesign().GetREDMUPFactors(factors);
    if (verticalView->GetMixtureFactorCount() > 0 && horizontalView->GetMixtureFactorCount() > 0) {
        Fail("All formulation factors should be in the same block.");
    }
    const Table vertical = RunsAlongSide(
        plates->GetVerticalDesign(), *verticalView, plates->GetVerticalSize(), cNoVerticalDesign);
    const Table horizontal = RunsAlongSide(plates->GetHorizontalDesign(),
                                           *horizontalView,
                                           plates->GetHorizontalSize(),
                                           cNoHorizontalDesign);
    DesignOptions copies;
    copies.SetCenterPoints(0);
    copies.SetReplicates(static_cast<unsigned int>(std::max(plates->GetNumPlates(), 1)) - 1);
    RequireFinishedSize(horizontal.SizeRows() * vertical.SizeRows(), copies);
    const int plateColumn = plates->GetPlateFactorsUse() != REDMUPOptions::WithoutPlateColumn;
    const int columns = static_cast<int>(factors.GetDesignFactorCount()) + plateColumn;
    SetDesignMatrix(
        CombineSides(*plates, ConstantsOf(*plates, factors), horizontal, vertical, columns));
    if (factors.GetQualitativeCount() > 0) {
        AdjustQualitativeFactors(factors);
    }
    if (factors.GetMultilevelCount() > 0) {
        AdjustMultilevelFactors(factors);
    }
    // Plates are no blocks: a block count would take the last factor's centre for a block.
    DesignOptions withoutBlocks = options;
    withoutBlocks.SetBlocks(1);
    AdjustCenterPoints(factors, withoutBlocks);
}

std::unique_ptr<NCDesign> REDMUPBuilder::Build(const Factors& factors,
                                               const DesignOptions& options,
                                               bool* /*cancel*/) const {
    return std::make_unique<REDMUP>(factors, options);
}

unsigned int REDMUPBuilder::GetDefaultRuns(const Factors& /*factors*/,
                                           EObjective::Type /*objective*/) const {
    return cDefaultWells;
}

std::vector<unsigned int> REDMUPBuilder::GetLegalRuns(const Factors& /*factors*/,
                                                      const DesignOptions& options) const {
    const REDMUPOptions* plates = PlateOptionsOf(options);
    if (plates == nullptr) {
        return {cDefaultWells};
    }
    return {static_cast<unsigned int>(plates->GetHorizontalSize() * plates->GetVerticalSize())};
}

unsigned char REDMUPBuilder::GetPriority(const Factors& factors) const {
    return GetTablePriority(EDesign::REDMUP, factors.GetDesignFactorCountExpanded());
}

bool REDMUPBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    const REDMUPOptions* plates = PlateOptionsOf(options);
    if (plates == nullptr || !plates->GetVerticalDesign().options ||
        !plates->GetHorizontalDesign().options) {
        return false;
    }
    try {
        return IsGroupServed(plates->GetVerticalDesign(), factors, plates->GetVerticalSize()) &&
               IsGroupServed(plates->GetHorizontalDesign(), factors, plates->GetHorizontalSize());
    } catch (const Exception&) {
        // A group names a factor twice or one that does not exist, or a family cannot judge it.
        return false;
    }
}

EModel::Type REDMUPBuilder::GetDefaultModel(const Factors& /*factors*/,
                                            EObjective::Type objective) const {
    return FamilyRules::IsScreening(objective) ? EModel::Interaction : EModel::None;
}

std::shared_ptr<DesignSpecificOptions> REDMUPBuilder::GetDefaultDesignSpecificOptions(
    const Factors& factors, const DesignOptions& /*options*/) const {
    return std::make_shared<REDMUPOptions>(factors);
}
