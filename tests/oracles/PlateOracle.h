#pragma once

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"

/// Plates in their plain form: the choice of a side's design step by step, and the wells one by one
/// in three nested loops.
namespace PlateOracle {

struct Choice {
    std::string shortString;
    unsigned runs = 0;
    unsigned centerPoints = 0;
};

/// The design of one side, by trying every builder; no short string when none fits.
inline Choice ChooseSide(const Factors& factors, unsigned size) {
    Choice choice;
    int best = std::numeric_limits<int>::max();
    for (const auto& builder : AllDesigns::ClassicAndREDMUPDesigns().GetAllDesigns()) {
        if (builder->IsDesign() == EDesign::REDMUP) {
            continue;
        }
        DesignOptions options(*builder, factors);
        options.SetMaxRuns(size);
        const int least = static_cast<int>(builder->GetMinimumCenterPoints());
        const int wells = static_cast<int>(size);
        const auto runs = [&] { return static_cast<int>(options.GetRuns()); };
        const auto total = [&] { return runs() + static_cast<int>(options.GetCenterPoints()); };
        if (runs() + least > wells) {
            int chosen = -1;
            for (const unsigned legal : builder->GetLegalRuns(factors, options)) {
                if (static_cast<int>(legal) < wells - least) {
                    chosen = static_cast<int>(legal);
                }
            }
            if (chosen >= 0) {
                options.SetRuns(static_cast<unsigned>(chosen));
            }
        }
        if (total() < wells && builder->IsCenterPointsAllowed() && wells >= runs() &&
            wells - runs() >= least) {
            options.SetCenterPoints(static_cast<unsigned>(wells - runs()));
        }
        if (total() > wells && wells >= runs() && wells - runs() >= least) {
            options.SetCenterPoints(static_cast<unsigned>(wells - runs()));
        }
        if (total() != wells || !builder->IsValid(factors, options, false, true)) {
            continue;
        }
        const int priority = builder->GetPriority(factors);
        if (priority < best) {
            best = priority;
            choice = {builder->GetShortString(), options.GetRuns(), options.GetCenterPoints()};
        }
    }
    return choice;
}

/// One side of a plate: which factors, in which order of its design's columns, the design's runs,
/// and which of them (from 1) stands at each position.
struct Side {
    std::vector<unsigned long long> factors;
    NCDataMatrix<float> runs;
    std::vector<unsigned> order;
};

inline void Place(std::vector<float>& well, const Side& side, std::size_t position) {
    for (std::size_t i = 0; i < side.factors.size(); ++i) {
        well[side.factors[i]] =
            side.runs(static_cast<int>(side.order[position]), static_cast<int>(i) + 1);
    }
}

/// All wells in run order, factors without a side at -99.
inline std::vector<std::vector<float>> Wells(const Side& horizontal,
                                             const Side& vertical,
                                             std::size_t factors,
                                             int plates) {
    std::vector<std::vector<float>> wells;
    for (int plate = 0; plate < plates; ++plate) {
        for (std::size_t column = 0; column < horizontal.order.size(); ++column) {
            for (std::size_t row = 0; row < vertical.order.size(); ++row) {
                std::vector<float> well(factors, -99.0F);
                Place(well, horizontal, column);
                Place(well, vertical, row);
                wells.push_back(well);
            }
        }
    }
    return wells;
}

}  // namespace PlateOracle
