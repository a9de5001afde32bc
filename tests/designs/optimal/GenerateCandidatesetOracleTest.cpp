#include "designs/optimal/GenerateCandidateset.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "tests/designs/optimal/CandidateCases.h"
#include "tests/oracles/SubsetVertices.h"

namespace {

using CandidateCases::AtMost;
using CandidateCases::Candidates;
using CandidateCases::Generate;
using CandidateCases::MessageOf;
using CandidateCases::Request;
using CandidateCases::Sum;
using NCDOE::Constraint;

TEST(GenerateCandidateset, PointsAtALimitHaveExactlyTheLimit) {
    std::mt19937 engine(17);
    std::uniform_real_distribution<double> uniform(0, 1);
    for (int round = 0; round < 100; ++round) {
        TestFactors factors;
        std::vector<float> limits;
        for (int i = 0; i < 4; ++i) {
            const double scale = std::pow(10, 10 * uniform(engine) - 5);
            const auto low = static_cast<float>(scale * (uniform(engine) - 0.5));
            const auto high = low + static_cast<float>(scale * (0.1 + uniform(engine)));
            factors.Quantitative(low, high);
            limits.insert(limits.end(), {low, high});
        }
        Request request;
        request.process = EModel::Quadratic;
        request.constraints = {
            AtMost({{0, 1.0 / (static_cast<double>(limits[1]) - limits[0])},
                    {1, 1.0 / (static_cast<double>(limits[3]) - limits[2])}},
                   1.4 + limits[0] / (static_cast<double>(limits[1]) - limits[0]) +
                       limits[2] / (static_cast<double>(limits[3]) - limits[2]))};
        const Candidates made = Generate(factors, request);
        EXPECT_EQ(made.counts.ExtVert, 20) << "round " << round;
        for (int row = 1; row <= made.rows.SizeRows(); ++row) {
            for (std::size_t i = 0; i < 4; ++i) {
                const float value = made.rows(row, static_cast<int>(i) + 1);
                const float low = limits[2 * i];
                const float high = limits[2 * i + 1];
                EXPECT_GE(value, low);
                EXPECT_LE(value, high);
                const float near = 1e-4F * (high - low);
                EXPECT_TRUE(value == low || value - low > near) << "round " << round;
                EXPECT_TRUE(value == high || high - value > near) << "round " << round;
            }
        }
    }
}

// All subsets of constraints, solved in the factors' own units relative to their ranges.
TEST(GenerateCandidateset, VerticesAreRightAtEveryMagnitude) {
    int compared = 0;
    for (unsigned seed = 1; seed <= 240; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        std::uniform_real_distribution<double> uniform(-1, 1);
        const int n = 3 + static_cast<int>(seed % 4);
        const double scale = std::pow(10.0, static_cast<int>(seed % 12) - 6);  // 1e-6 to 1e5
        TestFactors factors;
        for (int i = 0; i < n; ++i) {
            factors.Quantitative(static_cast<float>(scale), static_cast<float>(3 * scale));
        }
        // In units u from 0 to 1: x = scale * (1 + 2 u).
        SubsetVertices::Matrix rows;
        for (int i = 0; i < n; ++i) {
            SubsetVertices::Vector row(static_cast<std::size_t>(n) + 1, 0.0);
            row[static_cast<std::size_t>(i)] = 1;
            rows.push_back(row);
            row[static_cast<std::size_t>(i)] = -1;
            row.back() = 1;
            rows.push_back(row);
        }
        Request request;
        for (unsigned cut = 0; cut < 1 + seed % 2; ++cut) {
            SubsetVertices::Vector row;
            Constraint constraint;
            double value = 0;
            for (int i = 0; i < n; ++i) {
                const double a = uniform(engine);
                row.push_back(a);
                constraint.terms.push_back({i, a / (2 * scale)});
                value += a * (0.5 + 0.3 * uniform(engine));
            }
            row.push_back(-value);
            rows.push_back(row);
            for (int i = 0; i < n; ++i) {
                value += row[static_cast<std::size_t>(i)] * 0.5;
            }
            constraint.value = value;
            request.constraints.push_back(constraint);
        }
        const auto truth = SubsetVertices::Find(rows, static_cast<std::size_t>(n), nullptr, 3e-5);
        if (truth.empty()) {
            EXPECT_NE(MessageOf(factors, request).find("inconsistent"), std::string::npos);
            continue;
        }
        const Candidates made = Generate(factors, request);
        ++compared;
        EXPECT_EQ(made.counts.ExtVert, static_cast<int>(truth.size()));
        for (int row = 1; row <= made.counts.ExtVert; ++row) {
            SubsetVertices::Vector units;
            for (int i = 1; i <= n; ++i) {
                units.push_back((static_cast<double>(made.rows(row, i)) / scale - 1) / 2);
            }
            EXPECT_TRUE(SubsetVertices::Contains(truth, units, 1e-4)) << "row " << row;
        }
    }
    EXPECT_GT(compared, 200);
}

TEST(GenerateCandidateset, MixtureVerticesAreThoseOfAllSubsets) {
    int compared = 0;
    for (unsigned seed = 1; seed <= 150; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        std::uniform_real_distribution<double> uniform(0, 1);
        const int q = 3 + static_cast<int>(seed % 4);
        TestFactors factors;
        SubsetVertices::Matrix rows;
        for (int i = 0; i < q; ++i) {
            const auto low = static_cast<float>(0.7 * uniform(engine) / q);
            const auto high = static_cast<float>((1.1 + 2 * uniform(engine)) / q);
            factors.Formulation(low, high);
            SubsetVertices::Vector row(static_cast<std::size_t>(q) + 1, 0.0);
            row[static_cast<std::size_t>(i)] = 1;
            row.back() = -static_cast<double>(low);
            rows.push_back(row);
            row[static_cast<std::size_t>(i)] = -1;
            row.back() = static_cast<double>(high);
            rows.push_back(row);
        }
        const double total = 1;
        const auto truth = SubsetVertices::Find(rows, static_cast<std::size_t>(q), &total, 2e-5);
        ASSERT_FALSE(truth.empty());
        const Candidates made = Generate(factors, {});
        ++compared;
        EXPECT_EQ(made.counts.ExtVert, static_cast<int>(truth.size()));
        for (int row = 1; row <= made.counts.ExtVert; ++row) {
            const auto span = made.rows.RowSpan(row);
            EXPECT_TRUE(SubsetVertices::Contains(truth, {span.begin(), span.end()}, 5e-5));
        }
    }
    EXPECT_EQ(compared, 150);
}

// Every kind of model, block, level factor and constraint against one another.
TEST(GenerateCandidateset, CountsAreTheRowsByKindInCrossedCases) {
    int cases = 0;
    for (int processes = 0; processes <= 5; ++processes) {
        for (int mixtures = 0; mixtures <= 5; mixtures += mixtures == 0 ? 2 : 1) {
            for (const int model : {1, 3, 4, 5}) {
                for (int levels = 0; levels <= 1; ++levels) {
                    if (processes + mixtures == 0) {
                        continue;
                    }
                    TestFactors factors;
                    for (int i = 0; i < mixtures; ++i) {
                        factors.Formulation(0, i % 2 == 0 ? 1 : 0.7F);
                    }
                    factors.Quantitatives(processes);
                    if (levels == 1) {
                        factors.MultilevelOf(3).Qualitative(2);
                    }
                    Request request;
                    request.process =
                        model == 4 ? EModel::Interaction : static_cast<EModel::Type>(model);
                    request.mixture = static_cast<EModel::Type>(model);
                    request.usePotentialTerms = cases % 2 == 0;
                    if (processes > 1 && cases % 3 == 0) {
                        request.constraints = {AtMost({{mixtures, 1}, {mixtures + 1, 1}}, 1.3)};
                    }
                    const Candidates made = Generate(factors, request);
                    ASSERT_EQ(Sum(made.counts), made.rows.SizeRows())
                        << processes << " process, " << mixtures << " mixture factors, model "
                        << model << ", levels " << levels;
                    ++cases;
                }
            }
        }
    }
    EXPECT_EQ(cases, (6 * 5 - 1) * 4 * 2);
}

TEST(GenerateCandidateset, EveryCandidateKeepsRangesAndConstraints) {
    for (unsigned seed = 1; seed <= 120; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 engine(seed);
        std::uniform_real_distribution<double> uniform(-1, 1);
        const int n = 2 + static_cast<int>(seed % 4);
        TestFactors factors;
        factors.Formulation(0.1F, 0.6F).Formulation(0.05F, 0.7F).Formulation(0, 0.5F);
        for (int i = 0; i < n; ++i) {
            factors.Quantitative(-2, 3);
        }
        if (seed % 3 == 0) {
            factors.Transformed(TransformStruct(TransformStruct::Exp));
        }
        Request request;
        request.process = seed % 2 == 0 ? EModel::Quadratic : EModel::Linear;
        request.mixture = seed % 3 == 0 ? EModel::Cubic : EModel::Quadratic;
        Constraint process;
        double middle = 0;
        for (int i = 0; i < n; ++i) {
            process.terms.push_back({3 + i, uniform(engine)});
            middle += 0.5 * process.terms.back().coefficient;
        }
        process.value = middle + 0.2 * uniform(engine);
        request.constraints = {process, AtMost({{0, 1}, {2, 0.5}}, 0.6)};
        const Candidates made = Generate(factors, request);
        for (int row = 1; row <= made.rows.SizeRows(); ++row) {
            const auto values = made.rows.RowSpan(row);
            double total = 0;
            for (std::size_t i = 0; i < values.size(); ++i) {
                const auto settings = factors.GetFactorSettings(static_cast<int>(i));
                ASSERT_GE(values[i], settings[0]);
                ASSERT_LE(values[i], settings[1]);
                total += i < 3 ? static_cast<double>(values[i]) : 0;
            }
            ASSERT_NEAR(total, 1, 2e-5) << "row " << row;
            for (const Constraint& constraint : request.constraints) {
                double sum = 0;
                for (const auto& term : constraint.terms) {
                    sum += term.coefficient *
                           static_cast<double>(values[static_cast<std::size_t>(term.factor)]);
                }
                const double slack =
                    constraint.greaterOrEqual ? sum - constraint.value : constraint.value - sum;
                ASSERT_GE(slack, -1e-4) << "row " << row;
            }
        }
    }
}

}  // namespace
