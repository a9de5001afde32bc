#include "designs/plate/REDMUPOptions.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <numeric>
#include <utility>

#include "designs/plate/RunOrders.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/NCDesign.h"

namespace {

using SubDesign = REDMUPOptions::REDMUPSubDesign;
using Group = std::vector<unsigned long long>;

constexpr const char* cBaseSection = "DesignSpecificOptions";
constexpr const char* cSection = "RedmupOptions";
constexpr const char* cHorizontalSection = "HorizontalDesign";
constexpr const char* cVerticalSection = "VerticalDesign";
constexpr const char* cOptionsSection = "SubDesignOptions";
constexpr int cLetters = 26;

struct PlateSides {
    unsigned long long horizontal = 0;
    unsigned long long vertical = 0;
};

constexpr std::array<PlateSides, 3> cPlateSides{{{12, 8}, {24, 16}, {48, 32}}};

const PlateSides& SidesOf(REDMUPOptions::EPlateSize size) {
    // Any other number that a file may hold acts as the smallest plate.
    const auto index = static_cast<std::size_t>(size);
    return index < cPlateSides.size() ? cPlateSides[index] : cPlateSides.front();
}

struct Division {
    Group horizontal;
    Group vertical;
};

Division Divide(const Factors& factors) {
    const bool isBlend = factors.IsMixture() && !factors.IsFormulationSumFree();
    const unsigned long long count = factors.GetDesignFactorCount();
    Division division;
    for (unsigned long long factor = 0; factor < count; ++factor) {
        const bool isVertical =
            isBlend ? factors.GetFactorType(static_cast<int>(factor)) == CEType::Formulation
                    : factor < count / 2;
        (isVertical ? division.vertical : division.horizontal).push_back(factor);
    }
    return division;
}

std::vector<int> ColumnsOf(const Group& group) {
    std::vector<int> columns;
    columns.reserve(group.size());
    for (const unsigned long long factor : group) {
        columns.push_back(static_cast<int>(factor) + 1);
    }
    return columns;
}

bool Holds(const Group& group, unsigned long long factor) {
    return std::find(group.begin(), group.end(), factor) != group.end();
}

// A to Z, then AA, AB and so on, as spreadsheets name their columns. Numbers count from 1.
std::string RowLetters(unsigned long long number) {
    std::string letters;
    for (; number > 0; number = (number - 1) / cLetters) {
        letters.insert(letters.begin(), static_cast<char>('A' + (number - 1) % cLetters));
    }
    return letters;
}

template <class Number>
std::vector<int> ToStored(const std::vector<Number>& numbers) {
    std::vector<int> stored;
    stored.reserve(numbers.size());
    std::transform(numbers.begin(), numbers.end(), std::back_inserter(stored), [](Number number) {
        return static_cast<int>(number);
    });
    return stored;
}

// A negative number of a damaged file becomes one that no factor and no row has.
template <class Number>
void ReadNumbers(const ConfigurationSection& section,
                 const char* key,
                 std::vector<Number>* numbers) {
    std::vector<int> stored;
    if (section.ReadIntVector(key, &stored)) {
        numbers->clear();
        numbers->reserve(stored.size());
        for (const int number : stored) {
            numbers->push_back(static_cast<Number>(number));
        }
    }
}

EDesign::Type TypeOf(int stored) {
    return stored > EDesign::None && stored <= EDesign::DefinitiveScreening
               ? static_cast<EDesign::Type>(stored)
               : EDesign::None;
}

}  // namespace

REDMUPOptions::REDMUPOptions(const Factors& factors) {
    SetPlateSize(plateSize_, factors, true);
}

void REDMUPOptions::SetPlateSize(EPlateSize size, const Factors& factors, bool setup) {
    if (!setup) {
        plateSize_ = size;
        return;
    }
    const Division division =
        horizontal_.factors.empty() ? Divide(factors) : Division();  // empty: the groups stay
    // Groups that stay and do not fit the factors throw here, before anything is changed.
    if (division.horizontal.empty()) {
        static_cast<void>(horizontal_.GetREDMUPFactors(factors));
    }
    if (division.vertical.empty()) {
        static_cast<void>(vertical_.GetREDMUPFactors(factors));
    }
    plateSize_ = size;
    horizontal_.Setup(GetHorizontalSize(), factors, division.horizontal);
    vertical_.Setup(GetVerticalSize(), factors, division.vertical);
    RandomizeRunOrder();
}

unsigned long long REDMUPOptions::GetHorizontalSize() const {
    return SidesOf(plateSize_).horizontal;
}

unsigned long long REDMUPOptions::GetVerticalSize() const {
    return SidesOf(plateSize_).vertical;
}

std::vector<int> REDMUPOptions::GetVerticalDesignRows() const {
    std::vector<int> rows(GetVerticalSize());
    std::iota(rows.begin(), rows.end(), 1);
    return rows;
}

std::vector<int> REDMUPOptions::GetHorizontalDesignRows() const {
    std::vector<int> rows(GetHorizontalSize());
    const int step = static_cast<int>(GetVerticalSize());
    std::generate(
        rows.begin(), rows.end(), [row = 1 - step, step]() mutable { return row += step; });
    return rows;
}

std::vector<int> REDMUPOptions::GetVerticalDesignCols() const {
    return ColumnsOf(vertical_.factors);
}

std::vector<int> REDMUPOptions::GetHorizontalDesignCols() const {
    return ColumnsOf(horizontal_.factors);
}

void REDMUPOptions::SetHorizontalDesignIndex(int position, int row) {
    horizontal_.runOrder[static_cast<std::size_t>(position)] = static_cast<unsigned int>(row);
}

void REDMUPOptions::SetVerticalDesignIndex(int position, int row) {
    vertical_.runOrder[static_cast<std::size_t>(position)] = static_cast<unsigned int>(row);
}

bool REDMUPOptions::SetHorizontalDesign(const Factors& all,
                                        const std::vector<unsigned long long>& group,
                                        EDesign::Type type,
                                        const std::string& data,
                                        unsigned int runs,
                                        unsigned int replicates,
                                        EModel::Type model) {
    const int size = static_cast<int>(GetHorizontalSize());
    return horizontal_.SetDesign(all, group, type, data, runs, replicates, model, size);
}

bool REDMUPOptions::SetVerticalDesign(const Factors& all,
                                      const std::vector<unsigned long long>& group,
                                      EDesign::Type type,
                                      const std::string& data,
                                      unsigned int runs,
                                      unsigned int replicates,
                                      EModel::Type model) {
    const int size = static_cast<int>(GetVerticalSize());
    return vertical_.SetDesign(all, group, type, data, runs, replicates, model, size);
}

std::vector<unsigned long long> REDMUPOptions::GetPlateFactors(const Factors& factors) const {
    Group plateFactors;
    for (unsigned long long factor = 0; factor < factors.GetDesignFactorCount(); ++factor) {
        if (!Holds(horizontal_.factors, factor) && !Holds(vertical_.factors, factor)) {
            plateFactors.push_back(factor);
        }
    }
    return plateFactors;
}

std::vector<std::string> REDMUPOptions::GetDefaultExperimentNames() const {
    const unsigned long long wells = GetHorizontalSize() * GetVerticalSize();
    const auto plates = static_cast<unsigned long long>(std::max(numPlates_, 0));
    if (plates * wells > static_cast<unsigned long long>(NCDesign::cMaxFinishedRuns)) {
        throw Exception(ExceptionMessage::translate(
                            "{1} plates of {2} wells have more runs than a design may have: {3}.")
                        << plates << wells << NCDesign::cMaxFinishedRuns);
    }
    std::vector<std::string> names;
    names.reserve(plates * wells);
    for (unsigned long long plate = 1; plate <= plates; ++plate) {
        const std::string prefix = plates == 1 ? "" : 'P' + std::to_string(plate) + '_';
        for (unsigned long long column = 1; column <= GetHorizontalSize(); ++column) {
            const std::string suffix = "_" + std::to_string(column);
            for (unsigned long long row = 1; row <= GetVerticalSize(); ++row) {
                names.push_back(prefix);
                names.back() += RowLetters(row);
                names.back() += suffix;
            }
        }
    }
    return names;
}

void REDMUPOptions::RandomizeRunOrder() {
    std::mt19937 engine = RunOrders::MakeEngine();
    horizontal_.runOrder = RunOrders::Draw(GetHorizontalSize(), engine);
    vertical_.runOrder = RunOrders::Draw(GetVerticalSize(), engine);
}

void REDMUPOptions::Save(ConfigurationSection* section) const {
    DesignSpecificOptions::Save(section);
    const auto own = section->OpenOrCreateSection(cBaseSection)->OpenOrCreateSection(cSection);
    own->WriteInt("PlateSize", plateSize_);
    own->WriteInt("PlateFactor", plateFactorsUse_);
    own->WriteInt("NumPlates", numPlates_);
    CreateSubSectionRedmupSubDesign(own->OpenOrCreateSection(cHorizontalSection).get(),
                                    horizontal_);
    CreateSubSectionRedmupSubDesign(own->OpenOrCreateSection(cVerticalSection).get(), vertical_);
}

bool REDMUPOptions::Load(const ConfigurationSection* section) {
    const auto base = section->OpenSection(cBaseSection);
    const auto own = base ? base->OpenSection(cSection) : nullptr;
    SubDesign horizontal;
    SubDesign vertical;
    if (!own ||
        !LoadSubSectionRedmupSubDesign(own->OpenSection(cHorizontalSection).get(), horizontal) ||
        !LoadSubSectionRedmupSubDesign(own->OpenSection(cVerticalSection).get(), vertical)) {
        return false;
    }
    int size = plateSize_;
    int use = plateFactorsUse_;
    own->ReadInt("PlateSize", &size);
    own->ReadInt("PlateFactor", &use);
    own->ReadInt("NumPlates", &numPlates_);
    plateSize_ = static_cast<EPlateSize>(size);
    plateFactorsUse_ = static_cast<EPlateFactors>(use);
    horizontal_ = std::move(horizontal);
    vertical_ = std::move(vertical);
    return true;
}

json_value REDMUPOptions::ToJson() const {
    throw Exception(
        ExceptionMessage::translate("This design does not support being saved as json."));
}

void REDMUPOptions::CreateSubSectionRedmupSubDesign(ConfigurationSection* section,
                                                    const REDMUPSubDesign& design) const {
    section->WriteIntVector("Factors", ToStored(design.factors));
    section->WriteIntVector("RunOrder", ToStored(design.runOrder));
    section->WriteInt("SubDesign", design.designType);
    section->WriteKey("SubDesignData", design.designData);
    section->RemoveSection(cOptionsSection);
    if (design.options) {
        design.options->Save(section->OpenOrCreateSection(cOptionsSection).get());
    }
}

bool REDMUPOptions::LoadSubSectionRedmupSubDesign(const ConfigurationSection* section,
                                                  REDMUPSubDesign& design) const {
    if (section == nullptr) {
        return false;
    }
    SubDesign loaded;
    int type = EDesign::None;
    ReadNumbers(*section, "Factors", &loaded.factors);
    ReadNumbers(*section, "RunOrder", &loaded.runOrder);
    section->ReadInt("SubDesign", &type);
    section->ReadString("SubDesignData", &loaded.designData);
    loaded.designType = TypeOf(type);
    if (const auto options = section->OpenSection(cOptionsSection)) {
        loaded.options = std::make_unique<DesignOptions>();
        loaded.options->Load(options.get());
    }
    design = std::move(loaded);
    return true;
}
