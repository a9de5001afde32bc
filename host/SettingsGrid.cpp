#include "host/SettingsGrid.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <span>
#include <stdexcept>
#include <vector>

#include "host/HostError.h"
#include "host/Interrupt.h"

namespace {

// What a search goes through in a sensible time.
constexpr double cMostPoints = 200'000;
constexpr long cPointsPerLook = 4096;
// Sums of shares in float.
constexpr float cShareTolerance = 1e-5F;

double Binomial(double n, double k) {
    double product = 1;
    for (double i = 1; i <= k; ++i) {
        product *= (n - k + i) / i;
    }
    return product;
}

// Computed before the grid is made, whose own count might overflow.
double CountPoints(const StudyFactors& factors, double levels) {
    double points = 1;
    for (int factor = 0; factor < static_cast<int>(factors.All().size()); ++factor) {
        const CEType::EType type = factors.GetFactorType(factor);
        if (type == CEType::Multilevel || type == CEType::Qualitative) {
            points *= static_cast<double>(factors.GetLevelCount(factor));
        } else if (type == CEType::Quantitative || !factors.IsMixture()) {
            points *= levels;
        }
    }
    const double components = factors.GetMixtureFactorCount();
    return components > 0 ? points * Binomial(levels - 1 + components - 1, components - 1) : points;
}

void RequireGrid(const Study& study, long long levels) {
    const double points = CountPoints(study.factors, static_cast<double>(levels));
    if (points > cMostPoints) {
        FailWith(fmt::format("--levels: {} give a grid of {:.6g} points; allowed are {:.0f}.",
                             levels,
                             points,
                             cMostPoints));
    }
}

float FreeShare(const StudyFactors& factors) {
    float share = 1;
    for (const StudyFactor& factor : factors.All()) {
        share -= factor.type == CEType::Formulation ? factor.low : 0;
    }
    return share;
}

float NearestSetting(const StudyFactor& factor, double code) {
    const auto low = static_cast<double>(factor.settings.front());
    const auto high = static_cast<double>(factor.settings.back());
    const double value = low + (code + 1) / 2 * (high - low);
    return *std::ranges::min_element(factor.settings, {}, [value](float setting) {
        return std::abs(static_cast<double>(setting) - value);
    });
}

// One value a factor in real units, or a level number from 0.
std::vector<float> RealValues(const std::vector<double>& row,
                              const StudyFactors& factors,
                              float freeShare) {
    std::vector<float> values;
    values.reserve(row.size());
    for (std::size_t i = 0; i < row.size(); ++i) {
        const StudyFactor& factor = factors.All()[i];
        if (factor.type == CEType::Qualitative) {
            // A level number, but for two levels, which stand at the ends of a range.
            values.push_back(static_cast<float>(std::max(row[i], 0.0)));
        } else if (factor.type == CEType::Multilevel) {
            values.push_back(NearestSetting(factor, row[i]));
        } else if (factor.type == CEType::Formulation && factors.IsMixture()) {
            values.push_back(factor.low + static_cast<float>(row[i]) * freeShare);
        } else if (row[i] <= -1 || row[i] >= 1) {
            // Exactly as the user wrote them.
            values.push_back(row[i] <= -1 ? factor.low : factor.high);
        } else {
            values.push_back(
                factors.FromCoded(static_cast<int>(i), static_cast<float>(row[i]), false));
        }
    }
    return values;
}

// All low settings are kept, since shares begin there.
bool KeepsHighShares(const std::vector<float>& values, const StudyFactors& factors) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        const StudyFactor& factor = factors.All()[i];
        if (factor.type == CEType::Formulation && values[i] > factor.high + cShareTolerance) {
            return false;
        }
    }
    return true;
}

std::vector<float> Expanded(const std::vector<float>& values, const StudyFactors& factors) {
    std::vector<float> row;
    row.reserve(factors.GetDesignFactorCountExpanded());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const StudyFactor& factor = factors.All()[i];
        if (factor.type != CEType::Qualitative) {
            row.push_back(values[i]);
            continue;
        }
        const auto coding =
            Factors::MakeCodingMatrix(CEType::Qualitative, static_cast<int>(factor.levels.size()));
        const auto codes = coding->RowSpan(static_cast<int>(values[i]) + 1);
        row.insert(row.end(), codes.begin(), codes.end());
    }
    return row;
}

// The engine's grid takes no Qualitative factor of two levels; as two settings it is the same.
StudyFactors GridFactors(const StudyFactors& factors) {
    std::vector<StudyFactor> changed = factors.All();
    for (StudyFactor& factor : changed) {
        if (factor.type == CEType::Qualitative && factor.levels.size() == 2) {
            factor.type = CEType::Multilevel;
            factor.settings = {0, 1};
        }
    }
    return {std::move(changed), factors.GetFiller()};
}

NCDOE::detail::CandidateSetGenerator MakeGenerator(const Study& study, long long levels) {
    try {
        return {GridFactors(study.factors), static_cast<long>(levels)};
    } catch (const std::invalid_argument& reason) {
        FailWith(fmt::format("{}: {}", study.file, reason.what()));
    }
}

}  // namespace

SettingsGrid MakeSettingsGrid(const Study& study, long long levels) {
    RequireGrid(study, levels);
    const StudyFactors& factors = study.factors;
    NCDOE::detail::CandidateSetGenerator generator = MakeGenerator(study, levels);
    SettingsGrid grid;
    grid.all = generator.SizeRows();
    grid.points = NCDataMatrix<float>(0, static_cast<int>(factors.GetDesignFactorCountExpanded()));
    grid.points.ReserveRows(static_cast<int>(grid.all));
    const float freeShare = FreeShare(factors);
    for (long row = 0; row < generator.SizeRows(); ++row) {
        static_cast<void>(generator.Next());
        const std::vector<float> values = RealValues(generator.GetRow(), factors, freeShare);
        if (KeepsHighShares(values, factors) &&
            !study.constraints.IsConstrained(NCDataVector<float>(std::span<const float>(values)))) {
            const std::vector<float> cells = Expanded(values, factors);
            const int next = grid.points.SizeRows() + 1;
            grid.points.InsertRows(next, 1);
            std::ranges::copy(cells, grid.points.RowSpan(next).begin());
        }
        if (row % cPointsPerLook == 0) {
            Interrupt::ThrowIfRequested();
        }
    }
    if (grid.points.SizeRows() == 0) {
        FailWith(
            fmt::format("--levels: none of the {} points of the grid keeps the ranges and the "
                        "constraints; choose more levels.",
                        grid.all));
    }
    return grid;
}
