// The composition root: the one file that names every family, in the order of proposal.

#include "frame/AllDesigns.h"

#include <algorithm>
#include <utility>

#include "designs/factorial/FF2.h"
#include "designs/factorial/FF3.h"
#include "designs/factorial/FFM.h"
#include "frame/CustomDesign.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"

namespace {

using Builders = std::vector<std::shared_ptr<const DesignBuilder>>;

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
    static const AllDesigns designs = ClassicDesigns();
    return designs;
}

const AllDesigns& AllDesigns::AllPossibleDesigns() {
    static const AllDesigns designs = ClassicAndREDMUPDesigns();
    return designs;
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
