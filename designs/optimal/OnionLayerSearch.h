#pragma once

class DesignOptions;
class Factors;
class OnionOptions;
struct LayerOption;

/// What the D-optimal search of one layer of an onion design is asked for.
namespace OnionLayers {

/// The layer's model and runs, under the constraints of the whole design.
/// @param options those of the whole design
[[nodiscard]] DesignOptions MakeModelOptions(const LayerOption& layer,
                                             const Factors& factors,
                                             const DesignOptions& options);

/// The same with all that the search of the layer needs: its repetitions, its rows of a stored
/// candidate set and, for the last layer alone, the centre points and replicated runs of the whole
/// design.
/// @param layer counted from 1
/// @param options hold OnionOptions with that layer
/// @throws Exception when the candidate set has no rows for the layer
[[nodiscard]] DesignOptions MakeSearchOptions(int layer,
                                              const Factors& factors,
                                              const DesignOptions& options);

}  // namespace OnionLayers
