#include "designs/mixture/SimplexPoints.h"

namespace {

constexpr float cHalf = 0.5F;
constexpr float cThird = 1.0F / 3;
constexpr float cTwoThirds = 2.0F / 3;

}  // namespace

int SimplexPoints::AppendRows(int count, float value) {
    const int before = matrix_.SizeRows();
    matrix_.ConcatRows(NCDataMatrix<float>(count, CountComponents(), value));
    return before;
}

void SimplexPoints::AddVertices() {
    int row = AppendRows(CountComponents(), 0);
    for (int i = 1; i <= CountComponents(); ++i) {
        matrix_(++row, i, 1.0F);
    }
}

void SimplexPoints::AddInteriorPoints(int count) {
    const auto components = static_cast<float>(CountComponents());
    int row = AppendRows(count, 1.0F / (2 * components));
    for (int i = 1; i <= count; ++i) {
        matrix_(++row, i, (components + 1) / (2 * components));
    }
}

void SimplexPoints::AddFaceCenters() {
    const int components = CountComponents();
    int row = AppendRows(components, 1.0F / static_cast<float>(components - 1));
    for (int i = 1; i <= components; ++i) {
        matrix_(++row, i, 0.0F);
    }
}

void SimplexPoints::AddEdgeCenters() {
    const int components = CountComponents();
    int row = AppendRows(components * (components - 1) / 2, 0);
    for (int i = 1; i < components; ++i) {
        for (int j = i + 1; j <= components; ++j) {
            matrix_(++row, i, cHalf);
            matrix_(row, j, cHalf);
        }
    }
}

void SimplexPoints::AddEdgeThirds() {
    const int components = CountComponents();
    int row = AppendRows(components * (components - 1), 0);
    for (int i = 1; i < components; ++i) {
        for (int j = i + 1; j <= components; ++j) {
            matrix_(++row, i, cTwoThirds);
            matrix_(row, j, cThird);
            matrix_(++row, i, cThird);
            matrix_(row, j, cTwoThirds);
        }
    }
}

void SimplexPoints::AddTripleBlends() {
    const int components = CountComponents();
    int row = AppendRows(components * (components - 1) * (components - 2) / 6, 0);
    for (int i = 1; i < components - 1; ++i) {
        for (int j = i + 1; j < components; ++j) {
            for (int l = j + 1; l <= components; ++l) {
                matrix_(++row, i, cThird);
                matrix_(row, j, cThird);
                matrix_(row, l, cThird);
            }
        }
    }
}

void SimplexPoints::AddCentroids(int count) {
    AppendRows(count, 1.0F / static_cast<float>(CountComponents()));
}
