#pragma once

#include <vector>

#include "foundation/stream/Export.h"
#include "frame/Factors.h"

/// Factors with a Time factor before all others, as a stability design's matrix has them: its first
/// column tells the point in time. The settings of time are 1, 2 and so on.
class QORVA_EXPORT FactorsWithTime : public Factors {
  public:
    /// @param factors borrowed
    /// @param timeCount points in time
    FactorsWithTime(const Factors& factors, int timeCount)
        : factors_(&factors), timeCount_(timeCount) {}

    [[nodiscard]] unsigned int GetDesignFactorCount() const override {
        return factors_->GetDesignFactorCount() + 1;
    }
    [[nodiscard]] CEType::EType GetFactorType(int factor) const override {
        return factor == 0 ? CEType::Time : factors_->GetFactorType(factor - 1);
    }
    [[nodiscard]] std::vector<float> GetFactorSettings(int factor) const override;
    [[nodiscard]] unsigned int GetLevelCount(int factor) const override {
        return factor == 0 ? static_cast<unsigned int>(timeCount_)
                           : factors_->GetLevelCount(factor - 1);
    }
    /// Ignored: nobody tightens the ranges of a stability design.
    void SetFactorRange(int /*factor*/, float /*low*/, float /*high*/) override {}
    [[nodiscard]] const TransformStruct* GetFactorTransform(int factor) const override {
        return factor == 0 ? nullptr : factors_->GetFactorTransform(factor - 1);
    }
    [[nodiscard]] bool HasFiller() const override { return factors_->HasFiller(); }
    [[nodiscard]] bool IsFormulationSumFree() const override {
        return factors_->IsFormulationSumFree();
    }
    [[nodiscard]] float GetConstantMixtureShare() const override {
        return factors_->GetConstantMixtureShare();
    }

  private:
    const Factors* factors_;
    int timeCount_;
};
