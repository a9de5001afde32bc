// The parts of the exchange, each against plain sums.
#include <gtest/gtest.h>

#include "designs/optimal/IOptimal.h"
#include "designs/optimal/engine/DesignFigures.h"
#include "designs/optimal/engine/ExchangeModel.h"
#include "designs/optimal/engine/InformationInverse.h"
#include "designs/optimal/engine/TileKernels.h"
#include "tests/designs/optimal/engine/ExchangeSamples.h"

namespace {

using DOpt::ExchangeModel;
using DOpt::InformationInverse;
using DOpt::RankOne;
using DOpt::SquareMatrix;
using DOpt::TileKernels;
using ExchangeSamples::Expanded;
using ExchangeSamples::Grid;
using ExchangeSamples::Model;
using ExchangeSamples::Random;
using ExchangeSamples::Rows;
using ExchangeSamples::ToMatrix;

std::vector<const TileKernels*> AllKernels() {
    return {&DOpt::BaselineTileKernels(), &DOpt::BestTileKernels()};
}

struct Sample {
    Rows rows;
    SquareMatrix matrix;
    std::vector<double> u;
    std::vector<double> v;
};

Sample MakeSample(int candidates, int columns, unsigned seed) {
    Sample sample;
    sample.rows = Random(candidates, columns, seed);
    sample.matrix = SquareMatrix(columns);
    std::mt19937 engine(seed + 1);
    const auto draw = [&engine] { return static_cast<double>(engine()) / 2147483648.0 - 1.0; };
    for (std::size_t i = 0; i < sample.matrix.Size(); ++i) {
        for (std::size_t j = 0; j < sample.matrix.Size(); ++j) {
            sample.matrix(i, j) = draw();
        }
    }
    sample.u.assign(sample.matrix.Stride(), 0.0);
    sample.v = sample.u;
    for (std::size_t i = 0; i < sample.matrix.Size(); ++i) {
        sample.u[i] = draw();
        sample.v[i] = draw();
    }
    return sample;
}

double Dot(const std::vector<float>& x, const std::vector<double>& u) {
    double sum = 0;
    for (std::size_t j = 0; j < x.size(); ++j) {
        sum += static_cast<double>(x[j]) * u[j];
    }
    return sum;
}

// Counts around the widths of tiles and of steps.
const std::vector<std::pair<int, int>> cShapes = {
    {1, 1}, {7, 3}, {8, 4}, {9, 5}, {16, 8}, {31, 9}, {100, 17}, {203, 40}};

TEST(TileKernels, VariancesAreThePlainSumsToTheLastBit) {
    for (const auto& [candidates, columns] : cShapes) {
        const Sample sample = MakeSample(candidates, columns, 1);
        const ExchangeModel model(ToMatrix(sample.rows), 0);
        for (const TileKernels* kernels : AllKernels()) {
            std::vector<double> d(model.PaddedCandidates());
            kernels->variances(
                model.Tiles(), sample.matrix.Row(0), sample.matrix.Stride(), d.data());
            for (std::size_t k = 0; k < sample.rows.size(); ++k) {
                double expected = 0;
                for (std::size_t a = 0; a < sample.matrix.Size(); ++a) {
                    double inner = 0;
                    for (std::size_t b = 0; b < sample.matrix.Size(); ++b) {
                        inner += sample.matrix(a, b) * static_cast<double>(sample.rows[k][b]);
                    }
                    expected += static_cast<double>(sample.rows[k][a]) * inner;
                }
                EXPECT_EQ(d[k], expected) << candidates << " x " << columns << ", row " << k;
            }
        }
    }
}

TEST(TileKernels, UpdatesOfVariancesAreThePlainOnesToTheLastBit) {
    for (const auto& [candidates, columns] : cShapes) {
        const Sample sample = MakeSample(candidates, columns, 2);
        const ExchangeModel model(ToMatrix(sample.rows), 0);
        const RankOne in{sample.u.data(), 1.7};
        const RankOne out{sample.v.data(), 0.3};
        for (const TileKernels* kernels : AllKernels()) {
            std::vector<double> entered(model.PaddedCandidates(), 5.0);
            std::vector<double> exchanged = entered;
            kernels->enter(model.Tiles(), in, entered.data());
            kernels->exchange(model.Tiles(), in, out, exchanged.data());
            for (std::size_t k = 0; k < sample.rows.size(); ++k) {
                const double a = Dot(sample.rows[k], sample.u);
                const double b = Dot(sample.rows[k], sample.v);
                EXPECT_EQ(entered[k], 5.0 - a * a / 1.7);
                EXPECT_EQ(exchanged[k], 5.0 - (a / 1.7) * a + (b / 0.3) * b);
            }
        }
    }
}

TEST(TileKernels, ProductsAreFormedForTheListedTilesOnly) {
    const Sample sample = MakeSample(40, 7, 3);
    const ExchangeModel model(ToMatrix(sample.rows), 0);
    const std::vector<std::size_t> list = {1, 4};
    for (const TileKernels* kernels : AllKernels()) {
        std::vector<double> products[3];
        for (auto& each : products) {
            each.assign(model.PaddedCandidates(), 1e9);
        }
        const double* const vectors[3] = {sample.u.data(), sample.v.data(), sample.u.data()};
        double* const targets[3] = {products[0].data(), products[1].data(), products[2].data()};
        kernels->products(model.Tiles(), list.data(), list.size(), vectors, targets);
        for (std::size_t k = 0; k < 40; ++k) {
            const bool isListed = k / 8 == 1 || k / 8 == 4;
            EXPECT_EQ(products[0][k], isListed ? Dot(sample.rows[k], sample.u) : 1e9);
            EXPECT_EQ(products[1][k], isListed ? Dot(sample.rows[k], sample.v) : 1e9);
            EXPECT_EQ(products[2][k], products[0][k]);
        }
    }
}

TEST(TileKernels, MatricesAreUpdatedAsInThePlainLoop) {
    for (const int size : {1, 4, 8, 13, 40}) {
        const Sample sample = MakeSample(1, size, 4);
        const std::size_t stride = sample.matrix.Stride();
        for (const TileKernels* kernels : AllKernels()) {
            SquareMatrix squares = sample.matrix;
            SquareMatrix products = sample.matrix;
            kernels->subtractSquare(squares.Row(0), squares.Size(), stride, {sample.u.data(), 1.3});
            kernels->addProduct(
                products.Row(0), products.Size(), stride, sample.v.data(), sample.u.data());
            for (std::size_t a = 0; a < squares.Size(); ++a) {
                for (std::size_t b = 0; b < squares.Size(); ++b) {
                    // The second index counts along a row of the storage.
                    EXPECT_EQ(squares(b, a), sample.matrix(b, a) - sample.u[a] * sample.u[b] / 1.3);
                    EXPECT_EQ(products(b, a), sample.matrix(b, a) + sample.v[a] * sample.u[b]);
                }
            }
        }
    }
}

TEST(TileKernels, AMatrixTimesAVectorIsThePlainSum) {
    for (const int size : {1, 4, 8, 13, 40}) {
        const Sample sample = MakeSample(1, size, 5);
        for (const TileKernels* kernels : AllKernels()) {
            std::vector<double> image(sample.matrix.Stride());
            kernels->multiply(sample.matrix.Row(0),
                              sample.matrix.Size(),
                              sample.matrix.Stride(),
                              sample.u.data(),
                              image.data());
            for (std::size_t a = 0; a < sample.matrix.Size(); ++a) {
                double sum = 0;
                for (std::size_t b = 0; b < sample.matrix.Size(); ++b) {
                    sum += sample.matrix(b, a) * sample.u[b];
                }
                EXPECT_EQ(image[a], sum);
            }
        }
    }
}

SquareMatrix InformationOf(const Rows& rows) {
    std::vector<int> all;
    for (int k = 0; k < static_cast<int>(rows.size()); ++k) {
        all.push_back(k);
    }
    return ExchangeModel(ToMatrix(rows), 0).CrossProducts(all);
}

TEST(InformationInverse, AgreesWithPlainElimination) {
    for (const int columns : {1, 2, 5, 20, 60}) {
        const SquareMatrix information = InformationOf(Random(2 * columns + 3, columns, 6));
        LiteralExchange::Matrix plain;
        for (std::size_t i = 0; i < information.Size(); ++i) {
            plain.emplace_back(information.Row(i), information.Row(i) + information.Size());
        }
        const LiteralExchange::Inverse expected = LiteralExchange::InvertPlainly(plain);
        InformationInverse result;
        ASSERT_EQ(DOpt::InvertInformation(information, nullptr, result), DOpt::Success);
        EXPECT_NEAR(result.logDeterminant, expected.logDeterminant, 1e-10);
        for (std::size_t i = 0; i < information.Size(); ++i) {
            for (std::size_t j = 0; j < information.Size(); ++j) {
                EXPECT_NEAR(result.inverse(i, j), expected.matrix[i][j], 1e-10);
                EXPECT_EQ(result.inverse(i, j), result.inverse(j, i));
            }
        }
    }
}

TEST(InformationInverse, ADependentColumnIsSingular) {
    Rows rows = Random(20, 6, 7);
    for (auto& row : rows) {
        row[5] = row[2];
    }
    InformationInverse result;
    EXPECT_EQ(DOpt::InvertInformation(InformationOf(rows), nullptr, result), DOpt::Singular);
}

TEST(InformationInverse, ABadButRegularMatrixIsLeftToTheSingularValues) {
    SquareMatrix information(2);
    information(0, 0) = 1;
    information(1, 1) = 1e-14;
    InformationInverse result;
    ASSERT_EQ(DOpt::InvertInformation(information, nullptr, result), DOpt::Success);
    EXPECT_NEAR(result.inverse(1, 1), 1e14, 1);
    EXPECT_NEAR(result.logDeterminant, -14, 1e-12);
}

TEST(InformationInverse, WhatIsBeyondTheNoiseOfTheDoubleIsSingular) {
    SquareMatrix information(2);
    information(0, 0) = 1;
    information(1, 1) = 1e-16;
    InformationInverse result;
    EXPECT_EQ(DOpt::InvertInformation(information, nullptr, result), DOpt::Singular);
}

TEST(InformationInverse, NotANumberIsSingular) {
    SquareMatrix information(2);
    information(0, 0) = 1;
    information(1, 1) = std::nan("");
    InformationInverse result;
    EXPECT_EQ(DOpt::InvertInformation(information, nullptr, result), DOpt::Singular);
}

TEST(InformationInverse, TheIdentityHasNoLogDeterminant) {
    SquareMatrix information(1);
    information(0, 0) = 1;
    InformationInverse result;
    EXPECT_EQ(DOpt::InvertInformation(information, nullptr, result), DOpt::NoDeterminant);
}

TEST(InformationInverse, TheCancelFlagIsRead) {
    bool cancel = true;
    SquareMatrix information(1);
    information(0, 0) = 2;
    InformationInverse result;
    EXPECT_EQ(DOpt::InvertInformation(information, &cancel, result), DOpt::Cancelled);
}

bool GoOn(float /*share*/) {
    return false;
}

TEST(ExchangeModel, PotentialColumnsBecomeOrthogonalResidualsOfRangeOne) {
    ExchangeModel model(ToMatrix(Random(30, 8, 8)), 3);
    ASSERT_EQ(model.ResidualisePotential(GoOn, nullptr), DOpt::Success);
    for (int column = 6; column <= 8; ++column) {
        float min = 0;
        float max = 0;
        model.Rows().GetColumnMinMax(column, min, max);
        EXPECT_NEAR(max - min, 1, 1e-6);
        for (int primary = 1; primary <= 5; ++primary) {
            double product = 0;
            for (int row = 1; row <= 30; ++row) {
                product += static_cast<double>(model.Rows()(row, column)) *
                           static_cast<double>(model.Rows()(row, primary));
            }
            EXPECT_NEAR(product, 0, 1e-5) << column << " with " << primary;
        }
    }
}

TEST(ExchangeModel, ResidualsAreTakenOnce) {
    ExchangeModel model(ToMatrix(Random(30, 8, 8)), 3);
    ASSERT_EQ(model.ResidualisePotential(GoOn, nullptr), DOpt::Success);
    const NCDataMatrix<float> once = model.Rows();
    ASSERT_EQ(model.ResidualisePotential(GoOn, nullptr), DOpt::Success);
    EXPECT_EQ(model.Rows(), once);
}

TEST(ExchangeModel, AConstantResidualLeavesAllColumnsAsTheyWere) {
    // The last column is zero, and so is its residual, exactly.
    Rows rows = Random(30, 8, 9);
    for (auto& row : rows) {
        row[7] = 0;
    }
    ExchangeModel model(ToMatrix(rows), 3);
    EXPECT_EQ(model.ResidualisePotential(GoOn, nullptr), DOpt::Success);
    EXPECT_EQ(model.Rows(), ToMatrix(rows));
}

TEST(ExchangeModel, DependentPrimaryColumnsHaveNoResiduals) {
    Rows rows = Random(30, 8, 10);
    for (auto& row : rows) {
        row[2] = row[1];
    }
    ExchangeModel model(ToMatrix(rows), 3);
    EXPECT_EQ(model.ResidualisePotential(GoOn, nullptr), DOpt::Singular);
    EXPECT_EQ(model.Rows(), ToMatrix(rows));
}

TEST(ExchangeModel, ResidualsWithoutPotentialColumnsChangeNothing) {
    ExchangeModel model(ToMatrix(Random(30, 8, 11)), 0);
    EXPECT_EQ(model.ResidualisePotential(GoOn, nullptr), DOpt::Success);
    EXPECT_EQ(model.Rows(), ToMatrix(Random(30, 8, 11)));
}

TEST(ExchangeModel, ResidualsCanBeStopped) {
    ExchangeModel model(ToMatrix(Random(30, 8, 12)), 3);
    EXPECT_EQ(model.ResidualisePotential([](float) { return true; }, nullptr), DOpt::Stopped);
    bool cancel = true;
    EXPECT_EQ(model.ResidualisePotential(GoOn, &cancel), DOpt::Cancelled);
}

// The full 3 x 3 factorial and its quadratic model: |X'X| = 5184, largest variance 29/36 at the
// corners, mean variance over its own runs p / n.
TEST(DesignFigures, AreThoseOfTheThreeLevelFactorial) {
    const ExchangeModel model(ToMatrix(Expanded(Grid(2, 3), Model::Quadratic)), 0);
    const std::vector<int> rows = {0, 1, 2, 3, 4, 5, 6, 7, 8};
    DOpt::ExchangeFigures figures;
    ASSERT_EQ(DOpt::ComputeFigures(model, rows, nullptr, figures), DOpt::Success);
    EXPECT_NEAR(figures.logDeterminant, std::log10(5184.0), 1e-6);
    EXPECT_NEAR(figures.normLogDeterminant, std::log10(5184.0) / 6 - std::log10(9.0), 1e-6);
    EXPECT_NEAR(figures.gEfficiency, 100.0 * 6 / 9 / (29.0 / 36), 1e-4);
    EXPECT_NEAR(figures.iValue, 6.0, 1e-5);
}

TEST(DesignFigures, ConditionIsThatOfTheModelMatrix) {
    // Columns of lengths 2 and 1: a factor at -1 and 1, coded in halves.
    const ExchangeModel model({{1, 0.5F}, {1, -0.5F}, {1, 0.5F}, {1, -0.5F}}, 0);
    DOpt::ExchangeFigures figures;
    ASSERT_EQ(DOpt::ComputeFigures(model, std::vector<int>{0, 1, 2, 3}, nullptr, figures),
              DOpt::Success);
    EXPECT_NEAR(figures.conditionNumber, 2, 1e-6);
}

TEST(DesignFigures, LookAtPrimaryColumnsOnly) {
    Rows rows = Expanded(Grid(2, 3), Model::Linear);
    const ExchangeModel primary(ToMatrix(rows), 0);
    for (auto& row : rows) {
        row.push_back(row[1] * row[2]);
    }
    const ExchangeModel both(ToMatrix(rows), 1);
    const std::vector<int> design = {0, 2, 6, 8, 4};
    DOpt::ExchangeFigures a;
    DOpt::ExchangeFigures b;
    ASSERT_EQ(DOpt::ComputeFigures(primary, design, nullptr, a), DOpt::Success);
    ASSERT_EQ(DOpt::ComputeFigures(both, design, nullptr, b), DOpt::Success);
    EXPECT_EQ(a.logDeterminant, b.logDeterminant);
    EXPECT_EQ(a.gEfficiency, b.gEfficiency);
    EXPECT_EQ(a.iValue, b.iValue);
}

// Two roads to one figure: the mean of the candidates' variances here, the trace of a product
// there.
TEST(DesignFigures, IValueIsThatOfTheSearchForIt) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        const NCDataMatrix<float> rows = ToMatrix(Random(60, 7, seed));
        const ExchangeModel model(rows, 0);
        const NCDOE::IOptimal search(rows);
        std::mt19937 engine(seed);
        std::vector<int> design;
        for (int i = 0; i < 8 + static_cast<int>(seed); ++i) {
            design.push_back(static_cast<int>(engine() % 60));
        }
        DOpt::ExchangeFigures figures;
        ASSERT_EQ(DOpt::ComputeFigures(model, design, nullptr, figures), DOpt::Success);
        const double value = search.GetIValue(design);
        EXPECT_EQ(std::isnan(figures.iValue), std::isnan(value)) << "seed " << seed;
        if (!std::isnan(value)) {
            EXPECT_NEAR(static_cast<double>(figures.iValue), value, 1e-5 * value)
                << "seed " << seed;
        }
    }
}

TEST(DesignFigures, ADependentDesignIsSingular) {
    const ExchangeModel model(ToMatrix(Expanded(Grid(2, 3), Model::Linear)), 0);
    DOpt::ExchangeFigures figures;
    EXPECT_EQ(DOpt::ComputeFigures(model, std::vector<int>{0, 1, 2, 1}, nullptr, figures),
              DOpt::Singular);
}

TEST(DesignFigures, ACoarseConditionHasNoIValue) {
    // Singular values 1 and 2^-10: their squares' ratio is above 100000, their own is below.
    const ExchangeModel model({{1, 0x1p-10F}, {1, -0x1p-10F}}, 0);
    DOpt::ExchangeFigures figures;
    ASSERT_EQ(DOpt::ComputeFigures(model, std::vector<int>{0, 1}, nullptr, figures), DOpt::Success);
    EXPECT_NEAR(figures.conditionNumber, 1024, 1e-2);
    EXPECT_TRUE(std::isnan(figures.iValue));
}

}  // namespace
