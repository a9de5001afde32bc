#include "host/StudyFactors.h"

#include <algorithm>

int StudyFactors::Find(const std::string& name) const {
    const auto found = std::find_if(
        factors_.begin(), factors_.end(), [&](const auto& factor) { return factor.name == name; });
    return found != factors_.end() ? static_cast<int>(found - factors_.begin()) : -1;
}

unsigned int StudyFactors::GetDesignFactorCount() const {
    return static_cast<unsigned int>(factors_.size());
}

std::vector<float> StudyFactors::GetFactorSettings(int factor) const {
    const StudyFactor& asked = At(factor);
    if (asked.type == CEType::Multilevel) {
        return asked.settings;
    }
    if (asked.type != CEType::Qualitative) {
        return {asked.low, asked.high};
    }
    std::vector<float> numbers(asked.levels.size());
    std::generate(numbers.begin(), numbers.end(), [n = 0.0F]() mutable { return ++n; });
    return numbers;
}

unsigned int StudyFactors::GetLevelCount(int factor) const {
    const StudyFactor& asked = At(factor);
    const std::size_t count =
        asked.type == CEType::Multilevel ? asked.settings.size() : asked.levels.size();
    return static_cast<unsigned int>(count);
}

void StudyFactors::SetFactorRange(int factor, float low, float high) {
    StudyFactor& changed = factors_.at(static_cast<std::size_t>(factor));
    changed.low = low;
    changed.high = high;
}

const TransformStruct* StudyFactors::GetFactorTransform(int factor) const {
    const StudyFactor& asked = At(factor);
    return asked.transform ? &*asked.transform : nullptr;
}
