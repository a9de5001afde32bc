#pragma once

#include <memory>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"

/// Onion designs (Olsson, Marini, Eriksson and Wold, 2004): D-optimal designs of the layers of a
/// candidate set, stacked. A single D-optimal design picks the outermost candidates only; the inner
/// layers make sure that the middle of the region is investigated, too. For 2 to 32 quantitative
/// factors.
///
/// With constraints, the acceptable candidates of the options' set tell how many layers and runs
/// there can be. One of them is taken to be the overall centroid, the last row of the set, which is
/// given to the last layer only.
class QORVA_EXPORT OnionBuilder : public DesignBuilder {
  public:
    using DesignBuilder::DesignBuilder;

    /// Options of another family, or none, get the default layers; their constraints and candidate
    /// set are kept.
    /// @throws Exception when the search of a layer fails
    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              const DesignOptions& options) const override;
    /// Every count from the fewest runs that estimate the layers' models up to what the candidates
    /// serve.
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 0; }
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::OnionDOpt; }
    using DesignBuilder::IsValid;
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    /// OnionOptions.
    [[nodiscard]] std::shared_ptr<DesignSpecificOptions> GetDefaultDesignSpecificOptions(
        const Factors& factors, const DesignOptions& options) const override;

    /// Most runs of a layer: a few more than its terms, and not more than two thirds of its
    /// candidates.
    /// @param terms of the layer's model, the constant among them
    /// @param layer counted from 1
    [[nodiscard]] virtual int GetMaximumRunsPerLayer(const DesignOptions& options,
                                                     int terms,
                                                     int layer) const;
    /// @param first whether this is any layer but the last
    [[nodiscard]] virtual int GetRecommendedRunsPerLayer(unsigned int terms, bool first) const;
    [[nodiscard]] virtual int GetMinimumRunsPerLayer(int terms) const;

    /// As many layers as the candidates serve, at most 3; 0 where they are too few.
    [[nodiscard]] static int GetDefaultLayers(const DesignOptions& options, int factorCount);
    /// Terms of the full model of quantitative factors, the constant among them; 0 for models that
    /// no layer has. A number beyond an int is cut there.
    [[nodiscard]] static int GetDefaultNoModelTerms(EModel::Type model, int factorCount);
    /// The candidates that one layer's search generates where the options hold no candidate set
    /// [candidates x factors], in real units.
    /// @param layer counted from 0
    /// @return without rows when the options are not those of the family
    /// @throws InvalidOperationException for a layer that does not exist; Exception without
    ///         candidates, and for a layer of more than 1,000,000 runs
    [[nodiscard]] static NCDataMatrix<float> GenerateCandidateset(int layer,
                                                                  const DesignOptions& options,
                                                                  const Factors& factors);
    /// The candidates of the options' set that keep the constraints; 0 without constraints.
    [[nodiscard]] static unsigned long long GetNumValidScores(const DesignOptions& options);
    [[nodiscard]] int GetRecommendedRuns(const Factors& factors,
                                         const DesignOptions& options) const;
    [[nodiscard]] int GetMinimumRuns(const Factors& factors, const DesignOptions& options) const;
    /// The recommended runs, or as many as a run limit allows with room for centre points.
    [[nodiscard]] unsigned int DefaultRuns(const Factors& factors,
                                           const DesignOptions& options) const;
};
