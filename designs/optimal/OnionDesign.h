#pragma once

#include <memory>
#include <vector>

#include "designs/optimal/D_Optimal.h"
#include "foundation/stream/Export.h"
#include "frame/CandidatePicks.h"
#include "frame/NCDesign.h"

/// D-optimal designs of the layers of a candidate set, stacked in the order of the layers.
///
/// Each layer keeps its search's results, those of two runs more and fewer among them, and shows
/// the one of the best G-efficiency. Centre points and replicated runs stand in the last layer. The
/// matrix is in real units [runs x factors]; blocks, which apply where the options hold no
/// candidate set, add their coding columns.
class QORVA_EXPORT OnionDesign : public NCDesign, public CandidatePicks {
  public:
    using Layers = std::vector<std::shared_ptr<D_Optimal>>;

    /// Searches layer by layer.
    /// @param options hold OnionOptions with 1 layer or more
    /// @param cancel read between the steps; null allowed
    /// @throws Exception when the search of a layer fails; CancelException on a stop
    OnionDesign(const Factors& factors, const DesignOptions& options, bool* cancel = nullptr);
    /// As Load, on a design without layers. No matrix is stored: UpdateDesignMatrix makes it.
    OnionDesign(const Factors& factors, const ConfigurationSection& section);
    /// A copy has layers of its own.
    OnionDesign(const OnionDesign& other);
    OnionDesign& operator=(const OnionDesign&) = delete;
    ~OnionDesign() override = default;

    /// The design of each layer, in order. A caller that selects another result of a layer calls
    /// UpdateDesignMatrix afterwards.
    [[nodiscard]] const Layers& GetResults() const { return layers_; }
    /// Shows another result of a layer.
    /// @param layer counted from 1
    /// @param index of the layer's results, counted from 0
    /// @param options those of the search
    /// @throws InvalidOperationException for a layer or an index that does not exist; the design
    ///         stays
    void SelectDesign(int layer, int index, const DesignOptions& options);
    /// Stacks the layers' current matrices and copies the stack as often as the options tell. A
    /// layer without a matrix, as after Load, gets that of its selected result first.
    /// @param options those of the search
    /// @throws InvalidOperationException for options without OnionOptions; Exception when the
    /// copies
    ///         would have more than cMaxFinishedRuns runs. The matrix stays.
    void UpdateDesignMatrix(const DesignOptions& options);
    /// Forgets all results of the layers but the selected ones.
    void RemoveGeneratedDesigns();

    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
    [[nodiscard]] bool IsDesignMatrixCoded() const override { return false; }
    /// Writes each layer to "LayerDOptimal" in "OnionDesign" in the child section "Design".
    void Save(ConfigurationSection* section) const override;
    /// False, with nothing changed, when one of the two sections is missing. An earlier matrix
    /// goes.
    bool Load(const ConfigurationSection* section) override;

    [[nodiscard]] bool IsLayered() const override { return true; }
    [[nodiscard]] int GetLayerCount() const override { return static_cast<int>(layers_.size()); }
    [[nodiscard]] const std::vector<int>& GetPickedRows(int layer) const override;
    [[nodiscard]] int GetInclusionRows(int layer) const override;

  private:
    [[nodiscard]] const D_Optimal* Find(int layer) const;
    void Stack(const DesignOptions& options);

    Layers layers_;
};
