#include "designs/optimal/QuadraticSupport.h"

#include <span>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/mat/NCSVD.h"

namespace DOpt {

namespace {

// All products of two of the values, squares among them. With a constant among the values, or a
// constant sum of theirs, these span the polynomials of degree two.
void FillProducts(const std::vector<double>& values, std::span<double> cells) {
    std::size_t next = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (std::size_t j = i; j < values.size(); ++j) {
            cells[next++] = values[i] * values[j];
        }
    }
}

}  // namespace

bool DeterminesQuadraticModel(const PointTable& points, bool mixture) {
    const int linear = points.Width() + (mixture ? 0 : 1);
    const int terms = linear * (linear + 1) / 2;
    if (points.Size() < terms) {
        return false;
    }
    NCDataMatrix<double> model(points.Size(), terms);
    for (int row = 0; row < points.Size(); ++row) {
        std::vector<double> values(points.Row(row).begin(), points.Row(row).end());
        if (!mixture) {
            values.push_back(1);
        }
        FillProducts(values, model.RowSpan(row + 1));
    }
    const auto decomposition = model.GetSVD(nullptr);
    return decomposition != nullptr && decomposition->GetCrossInverse() != nullptr;
}

}  // namespace DOpt
