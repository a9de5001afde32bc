#include "designs/optimal/DOptFactorRef.h"

#include <vector>

#include "foundation/util/NCInternalError.h"

float DOptFactorRef::GetMultilevelSettingOB(int i) const {
    const std::vector<float> settings = factors_->GetFactorSettings(factor_);
    if (factors_->GetFactorType(factor_) != CEType::Multilevel || i < 1 ||
        i > static_cast<int>(settings.size())) {
        throw NCInternalError("GetMultilevelSettingOB");
    }
    return settings[static_cast<std::size_t>(i - 1)];
}

float DOptFactorRef::GetLow() const {
    const CEType::EType type = factors_->GetFactorType(factor_);
    if (type == CEType::Multilevel) {
        return GetMultilevelSettingOB(static_cast<int>(factors_->GetLevelCount(factor_)));
    }
    const std::vector<float> settings = factors_->GetFactorSettings(factor_);
    if (type == CEType::Qualitative || settings.empty()) {
        throw NCInternalError("GetLow");
    }
    return settings.front();
}

float DOptFactorRef::GetHigh() const {
    const CEType::EType type = factors_->GetFactorType(factor_);
    if (type == CEType::Multilevel) {
        return GetMultilevelSettingOB(1);
    }
    const std::vector<float> settings = factors_->GetFactorSettings(factor_);
    if (type == CEType::Qualitative || settings.empty()) {
        throw NCInternalError("GetHigh");
    }
    return settings.back();
}

const TransformStruct& DOptFactorRef::GetTransform() const {
    static const TransformStruct identity;
    const TransformStruct* transform = factors_->GetFactorTransform(factor_);
    return transform != nullptr ? *transform : identity;
}

std::unique_ptr<NCDataMatrix<float>> DOptFactorRef::MakeCodingMatrix() const {
    return Factors::MakeCodingMatrix(factors_->GetFactorType(factor_),
                                     static_cast<int>(factors_->GetLevelCount(factor_)));
}
