#include "designs/stability/StabilityDesignData.h"

#include <algorithm>
#include <utility>

#include "designs/stability/UsedDesignText.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/QvStdString.h"
#include "frame/DesignOptions.h"
#include "frame/MatrixSection.h"
#include "frame/NCDesign.h"

namespace {

constexpr const char* cDesignSection = "Design";
constexpr const char* cSection = "GFF";
constexpr const char* cQualitySection = "GFFQuality";

// Letters A to Y stand for reductions 1 to 25.
constexpr char cBeforeFirstLetter = 'A' - 1;
constexpr int cMostLetters = 25;

}  // namespace

StabilityDesignQuality::StabilityDesignQuality(bool unique,
                                               bool balance,
                                               int iterations,
                                               bool oa,
                                               bool noa,
                                               std::vector<int> distances,
                                               float conditionNumber)
    : Unique(unique),
      Iterations(iterations),
      Balance(balance),
      OA(oa),
      NOA(noa),
      Distances(std::move(distances)),
      ConditionNumber(conditionNumber) {}

void StabilityDesignQuality::Save(ConfigurationSection* section) const {
    const auto own = section->OpenOrCreateSection(cQualitySection);
    own->WriteBool("Unique", Unique);
    own->WriteInt("Iterations", Iterations);
    own->WriteBool("Balance", Balance);
    own->WriteBool("OA", OA);
    own->WriteBool("NOA", NOA);
    own->WriteIntVector("Distances", Distances);
    own->WriteDouble("ConditionNumber", static_cast<double>(ConditionNumber));
}

bool StabilityDesignQuality::Load(const ConfigurationSection* section) {
    const auto own = section->OpenSection(cQualitySection);
    if (!own) {
        return false;
    }
    own->ReadBool("Unique", &Unique);
    own->ReadInt("Iterations", &Iterations);
    own->ReadBool("Balance", &Balance);
    own->ReadBool("OA", &OA);
    own->ReadBool("NOA", &NOA);
    own->ReadIntVector("Distances", &Distances);
    own->ReadFloat("ConditionNumber", &ConditionNumber);
    return true;
}

StabilityDesignData::~StabilityDesignData() = default;

void StabilityDesignData::Save(ConfigurationSection* section) const {
    SaveMatrix(section->OpenOrCreateSection(cDesignSection).get(), matrix_);
    const auto own = section->OpenOrCreateSection(cSection);
    own->WriteInt("Reduction", reduction_);
    own->WriteInt("Index", index_);
    own->WriteInt("Replicates", replicates_);
    own->WriteInt("Centerpoints", centerPoints_);
    own->WriteInt("ReplicateRow", replicateRow_);
    quality_.Save(own.get());
}

bool StabilityDesignData::Load(const ConfigurationSection* section) {
    const auto design = section->OpenSection(cDesignSection);
    if (!design || !LoadMatrix(design.get(), &matrix_)) {
        matrix_.Clear();
    }
    if (const auto own = section->OpenSection(cSection)) {
        own->ReadInt("Reduction", &reduction_);
        own->ReadInt("Index", &index_);
        own->ReadInt("Replicates", &replicates_);
        own->ReadInt("Centerpoints", &centerPoints_);
        own->ReadInt("ReplicateRow", &replicateRow_);
        quality_.Load(own.get());
    }
    // From outside, so they may be anything.
    const int rows = matrix_.SizeRows();
    centerPoints_ = std::clamp(centerPoints_, 0, rows);
    replicates_ = std::clamp(replicates_, 0, std::max(rows - centerPoints_ - 1, 0));
    replicateRow_ = std::clamp(replicateRow_, 0, GetBaseRuns());
    return design != nullptr;
}

int StabilityDesignData::GetBaseRuns() const {
    return (matrix_.SizeRows() - centerPoints_) / (replicates_ + 1);
}

void StabilityDesignData::SetCenterPoints(int count,
                                          const Factors& factors,
                                          const DesignOptions& options) {
    RemoveAddedRuns();
    AppendReplicates();
    AppendCenterPoints(std::max(count, 0), factors, options);
}

void StabilityDesignData::SetReplicates(int count,
                                        const Factors& factors,
                                        const DesignOptions& options) {
    RemoveAddedRuns();
    replicates_ = std::max(count, 0);
    AppendReplicates();
    AppendCenterPoints(centerPoints_, factors, options);
}

void StabilityDesignData::AdjustCenterPoints(const Factors& factors, const DesignOptions& options) {
    NCDesign::AdjustCenterPoints(matrix_, factors, options);
}

void StabilityDesignData::RemoveAddedRuns() {
    const int base = GetBaseRuns();
    matrix_.RemoveRows(base + 1, matrix_.SizeRows() - base);
}

void StabilityDesignData::AppendReplicates() {
    const NCDataMatrix<float> base = matrix_;
    for (int copy = 0; copy < replicates_; ++copy) {
        matrix_.ConcatRows(base);
    }
}

void StabilityDesignData::AppendCenterPoints(int count,
                                             const Factors& factors,
                                             const DesignOptions& options) {
    centerPoints_ = count;
    if (count == 0) {
        return;
    }
    NCDataMatrix<float> points(count, matrix_.SizeColumns(), 0.0F);
    if (replicateRow_ >= 1 && replicateRow_ <= matrix_.SizeRows()) {
        const NCDataVector<float> run = matrix_.GetRow(replicateRow_);
        for (int point = 1; point <= count; ++point) {
            points.SetRow(point, run);
        }
    } else {
        NCDesign::AdjustCenterPoints(points, factors, options);
    }
    matrix_.ConcatRows(points);
}

std::string StabilityDesignData::GetDesignsetName() const {
    return GetDesignsetName(reduction_, index_);
}

std::string StabilityDesignData::GetDesignsetName(int reduction, int index) {
    if (reduction < 1 || reduction > cMostLetters) {
        return {};
    }
    return std::string(1, static_cast<char>(cBeforeFirstLetter + reduction)) + ":" +
           std::to_string(index);
}

std::pair<int, int> StabilityDesignData::GetDesignSetPair(const std::string& text) {
    if (text == "A") {
        return {1, 1};
    }
    const std::vector<std::string> parts = QvStdString::Split(text, ":");
    if (parts.size() != 2 || parts[0].size() != 1) {
        return {0, 0};
    }
    const int reduction = parts[0][0] - cBeforeFirstLetter;
    const auto index = UsedDesignText::ParseWhole<int>(parts[1]);
    if (reduction < 1 || reduction > cMostLetters || !index) {
        return {0, 0};
    }
    return {reduction, *index};
}

void StabilityDesignData::SaveMatrix(ConfigurationSection* section,
                                     const NCDataMatrix<float>& matrix) {
    MatrixSection::SaveMatrix(section, matrix);
}

bool StabilityDesignData::LoadMatrix(const ConfigurationSection* section,
                                     NCDataMatrix<float>* matrix) {
    return MatrixSection::LoadMatrix(section, matrix);
}
