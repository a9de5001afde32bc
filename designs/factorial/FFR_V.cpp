#include "designs/factorial/FFR_V.h"

#include <array>

#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"
#include "frame/generators/Generators.h"

FFR_V::~FFR_V() = default;

std::shared_ptr<NCDesign> FFR_V::Clone() const {
    return std::make_shared<FFR_V>(*this);
}

std::unique_ptr<Generators> FFR_V::MakeGenerators(int factors,
                                                  unsigned int runs,
                                                  int blockGens) const {
    return SelectGenerators(Generators::GetGen5, factors, runs, blockGens);
}

std::unique_ptr<NCDesign> FFR_VBuilder::Build(const Factors& factors,
                                              const DesignOptions& options,
                                              bool* /*cancel*/) const {
    if (!IsValid(factors, options)) {
        return nullptr;
    }
    auto design = std::make_unique<FFR_V>(factors);
    design->GenerateDesign(factors, options, 0, 1.0F);
    return design;
}

std::vector<unsigned int> FFR_VBuilder::GetLegalRuns(const Factors& factors,
                                                     const DesignOptions& /*options*/) const {
    return {RunsForFactors(static_cast<int>(factors.GetDesignFactorCountExpanded()))};
}

unsigned char FFR_VBuilder::GetPriority(const Factors& factors) const {
    return GetTablePriority(EDesign::FFR_V, factors.GetDesignFactorCountExpanded());
}

bool FFR_VBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    return IsFractionalValid(factors, options) &&
           FamilyRules::IsScreening(options.GetObjective()) &&
           FamilyRules::IsLinearOrInteraction(options.GetModel()) && factors.IsAll2Levels();
}

EModel::Type FFR_VBuilder::GetDefaultModel(const Factors& /*factors*/,
                                           EObjective::Type objective) const {
    return FamilyRules::IsScreening(objective) ? EModel::Interaction : EModel::None;
}

unsigned int FFR_VBuilder::RunsForFactors(int factors) const {
    static constexpr std::array<RunsOfFactors, 7> table{{
        // clang-format off
        { 5,  5,   16},
        { 6,  6,   32},
        { 7,  8,   64},
        { 9, 11,  128},
        {12, 17,  256},
        {18, 21,  512},
        {22, 29, 1024},
        // clang-format on
    }};
    return LookUpRuns(table, factors);
}
