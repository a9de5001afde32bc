#pragma once

#include <string>
#include <utility>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"

class ConfigurationSection;
class DesignOptions;
class Factors;

/// How good one subset of a full factorial is.
struct QORVA_EXPORT StabilityDesignQuality {
    StabilityDesignQuality() = default;
    StabilityDesignQuality(bool unique,
                           bool balance,
                           int iterations,
                           bool oa,
                           bool noa,
                           std::vector<int> distances,
                           float conditionNumber);

    /// Writes the child section "GFFQuality".
    void Save(ConfigurationSection* section) const;
    /// False when there is no such section; what it does not hold stays.
    bool Load(const ConfigurationSection* section);

    bool Unique = false;   // no repeated row
    int Iterations = -1;   // divisions that the search looked at; -1 when not known
    bool Balance = false;  // all levels of each factor occur equally often
    bool OA = false;       // every pair of factors is exactly balanced
    bool NOA = false;      // every pair of factors is balanced up to a difference of 1
    // Pairs of runs by squared distance in level numbers, 0 to 9.
    std::vector<int> Distances;
    float ConditionNumber = -99.0F;  // of the main effects; -99 when there is none
};

/// One subset of a full factorial: its runs as factor settings, its quality, and the replicates and
/// centre points that were added to it.
class QORVA_EXPORT StabilityDesignData {
  public:
    StabilityDesignData() = default;
    /// @param index from 1 to the reduction
    StabilityDesignData(int reduction,
                        int index,
                        StabilityDesignQuality quality,
                        const NCDataMatrix<float>& matrix)
        : reduction_(reduction), index_(index), quality_(std::move(quality)), matrix_(matrix) {}
    StabilityDesignData(const StabilityDesignData&) = default;
    StabilityDesignData& operator=(const StabilityDesignData&) = default;
    virtual ~StabilityDesignData();

    /// Writes the child sections "Design" and "GFF".
    virtual void Save(ConfigurationSection* section) const;
    /// Returns whether there is a child section "Design"; without a matrix in it the own one is
    /// cleared. Counts that do not fit the matrix are cut to what does.
    virtual bool Load(const ConfigurationSection* section);

    [[nodiscard]] int GetReduction() const { return reduction_; }
    [[nodiscard]] int GetIndex() const { return index_; }
    /// [runs x factors]: letter codes of Multilevel and Qualitative factors, -1 and 1 of others;
    /// first the base runs, then their replicates, then the centre points.
    [[nodiscard]] const NCDataMatrix<float>& GetDesignMatrix() const { return matrix_; }
    [[nodiscard]] NCDataMatrix<float>& GetDesignMatrixChange() { return matrix_; }
    [[nodiscard]] const StabilityDesignQuality& GetQuality() const { return quality_; }
    [[nodiscard]] int GetCenterPoints() const { return centerPoints_; }
    [[nodiscard]] int GetReplicates() const { return replicates_; }
    /// The run, from 1, that stands in for the centre point; 0 for none.
    [[nodiscard]] int GetReplicateRow() const { return replicateRow_; }
    void SetReplicateRow(int row) { replicateRow_ = row; }
    /// Runs without replicates and centre points.
    [[nodiscard]] int GetBaseRuns() const;

    /// Replaces the centre points; copies of the replicate row where there is one.
    void SetCenterPoints(int count, const Factors& factors, const DesignOptions& options);
    /// Replaces the copies of the base runs; the centre points stay.
    void SetReplicates(int count, const Factors& factors, const DesignOptions& options);
    /// NCDesign::AdjustCenterPoints on the own matrix.
    void AdjustCenterPoints(const Factors& factors, const DesignOptions& options);

    [[nodiscard]] std::string GetDesignsetName() const;
    /// "C:2" for the second subset of reduction 3; empty for a reduction outside 1 to 25.
    [[nodiscard]] static std::string GetDesignsetName(int reduction, int index);
    /// Reduction and index of such a name, "A" alone being the full factorial (1, 1); (0, 0) for
    /// any other text.
    [[nodiscard]] static std::pair<int, int> GetDesignSetPair(const std::string& text);

    /// Writes the child section "FMatrix", over an earlier one.
    static void SaveMatrix(ConfigurationSection* section, const NCDataMatrix<float>& matrix);
    /// False, with the matrix unchanged, when there is none or its size is impossible. Cells
    /// without a stored number are -99.
    static bool LoadMatrix(const ConfigurationSection* section, NCDataMatrix<float>* matrix);

  private:
    void RemoveAddedRuns();
    void AppendReplicates();
    void AppendCenterPoints(int count, const Factors& factors, const DesignOptions& options);

    int reduction_ = 0;
    int index_ = 0;
    int replicates_ = 0;
    int centerPoints_ = 0;
    int replicateRow_ = 0;
    StabilityDesignQuality quality_;
    NCDataMatrix<float> matrix_;
};
