#include "designs/factorial/FFR_III.h"

#include <array>

#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FamilyRules.h"
#include "frame/generators/Generators.h"

FFR_III::~FFR_III() = default;

std::shared_ptr<NCDesign> FFR_III::Clone() const {
    return std::make_shared<FFR_III>(*this);
}

std::unique_ptr<Generators> FFR_III::MakeGenerators(int factors,
                                                    unsigned int runs,
                                                    int blockGens) const {
    const auto select = [](int index, unsigned columns, int fractionRuns, int blocks) {
        return Generators::GetGen3(
            index, columns, static_cast<unsigned>(fractionRuns), static_cast<unsigned>(blocks));
    };
    return SelectGenerators(select, factors, runs, blockGens);
}

std::unique_ptr<NCDesign> FFR_IIIBuilder::Build(const Factors& factors,
                                                const DesignOptions& options,
                                                bool* /*cancel*/) const {
    if (!IsValid(factors, options)) {
        return nullptr;
    }
    auto design = std::make_unique<FFR_III>(factors);
    design->GenerateDesign(factors, options, 0, 1.0F);
    return design;
}

std::vector<unsigned int> FFR_IIIBuilder::GetLegalRuns(const Factors& factors,
                                                       const DesignOptions& /*options*/) const {
    return {GetDefaultRuns(factors, EObjective::Screening)};
}

unsigned char FFR_IIIBuilder::GetPriority(const Factors& factors) const {
    // Only fractions of resolution III screen more than 32 factors.
    const unsigned int columns = factors.GetDesignFactorCountExpanded();
    return columns > 32 ? 1 : GetTablePriority(EDesign::FFR_III, columns);
}

bool FFR_IIIBuilder::IsValid(const Factors& factors, const DesignOptions& options) const {
    return IsFractionalValid(factors, options) &&
           FamilyRules::IsScreening(options.GetObjective()) &&
           options.GetModel() == EModel::Linear && factors.IsAll2Levels();
}

EModel::Type FFR_IIIBuilder::GetDefaultModel(const Factors& /*factors*/,
                                             EObjective::Type objective) const {
    return FamilyRules::IsScreening(objective) ? EModel::Linear : EModel::None;
}

unsigned int FFR_IIIBuilder::RunsForFactors(int factors) const {
    static constexpr std::array<RunsOfFactors, 5> table{{
        // clang-format off
        { 3,  3,    4},
        { 5,  7,    8},
        { 9, 15,   16},
        {17, 31,   32},
        {32, 63,   64},
        // clang-format on
    }};
    return LookUpRuns(table, factors);
}
