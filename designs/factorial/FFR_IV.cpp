#include "designs/factorial/FFR_IV.h"

#include <array>

#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"
#include "frame/generators/Generators.h"

FFR_IV::~FFR_IV() = default;

std::shared_ptr<NCDesign> FFR_IV::Clone() const {
    return std::make_shared<FFR_IV>(*this);
}

std::unique_ptr<Generators> FFR_IV::MakeGenerators(int factors,
                                                   unsigned int runs,
                                                   int blockGens) const {
    return SelectGenerators(Generators::GetGen4, factors, runs, blockGens);
}

std::unique_ptr<NCDesign> FFR_IVBuilder::Build(const Factors& factors,
                                               const DesignOptions& options,
                                               bool* /*cancel*/) const {
    if (!IsValid(factors, options)) {
        return nullptr;
    }
    auto design = std::make_unique<FFR_IV>(factors);
    design->GenerateDesign(factors, options, 0, 1.0F);
    return design;
}

std::vector<unsigned int> FFR_IVBuilder::GetLegalRuns(const Factors& factors,
                                                      const DesignOptions& options) const {
    const unsigned int columns = factors.GetDesignFactorCountExpanded();
    std::vector<unsigned int> legal{RunsForFactors(static_cast<int>(columns))};
    if (legal.front() == 0) {
        return {};
    }
    if (columns >= 18) {
        legal.insert(legal.end(), {128, 256});
    } else if (columns == 17) {
        legal.push_back(128);
    } else if (columns >= 12) {
        legal.insert(legal.end(), {64, 128});
    } else if (columns >= 9) {
        legal.push_back(64);
    } else if (columns >= 7) {
        legal.push_back(32);
    }
    std::erase_if(legal, [this, &options](unsigned int runs) {
        return runs + GetMinimumCenterPoints() > options.GetMaxRuns();
    });
    return legal;
}

unsigned char FFR_IVBuilder::GetPriority(const Factors& factors) const {
    return GetTablePriority(EDesign::FFR_IV, factors.GetDesignFactorCountExpanded());
}

bool FFR_IVBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    return IsFractionalValid(factors, options) &&
           FamilyRules::IsScreening(options.GetObjective()) &&
           options.GetModel() == EModel::Linear && factors.IsAll2Levels();
}

EModel::Type FFR_IVBuilder::GetDefaultModel(const Factors& /*factors*/,
                                            EObjective::Type objective) const {
    return FamilyRules::IsScreening(objective) ? EModel::Linear : EModel::None;
}

unsigned int FFR_IVBuilder::RunsForFactors(int factors) const {
    static constexpr std::array<RunsOfFactors, 4> table{{
        // clang-format off
        { 4,  4,    8},
        { 6,  8,   16},
        { 9, 16,   32},
        {17, 32,   64},
        // clang-format on
    }};
    return LookUpRuns(table, factors);
}
