#pragma once

#include "QORVAncdoe.h"

/// The first factors of others, or all of them and some more, which are formulation factors where
/// all are and quantitative otherwise: for the question what would be valid with another factor
/// count. The others are borrowed.
class FactorCountView : public Factors {
  public:
    FactorCountView(const Factors& factors, unsigned int count)
        : factors_(&factors), count_(count) {}

    unsigned int GetDesignFactorCount() const override { return count_; }
    CEType::EType GetFactorType(int factor) const override {
        return !IsOwn(factor)              ? factors_->GetFactorType(factor)
               : factors_->IsMixtureOnly() ? CEType::Formulation
                                           : CEType::Quantitative;
    }
    std::vector<float> GetFactorSettings(int factor) const override {
        return IsOwn(factor) ? std::vector<float>{0, 1} : factors_->GetFactorSettings(factor);
    }
    unsigned int GetLevelCount(int factor) const override {
        return IsOwn(factor) ? 0 : factors_->GetLevelCount(factor);
    }
    /// Nobody builds a design on a view that only asks what would be.
    void SetFactorRange(int /*factor*/, float /*low*/, float /*high*/) override {}
    const TransformStruct* GetFactorTransform(int factor) const override {
        return IsOwn(factor) ? nullptr : factors_->GetFactorTransform(factor);
    }
    bool HasFiller() const override { return factors_->HasFiller(); }
    bool IsFormulationSumFree() const override { return factors_->IsFormulationSumFree(); }
    float GetConstantMixtureShare() const override { return factors_->GetConstantMixtureShare(); }

  private:
    [[nodiscard]] bool IsOwn(int factor) const {
        return factor >= static_cast<int>(factors_->GetDesignFactorCount());
    }

    const Factors* factors_;
    unsigned int count_;
};
