#include "designs/factorial/DefinitiveScreening.h"

#include "designs/factorial/DefinitiveScreeningTables.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"

namespace {

// Matrices of up to this many columns more than there are factors serve as well.
constexpr int cMaxSpareColumns = 3;
constexpr unsigned int cMinRuns = 4;
constexpr unsigned char cPriority = 10;

bool HasThreeLevelsThroughout(const Factors& factors) {
    return factors.IsAll3Levels() && factors.GetQualitativeCount() == 0;
}

bool IsEligible(const Factors& factors) {
    return (HasThreeLevelsThroughout(factors) && !factors.IsMixture()) ||
           factors.IsFormulationSumFree();
}

// The matrix with `spare` columns more than there are factors; null where there is none.
const NCDataMatrix<float>* FindMatrix(const Factors& factors, int spare) {
    if (!IsEligible(factors)) {
        return nullptr;
    }
    const auto& matrices = DefinitiveScreeningTables::GetMatrices();
    const auto found = matrices.find(static_cast<int>(factors.GetDesignFactorCount()) + spare);
    return found != matrices.end() ? &found->second : nullptr;
}

const NCDataMatrix<float>* FindMatrixOfRuns(const Factors& factors, unsigned int runs) {
    for (int spare = 0; spare <= cMaxSpareColumns; ++spare) {
        const NCDataMatrix<float>* matrix = FindMatrix(factors, spare);
        if (matrix != nullptr && static_cast<unsigned int>(matrix->SizeRows()) == runs) {
            return matrix;
        }
    }
    return nullptr;
}

NCDataMatrix<float> FirstColumns(NCDataMatrix<float> matrix, int count) {
    matrix.RemoveColumns(count + 1, matrix.SizeColumns() - count);
    return matrix;
}

}  // namespace

DefinitiveScreeningDesign::DefinitiveScreeningDesign(const Factors& factors,
                                                     const DesignOptions& options)
    : NCDesign(factors) {
    const NCDataMatrix<float>* matrix = FindMatrixOfRuns(factors, options.GetRuns());
    if (matrix == nullptr) {
        return;
    }
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    if (matrix->SizeColumns() == count) {
        SetDesignMatrixAddAndAdjust(*matrix, factors, options);
    } else {
        SetDesignMatrixAddAndAdjust(FirstColumns(*matrix, count), factors, options);
    }
}

std::shared_ptr<NCDesign> DefinitiveScreeningDesign::Clone() const {
    return std::make_shared<DefinitiveScreeningDesign>(*this);
}

std::unique_ptr<NCDesign> DefinitiveScreeningBuilder::Build(const Factors& factors,
                                                            const DesignOptions& options,
                                                            bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<DefinitiveScreeningDesign>(factors, options)
                                     : nullptr;
}

unsigned int DefinitiveScreeningBuilder::GetDefaultRuns(const Factors& factors,
                                                        EObjective::Type /*objective*/) const {
    const NCDataMatrix<float>* matrix = FindMatrix(factors, 0);
    if (matrix == nullptr) {
        matrix = FindMatrix(factors, 1);
    }
    return matrix != nullptr ? static_cast<unsigned int>(matrix->SizeRows()) : 0;
}

std::vector<unsigned int> DefinitiveScreeningBuilder::GetLegalRuns(
    const Factors& factors, const DesignOptions& /*options*/) const {
    std::vector<unsigned int> legal;
    for (int spare = 0; spare <= cMaxSpareColumns; ++spare) {
        if (const NCDataMatrix<float>* matrix = FindMatrix(factors, spare)) {
            legal.push_back(static_cast<unsigned int>(matrix->SizeRows()));
        }
    }
    return legal;
}

unsigned char DefinitiveScreeningBuilder::GetPriority(const Factors& /*factors*/) const {
    return cPriority;
}

bool DefinitiveScreeningBuilder::IsValid(const Factors& factors,
                                         const DesignOptions& options) const {
    if (GetDefaultRuns(factors, options.GetObjective()) < cMinRuns ||
        FindMatrixOfRuns(factors, options.GetRuns()) == nullptr) {
        return false;
    }
    // Squares cannot be told apart from the mean without a run in the middle.
    if (options.GetCenterPoints() < GetMinimumCenterPoints()) {
        return false;
    }
    // Deliberate: neither the run limit nor constraints are looked at.
    return FamilyRules::IsScreening(options.GetObjective()) &&
           options.GetModel() == EModel::Quadratic && HasThreeLevelsThroughout(factors) &&
           factors.IsProcessOnly();
}

EModel::Type DefinitiveScreeningBuilder::GetDefaultModel(const Factors& /*factors*/,
                                                         EObjective::Type /*objective*/) const {
    return EModel::Quadratic;
}
