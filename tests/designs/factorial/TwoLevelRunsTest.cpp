// The instrument of the proofs against the definition, on designs that are no fractions.

#include "tests/support/TwoLevelRuns.h"

#include <gtest/gtest.h>

#include <bit>
#include <random>
#include <stdexcept>
#include <vector>

namespace {

using Matrix = NCDataMatrix<float>;

Matrix RandomSigns(int runs, int factors, unsigned int seed) {
    std::mt19937 engine(seed);
    Matrix matrix(runs, factors);
    for (float& cell : matrix.Cells()) {
        cell = engine() % 2 == 0 ? -1.0F : 1.0F;
    }
    return matrix;
}

// A_w by its definition: the squared means of all products of w columns.
std::vector<double> WordLengthsByDefinition(const Matrix& matrix) {
    std::vector<double> lengths(static_cast<std::size_t>(matrix.SizeColumns()) + 1);
    for (unsigned int subset = 0; subset < 1U << matrix.SizeColumns(); ++subset) {
        double sum = 0;
        for (int row = 1; row <= matrix.SizeRows(); ++row) {
            double product = 1;
            for (int column = 1; column <= matrix.SizeColumns(); ++column) {
                product *= (subset >> (column - 1)) % 2 == 0
                               ? 1
                               : static_cast<double>(matrix(row, column));
            }
            sum += product;
        }
        const double mean = sum / matrix.SizeRows();
        lengths[static_cast<std::size_t>(std::popcount(subset))] += mean * mean;
    }
    return lengths;
}

}  // namespace

TEST(TwoLevelRuns, WordLengthsAreThoseOfTheDefinition) {
    for (const unsigned int seed : {1U, 2U, 3U}) {
        const Matrix matrix = RandomSigns(13, 7, seed);
        const std::vector<double> expected = WordLengthsByDefinition(matrix);
        const std::vector<double> found = TwoLevelRuns(matrix, 13, 7, false).WordLengths(7);
        ASSERT_EQ(found.size(), expected.size());
        for (std::size_t i = 0; i < found.size(); ++i) {
            EXPECT_NEAR(found[i], expected[i], 1e-12) << "length " << i << ", seed " << seed;
        }
    }
}

TEST(TwoLevelRuns, OtherCellsAreRefused) {
    EXPECT_THROW(TwoLevelRuns(Matrix{{1, -1}, {0, 1}}, 2, 2, false), std::invalid_argument);
    EXPECT_THROW(TwoLevelRuns(Matrix{{1, -1}, {-99, 1}}, 2, 2, false), std::invalid_argument);
    EXPECT_THROW(TwoLevelRuns(Matrix{{1, 0}, {1, 65}}, 2, 1, true), std::invalid_argument);
    EXPECT_THROW(TwoLevelRuns(Matrix{{1, 65.5F}, {1, 65}}, 2, 1, true), std::invalid_argument);
}

TEST(TwoLevelRuns, LetterCodesAreLevels) {
    const TwoLevelRuns runs(Matrix{{65, -1}, {66, 1}}, 2, 2, false);
    EXPECT_EQ(runs.Resolution(2), 2);  // the columns are alike
}
