#pragma once

#include <vector>

#include "foundation/stream/Export.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/EModel.h"

class DesignOptions;
class OnionBuilder;

/// What is searched for in one layer of an onion design.
struct QORVA_EXPORT LayerOption {
    float Ratio = 1.0F;  // share of all candidates that this layer and those inside it hold
    int Runs = 0;
    int Repetitions = 1;  // searches per run count
    EModel::Type Model = EModel::Linear;
    /// Explicit terms, one list of factor indices a term; empty for all terms of the model.
    std::vector<std::vector<int>> OptModels;

    friend bool operator==(const LayerOption&, const LayerOption&) = default;
};

/// The options of onion designs: the layers, the innermost first. The candidate set of the base may
/// hold the rows of each layer.
class QORVA_EXPORT OnionOptions : public DesignSpecificOptions {
  public:
    /// More layers than a design without a run limit has runs are refused.
    static constexpr int cMaxLayers = 12000;

    OnionOptions() = default;
    /// The builder's default layers; none where it has no number for them.
    OnionOptions(const OnionBuilder& builder, const Factors& factors, const DesignOptions& options);

    [[nodiscard]] const std::vector<LayerOption>& GetLayers() const { return layers_; }
    [[nodiscard]] int GetLayerCount() const { return static_cast<int>(layers_.size()); }
    /// @param layer counted from 1
    /// @throws InvalidOperationException for a layer that does not exist
    [[nodiscard]] const LayerOption& GetLayer(int layer) const;
    [[nodiscard]] LayerOption& GetLayer(int layer);

    /// Divides anew: equal shares, linear models but for the last layer, which gets that of the
    /// options, and the builder's recommended runs.
    /// @throws Exception "Illegal number of layers" below 1 and above cMaxLayers; the layers stay
    void SetLayers(int layers,
                   const OnionBuilder& builder,
                   const Factors& factors,
                   const DesignOptions& options);
    /// Brings the sum of the layers' runs to a total. The difference is spread evenly; what a layer
    /// cannot take goes to the last layer that still can. Each layer keeps enough runs for its
    /// terms and no more than its candidates serve.
    /// @return whether the layers have that total; if not, they came as near to it as they can
    bool SetTotalRuns(int runs, const Factors& factors, const DesignOptions& options);
    /// The sum over the layers.
    [[nodiscard]] int GetTotalRuns() const;

    /// Writes the child section "DesignSpecificOptions": the candidate set there, the layers in its
    /// child "OnionOptions". Constraints have no saved form.
    void Save(ConfigurationSection* section) const override;
    /// False, with nothing changed, when the layers are missing.
    bool Load(const ConfigurationSection* section) override;
    /// @throws Exception always: layers have no form for exchange.
    [[nodiscard]] json_value ToJson() const override;

  private:
    std::vector<LayerOption> layers_;
};
