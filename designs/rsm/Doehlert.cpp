#include "designs/rsm/Doehlert.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <iterator>
#include <span>

#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"
#include "frame/MatrixSection.h"

namespace {

constexpr const char* cDesignSection = "Design";
constexpr const char* cOwnSection = "Doehlert";
constexpr const char* cExperimentsKey = "Experiments";

constexpr unsigned int cMinFactors = 2;
constexpr unsigned int cMaxFactors = 20;
// More runs than this fill a plate side.
constexpr unsigned int cFewRuns = 12;
// Two units in the last place of a float: a lattice point is reached by different sums.
constexpr double cRelativeTolerance = 1.1920928955078125e-7;

bool IsEqual(double x, double y) {
    int exponent = 0;
    std::frexp(std::max(std::abs(x), std::abs(y)), &exponent);
    return std::abs(x - y) <= std::ldexp(cRelativeTolerance, exponent);
}

bool AreEqualRows(std::span<const float> row, const std::vector<double>& other) {
    return std::equal(row.begin(), row.end(), other.begin(), other.end(), [](float x, double y) {
        return IsEqual(static_cast<double>(x), y);
    });
}

std::vector<double> InDouble(std::span<const float> row) {
    return {row.begin(), row.end()};
}

// The sum of two design rows, exactly.
std::vector<double> Sum(std::span<const float> a, std::span<const float> b) {
    std::vector<double> sum = InDouble(a);
    std::transform(sum.begin(), sum.end(), b.begin(), sum.begin(), std::plus<>());
    return sum;
}

// The first row equal to a point, 0 without one.
int FindRow(const NCDataMatrix<float>& matrix, const std::vector<double>& point) {
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        if (AreEqualRows(matrix.RowSpan(row), point)) {
            return row;
        }
    }
    return 0;
}

bool HoldsEqualRow(const NCDataMatrix<float>& matrix,
                   const std::set<int>& rows,
                   const std::vector<double>& point) {
    return std::any_of(rows.begin(), rows.end(), [&](int row) {
        return AreEqualRows(matrix.RowSpan(row), point);
    });
}

void RequireRow(const std::shared_ptr<const NCDataMatrix<float>>& matrix, int row) {
    if (!matrix || row < 1 || row > matrix->SizeRows()) {
        throw InvalidOperationException("Doehlert: the design has no such row.");
    }
}

void SetDifference(NCDataMatrix<float>& table,
                   int row,
                   std::span<const float> a,
                   std::span<const float> b) {
    std::transform(a.begin(), a.end(), b.begin(), table.RowSpan(row).begin(), std::minus<>());
}

}  // namespace

Doehlert::Doehlert(const Factors& factors, const DesignOptions& options) : NCDesign(factors) {
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    NCDataMatrix<float> table = ExpandToDesign(GenerateSimplex(count), count);
    // The origin comes back as centre points, as many as are asked for.
    table.RemoveRows(1, 1);
    SetDesignMatrixAndAdd(table, factors, options);
}

Doehlert::Doehlert(const Factors& factors, const ConfigurationSection& section)
    : NCDesign(factors) {
    Doehlert::Load(&section);
}

std::shared_ptr<NCDesign> Doehlert::Clone() const {
    return std::make_shared<Doehlert>(*this);
}

void Doehlert::Save(ConfigurationSection* section) const {
    NCDesign::Save(section);
    const auto design = section->OpenOrCreateSection(cDesignSection);
    MatrixSection::Remove(design.get());
    design->RemoveSection(cOwnSection);
    const auto matrix = GetDesignMatrix();
    if (!matrix) {
        return;
    }
    MatrixSection::SaveMatrix(design.get(), *matrix);
    if (experimentNumbers_) {
        design->OpenOrCreateSection(cOwnSection)
            ->WriteIntVector(cExperimentsKey, *experimentNumbers_);
    }
}

bool Doehlert::Load(const ConfigurationSection* section) {
    if (!NCDesign::Load(section)) {
        return false;
    }
    ClearDesignMatrix();
    experimentNumbers_.reset();
    const auto design = section->OpenSection(cDesignSection);
    NCDataMatrix<float> matrix;
    if (MatrixSection::LoadMatrix(design.get(), &matrix)) {
        SetDesignMatrix(matrix);
    }
    const auto own = design->OpenSection(cOwnSection);
    std::vector<int> numbers;
    if (own && own->ReadIntVector(cExperimentsKey, &numbers)) {
        SetExperimentNumbers(numbers);
    }
    return true;
}

unsigned int Doehlert::GeneratedRuns(unsigned int factors) {
    return factors < cMinFactors ? 0 : (factors + 1) * factors;
}

NCDataMatrix<float> Doehlert::GenerateSimplex(int factors) {
    NCDataMatrix<float> simplex(factors + 1, factors, 0.0F);
    for (int i = 1; i <= factors; ++i) {
        for (int column = 1; column < i; ++column) {
            // Deliberate: the inversion is in float, so that stored designs stay as they are.
            const double root = std::sqrt(2.0 * column * (column + 1));
            simplex(i + 1, column, 1.0F / static_cast<float>(root));
        }
        simplex(i + 1, i, static_cast<float>(std::sqrt(i + 1.0) / std::sqrt(2.0 * i)));
    }
    return simplex;
}

NCDataMatrix<float> Doehlert::ExpandToDesign(const NCDataMatrix<float>& simplex, int factors) {
    NCDataMatrix<float> table = simplex;
    table.Resize((factors + 1) * factors + 1, factors);
    int row = factors + 1;
    for (int i = 1; i <= factors; ++i) {
        SetDifference(table, ++row, simplex.RowSpan(1), simplex.RowSpan(i + 1));
    }
    for (int a = 1; a < factors; ++a) {
        for (int b = a + 1; b <= factors; ++b) {
            SetDifference(table, ++row, simplex.RowSpan(a + 1), simplex.RowSpan(b + 1));
        }
    }
    for (int a = 1; a < factors; ++a) {
        for (int b = a + 1; b <= factors; ++b) {
            SetDifference(table, ++row, simplex.RowSpan(b + 1), simplex.RowSpan(a + 1));
        }
    }
    return table;
}

NCDataMatrix<float> Doehlert::GetNewPointsAround(int row, std::set<int>& existing) const {
    const auto matrix = GetDesignMatrix();
    RequireRow(matrix, row);
    std::set<int> chosen;
    for (int from = 1; from <= matrix->SizeRows(); ++from) {
        const int found = FindRow(*matrix, Sum(matrix->RowSpan(from), matrix->RowSpan(row)));
        if (found > 0) {
            existing.insert(found);
        } else if (!HoldsEqualRow(*matrix, chosen, InDouble(matrix->RowSpan(from)))) {
            chosen.insert(from);
        }
    }
    NCDataMatrix<float> points(static_cast<int>(chosen.size()), matrix->SizeColumns());
    int point = 0;
    for (const int from : chosen) {
        const std::span<const float> moved = matrix->RowSpan(from);
        const std::span<const float> center = matrix->RowSpan(row);
        std::transform(moved.begin(),
                       moved.end(),
                       center.begin(),
                       points.RowSpan(++point).begin(),
                       std::plus<>());
    }
    return points;
}

bool Doehlert::IsExperimentEqual(int a, int b, int c) const {
    const auto matrix = GetDesignMatrix();
    RequireRow(matrix, a);
    RequireRow(matrix, b);
    if (c <= 0) {
        return AreEqualRows(matrix->RowSpan(a), InDouble(matrix->RowSpan(b)));
    }
    RequireRow(matrix, c);
    return AreEqualRows(matrix->RowSpan(a), Sum(matrix->RowSpan(b), matrix->RowSpan(c)));
}

void Doehlert::SetExperimentNumbers(const std::vector<int>& numbers) {
    experimentNumbers_ = std::make_shared<const std::vector<int>>(numbers);
}

int Doehlert::GetExperimentNumber(int row) const {
    if (!experimentNumbers_) {
        return row;
    }
    const bool isListed = row >= 1 && static_cast<std::size_t>(row) <= experimentNumbers_->size();
    return isListed ? (*experimentNumbers_)[static_cast<std::size_t>(row - 1)] : 0;
}

int Doehlert::GetRow(int experiment) const {
    if (!experimentNumbers_) {
        return experiment;
    }
    const auto found =
        std::find(experimentNumbers_->begin(), experimentNumbers_->end(), experiment);
    if (found == experimentNumbers_->end()) {
        throw Exception(ExceptionMessage::translate("Illegal experiment."));
    }
    return static_cast<int>(std::distance(experimentNumbers_->begin(), found)) + 1;
}

std::unique_ptr<NCDesign> DoehlertBuilder::Build(const Factors& factors,
                                                 const DesignOptions& options,
                                                 bool* /*cancel*/) const {
    return IsValid(factors, options) ? std::make_unique<Doehlert>(factors, options) : nullptr;
}

unsigned int DoehlertBuilder::GetDefaultRuns(const Factors& factors,
                                             EObjective::Type /*objective*/) const {
    return Doehlert::GeneratedRuns(factors.GetDesignFactorCountExpanded());
}

std::vector<unsigned int> DoehlertBuilder::GetLegalRuns(const Factors& factors,
                                                        const DesignOptions& /*options*/) const {
    return {GetDefaultRuns(factors, EObjective::Optimization)};
}

unsigned char DoehlertBuilder::GetPriority(const Factors& factors) const {
    return GetTablePriority(EDesign::Doehlert, factors.GetDesignFactorCountExpanded());
}

bool DoehlertBuilder::IsREDMUPRecommended(const Factors& factors,
                                          const DesignOptions& options) const {
    return factors.GetDesignFactorCount() == 2 || options.GetRuns() > cFewRuns;
}

bool DoehlertBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    const unsigned int count = factors.GetDesignFactorCount();
    if (count < cMinFactors || count > cMaxFactors) {
        return false;
    }
    return FamilyRules::IsQuantitativeResponseSurface(factors, options) &&
           options.GetMaxRuns() >= Doehlert::GeneratedRuns(count) + GetMinimumCenterPoints();
}

EModel::Type DoehlertBuilder::GetDefaultModel(const Factors& /*factors*/,
                                              EObjective::Type objective) const {
    return FamilyRules::IsResponseSurface(objective) ? EModel::Quadratic : EModel::None;
}
