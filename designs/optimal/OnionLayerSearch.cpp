#include "designs/optimal/OnionLayerSearch.h"

#include <algorithm>

#include "designs/optimal/D_OptimalOptions.h"
#include "designs/optimal/OnionOptions.h"
#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"

namespace OnionLayers {

namespace {

/// Run counts searched on either side of a layer's own.
constexpr int cRunRange = 2;

D_OptimalOptions& SearchOptionsOf(DesignOptions& options) {
    return dynamic_cast<D_OptimalOptions&>(*options.GetDesignSpecificOptions());
}

CandidateSet RowsOfLayer(const CandidateSet& candidates, int layer, int layers) {
    CandidateSet rows;
    // Counts by kind are known for the whole set only.
    rows.SetCandidateSet(candidates.GetMatrix(layer), DOpt::NumData());
    if (rows.SizeRows() == 0) {
        throw Exception(
            ExceptionMessage::translate("The candidate set has no rows for layer {1} of {2}.")
            << layer << layers);
    }
    return rows;
}

}  // namespace

DesignOptions MakeModelOptions(const LayerOption& layer,
                               const Factors& factors,
                               const DesignOptions& options) {
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::DOpt, "");
    DesignOptions ofLayer(*builder, factors);
    ofLayer.SetObjective(layer.Model == EModel::Quadratic ? EObjective::Optimization
                                                          : EObjective::Screening);
    ofLayer.SetModel(layer.Model);
    ofLayer.SetRuns(static_cast<unsigned int>(std::max(layer.Runs, 0)));
    D_OptimalOptions& search = SearchOptionsOf(ofLayer);
    search.SetModel(layer.OptModels);
    // Candidates that no run may have must not be generated, nor be copied for centre points.
    search.SetConstraints(options.GetDesignSpecificOptions()->GetConstraints(), factors);
    return ofLayer;
}

DesignOptions MakeSearchOptions(int layer, const Factors& factors, const DesignOptions& options) {
    const auto& family = dynamic_cast<const OnionOptions&>(*options.GetDesignSpecificOptions());
    const LayerOption& layerOption = family.GetLayer(layer);
    const bool isLast = layer == family.GetLayerCount();
    DesignOptions ofLayer = MakeModelOptions(layerOption, factors, options);
    ofLayer.SetCenterPoints(isLast ? options.GetCenterPoints() : 0);
    ofLayer.SetReplicatedRuns(isLast ? options.GetReplicatedRuns() : 0);
    // Copies are made of the stack, not of each layer.
    ofLayer.SetReplicates(0);
    D_OptimalOptions& search = SearchOptionsOf(ofLayer);
    search.SetRepetitions(layerOption.Repetitions);
    search.SetRunRange(cRunRange);
    if (family.GetCandidateSet().SizeRows() > 0) {
        search.SetCandidateSet(
            RowsOfLayer(family.GetCandidateSet(), layer, family.GetLayerCount()));
        search.SetNewCandidateSet(false);
    } else {
        ofLayer.SetBlocks(options.GetBlocks());
    }
    return ofLayer;
}

}  // namespace OnionLayers
