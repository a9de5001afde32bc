#pragma once

#include <memory>
#include <vector>

#include "evaluation/DesignStatistics.h"
#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"
#include "frame/CandidateSet.h"
#include "frame/EDesign.h"
#include "frame/NCDesign.h"

class NCProgress;

/// A reduced combinatorial design: the levels of each factor occur equally often, up to one run
/// where the run count does not divide, and pairs of runs coincide in few factors. Several such
/// designs are generated from random starts; their figures tell which one is shown.
///
/// Columns are found one after the other, that of the most levels first, by swapping two runs at a
/// time within a column so that J2, the sum over all pairs of runs of the squared number of factors
/// on which they coincide, falls (Xu 2002, "An algorithm for constructing orthogonal and
/// nearly-orthogonal arrays with mixed levels and small runs", Technometrics 44). J2 reaches its
/// bound exactly when the design is an orthogonal array.
///
/// The matrix is coded [runs and replicated runs x factors]. There are no centre points, blocks or
/// replicates. A factor without a main effect in the model has no values: its column is -99.
class QORVA_EXPORT J2Design : public NCDesign {
  public:
    /// One generated design and its figures.
    struct QORVA_EXPORT Results : DesignStatistics::Results {
        int ReplicatedRuns = 3;
        NCDataMatrix<float> design;  // with its replicated runs; empty once loaded
    };

    /// Most swaps within one column.
    static constexpr int miMaxIter = 1000;
    /// Most runs of one search, repeated ones not counted: its tables grow with their square.
    static constexpr int cMaxRuns = 10'000;

    /// Generates. The selected result is the best by the options' figure.
    /// @param options hold J2Options or other D_OptimalOptions
    /// @param stop read at each column and each swap; null allowed. A stop, by it or in the
    ///        progress, ends the search; the designs found before stay.
    /// @throws Exception "No design was found." without a design, as for a negative run range;
    ///         Exception when the run range reaches above cMaxRuns runs, and for levels outside
    ///         their range; CancelException for a stop on entry; NCInternalError "J2Design" for
    ///         options of another family; InvalidOperationException for a model that leaves a level
    ///         factor without a column or names a factor that does not exist
    J2Design(EDesign::Type type, const Factors& factors, const DesignOptions& options, bool* stop);
    /// As Load, on a design without results.
    J2Design(const Factors& factors, const ConfigurationSection& section);
    J2Design(const J2Design&) = default;
    J2Design(J2Design&&) = default;
    J2Design& operator=(const J2Design&) = delete;
    J2Design& operator=(J2Design&&) = delete;
    ~J2Design() override = default;

    /// Index of the best result by a figure, the first on ties, and 0 for a figure that the results
    /// do not have. A condition number or I-value that could not be told beats one above 99.
    /// @throws Exception "No design was found." without results
    [[nodiscard]] unsigned long long GetBestDesignIndex(EDesign::DOptimalSelectBy by) const;
    /// Shows another result; nothing happens for the one that is shown or an index without a
    /// result. A result that was loaded has no runs, and leaves the design without any.
    void SelectDesign(int index);
    /// By ascending run count.
    [[nodiscard]] const std::vector<Results>& GetResults() const { return results_; }
    /// Of the results, counted from 0.
    [[nodiscard]] int GetSelectedIndex() const { return selected_; }
    /// The candidates that the designs are judged over, by kind; -99 where there were none.
    [[nodiscard]] const DOpt::NumData& GetNumData() const { return numData_; }
    [[nodiscard]] EDesign::Type IsDesign() const { return designType_; }

    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
    /// Writes results, counts and selection to "J2Design" in the child section "Design". The runs
    /// of the results are not stored.
    void Save(ConfigurationSection* section) const override;
    /// False, with nothing changed, when one of the two sections is missing. Of an earlier content
    /// nothing stays, and there is no matrix.
    bool Load(const ConfigurationSection* section) override;

  private:
    /// What all designs of one search are judged by.
    struct Judge;

    /// The designs of one run count. Returns false when the user has asked to stop.
    bool GenerateRunCount(const Factors& factors,
                          const DesignOptions& options,
                          Judge& judge,
                          NCProgress& progress,
                          bool* stop);
    [[nodiscard]] NCDataMatrix<float> GenerateDesign(const Factors& factors,
                                                     const DesignOptions& options,
                                                     NCProgress& progress,
                                                     const bool* stop) const;
    /// The factors that get a column, in the order in which the columns are found, and their
    /// levels.
    void CalculateLevels(const Factors& factors,
                         const DesignOptions& options,
                         std::vector<int>& levels,
                         std::vector<int>& factorOrder,
                         int defaultLevels) const;
    [[nodiscard]] Results CalculateStatistics(const Factors& factors,
                                              const DesignOptions& options,
                                              const NCDataMatrix<float>& design,
                                              Judge& judge,
                                              bool* stop);

    std::vector<Results> results_;
    DOpt::NumData numData_;
    int selected_ = 0;
    EDesign::Type designType_;
};
