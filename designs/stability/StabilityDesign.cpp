#include "designs/stability/StabilityDesign.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <set>

#include "designs/stability/FactorsWithTime.h"
#include "designs/stability/StabilityDesignCalculator.h"
#include "designs/stability/SubsetModel.h"
#include "designs/stability/UsedDesignText.h"
#include "foundation/util/NCProgress.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"

namespace {

constexpr const char* cDesignSection = "Design";
constexpr const char* cSection = "StabilityDesign";
constexpr const char* cUsedDesigns = "UsedDesigns";
constexpr const char* cReductions = "Reductions";
constexpr const char* cReduction = "Reduction";
constexpr const char* cSubsets = "GFFDesigns";
constexpr char cSeparator = ';';

// Letter codes are level numbers from 1 plus this.
constexpr float cBeforeFirstCode = Factors::cFirstLevelCode - 1;

int FactorCount(const Factors& factors) {
    return static_cast<int>(factors.GetDesignFactorCount());
}

bool HasLevels(CEType::EType type) {
    return type == CEType::Multilevel || type == CEType::Qualitative;
}

// No search is as large, or as long, as the largest int.
int Saturated(unsigned long long number) {
    constexpr unsigned long long cMost = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(number, cMost));
}

void RequireReduction(unsigned long long reduction) {
    if (reduction == 0) {
        throw Exception(ExceptionMessage::translate("Reduction should be greater than 0."));
    }
}

StabilityDesign::UsedDesigns UsedDesignsOf(const StabilityDesignOptions& options) {
    StabilityDesign::UsedDesigns used;
    for (const auto& [reduction, index] : options.GetUsedReduction()) {
        RequireReduction(reduction);
        if (index == 0 || index > reduction) {
            throw Exception(ExceptionMessage::translate(
                "The selected design should be between 1 and the reduction."));
        }
        used.emplace_back(Saturated(reduction), Saturated(index));
    }
    return used;
}

StabilityDesign::UsedDesigns UsedDesignsOf(const GeneralizedSubsetDesignsDesignOptions& options) {
    RequireReduction(options.GetReduction());
    const int reduction = Saturated(options.GetReduction());
    // A division into more parts than runs is stopped before it is listed.
    StabilityDesign::UsedDesigns used;
    const int listed = std::min<int>(reduction, static_cast<int>(NCDesign::cMaxFinishedRuns));
    for (int index = 1; index <= listed; ++index) {
        used.emplace_back(reduction, index);
    }
    return used;
}

StabilityDesign::UsedDesigns UsedDesignsOf(const DesignOptions& options) {
    const DesignSpecificOptions* specific = options.GetDesignSpecificOptions();
    if (const auto* stability = dynamic_cast<const StabilityDesignOptions*>(specific)) {
        return UsedDesignsOf(*stability);
    }
    if (const auto* subset = dynamic_cast<const GeneralizedSubsetDesignsDesignOptions*>(specific)) {
        return UsedDesignsOf(*subset);
    }
    throw Exception(ExceptionMessage::translate("Options are missing."));
}

// Allows `slack` times the most finished runs.
void RequireRuns(double runs, double slack = 1) {
    if (runs > slack * static_cast<double>(NCDesign::cMaxFinishedRuns)) {
        throw Exception(ExceptionMessage::translate(
                            "The design sets would have {1} runs. They may have at most {2} runs "
                            "in all.")
                        << std::floor(runs) << NCDesign::cMaxFinishedRuns);
    }
}

// Refuses before the search what would be refused after it.
void RequireRuns(const StabilityDesign::UsedDesigns& used, const Factors& factors) {
    double all = 1;
    for (int factor = 0; factor < FactorCount(factors); ++factor) {
        all *= HasLevels(factors.GetFactorType(factor)) ? factors.GetLevelCount(factor) : 2;
    }
    double runs = 0;
    for (const auto& pair : used) {
        runs += all / pair.first;
    }
    // Sizes of the parts differ a little.
    constexpr double cSlack = 2;
    RequireRuns(runs, cSlack);
}

LevelMatrix ToLevels(const NCDataMatrix<float>& subset) {
    LevelMatrix levels(subset.SizeRows(), subset.SizeColumns());
    std::transform(subset.Cells().begin(), subset.Cells().end(), levels.begin(), [](float level) {
        return static_cast<int>(level);
    });
    return levels;
}

}  // namespace

StabilityDesign::StabilityDesign(EDesign::Type type,
                                 const Factors& factors,
                                 const DesignOptions& options,
                                 const bool* cancel)
    : NCDesign(factors), type_(type) {
    const UsedDesigns used = UsedDesignsOf(options);
    RequireRuns(used, factors);
    std::set<int> reductions;
    for (const auto& pair : used) {
        reductions.insert(pair.first);
    }
    const auto& base =
        dynamic_cast<const StabilityBaseOptions&>(*options.GetDesignSpecificOptions());
    NCProgress progress(
        "", 0, static_cast<float>(reductions.size()), false, false, true, "Generating design...");
    int done = 0;
    for (const int reduction : reductions) {
        progress.SetValue(static_cast<float>(done));
        progress.PushSubRange(static_cast<float>(done), static_cast<float>(done + 1), "");
        GenerateDesigns(reduction,
                        Saturated(base.GetSecondsToWait()),
                        base.GetPreferBalanced(),
                        factors,
                        &progress,
                        cancel);
        progress.PopSubRange();
        ++done;
    }
    SpecifyUsedDesigns(used);
}

StabilityDesign::StabilityDesign(EDesign::Type type,
                                 const Factors& factors,
                                 const ConfigurationSection& section)
    : NCDesign(factors), type_(type) {
    StabilityDesign::Load(&section);
}

std::shared_ptr<NCDesign> StabilityDesign::Clone() const {
    // A change of the clone's subsets must not reach this design.
    std::shared_ptr<StabilityDesign> clone(new StabilityDesign(*this));
    for (auto& [reduction, subsets] : clone->designs_) {
        for (auto& subset : subsets) {
            subset = std::make_shared<StabilityDesignData>(*subset);
        }
    }
    return clone;
}

void StabilityDesign::Save(ConfigurationSection* section) const {
    NCDesign::Save(section);
    const auto design = section->OpenOrCreateSection(cDesignSection);
    if (const auto matrix = GetDesignMatrix()) {
        StabilityDesignData::SaveMatrix(design.get(), *matrix);
    }
    design->RemoveSection(cSection);
    const auto own = design->OpenOrCreateSection(cSection);
    std::vector<std::string> used;
    for (const auto& pair : used_) {
        used.push_back(UsedDesignText::Format(pair));
    }
    own->WriteStringList(cUsedDesigns, used, cSeparator);
    int number = 0;
    for (const auto& [reduction, subsets] : designs_) {
        const auto one = own->OpenOrCreateSection(cReductions, ++number);
        one->WriteInt(cReduction, reduction);
        int index = 0;
        for (const auto& subset : subsets) {
            subset->Save(one->OpenOrCreateSection(cSubsets, ++index).get());
        }
    }
}

bool StabilityDesign::Load(const ConfigurationSection* section) {
    if (!NCDesign::Load(section)) {
        return false;
    }
    const auto design = section->OpenSection(cDesignSection);
    NCDataMatrix<float> matrix;
    if (StabilityDesignData::LoadMatrix(design.get(), &matrix)) {
        SetDesignMatrix(matrix);
    } else {
        ClearDesignMatrix();
    }
    combinations_.clear();
    combinationCount_ = 0;
    used_.clear();
    designs_.clear();
    if (const auto own = design->OpenSection(cSection)) {
        LoadReductions(*own);
    }
    return true;
}

void StabilityDesign::LoadReductions(const ConfigurationSection& section) {
    std::vector<std::string> texts;
    section.ReadStringList(cUsedDesigns, &texts, cSeparator);
    for (const std::string& text : texts) {
        if (const auto pair = UsedDesignText::Parse<int>(text)) {
            used_.push_back(*pair);
        }
    }
    for (int number = 1; number <= section.SectionCount(cReductions); ++number) {
        const auto one = section.OpenSection(cReductions, number);
        int reduction = 0;
        if (!one->ReadInt(cReduction, &reduction) || reduction < 1) {
            continue;
        }
        auto& subsets = designs_[reduction];
        subsets.clear();
        for (int index = 1; index <= one->SectionCount(cSubsets); ++index) {
            const auto subset = std::make_shared<StabilityDesignData>();
            subset->Load(one->OpenSection(cSubsets, index).get());
            subsets.push_back(subset);
        }
    }
}

void StabilityDesign::AdjustCenterPoints(const Factors& factors, const DesignOptions& options) {
    NCDesign::AdjustCenterPoints(FactorsWithTime(factors, static_cast<int>(used_.size())), options);
    for (const auto& [reduction, subsets] : designs_) {
        for (const auto& subset : subsets) {
            subset->AdjustCenterPoints(factors, options);
        }
    }
}

void StabilityDesign::GenerateDesigns(int reduction,
                                      int secondsToWait,
                                      bool preferBalance,
                                      const Factors& factors,
                                      NCProgress* progress,
                                      const bool* cancel) {
    std::vector<bool> unique;
    std::vector<bool> balance;
    std::vector<int> iterations;
    std::vector<std::vector<int>> distances;
    std::vector<bool> oa;
    std::vector<bool> noa;
    StabilityDesignCalculator calculator(reduction, factors, secondsToWait, preferBalance, cancel);
    std::vector<NCDataMatrix<float>> subsets =
        calculator.Calculate(progress, unique, balance, iterations, distances, oa, noa);
    std::vector<std::shared_ptr<StabilityDesignData>> designs;
    for (std::size_t i = 0; i < subsets.size(); ++i) {
        const StabilityDesignQuality quality(unique[i],
                                             balance[i],
                                             iterations[i],
                                             oa[i],
                                             noa[i],
                                             distances[i],
                                             GetConditionNo(ToLevels(subsets[i]), factors));
        ConvertMatrixToFactorSettings(subsets[i], factors);
        designs.push_back(std::make_shared<StabilityDesignData>(
            reduction, static_cast<int>(i) + 1, quality, subsets[i]));
        if (type_ == EDesign::GeneralizedSubset && subsets[i].SizeRows() > 0) {
            // Not a search: any run will do, and the host decides whether rand is seeded.
            designs.back()->SetReplicateRow(std::rand() % subsets[i].SizeRows() + 1);
        }
    }
    designs_[reduction] = std::move(designs);
}

void StabilityDesign::SpecifyUsedDesigns(const UsedDesigns& used) {
    double runs = 0;
    for (const auto& [reduction, index] : used) {
        const NCDataMatrix<float>* subset = GetDesignMatrix(reduction, index);
        runs += subset != nullptr ? subset->SizeRows() : 0;
    }
    RequireRuns(runs);
    NCDataMatrix<float> assembled(0, FactorCount(GetFactors()) + 1);
    assembled.ReserveRows(static_cast<int>(runs));
    float code = Factors::cFirstLevelCode;
    for (const auto& [reduction, index] : used) {
        if (const NCDataMatrix<float>* subset = GetDesignMatrix(reduction, index);
            subset != nullptr && subset->SizeRows() > 0) {
            NCDataMatrix<float> rows = *subset;
            rows.InsertColumn(1, NCDataVector<float>(rows.SizeRows(), code));
            assembled.ConcatRows(rows);
        }
        ++code;
    }
    used_ = used;
    SetDesignMatrix(assembled);
    combinations_.clear();
    combinationCount_ = 0;
}

StabilityDesign::UsedDesigns StabilityDesign::GetUniqueUsedDesignsets() const {
    const std::set<std::pair<int, int>> used(used_.begin(), used_.end());
    UsedDesigns unique;
    for (const auto& [reduction, subsets] : designs_) {
        for (int index = 1; index <= static_cast<int>(subsets.size()); ++index) {
            const std::pair pair(reduction, index);
            if (used.contains(pair)) {
                unique.push_back(pair);
            }
        }
    }
    return unique;
}

std::shared_ptr<StabilityDesignData> StabilityDesign::GetDesign(int reduction, int index) const {
    const auto found = designs_.find(reduction);
    if (found == designs_.end() || index < 1 || index > static_cast<int>(found->second.size())) {
        return nullptr;
    }
    return found->second[static_cast<std::size_t>(index - 1)];
}

const NCDataMatrix<float>* StabilityDesign::GetDesignMatrix(int reduction, int index) const {
    if (reduction == -1 && index == -1) {
        return GetDesignMatrix().get();
    }
    const auto design = GetDesign(reduction, index == 0 ? 1 : index);
    return design ? &design->GetDesignMatrix() : nullptr;
}

int StabilityDesign::GetReduction(unsigned long long ordinal) const {
    if (ordinal < 1 || ordinal > designs_.size()) {
        return -1;
    }
    return std::next(designs_.begin(), static_cast<std::ptrdiff_t>(ordinal - 1))->first;
}

void StabilityDesign::ConvertMatrixToFactorSettings(NCDataMatrix<float>& matrix,
                                                    const Factors& factors) {
    for (int column = 1; column <= matrix.SizeColumns(); ++column) {
        const bool letters = HasLevels(factors.GetFactorType(column - 1));
        for (int row = 1; row <= matrix.SizeRows(); ++row) {
            const float level = matrix(row, column);
            if (letters) {
                matrix(row, column, level + cBeforeFirstCode);
            } else {
                matrix(row, column, level == 1.0F ? -1.0F : 1.0F);
            }
        }
    }
}
