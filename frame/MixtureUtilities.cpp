#include "frame/MixtureUtilities.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "foundation/utl/Exceptions.h"
#include "frame/Factors.h"

namespace {

// A range whose ends move by less is left alone: the rounding of two float sums.
constexpr double cSmallestChange = 1e-6;
// Share of a factor's range by which it may differ from the slack of a regular simplex.
constexpr float cRangeTolerance = 0.1F;

struct MixtureSlack {
    float lowerSlack;  // target minus the sum of the low settings
    float upperSlack;  // the sum of the high settings minus the target
};

constexpr MixtureSlack cNoSlack{Factors::cNoValue, Factors::cNoValue};

struct MixtureRange {
    int factor;
    float low;
    float high;
};

std::vector<MixtureRange> FormulationRanges(const Factors& factors) {
    std::vector<MixtureRange> ranges;
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    for (int factor = 0; factor < count; ++factor) {
        if (factors.GetFactorType(factor) == CEType::Formulation) {
            const std::vector<float> settings = factors.GetFactorSettings(factor);
            if (!settings.empty()) {
                ranges.push_back({factor, settings.front(), settings.back()});
            }
        }
    }
    return ranges;
}

void RequireFeasible(const Factors& factors, float target, float sumLow, float sumHigh) {
    if (sumLow >= target) {
        throw Exception(ExceptionMessage::translate(
                            "The sum of the low settings of the formulation factors is too large "
                            "{1}.The sum must not be higher than {2}.")
                        << sumLow << target);
    }
    if (target > sumHigh && !factors.HasFiller()) {
        throw Exception(ExceptionMessage::translate(
                            "The sum of the high settings of the formulation factors is too small "
                            "{1}. The sum must be higher than {2}. Change the settings or add a "
                            "filler factor.")
                        << sumHigh << target);
    }
}

MixtureSlack GetMixtureSlack(const Factors& factors) {
    if (factors.GetMixtureFactorCount() == 0) {
        return cNoSlack;
    }
    if (factors.HasFiller() && !factors.IsFormulationSumFree()) {
        throw Exception(
            ExceptionMessage::translate("A design can include a filler only if the other "
                                        "formulation factors do not add up to 1."));
    }
    const float target = 1.0F - factors.GetConstantMixtureShare();
    float sumLow = 0;
    float sumHigh = 0;
    for (const MixtureRange& range : FormulationRanges(factors)) {
        sumLow += range.low;
        sumHigh += range.high;
    }
    RequireFeasible(factors, target, sumLow, sumHigh);
    if (factors.IsFormulationSumFree()) {
        return cNoSlack;
    }
    return {target - sumLow, sumHigh - target};
}

bool IsSimplexQuestion(const Factors& factors, bool excluded) {
    return factors.GetDesignFactorCount() >= 3 && !excluded && factors.IsMixtureOnly();
}

}  // namespace

namespace MixtureUtilities {

bool IsSimplex(const Factors& factors, bool excluded) {
    return IsSimplexQuestion(factors, excluded) && CheckMixtureRanges(factors);
}

bool IsSimplexLower(const Factors& factors, bool excluded) {
    // Deliberate: the slack comes first, so infeasible settings are told even where the answer is
    // already known to be false.
    const MixtureSlack slack = GetMixtureSlack(factors);
    return IsSimplex(factors, excluded) && slack.upperSlack > slack.lowerSlack;
}

bool CheckMixtureRanges(const Factors& factors) {
    const MixtureSlack slack = GetMixtureSlack(factors);
    if (slack.lowerSlack == slack.upperSlack || factors.GetMixtureFactorCount() < 3) {
        return false;
    }
    const float smaller = std::min(slack.lowerSlack, slack.upperSlack);
    const std::vector<MixtureRange> ranges = FormulationRanges(factors);
    return std::all_of(ranges.begin(), ranges.end(), [smaller](const MixtureRange& mixture) {
        const float range = mixture.high - mixture.low;
        const float tolerance = range * cRangeTolerance;
        return smaller <= range + tolerance && range - tolerance <= smaller;
    });
}

bool AdjustedMixtureRanges(Factors& factors) {
    if (factors.GetMixtureFactorCount() == 0 || factors.IsFormulationSumFree()) {
        return true;
    }
    const MixtureSlack slack = GetMixtureSlack(factors);
    for (const auto& [factor, low, high] : FormulationRanges(factors)) {
        const float newLow = std::max(low, high - slack.upperSlack);
        const float newHigh = std::min(high, low + slack.lowerSlack);
        if (std::abs(static_cast<double>(newLow) - low) > cSmallestChange ||
            std::abs(static_cast<double>(newHigh) - high) > cSmallestChange) {
            factors.SetFactorRange(factor, newLow, newHigh);
        }
    }
    return true;
}

}  // namespace MixtureUtilities
