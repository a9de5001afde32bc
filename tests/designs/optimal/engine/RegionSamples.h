#pragma once

#include <random>

#include "designs/optimal/engine/PointTable.h"
#include "tests/oracles/LiteralRegion.h"

/// Regions for the tests of the kernels: cubes and simplices with random cuts.
namespace RegionSamples {

struct Sample {
    LiteralRegion::State start;
    LiteralRegion::Rows cuts;
};

inline DOpt::PointTable ToTable(const LiteralRegion::Rows& rows, int width) {
    DOpt::PointTable table(width);
    for (const LiteralRegion::Row& row : rows) {
        table.Append(row);
    }
    return table;
}

inline LiteralRegion::Rows ToRows(const DOpt::PointTable& table) {
    LiteralRegion::Rows rows;
    for (int row = 0; row < table.Size(); ++row) {
        rows.emplace_back(table.Row(row).begin(), table.Row(row).end());
    }
    return rows;
}

/// The cube from 0 to 1, bounded by x >= 0 and 1 - x >= 0 in turn.
inline Sample Cube(int n) {
    Sample sample;
    const auto variables = static_cast<std::size_t>(n);
    for (std::size_t i = 0; i < variables; ++i) {
        LiteralRegion::Row low(variables + 1, 0.0F);
        LiteralRegion::Row high(variables + 1, 0.0F);
        low[i] = 1;
        high[i] = -1;
        high.back() = 1;
        sample.start.constraints.push_back(low);
        sample.start.constraints.push_back(high);
    }
    for (unsigned vertex = 0; vertex < 1U << n; ++vertex) {
        LiteralRegion::Row point;
        for (int i = 0; i < n; ++i) {
            point.push_back(static_cast<float>(vertex >> i & 1U));
        }
        sample.start.vertices.push_back(point);
    }
    return sample;
}

inline Sample Simplex(int n) {
    Sample sample;
    const auto variables = static_cast<std::size_t>(n);
    sample.start.hasMixture = true;
    for (std::size_t i = 0; i < variables; ++i) {
        LiteralRegion::Row low(variables + 1, 0.0F);
        low[i] = 1;
        sample.start.constraints.push_back(low);
        LiteralRegion::Row point(variables, 0.0F);
        point[i] = 1;
        sample.start.vertices.push_back(point);
    }
    return sample;
}

inline void AddLimits(Sample& sample, std::size_t variable, float low, float high) {
    LiteralRegion::Row row(sample.start.vertices.front().size() + 1, 0.0F);
    row[variable] = 1;
    row.back() = -low;
    sample.cuts.push_back(row);
    row[variable] = -1;
    row.back() = high;
    sample.cuts.push_back(row);
}

/// Planes through random points of the cube; with `corners` some pass through grid points, where
/// many constraints meet.
inline void AddCuts(Sample& sample, int count, bool corners, std::mt19937& engine) {
    std::uniform_real_distribution<float> uniform(-1, 1);
    const std::size_t variables = sample.start.vertices.front().size();
    for (int cut = 0; cut < count; ++cut) {
        LiteralRegion::Row row;
        double atPoint = 0;
        float largest = 0;
        for (std::size_t i = 0; i < variables; ++i) {
            const float drawn = uniform(engine);
            row.push_back(corners ? std::round(drawn * 1.4F) : drawn);
            const float place = 0.5F + 0.4F * uniform(engine);
            const float share = sample.start.hasMixture ? 1.0F / static_cast<float>(variables) : 1;
            atPoint += static_cast<double>(row.back() * (corners ? 0.5F : place) * share);
            largest = std::max(largest, std::fabs(row.back()));
        }
        row.push_back(static_cast<float>(-atPoint) + (corners ? 0.25F : 0.1F));
        if (largest > 0) {
            sample.cuts.push_back(row);
        }
    }
}

}  // namespace RegionSamples
