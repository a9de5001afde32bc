// The composition root: the one file that names every family, in the order of proposal.

#include "frame/AllDesigns.h"

#include <algorithm>
#include <utility>

#include "designs/factorial/DefinitiveScreening.h"
#include "designs/factorial/FF2.h"
#include "designs/factorial/FF3.h"
#include "designs/factorial/FFM.h"
#include "designs/factorial/FFR_III.h"
#include "designs/factorial/FFR_IV.h"
#include "designs/factorial/FFR_V.h"
#include "designs/factorial/GraecoLatin.h"
#include "designs/factorial/Levels.h"
#include "designs/factorial/PB.h"
#include "designs/factorial/PBSuperSaturated.h"
#include "designs/mixture/Ax.h"
#include "designs/mixture/SimDesign.h"
#include "designs/optimal/D_OptimalBuilder.h"
#include "designs/optimal/OnionBuilder.h"
#include "designs/plate/PlateRows.h"
#include "designs/plate/REDMUP.h"
#include "designs/rsm/BB.h"
#include "designs/rsm/CCC.h"
#include "designs/rsm/CCF.h"
#include "designs/rsm/CCO.h"
#include "designs/rsm/Doehlert.h"
#include "designs/rsm/RCCC.h"
#include "designs/rsm/RCCF.h"
#include "designs/rsm/Rechtschaffner.h"
#include "designs/stability/J2Builder.h"
#include "designs/stability/StabilityDesign.h"
#include "frame/CustomDesign.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"

namespace {

using Builders = std::vector<std::shared_ptr<const DesignBuilder>>;

constexpr const char* cThirteenFactorText =
    "Fractional design at three levels for up to 13 factors from the Graeco-Latin square family. "
    "You can estimate square terms but not all interactions.";

// The order is fixed: a tie of priorities keeps the earlier builder.
Builders MakeClassicDesigns() {
    return {
        std::make_shared<FF2Builder>("FF2",
                                     "Full Fac (2 levels)",
                                     "Orthogonal (balanced) design with all combinations of the "
                                     "factor levels. Main effects and all interactions are clear "
                                     "of each other (not confounded)."),
        std::make_shared<FF3Builder>("FF3",
                                     "Full Fac (3 levels)",
                                     "Full factorial design with every factor varied at three "
                                     "levels. You can estimate the full quadratic model."),
        std::make_shared<FFMBuilder>("FFM",
                                     "Full Fac (Mixed)",
                                     "Full factorial designs with some factors at more than two "
                                     "levels. Main effects and all interactions are clear of each "
                                     "other (not confounded)."),
        std::make_shared<L9Builder>("L9",
                                    "L9 (3 levels)",
                                    "Fractional design at three levels for up to four factors from "
                                    "the Graeco-Latin square family. You can estimate square terms "
                                    "but not all interactions."),
        std::make_shared<L18Builder>("L18",
                                     "L18 (3 levels)",
                                     "Fractional design from the Graeco-Latin square family with "
                                     "one factor at two levels and with up to 8 factors at three "
                                     "levels."),
        std::make_shared<L27Builder>("L27", "L27 (3 levels)", cThirteenFactorText),
        std::make_shared<L36Builder>("L36", "L36 (3 levels)", cThirteenFactorText),
        std::make_shared<FFR_IIIBuilder>(
            "FFR_III",
            "Frac Fac Res III",
            "Balanced subset of the full factorial at two levels. Main effects are confounded with "
            "two-factor interactions."),
        std::make_shared<FFR_IVBuilder>(
            "FFR_IV",
            "Frac Fac Res IV",
            "Balanced subset of the full factorial at two levels. Main effects are clear of "
            "two-factor interactions, but the latter are confounded."),
        std::make_shared<FFR_VBuilder>(
            "FFR_V",
            "Frac Fac Res V+",
            "Balanced subset of the full factorial at two levels. Main effects and all two-factor "
            "interactions are clear of each other (not confounded)."),
        std::make_shared<PBBuilder>("PB",
                                    "Plackett Burman",
                                    "Fractional design of resolution III. You cannot estimate any "
                                    "two-factor interactions."),
        std::make_shared<PBSuperSaturatedBuilder>(
            "PB_SS",
            "Plackett Burman Super-Saturated",
            "A super-saturated design is a Resolution II design with fewer runs than factors. "
            "Factor main effects are confounded with each other. It is assumed that only very few "
            "of the factors investigated are active."),
        std::make_shared<BBBuilder>(
            "BB",
            "Box Behnken",
            "A three level RSM design. All design points, except the center "
            "points, are located at the center of the edges of the hypercube, and "
            "are also on the surface of a sphere. You can estimate the full "
            "quadratic model."),
        std::make_shared<CCCBuilder>("CCC",
                                     "CCC",
                                     "Central Composite Circumscribed design composed of a full or "
                                     "fractional factorial design and star points."),
        std::make_shared<CCFBuilder>(
            "CCF",
            "CCF",
            "Central Composite Face design composed of a full or fractional factorial design and "
            "star points placed on the faces of the sides."),
        std::make_shared<CCOBuilder>("CCO",
                                     "CCO",
                                     "Central Composite Orthogonal design composed of a full or "
                                     "fractional factorial design and star points."),
        std::make_shared<RCCFBuilder>(
            "RCCF",
            "Reduced CCF",
            "Reduced Central Composite Face design valid for four factors. The design is composed "
            "of the fractional part of the design reduced from 16 to 12 runs and star points on "
            "the faces of the sides."),
        std::make_shared<RCCCBuilder>("RCCC",
                                      "Reduced CCC",
                                      "Reduced Central Composite Circumscribed design valid for "
                                      "four factors. The design is composed of the fractional part "
                                      "of the design reduced from 16 to 12 runs and star points."),
        std::make_shared<AxBuilder>(
            EDesign::AxN,
            "AxN",
            "Axial Normal",
            "Mixture design with at least twice as many runs as formulation "
            "factors. The runs included are the vertex points, the interior check "
            "points, and the overall centroid."),
        std::make_shared<AxBuilder>(
            EDesign::AxE,
            "AxE",
            "Axial Extended",
            "Mixture design with at least three times as many runs as formulation "
            "factors. The runs included are the vertex points, interior check "
            "points, the face centers (dimension q-1), and the overall centroid."),
        std::make_shared<AxBuilder>(
            EDesign::AxR,
            "AxR",
            "Reduced Axial Normal",
            "Mixture design with at least as many runs as formulation factors. The "
            "runs included are the vertex points, a selection of the interior "
            "check points, and the overall centroid."),
        std::make_shared<SimBuilder>(
            EDesign::SimM,
            "SimM",
            "Modified Simplex Centroid",
            "Mixture design for the full quadratic model. The runs included are "
            "the vertex points, the interior check points, the edge centers, and "
            "the overall centroid."),
        std::make_shared<SimBuilder>(
            EDesign::SimF,
            "SimF",
            "Modified Simplex Centroid w/Face",
            "Mixture design for the full quadratic model with more runs than "
            "Modified Simplex Centroid. The runs included are the vertex points, "
            "the interior check points, the edge centers, the face centers "
            "(dimension q-1), and the overall centroid."),
        std::make_shared<SimBuilder>(
            EDesign::SimSC,
            "SimSC",
            "Special Cubic Simplex Centroid",
            "Mixture design for a reduced cubic model. The runs included are the "
            "vertex points, the interior check points, the edge points (1/3, 2/3), "
            "the face centers (dimension q-2), and the overall centroid."),
        std::make_shared<SimBuilder>(
            EDesign::SimC,
            "SimC",
            "Full Cubic Simplex Centroid",
            "Mixture design for the full cubic model. The runs included are the "
            "vertex points, the interior check points, the edge points (1/3, 2/3), "
            "the edge centers, the face centers (dimension q-2), and the overall "
            "centroid."),
        std::make_shared<D_OptimalBuilder>(
            "DOpt",
            "D-Optimal",
            "D-Optimal designs are computer generated designs that maximize the volume (maximize "
            "the determinant of the X'X matrix). This is similar to a maximal spread of the "
            "points."),
        std::make_shared<OnionBuilder>(
            "OnionDOpt",
            "Onion D-Optimal",
            "Several D-Optimal designs generated from layers of the candidate set."),
        std::make_shared<RechtschaffnerBuilder>(
            EObjective::Optimization,
            "RSS",
            "Rechtschaffner",
            "Saturated fractions of the 3n designs that supports all the first "
            "order interactions and quadratic terms."),
        std::make_shared<RechtschaffnerBuilder>(
            EObjective::Screening,
            "RSR",
            "Rechtschaffner Res V",
            "Saturated fractions with resolution 5 of the 2n designs that support "
            "all the first order interactions."),
        std::make_shared<DoehlertBuilder>(
            "Doehlert",
            "Doehlert",
            "RSM design constructed from regular simplexes. Doehlert designs are "
            "extendable in different directions and new factors can be added to an "
            "existing design."),
        std::make_shared<LevelsBuilder>("Levels",
                                        "Levels",
                                        "Single factor design varied at several levels for a "
                                        "quantitative factor or at the specified levels for a "
                                        "discrete factor."),
        std::make_shared<J2Builder>(
            EDesign::J2,
            "J2",
            "Reduced Combinatorial",
            "Generated from a strict combinatorial perspective in order to create a reduced design "
            "with a balanced distribution of all factor settings. The algorithm selecting the "
            "points treats multilevel and qualitative factors equally."),
        std::make_shared<DefinitiveScreeningBuilder>(
            "Definitive Screening",
            "Definitive Screening",
            "Definitive Screening Design investigates linear and square effects with as few "
            "experiments as possible."),
        std::make_shared<CustomDesignBuilder>("Custom", "Custom", "Custom"),
    };
}

}  // namespace

const Builders& EDesign::GetClassicDesigns() {
    static const Builders designs = MakeClassicDesigns();
    return designs;
}

const AllDesigns& AllDesigns::ClassicDesigns() {
    static const AllDesigns designs = [] {
        AllDesigns list;
        list.builders_ = EDesign::GetClassicDesigns();
        return list;
    }();
    return designs;
}

const AllDesigns& AllDesigns::ClassicAndREDMUPDesigns() {
    static const AllDesigns designs = [] {
        AllDesigns list = ClassicDesigns();
        for (auto& row : MakePlateRows()) {
            list.Add(std::move(row));
        }
        return list;
    }();
    return designs;
}

const AllDesigns& AllDesigns::AllPossibleDesigns() {
    static const AllDesigns designs = [] {
        AllDesigns list = ClassicAndREDMUPDesigns();
        list.Add(GetStabilityBuilder());
        list.Add(GetREDMUPBuilder());
        list.Add(GetGeneralizedSubsetBuilder());
        return list;
    }();
    return designs;
}

std::shared_ptr<const DesignBuilder> AllDesigns::GetStabilityBuilder() {
    static const auto builder = std::make_shared<const StabilityDesignBuilder>(
        EDesign::Stability, "Stability", "Stability", "Stability testing design");
    return builder;
}

std::shared_ptr<const DesignBuilder> AllDesigns::GetREDMUPBuilder() {
    static const auto builder =
        std::make_shared<const REDMUPBuilder>("RED-MUP", "RED-MUP", "RED-MUP");
    return builder;
}

std::shared_ptr<const DesignBuilder> AllDesigns::GetGeneralizedSubsetBuilder() {
    // The trailing blank of the description is kept: it is stored with designs.
    static const auto builder = std::make_shared<const StabilityDesignBuilder>(
        EDesign::GeneralizedSubset,
        "Generalized Subset Designs",
        "Generalized Subset Designs",
        "A design that generates a sequence of complementary design sets. ");
    return builder;
}

std::shared_ptr<const DesignBuilder> AllDesigns::GetDesignBuilder(EDesign::Type type,
                                                                  const std::string& data) {
    if (type == EDesign::None) {
        return nullptr;
    }
    const Builders& builders = AllPossibleDesigns().GetAllDesigns();
    const auto found = std::find_if(builders.begin(), builders.end(), [&](const auto& builder) {
        return builder->IsDesign() == type &&
               (type == EDesign::Custom || builder->GetDesignData() == data);
    });
    return found != builders.end() ? *found : nullptr;
}

void AllDesigns::Add(std::shared_ptr<const DesignBuilder> builder) {
    builders_.push_back(std::move(builder));
}

bool AllDesigns::IsAnyDesignValid(EObjective::Type objective,
                                  EModel::Type model,
                                  int maxRuns,
                                  const Factors& factors,
                                  bool redmupOnly) const {
    if (factors.GetDesignFactorCount() == 0) {
        return false;
    }
    const auto limit = static_cast<unsigned int>(std::max(maxRuns, 0));
    return std::any_of(builders_.begin(), builders_.end(), [&](const auto& builder) {
        const DesignOptions options(*builder, factors, objective, model, model, limit);
        return builder->IsValid(factors, options, false, redmupOnly);
    });
}
