#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "foundation/mat/TransformStruct.h"
#include "frame/Factors.h"

/// Factors for tests, described in the order of their columns:
///   TestFactors().Quantitative(150, 180).Qualitative(3).Multilevel({10, 20, 40}).Formulation(0, 1)
class TestFactors : public Factors {
  public:
    TestFactors& Quantitative(float low = -1, float high = 1) {
        return Add({CEType::Quantitative, {low, high}, 0});
    }
    TestFactors& Quantitatives(int count) {
        for (int i = 0; i < count; ++i) {
            Quantitative();
        }
        return *this;
    }
    TestFactors& Multilevel(const std::vector<float>& settings) {
        return Add({CEType::Multilevel, settings, static_cast<unsigned>(settings.size())});
    }
    /// Levels 1, 2 and so on.
    TestFactors& MultilevelOf(unsigned levels) {
        std::vector<float> settings;
        for (unsigned i = 1; i <= levels; ++i) {
            settings.push_back(static_cast<float>(i));
        }
        return Multilevel(settings);
    }
    TestFactors& Qualitative(unsigned levels) {
        return Add({CEType::Qualitative, std::vector<float>(levels, 0.0F), levels});
    }
    TestFactors& Formulation(float low = 0, float high = 1) {
        return Add({CEType::Formulation, {low, high}, 0});
    }
    /// A factor of any type with any settings.
    TestFactors& Other(CEType::EType type, const std::vector<float>& settings, unsigned levels) {
        return Add({type, settings, levels});
    }
    /// Gives the last factor a transform.
    TestFactors& Transformed(const TransformStruct& transform) {
        transforms_[static_cast<int>(factors_.size()) - 1] = transform;
        return *this;
    }
    TestFactors& WithFiller(bool sumFree) {
        hasFiller_ = true;
        sumFree_ = sumFree;
        return *this;
    }
    /// Formulation factors that do not add up to 1, without a filler.
    TestFactors& WithFreeSum() {
        sumFree_ = true;
        return *this;
    }
    TestFactors& WithConstantShare(float share) {
        constantShare_ = share;
        return *this;
    }

    unsigned int GetDesignFactorCount() const override {
        return static_cast<unsigned>(factors_.size());
    }
    CEType::EType GetFactorType(int factor) const override { return At(factor).type; }
    std::vector<float> GetFactorSettings(int factor) const override { return At(factor).settings; }
    unsigned int GetLevelCount(int factor) const override { return At(factor).levels; }
    void SetFactorRange(int factor, float low, float high) override {
        factors_.at(static_cast<std::size_t>(factor)).settings = {low, high};
        ++rangeChanges;
    }
    const TransformStruct* GetFactorTransform(int factor) const override {
        const auto found = transforms_.find(factor);
        return found != transforms_.end() ? &found->second : nullptr;
    }
    bool HasFiller() const override { return hasFiller_; }
    bool IsFormulationSumFree() const override { return sumFree_; }
    float GetConstantMixtureShare() const override { return constantShare_; }

    /// How often a range was tightened.
    int rangeChanges = 0;

  private:
    struct Factor {
        CEType::EType type = CEType::NotDefined;
        std::vector<float> settings;
        unsigned levels = 0;
    };

    // A factor outside the list has no type, as a careful host answers.
    Factor At(int factor) const {
        return factor >= 0 && factor < static_cast<int>(factors_.size())
                   ? factors_[static_cast<std::size_t>(factor)]
                   : Factor{};
    }
    TestFactors& Add(Factor factor) {
        factors_.push_back(std::move(factor));
        return *this;
    }

    std::vector<Factor> factors_;
    std::map<int, TransformStruct> transforms_;
    bool hasFiller_ = false;
    bool sumFree_ = false;
    float constantShare_ = 0;
};
