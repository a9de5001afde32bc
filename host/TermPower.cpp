#include "host/TermPower.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "host/HostError.h"
#include "host/IndependentColumns.h"

namespace {

using Matrix = NCDataMatrix<float>;

constexpr int cFewestRuns = 4;
// Effects of this size are detected by any design that tells anything.
constexpr double cLargestEffect = 1e6;

bool IsComponent(const StudyFactors& factors, int factor) {
    return factor < static_cast<int>(factors.All().size()) && factors.IsMixture() &&
           factors.GetFactorType(factor) == CEType::Formulation;
}

// A Qualitative factor, or the block behind the factors.
bool HasLevels(const StudyFactors& factors, int factor) {
    return factor >= static_cast<int>(factors.All().size()) ||
           factors.GetFactorType(factor) == CEType::Qualitative;
}

int LevelCount(const StudyFactors& factors, int factor, int blocks) {
    return factor >= static_cast<int>(factors.All().size())
               ? blocks
               : static_cast<int>(factors.GetLevelCount(factor));
}

// What the low settings of all components leave of the whole.
float FreeShare(const StudyFactors& factors) {
    float share = 1;
    for (const StudyFactor& factor : factors.All()) {
        share -= factor.type == CEType::Formulation ? factor.low : 0;
    }
    return share;
}

// The coded settings of the process factors, as all figures have them.
void FillCodes(const JudgedDesign& design, Matrix& matrix) {
    const StudyFactors& factors = design.study.factors;
    const NCDOE::ModelMatrix model =
        NCDOE::MakeModelMatrix(factors, {}, design.runs, design.blocks);
    int variable = 0;
    for (int factor = 0; factor < static_cast<int>(factors.All().size()); ++factor) {
        const auto found = std::ranges::find(model.columns, std::vector<int>{variable});
        if (!HasLevels(factors, factor) && found != model.columns.end()) {
            const int column = static_cast<int>(found - model.columns.begin()) + 1;
            for (int row = 1; row <= matrix.SizeRows(); ++row) {
                matrix(row, factor + 1, model.rows(row, column));
            }
        }
        variable += static_cast<int>(factors.GetExpandedVariableCount(factor));
    }
}

void FillLevelsAndShares(const JudgedDesign& design, Matrix& matrix) {
    const StudyFactors& factors = design.study.factors;
    const float free = FreeShare(factors);
    int row = 0;
    for (const WorksheetRun& run : design.Decoded()) {
        ++row;
        for (int factor = 0; factor < static_cast<int>(factors.All().size()); ++factor) {
            const float value = run.values[static_cast<std::size_t>(factor)];
            if (HasLevels(factors, factor)) {
                matrix(row, factor + 1, value);
            } else if (IsComponent(factors, factor)) {
                matrix(row, factor + 1, (value - factors.At(factor).low) / free);
            }
        }
        if (design.blocks > 1) {
            matrix(
                row, static_cast<int>(factors.All().size()) + 1, static_cast<float>(run.block - 1));
        }
    }
}

// One column a factor: codes, level numbers from 0, shares of what the low settings leave; then the
// block, and the constant last.
Matrix PowerMatrix(const JudgedDesign& design) {
    const int factors = static_cast<int>(design.study.factors.All().size());
    Matrix matrix(design.runs.SizeRows(), factors + (design.blocks > 1 ? 2 : 1), 1.0F);
    FillCodes(design, matrix);
    FillLevelsAndShares(design, matrix);
    return matrix;
}

void RequireAllLevels(const Matrix& matrix, int factor, int levels, const std::string& name) {
    std::set<int> seen;
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        seen.insert(static_cast<int>(matrix(row, factor + 1)));
    }
    if (static_cast<int>(seen.size()) < levels) {
        FailWith(
            fmt::format("{} has {} levels, of which only {} occur in the runs; no power can be "
                        "told.",
                        Quoted(name),
                        levels,
                        seen.size()));
    }
}

TermPower::Meaning MeaningOf(const std::vector<int>& term, const StudyFactors& factors) {
    const auto isComponent = [&factors](int factor) { return IsComponent(factors, factor); };
    const auto hasLevels = [&factors](int factor) { return HasLevels(factors, factor); };
    if (std::ranges::all_of(term, isComponent)) {
        return term.size() == 1 ? TermPower::Meaning::Component : TermPower::Meaning::Blend;
    }
    if (std::ranges::any_of(term, isComponent)) {
        return TermPower::Meaning::None;
    }
    if (std::ranges::any_of(term, hasLevels)) {
        return term.size() == 1 ? TermPower::Meaning::Level : TermPower::Meaning::None;
    }
    return term.size() == 2 && term[0] == term[1] ? TermPower::Meaning::Square
                                                  : TermPower::Meaning::Range;
}

// The engine's coding of one column of a term: the last level is -1 in all.
double Code(const Matrix& matrix, int row, const NCDOE::ExpandedFactor& factor, int levels) {
    const float value = matrix(row, factor.Factor + 1);
    if (factor.Level < 0) {
        return static_cast<double>(value);
    }
    const int level = static_cast<int>(value);
    if (level == levels - 1) {
        return -1;
    }
    return level == factor.Level ? 1 : 0;
}

std::vector<double> ColumnOf(const Matrix& matrix,
                             const std::vector<NCDOE::ExpandedFactor>& factors,
                             const std::set<NCDOE::Detail::QualitativeVar>& levels) {
    std::vector<double> column(static_cast<std::size_t>(matrix.SizeRows()), 1.0);
    for (const NCDOE::ExpandedFactor& factor : factors) {
        const auto found = levels.find({factor.Factor, 0});
        const int count = found != levels.end() ? found->Levels : 0;
        for (int row = 1; row <= matrix.SizeRows(); ++row) {
            column[static_cast<std::size_t>(row - 1)] *= Code(matrix, row, factor, count);
        }
    }
    return column;
}

std::set<NCDOE::Detail::QualitativeVar> LevelColumns(const JudgedDesign& design,
                                                     const Matrix& matrix) {
    const StudyFactors& factors = design.study.factors;
    std::set<NCDOE::Detail::QualitativeVar> levels;
    const int count = static_cast<int>(factors.All().size()) + (design.blocks > 1 ? 1 : 0);
    for (int factor = 0; factor < count; ++factor) {
        if (HasLevels(factors, factor)) {
            const int known = LevelCount(factors, factor, design.blocks);
            RequireAllLevels(matrix,
                             factor,
                             known,
                             factor < static_cast<int>(factors.All().size())
                                 ? factors.At(factor).name
                                 : "Block");
            levels.insert({factor, known});
        }
    }
    return levels;
}

}  // namespace

TermPower::TermPower(const JudgedDesign& design) {
    if (design.runs.SizeRows() < cFewestRuns) {
        FailWith(fmt::format("{}: {} runs are too few to tell a power; there must be {}.",
                             design.name,
                             design.runs.SizeRows(),
                             cFewestRuns));
    }
    const StudyFactors& factors = design.study.factors;
    const Matrix matrix = PowerMatrix(design);
    const auto levels = LevelColumns(design, matrix);
    std::set<int> qualitative;
    for (const NCDOE::Detail::QualitativeVar& variable : levels) {
        qualitative.insert(variable.Column);
    }
    std::set<int> mixture;
    for (int factor = 0; factor < static_cast<int>(factors.All().size()); ++factor) {
        if (IsComponent(factors, factor)) {
            mixture.insert(factor);
        }
    }

    AddTerms(design, matrix);
    if (residual_ < 1) {
        FailWith(fmt::format(
            "{}: {} runs leave no degree of freedom beside the {} columns of the model; "
            "no power can be told. Choose a smaller model or more runs.",
            design.name,
            matrix.SizeRows(),
            matrix.SizeRows() - residual_));
    }
    power_ = std::make_shared<NCDOE::Power>(
        matrix, columns_, std::vector<std::set<int>>{mixture}, qualitative);
}

void TermPower::AddTerms(const JudgedDesign& design, const Matrix& matrix) {
    const StudyFactors& factors = design.study.factors;
    const auto levels = LevelColumns(design, matrix);
    const std::vector<int> constant{matrix.SizeColumns() - 1};
    IndependentColumns independent;
    int count = 0;
    const auto add = [&](const std::vector<int>& term) {
        // All columns of the term have to be new, as it is tested as a whole.
        IndependentColumns tried = independent;
        const auto columns = NCDOE::Detail::ExpandTerms({term}, levels);
        const bool areNew = std::ranges::all_of(columns, [&](const auto& column) {
            return tried.Add(ColumnOf(matrix, column.second, levels));
        });
        if (!areNew) {
            return 0;
        }
        independent = std::move(tried);
        count += static_cast<int>(columns.size());
        return static_cast<int>(columns.size());
    };
    // The components of a mixture add up to the constant.
    const bool hasConstant = !factors.IsMixture();
    if (hasConstant) {
        add(constant);
    }
    for (const std::vector<int>& term : design.terms) {
        if (term.empty()) {
            continue;
        }
        std::string name = ModelTermsText::TextOf(term, factors);
        if (const int degrees = add(term); degrees > 0) {
            terms_.push_back({std::move(name), degrees, MeaningOf(term, factors)});
            columns_.push_back(term);
        } else {
            leftOut_.push_back(std::move(name));
        }
    }
    if (hasConstant) {
        columns_.push_back(constant);
    }
    residual_ = matrix.SizeRows() - count;
}

double TermPower::Chance(std::size_t term, double effect, double alpha) const {
    return power_->GetPower(static_cast<int>(term), effect, 1.0, 1.0 - alpha);
}

double TermPower::Detectable(std::size_t term, double power, double alpha) const {
    const auto isDetected = [&](double effect) { return Chance(term, effect, alpha) >= power; };
    double high = 1;
    while (!isDetected(high)) {
        high *= 2;
        if (high > cLargestEffect) {
            return std::numeric_limits<double>::quiet_NaN();
        }
    }
    double low = 0;
    constexpr int cHalvings = 40;
    for (int i = 0; i < cHalvings; ++i) {
        const double middle = (low + high) / 2;
        (isDetected(middle) ? high : low) = middle;
    }
    return high;
}
