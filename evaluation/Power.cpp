#include "evaluation/Power.h"

#include <algorithm>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/complement.hpp>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/non_central_f.hpp>
#include <cmath>
#include <limits>
#include <map>
#include <stdexcept>
#include <utility>

#include "foundation/mat/DlibMatrix.h"
#include "foundation/util/NCError.h"
#include "foundation/utl/ExceptionMessage.h"

namespace NCDOE {
namespace {

constexpr int cFewestRuns = 4;
constexpr int cFewestColumns = 2;
// Level numbers are told from floats that fall short of a whole number.
constexpr double cLevelTolerance = 0.0001;
constexpr std::size_t cMostFactors = 3;
// A reference model is singular below the one and too ill-conditioned beyond the other.
constexpr double cSmallestSingularValue = 1e-17;
constexpr double cMostCondition = 1e8;
// A power must clearly exceed the level of significance to mean anything.
constexpr double cSmallestTotal = 1.000001;

int LevelAt(const NCDataMatrix<float>& matrix, int row, int column) {
    constexpr double cMostLevels = 1e6;
    constexpr int cNoLevel = -1;
    const auto value = static_cast<double>(matrix(row, column));
    // NaN is refused, too.
    return value >= cNoLevel && value <= cMostLevels
               ? static_cast<int>(std::trunc(value + cLevelTolerance))
               : cNoLevel;
}

/// The number of levels of a qualitative column, whose levels are 0, 1, ..., N - 1.
int CountLevels(const NCDataMatrix<float>& matrix, int column) {
    std::set<int> levels;
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        levels.insert(LevelAt(matrix, row, column + 1));
    }
    const int count = static_cast<int>(levels.size());
    if (count < 2 || *levels.begin() != 0 || *levels.rbegin() != count - 1) {
        throw std::invalid_argument(
            "Qualitative variables must be coded so that for N different settings,\n"
            "all values are between 0 and N-1 and there are no missing settings.\n"
            "e.g. if a variable has 3 settings, the column must contain 0, 1 and 2.");
    }
    return count;
}

void CheckColumns(const NCDataMatrix<float>& matrix,
                  const std::vector<std::vector<int>>& terms,
                  const std::set<int>& qualitative) {
    const auto isOutside = [&](int column) { return column < 0 || column >= matrix.SizeColumns(); };
    const auto hasOutside = [&](const auto& columns) {
        return std::any_of(columns.begin(), columns.end(), isOutside);
    };
    if (hasOutside(qualitative) || std::any_of(terms.begin(), terms.end(), hasOutside)) {
        throw std::invalid_argument("Column index out of range");
    }
}

/// Sum to zero coding: 1 in the column's level, -1 in the last level, 0 in the others.
double LevelCode(int level, int columnLevel, int levels) {
    if (level == levels - 1) {
        return -1.0;
    }
    return level == columnLevel ? 1.0 : 0.0;
}

NCDataMatrix<double> ModelMatrix(const NCDataMatrix<float>& matrix,
                                 const std::vector<Detail::ExpandedTerm>& terms,
                                 const std::map<int, int>& levels) {
    NCDataMatrix<double> x(matrix.SizeRows(), static_cast<int>(terms.size()), 1.0);
    for (int column = 1; column <= x.SizeColumns(); ++column) {
        for (const ExpandedFactor& factor : terms[static_cast<std::size_t>(column - 1)].second) {
            for (int row = 1; row <= x.SizeRows(); ++row) {
                const double value = factor.Level < 0
                                         ? static_cast<double>(matrix(row, factor.Factor + 1))
                                         : LevelCode(LevelAt(matrix, row, factor.Factor + 1),
                                                     factor.Level,
                                                     levels.at(factor.Factor));
                x(row, column, x(row, column) * value);
            }
        }
    }
    return x;
}

dlib::matrix<double> Columns(const NCDataMatrix<double>& x, const std::vector<int>& columns) {
    dlib::matrix<double> result(x.SizeRows(), static_cast<long>(columns.size()));
    for (long j = 0; j < result.nc(); ++j) {
        for (long i = 0; i < result.nr(); ++i) {
            result(i, j) = x(static_cast<int>(i) + 1, columns[static_cast<std::size_t>(j)] + 1);
        }
    }
    return result;
}

/// The least squared length that `scale` times a tested column keeps when the reference model has
/// taken its part; NaN when the reference model is singular.
double NonCentrality(const dlib::matrix<double>& reference,
                     const dlib::matrix<double>& tested,
                     double scale) {
    dlib::matrix<double> residual = scale * tested;
    if (reference.nc() > 0) {
        dlib::matrix<double> u, w, v;
        const dlib::matrix<double> information = dlib::trans(reference) * reference;
        if (!dlib::is_finite(information) ||
            dlib::svd4(dlib::SVD_FULL_U, true, information, u, w, v) != 0 ||
            dlib::min(w) < cSmallestSingularValue || dlib::max(w) / dlib::min(w) > cMostCondition) {
            return std::numeric_limits<double>::quiet_NaN();
        }
        const dlib::matrix<double> inverse =
            dlib::scale_columns(v, dlib::reciprocal(w)) * dlib::trans(u);
        const dlib::matrix<double> coefficients = inverse * (dlib::trans(reference) * residual);
        residual -= reference * coefficients;
    }
    double least = std::numeric_limits<double>::max();
    for (long column = 0; column < residual.nc(); ++column) {
        const double length = dlib::length_squared(dlib::colm(residual, column));
        if (std::isnan(length)) {
            return length;
        }
        least = std::min(least, length);
    }
    return least;
}

/// The effect as the coefficient of a model column.
double ScaledEffect(Power::TermType type, double effect, double noise) {
    // The coefficient that lifts the response by one unit where the blend is at its height: x1 x2
    // is 1/4 there and x1 x2 x3 is 1/27. A cube counts 16/3.
    static const std::map<Power::TermType, double> cMixtureScales = {
        {Power::MixtureBinary, 4.0}, {Power::MixtureCubic, 27.0}, {Power::MixtureCube, 16.0 / 3.0}};
    switch (type) {
        case Power::Quantitative:
            return effect * 0.5 * noise;
        case Power::Square:
            return effect * noise;
        case Power::MixtureLinear:
            return effect;
        case Power::Qualitative:
            return effect * 0.5;
        default:
            return effect * cMixtureScales.at(type);
    }
}

}  // namespace

namespace Detail {

std::vector<ExpandedTerm> ExpandTerms(const std::vector<std::vector<int>>& terms,
                                      const std::set<QualitativeVar>& qualitative) {
    std::vector<ExpandedTerm> expanded;
    for (std::size_t term = 0; term < terms.size(); ++term) {
        std::vector<ExpandedTerm> columns = {{static_cast<int>(term), {}}};
        for (const int factor : terms[term]) {
            const auto found = qualitative.find(QualitativeVar{factor, 0});
            const bool isQualitative = found != qualitative.end();
            const int blocks = isQualitative ? found->Levels - 1 : 1;
            std::vector<ExpandedTerm> next;
            for (int block = 0; block < blocks; ++block) {
                for (ExpandedTerm column : columns) {
                    column.second.push_back({factor, isQualitative ? block : -1});
                    next.push_back(std::move(column));
                }
            }
            columns = std::move(next);
        }
        expanded.insert(expanded.end(), columns.begin(), columns.end());
    }
    return expanded;
}

}  // namespace Detail

const int Power::siDivideWithVariance = Power::Quantitative | Power::Square;
const int Power::siMixtureFactor =
    Power::MixtureLinear | Power::MixtureBinary | Power::MixtureCubic | Power::MixtureCube;

Power::Power(const NCDataMatrix<float>& matrix,
             const std::vector<std::vector<int>>& terms,
             std::vector<std::set<int>> mixtures,
             const std::set<int>& qualitative)
    : mMixtures(std::move(mixtures)) {
    if (matrix.SizeRows() < cFewestRuns) {
        throw std::invalid_argument("The design matrix must have at least 4 runs.");
    }
    if (matrix.SizeColumns() < cFewestColumns) {
        throw std::invalid_argument("The design matrix must have at least 2 factors.");
    }
    CheckColumns(matrix, terms, qualitative);
    std::map<int, int> levels;
    std::set<Detail::QualitativeVar> variables;
    for (const int column : qualitative) {
        levels[column] = CountLevels(matrix, column);
        variables.insert({column, levels[column]});
    }
    mTerms = Detail::ExpandTerms(terms, variables);
    mX = ModelMatrix(matrix, mTerms, levels);
}

double Power::GetPower(int modelIndex, double effect, double noise, double probability) const {
    const std::vector<int> tested = ColumnsOf(modelIndex);
    const auto first = static_cast<std::size_t>(tested.front());
    const TermType type = GetTermType(mTerms[first].second);
    if (type == Unsupported) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    const NCDataMatrix<double> x = type == MixtureLinear ? AdjustForMixture(tested.front()) : mX;
    double nonCentrality = NonCentrality(Columns(x, OtherColumns(tested, type)),
                                         Columns(x, tested),
                                         ScaledEffect(type, effect, noise));
    if (std::isnan(nonCentrality)) {
        return nonCentrality;
    }
    if ((type & siDivideWithVariance) != 0) {
        nonCentrality /= noise * noise;
    }
    return CalcPower(nonCentrality, tested.size(), probability);
}

Power::TermType Power::GetTermType(const std::vector<ExpandedFactor>& factors) const {
    if (factors.empty() || factors.size() > cMostFactors) {
        return Unsupported;
    }
    for (std::size_t i = 0; i < factors.size(); ++i) {
        if (factors[i].Level >= 0) {
            return factors.size() == 1 ? Qualitative : Unsupported;
        }
        if (const std::set<int>* mixture = MixtureOf(factors[i].Factor)) {
            return i == 0 ? GetMixtureType(factors, *mixture) : Unsupported;
        }
        if (i == 0 && factors.size() == 2 && factors[0].Factor == factors[1].Factor) {
            return Square;
        }
    }
    return Quantitative;
}

Power::TermType Power::GetMixtureType(const std::vector<ExpandedFactor>& factors,
                                      const std::set<int>& mixture) const {
    const bool isOneMixture =
        std::all_of(factors.begin(), factors.end(), [&](const ExpandedFactor& factor) {
            return mixture.contains(factor.Factor);
        });
    if (!isOneMixture) {
        return Unsupported;
    }
    if (factors.size() < cMostFactors) {
        return factors.size() == 1 ? MixtureLinear : MixtureBinary;
    }
    const bool isCube =
        std::all_of(factors.begin(), factors.end(), [&](const ExpandedFactor& factor) {
            return factor.Factor == factors.front().Factor;
        });
    return isCube ? MixtureCube : MixtureCubic;
}

const std::set<int>* Power::MixtureOf(int factor) const {
    const auto found =
        std::find_if(mMixtures.begin(), mMixtures.end(), [factor](const std::set<int>& mixture) {
            return mixture.contains(factor);
        });
    return found != mMixtures.end() ? &*found : nullptr;
}

bool Power::Contains(const std::vector<ExpandedFactor>& a, const std::vector<ExpandedFactor>& b) {
    return std::all_of(b.begin(), b.end(), [&a](const ExpandedFactor& wanted) {
        return std::any_of(a.begin(), a.end(), [&wanted](const ExpandedFactor& factor) {
            return factor.Factor == wanted.Factor;
        });
    });
}

std::vector<int> Power::ColumnsOf(int modelIndex) const {
    std::vector<int> columns;
    for (std::size_t i = 0; i < mTerms.size(); ++i) {
        if (mTerms[i].first == modelIndex) {
            columns.push_back(static_cast<int>(i));
        }
    }
    if (columns.empty()) {
        throw std::invalid_argument("Model index out of range");
    }
    return columns;
}

std::vector<int> Power::OtherColumns(const std::vector<int>& tested, TermType type) const {
    const auto& factors = mTerms[static_cast<std::size_t>(tested.front())].second;
    std::vector<int> others;
    for (int i = 0; i < static_cast<int>(mTerms.size()); ++i) {
        if (i >= tested.front() && i <= tested.back()) {
            continue;
        }
        // A term is tested against the model without the terms that hold its factors. Deliberate:
        // by plain membership the main effect of a factor is left out beside its square.
        const bool holdsTerm = (type & siMixtureFactor) == 0 &&
                               Contains(mTerms[static_cast<std::size_t>(i)].second, factors);
        if (!holdsTerm) {
            others.push_back(i);
        }
    }
    return others;
}

NCDataMatrix<double> Power::AdjustForMixture(int tested) const {
    const int factor = mTerms[static_cast<std::size_t>(tested)].second.front().Factor;
    const std::set<int>* mixture = MixtureOf(factor);
    if (!mixture) {
        throw NCError(ExceptionMessage::translate("Internal error in Power::CalcPower"),
                      NCError::Severe);
    }
    // A share cannot change alone: the others give way in equal parts.
    NCDataMatrix<double> x = mX;
    const double part = static_cast<double>(mixture->size()) - 1.0;
    for (int column = 0; column < x.SizeColumns(); ++column) {
        const auto& factors = mTerms[static_cast<std::size_t>(column)].second;
        if (column == tested || factors.size() != 1 || !mixture->contains(factors[0].Factor)) {
            continue;
        }
        for (int row = 1; row <= x.SizeRows(); ++row) {
            x(row, column + 1, x(row, column + 1) + x(row, tested + 1) / part);
        }
    }
    return x;
}

double Power::CalcPower(double nonCentrality, std::size_t tested, double probability) const {
    const auto between = static_cast<double>(tested);
    const double within =
        static_cast<double>(mX.SizeRows()) - static_cast<double>(mX.SizeColumns());
    const double critical = boost::math::quantile(
        boost::math::fisher_f_distribution<double>(between, within), probability);
    // The series of the distribution fails there, and the residual would have to be a hundred times
    // its expectation to hide such an effect.
    constexpr double cBeyondSeries = 1e9;
    constexpr double cCertain = 100;
    if (nonCentrality > cBeyondSeries && cCertain * between * critical < nonCentrality) {
        return 1.0;
    }
    // There the numerator hardly varies any more, and the residual alone decides.
    const double tail =
        nonCentrality > cBeyondSeries
            ? boost::math::cdf(boost::math::chi_squared_distribution<double>(within),
                               within * (between + nonCentrality) / (between * critical))
            : boost::math::cdf(boost::math::complement(
                  boost::math::non_central_f_distribution<double>(between, within, nonCentrality),
                  critical));
    return tail + probability > cSmallestTotal ? tail : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace NCDOE
