#pragma once

#include <string>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"

namespace DOpt {

/// How many candidate rows of each kind a generated candidate set holds.
struct NumData {
    int ExtVert = -99;       // extreme vertices
    int NumEdges = -99;      // centres of edges
    int NumHiDimCent = -99;  // centroids of higher dimension

    friend bool operator==(const NumData&, const NumData&) = default;
};

}  // namespace DOpt

/// The runs from which a computer-generated design may pick, one row a run, in real units. A set
/// may be divided into layers of consecutive rows.
class QORVA_EXPORT CandidateSet : public NCDataMatrix<float> {
  public:
    /// Assigns rows and counts, and each vector given.
    /// @param startPoints first row of each layer, counted from 1, or null
    /// @param numbers rows of each layer, or null
    void SetCandidateSet(const NCDataMatrix<float>& rows,
                         const DOpt::NumData& numData,
                         const std::vector<int>* startPoints = nullptr,
                         const std::vector<int>* numbers = nullptr) {
        static_cast<NCDataMatrix<float>&>(*this) = rows;
        numData_ = numData;
        if (startPoints != nullptr) {
            startPoints_ = *startPoints;
        }
        if (numbers != nullptr) {
            numbers_ = *numbers;
        }
    }

    [[nodiscard]] const NCDataMatrix<float>& GetMatrix() const { return *this; }
    [[nodiscard]] const DOpt::NumData& GetNumData() const { return numData_; }
    [[nodiscard]] const std::vector<int>& GetStartPoints() const { return startPoints_; }
    [[nodiscard]] const std::vector<int>& GetNumbers() const { return numbers_; }

  private:
    std::vector<int> startPoints_;
    std::vector<int> numbers_;
    DOpt::NumData numData_;
};
