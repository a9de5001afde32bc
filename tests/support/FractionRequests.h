#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/FloorLog2.h"
#include "frame/NCDesign.h"
#include "frame/generators/Generators.h"
#include "tests/support/TestFactors.h"
#include "tests/support/TwoLevelRuns.h"

/// One legal choice of a fraction: quantitative factors, runs and blocks that the builder offers.
struct FractionRequest {
    EDesign::Type type = EDesign::None;
    int factors = 0;
    int runs = 0;
    int blocks = 1;

    friend bool operator==(const FractionRequest&, const FractionRequest&) = default;
    friend std::ostream& operator<<(std::ostream& out, const FractionRequest& request) {
        return out << AllDesigns::GetDesignBuilder(request.type, "")->GetShortString() << ' '
                   << request.factors << " factors, " << request.runs << " runs, " << request.blocks
                   << " blocks";
    }

    /// The fraction's runs, without centre points.
    /// @throws Exception as the builder does
    [[nodiscard]] TwoLevelRuns Build() const {
        const auto builder = AllDesigns::GetDesignBuilder(type, "");
        TestFactors described;
        described.Quantitatives(factors);
        DesignOptions options(*builder, described);
        options.SetRuns(static_cast<unsigned>(runs));
        options.SetBlocks(static_cast<unsigned>(blocks));
        options.SetCenterPoints(0);
        const auto design = builder->Build(described, options);
        return {*design->GetDesignMatrix(), runs, factors, blocks > 1};
    }
    /// The text of the exception that the build ends in; empty without one.
    [[nodiscard]] std::string Failure() const {
        try {
            static_cast<void>(Build());
        } catch (const Exception& exception) {
            return exception.what();
        }
        return {};
    }
    /// The resolution that the generator tables state for the request.
    [[nodiscard]] int StatedResolution() const {
        const int blockGens = FloorLog2(blocks);
        const auto count = static_cast<unsigned>(factors);
        switch (type) {
            case EDesign::FFR_III:
                return Generators::GetGen3(
                    0, count, static_cast<unsigned>(runs), static_cast<unsigned>(blockGens));
            case EDesign::FFR_IV:
                return Generators::GetGen4(0, count, runs, blockGens);
            default:
                return Generators::GetGen5(0, count, runs, blockGens);
        }
    }

    /// Every choice that a family offers, from 1 to 64 factors.
    [[nodiscard]] static std::vector<FractionRequest> AllOf(EDesign::Type type) {
        const auto builder = AllDesigns::GetDesignBuilder(type, "");
        std::vector<FractionRequest> requests;
        for (int count = 1; count <= 64; ++count) {
            TestFactors described;
            described.Quantitatives(count);
            DesignOptions options(*builder, described);
            if (!builder->IsValid(described, options)) {
                continue;
            }
            for (const unsigned int runs : builder->GetLegalRuns(described, options)) {
                options.SetRuns(runs);
                for (const int blocks : builder->GetLegalBlocks(described, options, false)) {
                    requests.push_back({type, count, static_cast<int>(runs), blocks});
                }
            }
        }
        return requests;
    }
};
