#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"
#include "foundation/utl/JsonValue.h"

class CandidatePicks;
class ConfigurationSection;
class DesignOptions;
class Factors;
class NCDesign;

namespace NCDOE {
class Constraints;
}

namespace DOpt {

/// How many candidate rows of each kind a generated candidate set holds; -99 where nothing was
/// counted.
struct NumData {
    int ExtVert = -99;       // extreme vertices
    int NumEdges = -99;      // centres of edges
    int NumHiDimCent = -99;  // centroids of higher dimension

    friend bool operator==(const NumData&, const NumData&) = default;
};

}  // namespace DOpt

/// The runs from which a computer-generated design may pick, one row a run [rows x expanded factor
/// count], in real units and the caller's order. A missing value is -99. Rows may have names and
/// percentages. A set may be divided into layers of consecutive rows; layers count from 1, and so
/// do rows.
class QORVA_EXPORT CandidateSet : public NCDataMatrix<float> {
  public:
    /// The answer of GetPercentage where there is none.
    static constexpr float cNoPercentage = -1.0F;

    /// Assigns rows and counts, and each vector given.
    /// @param startPoints first row of each layer, or null
    /// @param numbers rows of each layer, or null
    void SetCandidateSet(const NCDataMatrix<float>& rows,
                         const DOpt::NumData& numData,
                         const std::vector<int>* startPoints = nullptr,
                         const std::vector<int>* numbers = nullptr);

    [[nodiscard]] const NCDataMatrix<float>& GetMatrix() const { return *this; }
    /// A copy of the rows from a layer's start up to the row before the next layer's, or up to the
    /// end for the last layer; without rows for a layer that the set does not have.
    [[nodiscard]] NCDataMatrix<float> GetMatrix(int layer) const;
    [[nodiscard]] const DOpt::NumData& GetNumData() const { return numData_; }
    void SetNumData(const DOpt::NumData& numData) { numData_ = numData; }
    [[nodiscard]] const std::vector<int>& GetStartPoints() const { return startPoints_; }
    [[nodiscard]] const std::vector<int>& GetNumbers() const { return numbers_; }
    /// Whether the set is divided into layers.
    [[nodiscard]] bool HasLayers() const { return !startPoints_.empty(); }

    [[nodiscard]] const std::vector<std::string>& GetRowNames() const { return rowNames_; }
    [[nodiscard]] bool HasRowNames() const { return !rowNames_.empty(); }
    /// Empty for a row without a name.
    [[nodiscard]] std::string GetRowName(unsigned int row) const;
    void SetRowNames(std::vector<std::string> names) { rowNames_ = std::move(names); }
    [[nodiscard]] const std::vector<float>& GetPercentages() const { return percentages_; }
    /// -1 for a row without a percentage.
    [[nodiscard]] float GetPercentage(int row) const;
    void SetPercentages(std::vector<float> percentages) { percentages_ = std::move(percentages); }

    /// Sets the rows of one layer. Layer 0, the first, replaces the whole matrix; any other is
    /// appended to it, as a new layer when the set does not have it yet.
    /// @param layer counted from 0, as nowhere else
    /// @throws InvalidOperationException for rows of another width; the set stays
    void ConcatCandidateSet(unsigned long long layer, const NCDataMatrix<float>& rows);
    /// The layer that holds a row; 0 for a row outside all layers, -1 in a set without layers.
    [[nodiscard]] int GetLayer(int row) const;
    /// Number of rows whose GetLayer is `layer`.
    [[nodiscard]] int GetNumExperiments(int layer) const;

    // Deliberate: the three editing operations leave names, percentages and layers alone; a caller
    // that has them keeps them in step.

    /// Inserts missing rows before row `first`; the row count + 1 appends.
    /// @throws InvalidOperationException outside the rows, as do the other two
    void AddRows(unsigned int first, unsigned int count);
    void RemoveRows(unsigned int first, unsigned int count);
    void UpdateCandidateSet(unsigned int row, unsigned int column, float value);

    /// The last row that a centre point may copy: the last one that keeps the constraints, row 1
    /// when none does, the last row without constraints; 0 for a matrix without rows.
    /// @param matrix one column a factor, in real units
    /// @param constraints or null
    [[nodiscard]] static int FindReplicateRow(const NCDataMatrix<float>& matrix,
                                              const NCDOE::Constraints* constraints);
    /// The same for a matrix with a column for each expanded variable.
    [[nodiscard]] static int FindReplicateRow(const NCDataMatrix<float>& matrix,
                                              const NCDOE::Constraints* constraints,
                                              const Factors& factors);
    /// The first expanded column of every factor [rows x factors], as constraints look at runs.
    /// @throws InvalidOperationException for a matrix with fewer columns than expanded variables
    [[nodiscard]] static NCDataMatrix<float> ReduceToFactors(const NCDataMatrix<float>& matrix,
                                                             const Factors& factors);

    /// The runs of a design, counted from 1, that are candidate row `row`; empty for a design that
    /// was not picked from candidates. An inclusion is no candidate row.
    [[nodiscard]] std::vector<int> GetAllDesignRuns(int row,
                                                    const std::shared_ptr<const NCDesign>& design,
                                                    const DesignOptions& options) const;
    /// The first of those runs, or 0.
    [[nodiscard]] int GetDesignRun(int row, const std::shared_ptr<const NCDesign>& design) const;
    /// Those runs joined by ", ".
    [[nodiscard]] std::string GetDesignRunName(int row,
                                               const std::shared_ptr<const NCDesign>& design,
                                               const DesignOptions& options) const;
    /// The row names behind the runs of a design's selected result, in run order, an empty one for
    /// an inclusion. No names at all for a set without them or a design not picked from candidates.
    [[nodiscard]] std::vector<std::string> GetUsedScoreNames(const NCDesign& design) const;

    /// Writes the set as a text file, which CandidateSetFile describes. The file itself holds no
    /// layers: they go to numbered children "Layer" of `layers`.
    /// @param name path of the file
    /// @param layers section to keep the layers in, or null
    /// @param names one a row, without tabs and line ends, not beginning with '/'; or null
    /// @param percentages one a row; given exactly when names are
    /// @return false, with nothing written, for a set without rows and for names and percentages
    ///         that do not fit
    /// @throws Exception when the file cannot be written; an older file stays
    bool WriteToFile(const std::string& name,
                     ConfigurationSection* layers,
                     const std::vector<std::string>* names,
                     const std::vector<float>* percentages) const;
    /// Takes over the content of such a file: rows, layers, names, percentages and counts. The set
    /// stays when the file is not read.
    /// @param layer the one layer to read, with the overall centroid (the last row of the file)
    ///        behind the last one; -1 for the whole file
    /// @param layers section that the layers were kept in, or null
    /// @param status gets a status of CandidateSetFile, if not null. At 6021 the file is worthless.
    /// @return whether the file was read
    /// @throws CancelException when the user asked to stop
    bool ReadCandidateSet(const std::string& name,
                          int layer,
                          const ConfigurationSection* layers,
                          int* status = nullptr);

    /// Writes the keys of the set to the section, each only when it holds something.
    void Save(ConfigurationSection* section) const;
    /// Becomes the set whose keys the section holds; without any the set stays.
    void Load(const ConfigurationSection* section);

    /// The rows only: {"data": [[...], ...]}.
    /// @throws Exception for a set with layers
    [[nodiscard]] json_value ToJson() const;
    /// Becomes a set of those rows, without names, percentages, layers and counts. A value that is
    /// no object or has no rows changes nothing.
    /// @throws Exception for rows of different lengths or with anything but numbers; the set stays
    void FromJson(const json_value& value);

  private:
    /// First and last row; the last before the first for no rows.
    [[nodiscard]] std::pair<int, int> RowsOfLayer(int layer) const;
    /// The candidate row that a design picked, 0 for an inclusion.
    [[nodiscard]] int RowOfPick(int pick, int layer, const CandidatePicks& picks) const;
    [[nodiscard]] std::vector<int> GetRunsOf(int row, const NCDesign* design) const;
    void RequireRows(unsigned int first, unsigned int count, unsigned int limit) const;

    std::vector<std::string> rowNames_;
    std::vector<int> startPoints_;
    std::vector<int> numbers_;
    std::vector<float> percentages_;
    DOpt::NumData numData_;
};
