// The names that a stability design gives to its runs.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <locale>
#include <span>

#include "designs/stability/StabilityDesign.h"
#include "foundation/utl/QvStdString.h"
#include "frame/Factors.h"

namespace {

constexpr float cBeforeFirstCode = Factors::cFirstLevelCode - 1;
constexpr const char* cReplicate = "rp";
constexpr const char* cCenterPoint = "cp";

// Vectors by size, then by their elements.
struct BySizeThenElements {
    bool operator()(const std::vector<float>& a, const std::vector<float>& b) const {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    }
};

using NamesByRow = std::map<std::vector<float>, std::string, BySizeThenElements>;

// The runs that the full factorial has, in its order; none where it is larger than any design.
NCDataMatrix<float> MakeFullFactorial(const Factors& factors) {
    long long runs = 1;
    for (int factor = 0; factor < static_cast<int>(factors.GetDesignFactorCount()); ++factor) {
        const CEType::EType type = factors.GetFactorType(factor);
        const bool hasLevels = type == CEType::Multilevel || type == CEType::Qualitative;
        runs *= hasLevels ? factors.GetLevelCount(factor) : 2;
        if (runs > NCDesign::cMaxFinishedRuns) {
            return {};
        }
    }
    return NCDesign::MakeFFDesignTable(factors, static_cast<int>(runs), false, false);
}

std::vector<float> RowOf(const NCDataMatrix<float>& matrix, int row) {
    const auto cells = matrix.RowSpan(row);
    return {cells.begin(), cells.end()};
}

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// Equal but for what calculations in float may lose.
bool IsNear(float a, float b) {
    constexpr float cTolerance = 1e-4F;
    int exponent = 0;
    std::frexp(std::max(std::fabs(a), std::fabs(b)), &exponent);
    return std::fabs(a - b) <= std::ldexp(cTolerance, exponent);
}

bool AreNear(std::span<const float> a, std::span<const float> b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), IsNear);
}

// Finds names of rows. Nearly all rows are met exactly, which takes no walk through all names.
class NameFinder {
  public:
    explicit NameFinder(const std::map<std::string, NCDataVector<float>>& combinations)
        : combinations_(combinations) {
        for (const auto& [name, row] : combinations) {
            exact_.try_emplace({row.Values().begin(), row.Values().end()}, name);
        }
    }

    [[nodiscard]] std::string Find(std::span<const float> row) const {
        // Codes differ by 1 at least, so that no other name is as near as an exact one.
        for (const auto cells : {row, row.empty() ? row : row.subspan(1)}) {
            const auto found = exact_.find({cells.begin(), cells.end()});
            if (found != exact_.end()) {
                return found->second;
            }
        }
        return FindNear(combinations_, row);
    }

    static std::string FindNear(const std::map<std::string, NCDataVector<float>>& combinations,
                                std::span<const float> row) {
        for (const auto& [name, stored] : combinations) {
            const auto values = stored.Values();
            if (AreNear(values, row) || (!row.empty() && AreNear(values, row.subspan(1)))) {
                return name;
            }
        }
        return {};
    }

  private:
    const std::map<std::string, NCDataVector<float>>& combinations_;
    NamesByRow exact_;
};

}  // namespace

bool StabilityDesign::IsCenterPointIncluded() const {
    return std::any_of(designs_.begin(), designs_.end(), [](const auto& entry) {
        return std::any_of(entry.second.begin(), entry.second.end(), [](const auto& subset) {
            return subset->GetCenterPoints() > 0;
        });
    });
}

NCDataVector<float> StabilityDesign::GetCenterpoint(const Factors& factors) const {
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    NCDataVector<float> point(count, 0.0F);
    for (int factor = 0; factor < count; ++factor) {
        const CEType::EType type = factors.GetFactorType(factor);
        if (type == CEType::Multilevel) {
            const unsigned int middle = (factors.GetLevelCount(factor) + 1) / 2;
            point(factor + 1, static_cast<float>(middle) + cBeforeFirstCode);
        } else if (type == CEType::Qualitative) {
            point(factor + 1, Factors::cFirstLevelCode);
        }
    }
    return point;
}

void StabilityDesign::LoadCombinationIDMap(const Factors& factors) const {
    if (combinationCount_ > 0) {
        return;
    }
    combinations_.clear();
    if (type_ == EDesign::Stability) {
        LoadStabilityCombinationIDMap(factors);
        combinationCount_ = static_cast<int>(combinations_.size());
        return;
    }
    NamesByRow known;
    int offset = 0;
    for (const auto& [reduction, index] : used_) {
        const auto subset = GetDesign(reduction, index == 0 ? 1 : index);
        const int base = subset ? subset->GetBaseRuns() : 0;
        for (int row = 1; row <= base; ++row) {
            const bool isReplicate =
                row == subset->GetReplicateRow() && subset->GetCenterPoints() > 0;
            const std::vector<float> cells = RowOf(subset->GetDesignMatrix(), row);
            const std::string name =
                GetFormulationString(offset + row) + (isReplicate ? cReplicate : "");
            const auto [entry, isNew] = known.try_emplace(cells, name);
            if (isNew) {
                combinations_.emplace(name, NCDataVector<float>(std::span<const float>(cells)));
            } else if (isReplicate && !EndsWith(entry->second, cReplicate)) {
                combinations_.erase(entry->second);
                entry->second += cReplicate;
                combinations_.emplace(entry->second,
                                      NCDataVector<float>(std::span<const float>(cells)));
            }
        }
        offset += base;
    }
    combinationCount_ = static_cast<int>(combinations_.size());
}

void StabilityDesign::LoadStabilityCombinationIDMap(const Factors& factors) const {
    NCDataMatrix<float> all;
    int runs = 0;
    if (const auto full = GetDesign(1, 1)) {
        all = full->GetDesignMatrix();
        runs = full->GetBaseRuns();
    } else {
        all = MakeFullFactorial(factors);
        runs = all.SizeRows();
    }
    for (int row = 1; row <= runs; ++row) {
        combinations_.emplace(GetFormulationString(row), all.GetRow(row));
    }
    if (IsCenterPointIncluded()) {
        combinations_.emplace(GetFormulationString(runs + 1) + cCenterPoint,
                              GetCenterpoint(factors));
    }
}

std::string StabilityDesign::GetFormulationString(int number) {
    return fmt::format("c{}", number);
}

std::vector<std::string> StabilityDesign::GetFormulationVector(const Factors& factors) const {
    LoadCombinationIDMap(factors);
    std::vector<std::string> names;
    for (const auto& entry : combinations_) {
        names.push_back(entry.first);
    }
    std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        return QvStdString::CompareNumber(a, b, std::locale::classic()) < 0;
    });
    return names;
}

int StabilityDesign::GetNumberOfCombinations(const Factors& factors) const {
    LoadCombinationIDMap(factors);
    return combinationCount_;
}

std::string StabilityDesign::GetCombination(const NCDataVector<float>& row,
                                            const Factors& factors) const {
    LoadCombinationIDMap(factors);
    return NameFinder::FindNear(combinations_, row.Values());
}

std::vector<std::string> StabilityDesign::GetSettingsVector() const {
    std::vector<std::string> settings;
    for (const auto& [reduction, index] : used_) {
        if (const NCDataMatrix<float>* subset = GetDesignMatrix(reduction, index)) {
            settings.insert(settings.end(),
                            static_cast<std::size_t>(subset->SizeRows()),
                            StabilityDesignData::GetDesignsetName(reduction, index));
        }
    }
    return settings;
}

std::vector<float> StabilityDesign::GetDesignSetVector(const std::vector<float>& times) const {
    std::vector<float> points;
    for (std::size_t i = 0; i < used_.size(); ++i) {
        if (const NCDataMatrix<float>* subset = GetDesignMatrix(used_[i].first, used_[i].second)) {
            points.insert(points.end(),
                          static_cast<std::size_t>(subset->SizeRows()),
                          i < times.size() ? times[i] : static_cast<float>(i));
        }
    }
    return points;
}

void StabilityDesign::GetStabilityDesignNames(std::vector<std::string>& names,
                                              std::vector<std::string>& combinations,
                                              const std::vector<float>& times,
                                              const Factors& factors) const {
    const auto matrix = GetDesignMatrix();
    if (!matrix || !EDesign::IsStabilityDesign(type_)) {
        return;
    }
    LoadCombinationIDMap(factors);
    const NameFinder finder(combinations_);
    const std::vector<std::string> settings = GetSettingsVector();
    const std::vector<float> points = GetDesignSetVector(times);
    // Subsets that have changed since the matrix was assembled may have fewer runs than it.
    const int rows = std::min(matrix->SizeRows(), static_cast<int>(settings.size()));
    for (int row = 1; row <= rows; ++row) {
        const auto at = static_cast<std::size_t>(row - 1);
        const std::string combination = finder.Find(matrix->RowSpan(row));
        combinations.push_back(combination);
        names.push_back(type_ == EDesign::Stability
                            ? fmt::format("{}-T{}", combination, points[at])
                            : fmt::format("{}-{}", combination, settings[at]));
    }
}
