#include "frame/Factors.h"

#include <algorithm>
#include <cmath>

#include "foundation/mat/TransformStruct.h"
#include "frame/MixtureUtilities.h"

Factors::~Factors() = default;

unsigned int Factors::CountOfType(CEType::EType type) const {
    unsigned int count = 0;
    for (int factor = 0; factor < Count(); ++factor) {
        count += GetFactorType(factor) == type ? 1U : 0U;
    }
    return count;
}

bool Factors::IsMixture() const {
    return !HasFiller() && GetNumMixtureFactors() > 0;
}

bool Factors::IsMixtureOnly() const {
    return !HasFiller() && Count() > 0 && GetNumMixtureFactors() == GetDesignFactorCount();
}

bool Factors::IsProcessOnly() const {
    return (HasFiller() && IsFormulationSumFree()) || GetNumMixtureFactors() == 0;
}

bool Factors::IsProcessAndMixture() const {
    return IsMixture() && !IsMixtureOnly();
}

bool Factors::HasOnlyLevelCount(unsigned int levels) const {
    for (int factor = 0; factor < Count(); ++factor) {
        const CEType::EType type = GetFactorType(factor);
        if (type == CEType::Formulation && !HasFiller()) {
            return false;
        }
        if ((type == CEType::Multilevel || type == CEType::Qualitative) &&
            GetLevelCount(factor) != levels) {
            return false;
        }
    }
    return true;
}

bool Factors::IsAll2Levels() const {
    return HasOnlyLevelCount(2);
}

bool Factors::IsAll3Levels() const {
    return HasOnlyLevelCount(3);
}

bool Factors::IsAllQuantitative() const {
    return !IsMixture() && GetMultilevelCount() == 0 && GetQualitativeCount() == 0;
}

unsigned int Factors::GetQualitativeCount() const {
    return CountOfType(CEType::Qualitative);
}

unsigned int Factors::GetMultilevelCount() const {
    return CountOfType(CEType::Multilevel);
}

unsigned int Factors::GetNumMixtureFactors() const {
    return CountOfType(CEType::Formulation);
}

unsigned int Factors::GetMixtureFactorCount() const {
    return HasFiller() && IsFormulationSumFree() ? 0 : GetNumMixtureFactors();
}

unsigned int Factors::GetProcessFactorCount() const {
    return GetDesignFactorCount() - GetMixtureFactorCount();
}

unsigned int Factors::GetExpandedVariableCount(int factor) const {
    if (GetFactorType(factor) != CEType::Qualitative) {
        return 1;
    }
    const unsigned int levels = GetLevelCount(factor);
    return levels >= 2 ? levels - 1 : 1;
}

unsigned int Factors::GetDesignFactorCountExpanded() const {
    unsigned int count = 0;
    for (int factor = 0; factor < Count(); ++factor) {
        count += GetExpandedVariableCount(factor);
    }
    return count;
}

unsigned int Factors::GetProcessFactorCountExpanded() const {
    return GetDesignFactorCountExpanded() - GetMixtureFactorCount();
}

float Factors::LevelFromCoded(int factor, float coded) const {
    const std::vector<float> settings = GetFactorSettings(factor);
    // Rounded down, not towards 0: a code below the first level must not fall on the first level.
    const double index = std::floor(static_cast<double>(coded) + 0.5 - cFirstLevelCode);
    return index >= 0 && index < static_cast<double>(settings.size())
               ? settings[static_cast<std::size_t>(index)]
               : cNoValue;
}

float Factors::FromCoded(int factor, float coded, bool pseudo) const {
    const CEType::EType type = GetFactorType(factor);
    if (type == CEType::Qualitative) {
        return cNoValue;
    }
    if (type == CEType::Multilevel) {
        return LevelFromCoded(factor, coded);
    }
    const std::vector<float> settings = GetFactorSettings(factor);
    if (settings.size() != 2) {
        return cNoValue;
    }
    float low = settings.front();
    float high = settings.back();
    const TransformStruct* transform = GetFactorTransform(factor);
    if (transform != nullptr) {
        transform->TransformValue(&high);
        transform->TransformValue(&low);
    }
    if (low == cNoValue || high == cNoValue) {
        return cNoValue;
    }
    if (pseudo && type == CEType::Formulation) {
        const bool lower = MixtureUtilities::IsSimplexLower(*this, false);
        coded = lower ? coded + coded - 1.0F : (1.0F - coded) + (1.0F - coded) - 1.0F;
    }
    float result = ((high - low) * coded + (low + high)) * 0.5F;
    if (transform != nullptr) {
        transform->BackTransformValue(&result);
    }
    return result;
}

float Factors::GetPseudoComponent(int factor, float value, bool excluded) const {
    if (GetFactorType(factor) != CEType::Formulation) {
        return value;
    }
    const std::vector<float> settings = GetFactorSettings(factor);
    if (settings.size() != 2) {
        return cNoValue;
    }
    const float low = settings.front();
    const float high = settings.back();
    const float range = high - low;
    return MixtureUtilities::IsSimplexLower(*this, excluded) ? (value - low) / range
                                                             : (high - value) / range;
}

std::unique_ptr<NCDataMatrix<float>> Factors::MakeCodingMatrix(CEType::EType type, int levels) {
    if (type != CEType::Qualitative) {
        return std::make_unique<NCDataMatrix<float>>(1, 1, 1.0F);
    }
    auto coding =
        std::make_unique<NCDataMatrix<float>>(std::max(levels, 0), std::max(levels - 1, 1), 0.0F);
    if (levels > 0) {
        coding->SetRow(1, -1.0F);
    }
    for (int level = 2; level <= levels; ++level) {
        (*coding)(level, level - 1, 1.0F);
    }
    return coding;
}
