#pragma once

#include <memory>
#include <optional>
#include <ostream>

#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "tests/support/TestFactors.h"

/// A central composite design of quantitative factors, with its default star distance for the
/// blocks and centre points unless another is given.
struct CompositeRequest {
    EDesign::Type type = EDesign::CCC;
    int factors = 0;
    int blocks = 1;
    int centrePoints = 3;
    std::optional<float> starDistance = std::nullopt;

    friend std::ostream& operator<<(std::ostream& out, const CompositeRequest& request) {
        return out << request.Builder().GetShortString() << ' ' << request.factors << " factors, "
                   << request.blocks << " blocks, " << request.centrePoints << " centre points";
    }

    [[nodiscard]] const DesignBuilder& Builder() const {
        return *AllDesigns::GetDesignBuilder(type, "");
    }
    [[nodiscard]] TestFactors MakeFactors() const {
        TestFactors described;
        described.Quantitatives(factors);
        return described;
    }
    [[nodiscard]] DesignOptions Options() const {
        const TestFactors described = MakeFactors();
        DesignOptions options(Builder(), described);
        options.SetBlocks(static_cast<unsigned>(blocks));
        options.SetCenterPoints(static_cast<unsigned>(centrePoints));
        options.SetStarDistance(starDistance.value_or(
            Builder().GetDefaultStarDistance(static_cast<unsigned>(factors), options)));
        return options;
    }
    [[nodiscard]] NCDataMatrix<float> Build() const {
        const TestFactors described = MakeFactors();
        const auto design = Builder().Build(described, Options());
        return design ? *design->GetDesignMatrix() : NCDataMatrix<float>();
    }
    /// Runs of the factorial part.
    [[nodiscard]] int CubeRuns() const {
        return static_cast<int>(Options().GetRuns()) - 2 * factors;
    }
};
