#pragma once

#include <memory>
#include <string>
#include <vector>

#include "designs/optimal/DOptResults.h"
#include "foundation/stream/Export.h"
#include "frame/CandidatePicks.h"
#include "frame/CandidateSet.h"
#include "frame/EDesign.h"
#include "frame/NCDesign.h"

class D_OptimalOptions;
class IniFileSection;

/// A design whose runs are picked from candidates so that the determinant of X'X is large. It keeps
/// all designs that a search over run counts and repetitions found, with their figures, and shows
/// one of them.
///
/// The matrix is in real units [runs x expanded factor count, blocks - 1 more], Qualitative factors
/// and blocks as coding columns.
class QORVA_EXPORT D_Optimal : public NCDesign, public CandidatePicks {
  public:
    using Results = DOptResults;

    /// Searches. The selected result is the best by the options' figure, as the search told it; the
    /// figures kept are those of the finished designs, with centre points and replicated runs.
    /// @param cancel read between the steps; null allowed
    /// @throws Exception when there are no candidates or no design; CancelException on a stop
    D_Optimal(const Factors& factors, const DesignOptions& options, bool* cancel);
    /// As Load, and as LoadOld, on a design without results. No matrix is stored: SelectDesign
    /// makes it.
    D_Optimal(const Factors& factors, const ConfigurationSection& section);
    D_Optimal(const Factors& factors, const IniFileSection& section);

    /// By ascending run count.
    [[nodiscard]] const std::vector<Results>& GetResults() const { return results_; }
    /// The candidates by kind; -99 where they were not counted.
    [[nodiscard]] const DOpt::NumData& GetNumData() const { return numData_; }
    /// Of the results, counted from 0.
    [[nodiscard]] int GetSelectedIndex() const { return selected_; }
    /// The candidate that centre points copy; empty when nothing was searched.
    [[nodiscard]] const std::vector<float>& GetReplicateRow() const { return replicateRow_; }

    /// Index of the best result by a figure, the first on ties. Results without the figure come
    /// last.
    /// @throws Exception "No design was found." without results
    [[nodiscard]] int GetBestDesignBy(EDesign::DOptimalSelectBy by) const;
    /// Makes the matrix of another result. Candidates are taken as at the search: the stored set or
    /// newly generated. Replicated runs are drawn anew, and the figures of the result are those of
    /// the matrix that is made.
    /// @param options those of the search
    /// @param layer of the stored candidate set, counted from 1; 0 or less for the whole set
    /// @throws InvalidOperationException for an index without a result; the design stays
    void SelectDesign(int index, const Factors& factors, const DesignOptions& options, int layer);
    /// Appends the options' centre points: copies of the candidate that FindReplicateRow finds,
    /// through the blocks in turn.
    /// @param matrix and `candidates` in the caller's order
    void InsertCenterPoints(NCDataMatrix<float>& matrix,
                            const NCDataMatrix<float>& candidates,
                            const DesignOptions& options) const;
    /// Forgets all results but the selected one.
    void RemoveGeneratedDesigns();

    /// The text of a status of the search for the user.
    /// @param options null allowed
    [[nodiscard]] static std::string GetErrorString(int code, const D_OptimalOptions* options);
    /// Makes all searches and shuffles of the process reproducible; there is no way back.
    static void SetValidating();
    [[nodiscard]] static bool GetValidating();

    [[nodiscard]] std::shared_ptr<NCDesign> Clone() const override;
    [[nodiscard]] bool IsDesignMatrixCoded() const override { return false; }
    /// Writes results, counts and selection to "DOptimal" in the child section "Design".
    void Save(ConfigurationSection* section) const override;
    /// False, with nothing changed, when one of the two sections is missing.
    bool Load(const ConfigurationSection* section) override;
    /// Reads an older form: the keys "ExtremeVertices", "Edges", "HighDimensionalCentroids" and
    /// "OptionIndex" (the selection), and for each result the key "DOpt" and its number with the
    /// value "CondNo:1.5 LogDet:3.2 LogDetNorm:0.4 GEff:88.1 DesignIndex:1,4,5", the last of which
    /// lists candidate rows. What is missing stays.
    /// @throws std::invalid_argument "invalid stoi argument" and std::out_of_range "stoi argument
    ///         out of range" for a number of a result or a row that is no number
    void LoadOld(const IniFileSection* section);

    [[nodiscard]] bool IsLayered() const override { return false; }
    [[nodiscard]] int GetLayerCount() const override { return 1; }
    [[nodiscard]] const std::vector<int>& GetPickedRows(int layer) const override;
    [[nodiscard]] int GetInclusionRows(int layer) const override;

  private:
    /// The matrix of a result with centre points and replicated runs.
    [[nodiscard]] NCDataMatrix<float> MakeDesign(const Results& result,
                                                 const NCDataMatrix<float>& candidates,
                                                 const DesignOptions& options) const;
    void FinishResults(const DesignOptions& options,
                       const NCDataMatrix<float>& candidates,
                       bool* cancel);
    void StoreDesign(const NCDataMatrix<float>& matrix, const DesignOptions& options);

    std::vector<Results> results_;
    DOpt::NumData numData_;
    std::vector<float> replicateRow_;
    int selected_ = 0;
    int inclusionRows_ = 0;
};
