#pragma once

#include <memory>
#include <string>
#include <vector>

#include "designs/plate/REDMUPOptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "tests/support/TestFactors.h"

/// What tests of plate designs share.
namespace PlateCases {

inline constexpr REDMUPOptions::EPlateSize cSizes[]{
    REDMUPOptions::Wells96, REDMUPOptions::Wells384, REDMUPOptions::Wells1536};

inline const DesignBuilder& Builder() {
    return *AllDesigns::GetREDMUPBuilder();
}

inline DesignOptions Options(const Factors& factors) {
    return DesignOptions(Builder(), factors);
}

inline REDMUPOptions& PlatesOf(DesignOptions& options) {
    return dynamic_cast<REDMUPOptions&>(*options.GetDesignSpecificOptions());
}

struct FactorSet {
    std::string name;
    TestFactors factors;
};

inline TestFactors Blend(int count, float low = 0, float high = 1) {
    TestFactors factors;
    for (int i = 0; i < count; ++i) {
        factors.Formulation(low, high);
    }
    return factors;
}

/// Sets of 2 to 8 factors of mixed types.
inline std::vector<FactorSet> FactorSets() {
    std::vector<FactorSet> sets;
    for (int count = 2; count <= 8; ++count) {
        sets.push_back(
            {std::to_string(count) + " quantitative", TestFactors().Quantitatives(count)});
    }
    for (const unsigned levels : {2U, 3U, 4U}) {
        const std::string text = std::to_string(levels);
        sets.push_back({"quantitative, qualitative of " + text,
                        TestFactors().Quantitative().Qualitative(levels)});
        sets.push_back({"multilevel of " + text + ", 2 quantitative",
                        TestFactors().MultilevelOf(levels).Quantitatives(2)});
        sets.push_back({"2 quantitative, qualitative and multilevel of " + text,
                        TestFactors().Quantitatives(2).Qualitative(levels).MultilevelOf(levels)});
        sets.push_back({"qualitative of " + text + ", 4 quantitative",
                        TestFactors().Qualitative(levels).Quantitatives(4)});
        sets.push_back({"2 qualitative of " + text + ", 4 quantitative",
                        TestFactors().Qualitative(levels).Qualitative(levels).Quantitatives(4)});
        sets.push_back({"3 quantitative, qualitative of " + text + ", 3 quantitative",
                        TestFactors().Quantitatives(3).Qualitative(levels).Quantitatives(3)});
    }
    sets.push_back({"qualitative of 2, 3 and 4, quantitative",
                    TestFactors().Qualitative(2).Qualitative(3).Qualitative(4).Quantitative()});
    sets.push_back({"eight of two levels",
                    TestFactors()
                        .Qualitative(2)
                        .MultilevelOf(2)
                        .Quantitatives(2)
                        .Qualitative(2)
                        .MultilevelOf(2)
                        .Quantitatives(2)});
    for (const int count : {2, 3, 4}) {
        const std::string text = std::to_string(count);
        sets.push_back({text + " formulation, 2 quantitative", Blend(count).Quantitatives(2)});
        sets.push_back({text + " formulation, quantitative and qualitative of 3",
                        Blend(count).Quantitative().Qualitative(3)});
    }
    sets.push_back({"3 formulation with a filler, 3 quantitative",
                    Blend(3, 0, 0.2F).Quantitatives(3).WithFiller(true)});
    return sets;
}

}  // namespace PlateCases
