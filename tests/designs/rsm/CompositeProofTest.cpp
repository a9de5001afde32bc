// Moments, rotatability, orthogonality and orthogonal blocks of the central composite designs,
// computed from the built matrices. Box and Hunter (1957), "Multi-factor experimental designs for
// exploring response surfaces".

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include "frame/Factors.h"
#include "tests/support/CompositeRequest.h"
#include "tests/support/SecondOrder.h"
#include "tests/support/TwoLevelRuns.h"

namespace {

using Matrix = NCDataMatrix<float>;
using SecondOrder::Moment;

constexpr int cFewest = 2;
constexpr int cMost = 21;
// Has the star distances of 512 factorial runs, but 256 of them.
constexpr int cOddOne = 17;
// Star distances are single precision numbers.
constexpr double cFloatRounding = 1e-6;

// Covariance of two squares: 0 where the squares are uncorrelated.
long double SquareCovariance(const Matrix& design) {
    const long double runs = design.SizeRows();
    const long double square = Moment(design, {1, 1}) / runs;
    return Moment(design, {1, 1, 2, 2}) / runs - square * square;
}

// What is 0 for a rotatable design: the fourth moment against three times the mixed one.
long double RotatabilityGap(const Matrix& design) {
    return Moment(design, {1, 1, 1, 1}) - 3 * Moment(design, {1, 1, 2, 2});
}

// The largest moment with an odd exponent, up to order four.
long double LargestOddMoment(const Matrix& design, int factors) {
    long double largest = 0;
    const auto note = [&](const std::vector<int>& columns) {
        largest = std::max(largest, std::abs(Moment(design, columns)));
    };
    for (int a = 1; a <= factors; ++a) {
        note({a});
        note({a, a, a});
        for (int b = a + 1; b <= factors; ++b) {
            note({a, b});
            note({a, a, b});
            note({a, b, b});
            note({a, a, a, b});
            note({a, b, b, b});
            for (int c = b + 1; c <= factors; ++c) {
                note({a, b, c});
                note({a, a, b, c});
                note({a, b, b, c});
                note({a, b, c, c});
            }
        }
    }
    return largest;
}

// The runs of one block without the block column; block counts from 0.
Matrix BlockOf(const Matrix& design, int factors, int block) {
    Matrix runs;
    for (int row = 1; row <= design.SizeRows(); ++row) {
        if (design(row, factors + 1) == Factors::cFirstLevelCode + static_cast<float>(block)) {
            Matrix one(1, factors);
            for (int column = 1; column <= factors; ++column) {
                one(1, column, design(row, column));
            }
            runs.ConcatRows(one);
        }
    }
    return runs;
}

// How far blocks are from orthogonal to the linear and interaction terms.
long double LargestBlockSum(const Matrix& block, int factors) {
    long double largest = 0;
    for (int a = 1; a <= factors; ++a) {
        largest = std::max(largest, std::abs(Moment(block, {a})));
        for (int b = a + 1; b <= factors; ++b) {
            largest = std::max(largest, std::abs(Moment(block, {a, b})));
        }
    }
    return largest;
}

// How far blocks are from orthogonal to the square terms: a block's share of the sum of squares
// less its share of the runs.
long double LargestShareGap(const Matrix& design, int factors, int blocks) {
    long double largest = 0;
    const long double runs = design.SizeRows();
    for (int block = 0; block < blocks; ++block) {
        const Matrix part = BlockOf(design, factors, block);
        for (int a = 1; a <= factors; ++a) {
            const long double share = Moment(part, {a, a}) / Moment(design, {a, a});
            largest = std::max(largest, std::abs(share - part.SizeRows() / runs));
        }
    }
    return largest;
}

std::vector<CompositeRequest> LegalBlockings() {
    std::vector<CompositeRequest> requests;
    for (int factors = cFewest; factors <= cMost; ++factors) {
        const CompositeRequest plain{.factors = factors};
        const TestFactors described = plain.MakeFactors();
        for (const int blocks : plain.Builder().GetLegalBlocks(described, plain.Options(), false)) {
            if (blocks > 1) {
                requests.push_back({.factors = factors, .blocks = blocks});
            }
        }
    }
    return requests;
}

std::vector<long double> RandomDirection(int factors, std::mt19937& engine) {
    std::vector<long double> point;
    long double square = 0;
    for (int i = 0; i < factors; ++i) {
        point.push_back(static_cast<long double>(engine()) / 2147483648.0L - 1);
        square += point.back() * point.back();
    }
    for (long double& value : point) {
        value /= std::sqrt(square);
    }
    return point;
}

}  // namespace

TEST(CompositeProof, TheFactorialPartHasResolutionFive) {
    for (int factors = cFewest; factors <= cMost; ++factors) {
        const CompositeRequest request{.type = EDesign::CCF, .factors = factors};
        const TwoLevelRuns cube(request.Build(), request.CubeRuns(), factors, false);
        EXPECT_GE(cube.Resolution(std::min(factors, 4)), std::min(factors + 1, 5)) << request;
    }
}

TEST(CompositeProof, OddMomentsVanish) {
    for (const EDesign::Type type : {EDesign::CCF, EDesign::CCC, EDesign::CCO}) {
        for (int factors = cFewest; factors <= 12; ++factors) {
            const CompositeRequest request{.type = type, .factors = factors};
            EXPECT_EQ(LargestOddMoment(request.Build(), factors), 0) << request;
        }
    }
}

TEST(CompositeProof, OddMomentsOfLargeDesignsVanish) {
    for (const int factors : {17, 21}) {
        const CompositeRequest request{.factors = factors};
        EXPECT_EQ(LargestOddMoment(request.Build(), factors), 0) << request;
    }
}

TEST(CompositeProof, EvenMomentsAreThoseOfCubeAndStar) {
    for (const EDesign::Type type : {EDesign::CCF, EDesign::CCC, EDesign::CCO}) {
        for (int factors = cFewest; factors <= cMost; ++factors) {
            const CompositeRequest request{.type = type, .factors = factors};
            const Matrix design = request.Build();
            const long double cube = request.CubeRuns();
            const long double square =
                std::pow(static_cast<long double>(request.Options().GetStarDistance()), 2);
            for (int a = 1; a <= factors; ++a) {
                EXPECT_NEAR(static_cast<double>(Moment(design, {a, a})),
                            static_cast<double>(cube + 2 * square),
                            1e-9)
                    << request;
                EXPECT_NEAR(static_cast<double>(Moment(design, {a, a, a, a})),
                            static_cast<double>(cube + 2 * square * square),
                            1e-9)
                    << request;
            }
            EXPECT_EQ(Moment(design, {1, 1, factors, factors}), cube) << request;
        }
    }
}

TEST(CompositeProof, TheQuadraticModelHasFullRank) {
    for (const EDesign::Type type : {EDesign::CCF, EDesign::CCC, EDesign::CCO}) {
        for (int factors = cFewest; factors <= 9; ++factors) {
            const CompositeRequest request{.type = type, .factors = factors, .centrePoints = 1};
            EXPECT_TRUE(
                SecondOrder::HasFullRank(SecondOrder::Information(request.Build(), factors)))
                << request;
        }
    }
}

TEST(CompositeProof, TheRotatableDistanceIsTheFourthRootOfTheFactorialRuns) {
    for (int factors = cFewest; factors <= cMost; ++factors) {
        if (factors != cOddOne) {
            const CompositeRequest request{.factors = factors};
            EXPECT_NEAR(
                request.Options().GetStarDistance(), std::pow(request.CubeRuns(), 0.25), 5e-4)
                << request;
        }
    }
}

TEST(CompositeProof, CircumscribedDesignsAreRotatableToTheDecimalsOfTheirDistance) {
    for (int factors = cFewest; factors <= cMost; ++factors) {
        if (factors != cOddOne) {
            const CompositeRequest request{.factors = factors};
            // The distance is rounded to 0.0005; its fourth power stands twice in the moment.
            const double distance = request.Options().GetStarDistance();
            EXPECT_LE(std::abs(RotatabilityGap(request.Build())),
                      2 * 4 * std::pow(distance, 3) * 5.1e-4)
                << request;
        }
    }
}

TEST(CompositeProof, SeventeenFactorsStandAtTheDistanceOfTwiceTheirFactorialRuns) {
    const CompositeRequest request{.factors = cOddOne};
    EXPECT_EQ(request.CubeRuns(), 256);
    EXPECT_FLOAT_EQ(request.Options().GetStarDistance(), 4.757F);
    EXPECT_GT(RotatabilityGap(request.Build()), 500);
}

// What rotatability means: the variance of the prediction is the same in all directions.
TEST(CompositeProof, PredictionVarianceOfRotatableDesignsDependsOnTheDistanceOnly) {
    std::mt19937 engine(20);
    for (int factors = cFewest; factors <= 5; ++factors) {
        CompositeRequest request{.factors = factors};
        request.starDistance = static_cast<float>(std::pow(request.CubeRuns(), 0.25));
        const oracles::Table inverse =
            oracles::GaussJordanInverse(SecondOrder::Information(request.Build(), factors));
        std::vector<long double> axis(static_cast<std::size_t>(factors), 0);
        axis[0] = 1;
        const long double expected = SecondOrder::PredictionVariance(inverse, axis);
        for (int i = 0; i < 20; ++i) {
            const auto point = RandomDirection(factors, engine);
            EXPECT_NEAR(static_cast<double>(SecondOrder::PredictionVariance(inverse, point)),
                        static_cast<double>(expected),
                        cFloatRounding)
                << request << ", direction " << i << " of seed 20";
        }
    }
}

TEST(CompositeProof, PredictionVarianceOfFaceCentredDesignsDependsOnTheDirection) {
    const CompositeRequest request{.type = EDesign::CCF, .factors = 2};
    const oracles::Table inverse =
        oracles::GaussJordanInverse(SecondOrder::Information(request.Build(), 2));
    const long double half = std::numbers::sqrt2_v<long double> / 2;
    EXPECT_GT(std::abs(SecondOrder::PredictionVariance(inverse, {1, 0}) -
                       SecondOrder::PredictionVariance(inverse, {half, half})),
              0.01);
}

TEST(CompositeProof, SquaresOfOrthogonalDesignsAreUncorrelated) {
    for (int factors = cFewest; factors <= cMost; ++factors) {
        for (int centrePoints = 1; centrePoints <= 6 && factors != cOddOne; ++centrePoints) {
            const CompositeRequest request{
                .type = EDesign::CCO, .factors = factors, .centrePoints = centrePoints};
            EXPECT_NEAR(static_cast<double>(SquareCovariance(request.Build())), 0, cFloatRounding)
                << request;
        }
    }
}

TEST(CompositeProof, SquaresOfSeventeenFactorsAreCorrelated) {
    const CompositeRequest request{.type = EDesign::CCO, .factors = cOddOne};
    EXPECT_GT(std::abs(SquareCovariance(request.Build())), 1e-4);
}

TEST(CompositeProof, SquaresOfFaceCentredDesignsAreCorrelated) {
    const CompositeRequest request{.type = EDesign::CCF, .factors = 3};
    EXPECT_GT(std::abs(SquareCovariance(request.Build())), 0.01);
}

// One centre point: the design of Box and Wilson (1951) for two, three and four factors.
TEST(CompositeProof, OrthogonalDistancesAreThePublishedOnes) {
    const auto distance = [](int factors) {
        return CompositeRequest{.type = EDesign::CCO, .factors = factors, .centrePoints = 1}
            .Options()
            .GetStarDistance();
    };
    EXPECT_NEAR(distance(2), 1.0, 1e-6);
    EXPECT_NEAR(distance(3), 1.215, 5e-4);
    EXPECT_NEAR(distance(4), 1.414, 5e-4);
    EXPECT_NEAR(distance(5), 1.547, 5e-4);
}

TEST(CompositeProof, BlocksAreLegalWhereTheFactorialPartKeepsResolutionFive) {
    std::vector<std::vector<int>> offered(6);
    for (const CompositeRequest& request : LegalBlockings()) {
        const auto index = request.blocks == 9 ? 5U : static_cast<unsigned>(request.blocks);
        offered[index].push_back(request.factors);
    }
    EXPECT_EQ(offered[2].size(), 20U);
    EXPECT_THAT(offered[3],
                testing::ElementsAre(4, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 18, 19, 20, 21));
}

TEST(CompositeProof, FiveAndNineBlocksAreLegalForTheseFactors) {
    std::vector<int> five;
    std::vector<int> nine;
    for (const CompositeRequest& request : LegalBlockings()) {
        if (request.blocks == 5) {
            five.push_back(request.factors);
        } else if (request.blocks == 9) {
            nine.push_back(request.factors);
        }
    }
    EXPECT_THAT(five, testing::ElementsAre(7, 8, 12, 13, 14, 18));
    EXPECT_THAT(nine, testing::ElementsAre(7, 12, 13, 14, 18));
}

TEST(CompositeProof, BlockedFactorialPartsKeepResolutionFive) {
    for (const CompositeRequest& request : LegalBlockings()) {
        const TwoLevelRuns cube(request.Build(), request.CubeRuns(), request.factors, true);
        EXPECT_GE(cube.Resolution(std::min(request.factors, 4)), std::min(request.factors + 1, 5))
            << request;
        EXPECT_EQ(cube.BlockCount(), request.blocks - 1) << request;
    }
}

// The conditions of Box and Hunter, first: within a block, terms of first order and interactions
// sum to zero.
TEST(CompositeProof, BlocksAreOrthogonalToMainEffectsAndInteractions) {
    for (const CompositeRequest& request : LegalBlockings()) {
        const Matrix design = request.Build();
        for (int block = 0; block < request.blocks; ++block) {
            EXPECT_EQ(LargestBlockSum(BlockOf(design, request.factors, block), request.factors), 0)
                << request << ", block " << block;
        }
    }
}

// And second: every block holds its share of the squares. It does so exactly where the centre
// points divide evenly, or all blocks but the star block have one more.
TEST(CompositeProof, BlocksAreOrthogonalToSquaresForEvenCentrePoints) {
    for (CompositeRequest request : LegalBlockings()) {
        for (const int centrePoints :
             {request.blocks - 1, request.blocks, 2 * request.blocks - 1, 2 * request.blocks}) {
            request.centrePoints = centrePoints;
            EXPECT_NEAR(static_cast<double>(
                            LargestShareGap(request.Build(), request.factors, request.blocks)),
                        0,
                        cFloatRounding)
                << request;
        }
    }
}

// With a rest of one to b - 2 centre points some factorial blocks are larger than others, so that
// no star distance could make them orthogonal.
TEST(CompositeProof, BlocksAreNotOrthogonalToSquaresForOtherCentrePoints) {
    for (CompositeRequest request : LegalBlockings()) {
        for (int rest = 1; rest <= request.blocks - 2; ++rest) {
            request.centrePoints = request.blocks + rest;
            EXPECT_GT(LargestShareGap(request.Build(), request.factors, request.blocks), 1e-5L)
                << request;
        }
    }
}

// Box and Hunter (1957): distances that block orthogonally, in blocks of 7 and 7, of 6, 6 and 8,
// and of 10, 10 and 10 runs.
TEST(CompositeProof, OrthogonallyBlockedDistancesAreThePublishedOnes) {
    const auto distance = [](int factors, int blocks, int centrePoints) {
        return CompositeRequest{.factors = factors, .blocks = blocks, .centrePoints = centrePoints}
            .Options()
            .GetStarDistance();
    };
    EXPECT_NEAR(distance(2, 2, 6), 1.4142, 5e-5);
    EXPECT_NEAR(distance(3, 3, 6), 1.6330, 5e-5);
    EXPECT_NEAR(distance(4, 3, 6), 2.0, 1e-6);
}

// In three blocks of ten runs each, four factors have both (Box and Hunter, 1957).
TEST(CompositeProof, FourFactorsInThreeBlocksAreRotatableAndOrthogonallyBlocked) {
    const CompositeRequest request{.factors = 4, .blocks = 3, .centrePoints = 6};
    const Matrix design = request.Build();
    EXPECT_EQ(RotatabilityGap(design), 0);
    EXPECT_NEAR(static_cast<double>(LargestShareGap(design, 4, 3)), 0, cFloatRounding);
}

TEST(CompositeProof, TheQuadraticModelHasNoFullRankWithoutStarRuns) {
    Matrix design = CompositeRequest{.type = EDesign::CCF, .factors = 4}.Build();
    design.RemoveRows(17, 8);
    EXPECT_FALSE(SecondOrder::HasFullRank(SecondOrder::Information(design, 4)));
}

TEST(CompositeProof, AFlippedCellBreaksTheOddMoments) {
    Matrix design = CompositeRequest{.factors = 5}.Build();
    design(3, 2, -design(3, 2));
    EXPECT_GE(LargestOddMoment(design, 5), 2);
}

TEST(CompositeProof, AMovedStarRunCorrelatesTheSquares) {
    Matrix design = CompositeRequest{.type = EDesign::CCO, .factors = 3}.Build();
    design(9, 1, design(9, 1) - 0.01F);
    EXPECT_GT(std::abs(SquareCovariance(design)), 100 * cFloatRounding);
}

TEST(CompositeProof, ARunInAnotherBlockBreaksTheBlocks) {
    Matrix design = CompositeRequest{.factors = 4, .blocks = 3, .centrePoints = 6}.Build();
    design(1, 5, design(1, 5) == 65 ? 66 : 65);
    EXPECT_GT(LargestShareGap(design, 4, 3), 0.005L);
    EXPECT_GT(LargestBlockSum(BlockOf(design, 4, 0), 4), 0.5L);
}
