#include "designs/factorial/GraecoLatin.h"

#include <span>
#include <string_view>

#include "designs/factorial/GraecoLatinTables.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"

namespace {

using Array = std::span<const std::string_view>;

constexpr int cL18Runs = static_cast<int>(GraecoLatinTables::cL18.size());

// Level 1, 2 or 3 at a row and a column, both from 1; 0 outside the array.
int CellOf(Array array, int row, int column) {
    if (row < 1 || row > static_cast<int>(array.size())) {
        return 0;
    }
    const std::string_view run = array[static_cast<std::size_t>(row - 1)];
    const bool inside = column >= 1 && column <= static_cast<int>(run.size());
    return inside ? run[static_cast<std::size_t>(column - 1)] - '0' : 0;
}

bool HasLevels(const Factors& factors, int factor) {
    const CEType::EType type = factors.GetFactorType(factor);
    return type == CEType::Multilevel || type == CEType::Qualitative;
}

bool IsContinuous(const Factors& factors, int factor) {
    const CEType::EType type = factors.GetFactorType(factor);
    return type == CEType::Quantitative ||
           (type == CEType::Formulation && factors.IsFormulationSumFree());
}

// The factor, counted from 0, that takes the two-level column of L18.
int TwoLevelFactor(const Factors& factors) {
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    int lastContinuous = 0;
    for (int factor = 0; factor < count; ++factor) {
        if (HasLevels(factors, factor) && factors.GetLevelCount(factor) == 2) {
            return factor;
        }
        if (IsContinuous(factors, factor)) {
            lastContinuous = factor;
        }
    }
    return lastContinuous;
}

// The L18 array with its two-level column moved behind the first `twoLevelFactor` columns. An
// object of its own for every build: builds may run at once, and nothing is to be restored when one
// fails.
class MovedL18 : public NCDesign {
  public:
    MovedL18(const Factors& factors, int twoLevelFactor)
        : NCDesign(factors), twoLevelColumn_(twoLevelFactor + 1) {}

    [[nodiscard]] NCDataMatrix<float> MakeTable() const {
        return MakeLDesignTable(GetFactors(), cL18Runs);
    }
    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override {
        return std::make_shared<MovedL18>(*this);
    }

  protected:
    [[nodiscard]] int GetDesignCoding(int row, int column) const override {
        if (column == twoLevelColumn_) {
            return CellOf(GraecoLatinTables::cL18, row, 1);
        }
        return CellOf(GraecoLatinTables::cL18, row, column < twoLevelColumn_ ? column + 1 : column);
    }

  private:
    int twoLevelColumn_;
};

}  // namespace

L9::L9(const Factors& factors, const DesignOptions& options) : NCDesign(factors) {
    constexpr int runs = static_cast<int>(GraecoLatinTables::cL9.size());
    SetDesignMatrixAndAdd(MakeLDesignTable(factors, runs), factors, options);
}

std::shared_ptr<NCDesign> L9::Clone() const {
    return std::make_shared<L9>(*this);
}

int L9::GetDesignCoding(int row, int column) const {
    return CellOf(GraecoLatinTables::cL9, row, column);
}

L18::L18(const Factors& factors, const DesignOptions& options) : NCDesign(factors) {
    SetDesignMatrixAndAdd(MovedL18(factors, TwoLevelFactor(factors)).MakeTable(), factors, options);
}

std::shared_ptr<NCDesign> L18::Clone() const {
    return std::make_shared<L18>(*this);
}

int L18::GetDesignCoding(int row, int column) const {
    return CellOf(GraecoLatinTables::cL18, row, column);
}

L27::L27(const Factors& factors, const DesignOptions& options) : NCDesign(factors) {
    constexpr int runs = static_cast<int>(GraecoLatinTables::cL27.size());
    SetDesignMatrixAndAdd(MakeLDesignTable(factors, runs), factors, options);
}

std::shared_ptr<NCDesign> L27::Clone() const {
    return std::make_shared<L27>(*this);
}

int L27::GetDesignCoding(int row, int column) const {
    return CellOf(GraecoLatinTables::cL27, row, column);
}

L36::L36(const Factors& factors, const DesignOptions& options) : NCDesign(factors) {
    constexpr int runs = static_cast<int>(GraecoLatinTables::cL36.size());
    SetDesignMatrixAndAdd(MakeLDesignTable(factors, runs), factors, options);
}

std::shared_ptr<NCDesign> L36::Clone() const {
    return std::make_shared<L36>(*this);
}

int L36::GetDesignCoding(int row, int column) const {
    return CellOf(GraecoLatinTables::cL36, row, column);
}

unsigned int GraecoLatinBuilder::GetDefaultRuns(const Factors& factors,
                                                EObjective::Type /*objective*/) const {
    const unsigned int count = factors.GetDesignFactorCount();
    const ArraySize size = GetArraySize();
    return count >= size.minFactors && count <= size.maxFactors ? size.runs : 0;
}

std::vector<unsigned int> GraecoLatinBuilder::GetLegalRuns(const Factors& factors,
                                                           const DesignOptions& options) const {
    return {GetDefaultRuns(factors, options.GetObjective())};
}

unsigned char GraecoLatinBuilder::GetPriority(const Factors& factors) const {
    return GetTablePriority(IsDesign(), factors.GetDesignFactorCount());
}

bool GraecoLatinBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    if (!FamilyRules::IsFillerFree(factors) || FamilyRules::HasConstraints(options)) {
        return false;
    }
    if (!FamilyRules::IsScreening(options.GetObjective()) || options.GetModel() != EModel::Linear) {
        return false;
    }
    if (!factors.IsProcessOnly() || !FitsLevels(factors)) {
        return false;
    }
    const unsigned int runs = GetDefaultRuns(factors, options.GetObjective());
    return runs > 0 && options.GetMaxRuns() >= runs;
}

EModel::Type GraecoLatinBuilder::GetDefaultModel(const Factors& /*factors*/,
                                                 EObjective::Type objective) const {
    return FamilyRules::IsScreening(objective) ? EModel::Linear : EModel::None;
}

bool GraecoLatinBuilder::FitsLevels(const Factors& factors) const {
    return factors.IsAll3Levels();
}

std::unique_ptr<NCDesign> L9Builder::Build(const Factors& factors,
                                           const DesignOptions& options,
                                           bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<L9>(factors, options) : nullptr;
}

std::unique_ptr<NCDesign> L18Builder::Build(const Factors& factors,
                                            const DesignOptions& options,
                                            bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<L18>(factors, options) : nullptr;
}

bool L18Builder::FitsLevels(const Factors& factors) const {
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    if (factors.IsMixture() || count == 0) {
        return false;
    }
    int twoLevel = 0;
    int threeLevel = 0;
    int continuous = 0;
    for (int factor = 0; factor < count; ++factor) {
        const bool levels = HasLevels(factors, factor);
        const unsigned int levelCount = levels ? factors.GetLevelCount(factor) : 0;
        twoLevel += levels && levelCount == 2 ? 1 : 0;
        threeLevel += levels && levelCount == 3 ? 1 : 0;
        continuous += levels ? 0 : 1;
    }
    if (twoLevel == 0) {
        // A continuous factor stands in for the two-level factor.
        twoLevel = 1;
        continuous -= 1;
    }
    return twoLevel == 1 && continuous >= 0 && twoLevel + threeLevel + continuous == count;
}

std::unique_ptr<NCDesign> L27Builder::Build(const Factors& factors,
                                            const DesignOptions& options,
                                            bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<L27>(factors, options) : nullptr;
}

std::unique_ptr<NCDesign> L36Builder::Build(const Factors& factors,
                                            const DesignOptions& options,
                                            bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<L36>(factors, options) : nullptr;
}
