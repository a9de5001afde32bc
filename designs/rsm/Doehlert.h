#pragma once

#include <memory>
#include <set>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"
#include "frame/NCDesign.h"

/// The uniform shell design (Doehlert, 1970): all differences between two vertices of a regular
/// simplex of edge 1. Its runs lie on the unit sphere, at a distance of 1 from their neighbours,
/// and go on as a lattice in every direction, so the design can grow around any of its runs.
///
/// Rows and experiments count from 1. Experiment numbers keep their meaning while a growing design
/// gets new rows; without a list of numbers, experiment and row are the same.
class QORVA_EXPORT Doehlert : public NCDesign {
  public:
    /// Builds the whole design; the options must be valid for the factors.
    Doehlert(const Factors& factors, const DesignOptions& options);
    /// Loads a saved design.
    Doehlert(const Factors& factors, const ConfigurationSection& section);
    // Moving copies, too: both objects keep the experiment numbers.
    Doehlert(const Doehlert&) = default;

    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
    /// Writes the child section "Design" with the matrix and the experiment numbers. What an
    /// earlier save left there and this design does not have is removed.
    void Save(ConfigurationSection* section) const override;
    /// Reads the same. Matrix and experiment numbers are empty where they were not saved.
    bool Load(const ConfigurationSection* section) override;

    /// Runs on the shell of `factors` dimensions, without the centre; 0 below 2 dimensions.
    [[nodiscard]] static unsigned int GeneratedRuns(unsigned int factors);
    /// The vertices of the simplex [factors + 1 x factors], the origin first.
    [[nodiscard]] static NCDataMatrix<float> GenerateSimplex(int factors);
    /// The origin, the simplex's other vertices, their opposites, and the differences of each two
    /// of them in both directions [(factors + 1) * factors + 1 x factors].
    [[nodiscard]] static NCDataMatrix<float> ExpandToDesign(const NCDataMatrix<float>& simplex,
                                                            int factors);

    /// The points of the shell around a row that the design does not have yet [points x factors],
    /// in the order of the rows they are moved from. Comparison is as in IsExperimentEqual: exact
    /// for a design as built, but after several rounds of growth rounding adds up, and a point can
    /// be offered although some row stands there.
    /// @param existing takes up, besides what it holds, the rows that are such points already; the
    ///        row itself is among them where the design has a centre point
    /// @throws InvalidOperationException for a number that is no row
    [[nodiscard]] NCDataMatrix<float> GetNewPointsAround(int row, std::set<int>& existing) const;
    /// Row `a` equals row `b`, or the sum of rows `b` and `c` when `c` is above 0, up to float
    /// rounding of the larger value in each column.
    /// @throws InvalidOperationException for a number that is no row
    [[nodiscard]] bool IsExperimentEqual(int a, int b, int c) const;

    void SetExperimentNumbers(const std::vector<int>& numbers);
    /// 0 for a row that has no number.
    [[nodiscard]] int GetExperimentNumber(int row) const;
    /// @throws Exception for a number that no row has
    [[nodiscard]] int GetRow(int experiment) const;

  private:
    std::shared_ptr<const std::vector<int>> experimentNumbers_;
};

/// Doehlert designs of 2 to 20 quantitative factors for the quadratic model: n * (n + 1) runs on a
/// sphere, and at least one at its centre.
class QORVA_EXPORT DoehlertBuilder : public DesignBuilder {
  public:
    using DesignBuilder::DesignBuilder;
    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    [[nodiscard]] std::unique_ptr<NCDesign> Build(const Factors& factors,
                                                  const DesignOptions& options,
                                                  bool* cancel = nullptr) const override;
    [[nodiscard]] unsigned int GetDefaultRuns(const Factors& factors,
                                              EObjective::Type objective) const override;
    [[nodiscard]] unsigned int GetMinimumCenterPoints() const override { return 1; }
    [[nodiscard]] std::vector<unsigned int> GetLegalRuns(
        const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::Doehlert; }
    /// Deliberate: looks at the design's runs, not at the run limit.
    [[nodiscard]] bool IsREDMUPRecommended(const Factors& factors,
                                           const DesignOptions& options) const override;
    [[nodiscard]] bool IsValid(const Factors& factors, const DesignOptions& options) const override;
    [[nodiscard]] EModel::Type GetDefaultModel(const Factors& factors,
                                               EObjective::Type objective) const override;
};
