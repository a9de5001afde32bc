#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>

#include "designs/plate/REDMUPOptions.h"
#include "designs/plate/RunOrders.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"

namespace {

// Room is reckoned with a sign: it may be less than nothing.
long long RoomFor(const DesignOptions& options, long long size) {
    return size - static_cast<long long>(options.GetRuns());
}

bool IsFull(const DesignOptions& options, long long size) {
    return RoomFor(options, size) == static_cast<long long>(options.GetCenterPoints());
}

// Takes the largest legal run count that leaves more than the family's centre points.
void ReduceRuns(DesignOptions& options,
                const DesignBuilder& builder,
                const Factors& factors,
                long long size) {
    const long long limit = size - builder.GetMinimumCenterPoints();
    const std::vector<unsigned int> legal = builder.GetLegalRuns(factors, options);
    // Deliberate: strictly below the limit, although the limit itself would fit.
    const auto above = std::find_if(legal.begin(), legal.end(), [limit](unsigned int runs) {
        return static_cast<long long>(runs) >= limit;
    });
    if (above != legal.begin()) {
        options.SetRuns(*std::prev(above));
    }
}

// The family's defaults with exactly `size` runs and centre points; nothing where it has no such
// design.
std::optional<DesignOptions> FittedOptions(const DesignBuilder& builder,
                                           const Factors& factors,
                                           long long size) {
    DesignOptions options(builder, factors);
    options.SetMaxRuns(static_cast<unsigned int>(size));
    const long long minimum = builder.GetMinimumCenterPoints();
    if (RoomFor(options, size) < minimum) {
        ReduceRuns(options, builder, factors, size);
    }
    const long long room = RoomFor(options, size);
    const bool isShort = room > static_cast<long long>(options.GetCenterPoints());
    // Deliberate: centre points are taken away even where the family does not let any be added.
    if (room >= minimum && (!isShort || builder.IsCenterPointsAllowed())) {
        options.SetCenterPoints(static_cast<unsigned int>(room));
    }
    return IsFull(options, size) ? std::optional(std::move(options)) : std::nullopt;
}

struct Proposal {
    const DesignBuilder* builder = nullptr;
    std::optional<DesignOptions> options;
};

// The strongest valid design of that many runs; a tie keeps the first.
Proposal StrongestProposal(const Factors& factors, long long size) {
    Proposal best;
    int bestPriority = std::numeric_limits<int>::max();
    for (const auto& builder : AllDesigns::ClassicAndREDMUPDesigns().GetAllDesigns()) {
        // A plate design within a plate design would set up itself without end.
        if (builder->IsDesign() == EDesign::REDMUP) {
            continue;
        }
        auto options = FittedOptions(*builder, factors, size);
        if (options && builder->IsValid(factors, *options, false, true) &&
            builder->GetPriority(factors) < bestPriority) {
            bestPriority = builder->GetPriority(factors);
            best = {builder.get(), std::move(options)};
        }
    }
    return best;
}

// The options of a design that the user chose, filled up with centre points; nothing where it does
// not fill the positions.
std::optional<DesignOptions> ChosenOptions(const DesignBuilder& builder,
                                           const Factors& factors,
                                           unsigned long long positions,
                                           const DesignOptions& wanted) {
    const unsigned long long runs = wanted.GetRuns();
    const unsigned long long copies = 1ULL + wanted.GetReplicates();
    const unsigned long long room = positions / copies;
    if (room < runs || (room != runs && !builder.IsCenterPointsAllowed()) ||
        room - runs < builder.GetMinimumCenterPoints()) {
        return std::nullopt;
    }
    DesignOptions options(builder, factors);
    options.SetRuns(wanted.GetRuns());
    options.SetReplicates(wanted.GetReplicates());
    options.SetModel(wanted.GetModel());
    options.SetMaxRuns(wanted.GetMaxRuns());
    // Deliberate: one copy fills all positions, so that replicates never fit.
    options.SetCenterPoints(static_cast<unsigned int>(positions - runs));
    return positions * copies == positions ? std::optional(std::move(options)) : std::nullopt;
}

}  // namespace

void REDMUPOptions::REDMUPSubDesign::Setup(unsigned long long size,
                                           const Factors& all,
                                           const std::vector<unsigned long long>& group) {
    const REDMUPFactors view(group.empty() ? factors : group, all);
    // Without factors the caller's own matrix would be valid, of no columns and no runs.
    Proposal best = view.GetDesignFactorCount() > 0
                        ? StrongestProposal(view, static_cast<long long>(size))
                        : Proposal();
    if (!group.empty()) {
        factors = group;
    }
    if (best.builder != nullptr) {
        designType = best.builder->IsDesign();
        designData = best.builder->GetDesignData();
        options = std::make_unique<DesignOptions>(std::move(*best.options));
    }
    std::mt19937 engine = RunOrders::MakeEngine();
    runOrder = RunOrders::Draw(size, engine);
}

bool REDMUPOptions::REDMUPSubDesign::SetDesign(const Factors& all,
                                               const std::vector<unsigned long long>& group,
                                               EDesign::Type type,
                                               const std::string& data,
                                               unsigned int runs,
                                               unsigned int replicates,
                                               EModel::Type model,
                                               int size) {
    const auto builder = AllDesigns::GetDesignBuilder(type, data);
    if (!builder) {
        return false;
    }
    const REDMUPFactors view(group, all);
    DesignOptions wanted;
    wanted.SetRuns(runs);
    wanted.SetReplicates(replicates);
    wanted.SetModel(model);
    wanted.SetMaxRuns(static_cast<unsigned int>(size));
    auto chosen = ChosenOptions(*builder, view, runOrder.size(), wanted);
    if (!chosen || !builder->IsValid(view, *chosen, false, true)) {
        return false;
    }
    factors = group;
    designType = type;
    designData = data;
    options = std::make_unique<DesignOptions>(std::move(*chosen));
    return true;
}

std::unique_ptr<Factors> REDMUPOptions::REDMUPSubDesign::GetREDMUPFactors(
    const Factors& all) const {
    return std::make_unique<REDMUPFactors>(factors, all);
}
