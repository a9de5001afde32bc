#pragma once

#include <vector>

#include "foundation/stream/Export.h"
#include "frame/Factors.h"

/// A group of an experiment's factors, as the small design along one side of a plate sees them. The
/// group has a filler, or formulation factors with a free sum, only where it holds formulation
/// factors.
class QORVA_EXPORT REDMUPFactors : public Factors {
  public:
    /// @param indices factor numbers of `parent`, from 0, in the order of the group; may be empty
    /// @param parent borrowed
    /// @throws Exception for a number given twice or one that `parent` does not have
    REDMUPFactors(std::vector<unsigned long long> indices, const Factors& parent);

    [[nodiscard]] unsigned int GetDesignFactorCount() const override {
        return static_cast<unsigned int>(indices_.size());
    }
    [[nodiscard]] CEType::EType GetFactorType(int factor) const override {
        return parent_->GetFactorType(ParentIndex(factor));
    }
    [[nodiscard]] std::vector<float> GetFactorSettings(int factor) const override {
        return parent_->GetFactorSettings(ParentIndex(factor));
    }
    [[nodiscard]] unsigned int GetLevelCount(int factor) const override {
        return parent_->GetLevelCount(ParentIndex(factor));
    }
    /// Ignored: the ranges are the parent's.
    void SetFactorRange(int /*factor*/, float /*low*/, float /*high*/) override {}
    [[nodiscard]] const TransformStruct* GetFactorTransform(int factor) const override {
        return parent_->GetFactorTransform(ParentIndex(factor));
    }
    [[nodiscard]] bool HasFiller() const override;
    [[nodiscard]] bool IsFormulationSumFree() const override;
    [[nodiscard]] float GetConstantMixtureShare() const override;

  private:
    [[nodiscard]] int ParentIndex(int factor) const;

    std::vector<unsigned long long> indices_;
    const Factors* parent_;
};
