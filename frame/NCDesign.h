#pragma once

#include <memory>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"

class ConfigurationSection;
class DesignOptions;
class Factors;

/// A finished design: the factors it was built for, borrowed, and the design matrix
/// [runs x factors, or factors + 1 with blocks].
///
/// In a coded matrix a continuous factor stands between -1 and 1 (or beyond), a level factor and
/// the block column hold letter codes: 65 is the first level or block, 66 the second. -99 means
/// that no value was written. One thread works on a design at a time.
class QORVA_EXPORT NCDesign {
  public:
    /// Most runs a finished design may have.
    static constexpr long long cMaxFinishedRuns = 1'000'000;

    explicit NCDesign(const Factors& factors) : factors_(&factors) {}
    NCDesign(const NCDesign&) = default;
    NCDesign& operator=(const NCDesign&) = delete;
    virtual ~NCDesign();

    /// A copy of the handle; empty before a matrix is set.
    [[nodiscard]] virtual std::shared_ptr<const NCDataMatrix<float>> GetDesignMatrix() const;
    /// A new object of the concrete class that shares factors and matrix.
    [[nodiscard]] virtual std::shared_ptr<NCDesign> Clone() const = 0;
    /// Makes the child section "Design"; the base writes nothing in it.
    virtual void Save(ConfigurationSection* section) const;
    /// True when the child section "Design" exists.
    virtual bool Load(const ConfigurationSection* section);
    virtual void Remove(ConfigurationSection* section) const;
    /// The static form below, on the own matrix, if there is one.
    virtual void AdjustCenterPoints(const Factors& factors, const DesignOptions& options);
    /// False where the matrix holds real values.
    [[nodiscard]] virtual bool IsDesignMatrixCoded() const;
    /// Makes a new shared copy of the matrix; clones keep theirs.
    virtual void SetDesignMatrix(const NCDataMatrix<float>& matrix);
    /// Appends rows of 0 and, in a coded design, gives them meaningful level codes.
    virtual void AddCenterPoints(int count, const Factors& factors, const DesignOptions& options);
    [[nodiscard]] virtual bool IsMixtureOnlyDesign() const;

  protected:
    /// Level 1, 2 or 3 of a cell of a tabulated array; 0 in families without such arrays. Rows and
    /// columns count from 1.
    [[nodiscard]] virtual int GetDesignCoding(int row, int column) const;
    /// Appends `count` copies of the whole design.
    virtual void AddReplicates(unsigned int count);

  public:
    [[nodiscard]] const Factors& GetFactors() const { return *factors_; }
    /// Empties the handle.
    void ClearDesignMatrix() { matrix_.reset(); }

    /// The road from a family's core table to the finished design: store, recode level factors and
    /// blocks, add replicated runs, centre points and replicates, in this order.
    /// @throws Exception when the finished design would have more than cMaxFinishedRuns runs
    void SetDesignMatrixAddAndAdjust(const NCDataMatrix<float>& table,
                                     const Factors& factors,
                                     const DesignOptions& options);

    /// A full factorial in standard order (first factor fastest) [runs x factors, one column of 0
    /// more with `blockColumn`]. Continuous factors take -1 and 1, or -1, 0 and 1 with
    /// `threeLevels`; level factors their letter codes. Factors of other types, and those that
    /// `runs` does not reach, stay -99.
    [[nodiscard]] static NCDataMatrix<float> MakeFFDesignTable(const Factors& factors,
                                                               int runs,
                                                               bool blockColumn,
                                                               bool threeLevels);
    /// A two-level full factorial in standard order [runs x factors] with no regard to factor
    /// types; 2^factors rows when `runs` is 0 or less. Factors that `runs` does not reach stand at
    /// -1, those after the first such factor at 0.
    [[nodiscard]] static NCDataMatrix<float> MakePureFF2DesignTable(int factors, int runs);

    /// Gives the cells that are exactly 0 in level and block columns a meaning: the middle level
    /// (rounded up) of a Multilevel factor, the first level of a Qualitative one, and one block
    /// after the other in the last column of a blocked design.
    static void AdjustCenterPoints(NCDataMatrix<float>& matrix,
                                   const Factors& factors,
                                   const DesignOptions& options);

  protected:
    /// For families that finish their matrix themselves, to be asked before anything grows.
    /// @throws Exception when a design of so many core runs would, with the options' replicated
    ///         runs, centre points and replicates, have more than cMaxFinishedRuns runs
    static void RequireFinishedSize(int coreRuns, const DesignOptions& options);
    /// A table [runs x factors] through GetDesignCoding.
    [[nodiscard]] NCDataMatrix<float> MakeLDesignTable(const Factors& factors, int runs) const;
    /// Appends the star runs of a central composite design: a pair at -distance and +distance on
    /// each factor's axis. With `blocks` above 1 the last column is the block column and star runs
    /// form the last block.
    void AddCCRuns(float distance, int blocks);
    /// Turns -1, 0 and 1 in columns of Qualitative factors with 2 or 3 levels, and in the block
    /// column, into letter codes.
    void AdjustQualitativeFactors(const Factors& factors);
    /// The same for Multilevel factors with 2 or 3 levels.
    void AdjustMultilevelFactors(const Factors& factors);
    /// The same road for a table that holds its letter codes already: nothing is recoded.
    /// @throws Exception when the finished design would have more than cMaxFinishedRuns runs
    void SetDesignMatrixAndAdd(const NCDataMatrix<float>& table,
                               const Factors& factors,
                               const DesignOptions& options);
    /// Appends the options' replicated runs to the own matrix, if there is one.
    void AddReplicatedRuns(const Factors& factors, const DesignOptions& options);
    /// Appends exactly as many rows as the options ask for, each a copy of an existing row: the
    /// runs whose repetition adds most to the determinant of a linear model, or random ones where a
    /// trial design that tells them cannot be made.
    /// @throws InvalidOperationException for a coded matrix with a level code that no level has
    void AddReplicatedRuns(NCDataMatrix<float>& matrix,
                           const Factors& factors,
                           const DesignOptions& options) const;

  private:
    /// The end of both roads: replicated runs, centre points and replicates.
    void AddRuns(const Factors& factors, const DesignOptions& options);
    /// The matrix for a change in place, detached from clones that share it.
    [[nodiscard]] NCDataMatrix<float>& DetachedMatrix();

    const Factors* factors_;
    std::shared_ptr<NCDataMatrix<float>> matrix_;
};
