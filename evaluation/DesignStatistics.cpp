#include "evaluation/DesignStatistics.h"

#include <set>
#include <utility>

#include "evaluation/Power.h"
#include "evaluation/StatisticsModel.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/Factors.h"

namespace {

constexpr const char* cCondNoKey = "CondNo";
constexpr const char* cGEffKey = "GEff";
constexpr const char* cLogDetKey = "LogDet";
constexpr const char* cNormLogDetKey = "NormLogDet";
constexpr const char* cIOptimalityKey = "IOptimality";

}  // namespace

void DesignStatistics::Results::Save(ConfigurationSection& section) const {
    section.WriteDouble(cCondNoKey, CondNo);
    section.WriteDouble(cGEffKey, GEff);
    section.WriteDouble(cLogDetKey, LogDet);
    section.WriteDouble(cNormLogDetKey, NormLogDet);
    section.WriteDouble(cIOptimalityKey, IOptimality);
}

bool DesignStatistics::Results::Load(const ConfigurationSection& section) {
    section.ReadDouble(cCondNoKey, &CondNo);
    section.ReadDouble(cGEffKey, &GEff);
    section.ReadDouble(cLogDetKey, &LogDet);
    section.ReadDouble(cNormLogDetKey, &NormLogDet);
    section.ReadDouble(cIOptimalityKey, &IOptimality);
    return true;
}

DesignStatistics::Results DesignStatistics::CalculateStatistics(
    const Factors& factors,
    const Terms& terms,
    const NCDataMatrix<float>& design,
    const NCDataMatrix<float>* candidates,
    bool coded,
    int blocks,
    bool& stop) {
    StatisticsModel model(factors, terms, blocks, candidates);
    if (!coded) {
        return model.Calculate(design, stop);
    }
    const bool pseudo = factors.IsMixture() && !factors.HasFiller();
    return model.Calculate(FromCodedMatrix(design, factors, blocks, pseudo), stop);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param)
void DesignStatistics::SetupPower(NCDataMatrix<float> matrix, Terms terms, const Factors& factors) {
    std::set<int> mixture;
    std::set<int> qualitative;
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    for (int factor = 0; factor < count; ++factor) {
        const CEType::EType type = factors.GetFactorType(factor);
        if (type == CEType::Formulation && !factors.IsFormulationSumFree()) {
            mixture.insert(factor);
        } else if (type == CEType::Qualitative) {
            qualitative.insert(factor);
        }
    }
    if (!factors.IsMixtureOnly()) {
        terms.push_back({matrix.SizeColumns() - 1});
    }
    power_ = std::make_shared<NCDOE::Power>(
        matrix, terms, std::vector<std::set<int>>{mixture}, qualitative);
}

double DesignStatistics::CalculatePower(int modelIndex,
                                        double effect,
                                        double noise,
                                        double probability) const {
    if (power_ == nullptr) {
        throw InvalidOperationException("DesignStatistics::CalculatePower");
    }
    return power_->GetPower(modelIndex, effect / noise, noise, probability);
}
