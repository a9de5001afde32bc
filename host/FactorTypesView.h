#pragma once

#include <optional>
#include <vector>

#include "QORVAncdoe.h"

/// Others' factors, some of them of another type: for the question what would be valid then. A
/// changed factor is quantitative or a formulation factor over its whole range, or qualitative with
/// three levels. The others are borrowed.
class FactorTypesView : public Factors {
  public:
    /// @param types for each factor its new type, or nothing where it stays as it is
    FactorTypesView(const Factors& factors, std::vector<std::optional<CEType::EType>> types)
        : factors_(&factors), types_(std::move(types)) {}

    unsigned int GetDesignFactorCount() const override { return factors_->GetDesignFactorCount(); }
    CEType::EType GetFactorType(int factor) const override {
        return NewType(factor).value_or(factors_->GetFactorType(factor));
    }
    std::vector<float> GetFactorSettings(int factor) const override {
        if (!NewType(factor)) {
            return factors_->GetFactorSettings(factor);
        }
        return *NewType(factor) == CEType::Qualitative ? std::vector<float>{1, 2, 3}
                                                       : std::vector<float>{0, 1};
    }
    unsigned int GetLevelCount(int factor) const override {
        if (!NewType(factor)) {
            return factors_->GetLevelCount(factor);
        }
        return *NewType(factor) == CEType::Qualitative ? 3 : 0;
    }
    /// Nobody builds a design on a view that only asks what would be.
    void SetFactorRange(int /*factor*/, float /*low*/, float /*high*/) override {}
    const TransformStruct* GetFactorTransform(int factor) const override {
        return NewType(factor) ? nullptr : factors_->GetFactorTransform(factor);
    }
    bool HasFiller() const override { return false; }
    bool IsFormulationSumFree() const override { return false; }
    float GetConstantMixtureShare() const override { return 0; }

  private:
    [[nodiscard]] std::optional<CEType::EType> NewType(int factor) const {
        return types_.at(static_cast<std::size_t>(factor));
    }

    const Factors* factors_;
    std::vector<std::optional<CEType::EType>> types_;
};
