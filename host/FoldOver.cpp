#include "host/FoldOver.h"

#include <fmt/format.h>

#include "host/HostError.h"

namespace {

// Mirror images are made of the plain runs, so nothing may stand among them.
void RequireFoldable(const PB* design, const BuiltDesign& built, const Study& study) {
    const auto refuse = [&](const std::string& reason) {
        FailWith(fmt::format("--fold-over: {}.", reason));
    };
    if (design == nullptr) {
        refuse(fmt::format("the design {} cannot be folded over; PB and PB_SS can",
                           built.builder->GetShortString()));
    }
    for (const StudyFactor& factor : study.factors.All()) {
        if (factor.type == CEType::Multilevel || factor.type == CEType::Qualitative) {
            refuse(
                fmt::format("the factor {} has levels, whose order cannot be reversed; only "
                            "designs of continuous factors can be folded over",
                            Quoted(factor.name)));
        }
    }
    if (built.options.GetBlocks() > 1) {
        refuse("a design in blocks cannot be folded over");
    }
    if (built.options.GetReplicates() > 0 || built.options.GetReplicatedRuns() > 0) {
        refuse("a design with replicates or replicated runs cannot be folded over");
    }
    const long long runs = 2LL * built.options.GetRuns() + built.options.GetCenterPoints();
    if (built.options.GetMaxRuns() != DesignOptions::cNoRunLimit &&
        runs > static_cast<long long>(built.options.GetMaxRuns())) {
        refuse(
            fmt::format("{} runs with the mirror image and the centre points exceed the run limit "
                        "of {}",
                        runs,
                        built.options.GetMaxRuns()));
    }
}

}  // namespace

void MakeFoldOver(BuiltDesign& built, const Study& study) {
    PB* const design = dynamic_cast<PB*>(built.design.get());
    RequireFoldable(design, built, study);
    design->FoldOver(0, study.factors, built.options);
    built.isFoldedOver = true;
}
