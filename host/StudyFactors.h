#pragma once

#include <optional>
#include <string>
#include <vector>

#include "QORVAncdoe.h"

/// One factor of a study, in real units.
struct StudyFactor {
    std::string name;
    std::string unit;  // empty when there is none
    CEType::EType type = CEType::Quantitative;
    float low = 0;                    // of Quantitative and Formulation
    float high = 0;                   // of Quantitative and Formulation
    std::vector<float> settings;      // of Multilevel, ascending
    std::vector<std::string> levels;  // of Qualitative
    std::optional<TransformStruct> transform;
};

/// The factors of a study as the engine sees them. A filler is known by name and place but is not
/// among the counted factors: with it the other formulation factors need not add up, and the filler
/// takes what they leave of the whole.
class StudyFactors : public Factors {
  public:
    /// A filler and the place, counted from 0, that it has among all the study's factors.
    struct Filler {
        std::string name;
        std::string unit;
        std::size_t place = 0;
    };

    StudyFactors() = default;
    StudyFactors(std::vector<StudyFactor> factors, std::optional<Filler> filler)
        : factors_(std::move(factors)), filler_(std::move(filler)) {}

    /// The counted factors.
    [[nodiscard]] const std::vector<StudyFactor>& All() const { return factors_; }
    [[nodiscard]] const StudyFactor& At(int factor) const {
        return factors_.at(static_cast<std::size_t>(factor));
    }
    [[nodiscard]] const std::optional<Filler>& GetFiller() const { return filler_; }
    /// Index of the counted factor of that name, or -1.
    [[nodiscard]] int Find(const std::string& name) const;

    unsigned int GetDesignFactorCount() const override;
    CEType::EType GetFactorType(int factor) const override { return At(factor).type; }
    /// Qualitative: the level numbers from 1.
    std::vector<float> GetFactorSettings(int factor) const override;
    unsigned int GetLevelCount(int factor) const override;
    void SetFactorRange(int factor, float low, float high) override;
    const TransformStruct* GetFactorTransform(int factor) const override;
    bool HasFiller() const override { return filler_.has_value(); }
    bool IsFormulationSumFree() const override { return filler_.has_value(); }
    float GetConstantMixtureShare() const override { return 0.0F; }

  private:
    std::vector<StudyFactor> factors_;
    std::optional<Filler> filler_;
};
