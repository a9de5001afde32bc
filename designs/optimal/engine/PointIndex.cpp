#include "designs/optimal/engine/PointIndex.h"

#include <algorithm>
#include <cmath>

namespace DOpt {

namespace {

constexpr std::size_t cFirstBuckets = 256;  // a power of 2, as every later number of buckets
// Wide cells make a second look-up rare, narrow ones hold few points.
constexpr double cCellsPerReach = 16;
// Projections are sums of products in double; this covers their rounding many times over.
constexpr double cRounding = 1e-12;

// Weights from 1/2 to 1 by the fractional parts of multiples of irrational numbers: no two points
// of a regular grid fall on one projection because of equal or rationally related weights.
double Weight(std::size_t projection, std::size_t coordinate) {
    constexpr std::array<double, 2> cIrrational = {0.61803398874989485, 0.41421356237309505};
    const double multiple = cIrrational[projection] * static_cast<double>(coordinate + 1);
    return 0.5 + 0.5 * (multiple - std::floor(multiple));
}

std::uint64_t Mix(std::uint64_t value) {
    value ^= value >> 33;
    value *= 0xff51afd7ed558ccdULL;
    value ^= value >> 33;
    value *= 0xc4ceb9fe1a85ec53ULL;
    return value ^ (value >> 33);
}

}  // namespace

PointIndex::PointIndex(int width, float tolerance)
    : tolerance_(tolerance), buckets_(cFirstBuckets, -1) {
    const auto coordinates = static_cast<std::size_t>(width);
    double sum = 0;
    for (std::size_t projection = 0; projection < cProjections; ++projection) {
        double projectionSum = 0;
        for (std::size_t i = 0; i < coordinates; ++i) {
            // Alternating signs keep the projections of a mixture, whose values add up, apart.
            const double sign = projection == 1 && i % 2 == 1 ? -1.0 : 1.0;
            weights_.push_back(sign * Weight(projection, i));
            projectionSum += std::abs(weights_.back());
        }
        sum = std::max(sum, projectionSum);
    }
    // Float differences are rounded: the tolerance passes a hair more than itself.
    reach_ = static_cast<double>(tolerance) * 1.0001 * sum;
    cellWidth_ = std::max(reach_ * cCellsPerReach, 1e-9);
}

std::array<double, PointIndex::cProjections> PointIndex::Project(
    std::span<const float> point) const {
    std::array<double, cProjections> result{};
    const double* weight = weights_.data();
    for (double& value : result) {
        for (const float coordinate : point) {
            value += *weight++ * static_cast<double>(coordinate);
        }
    }
    return result;
}

PointIndex::Cell PointIndex::CellOf(std::span<const float> point) const {
    const auto projected = Project(point);
    Cell cell;
    for (std::size_t i = 0; i < cell.size(); ++i) {
        cell[i] = static_cast<std::int64_t>(std::floor(projected[i] / cellWidth_));
    }
    return cell;
}

std::size_t PointIndex::Bucket(const Cell& cell) const {
    const std::uint64_t first = Mix(static_cast<std::uint64_t>(cell[0]));
    const std::uint64_t both = Mix(first ^ static_cast<std::uint64_t>(cell[1]));
    return static_cast<std::size_t>(both) & (buckets_.size() - 1);
}

void PointIndex::Link(int entry) {
    Entry& linked = entries_[static_cast<std::size_t>(entry)];
    int& head = buckets_[Bucket(linked.cell)];
    linked.next = head;
    head = entry;
}

void PointIndex::Grow() {
    buckets_.assign(buckets_.size() * 2, -1);
    for (std::size_t entry = 0; entry < entries_.size(); ++entry) {
        if (entries_[entry].row >= 0) {
            Link(static_cast<int>(entry));
        }
    }
}

void PointIndex::Add(const PointTable& points, int row) {
    if (entries_.size() >= buckets_.size()) {
        Grow();
    }
    entries_.push_back({CellOf(points.Row(row)), row, -1});
    Link(static_cast<int>(entries_.size()) - 1);
}

void PointIndex::Remove(const PointTable& points, int row) {
    int* link = &buckets_[Bucket(CellOf(points.Row(row)))];
    while (*link >= 0) {
        Entry& entry = entries_[static_cast<std::size_t>(*link)];
        if (entry.row == row) {
            entry.row = -1;
            *link = entry.next;
            return;
        }
        link = &entry.next;
    }
}

bool PointIndex::HasNear(const PointTable& points, std::span<const float> point) const {
    const auto projected = Project(point);
    Cell first;
    Cell last;
    for (std::size_t i = 0; i < first.size(); ++i) {
        const double reach = reach_ + cRounding * (1 + std::abs(projected[i]));
        first[i] = static_cast<std::int64_t>(std::floor((projected[i] - reach) / cellWidth_));
        last[i] = static_cast<std::int64_t>(std::floor((projected[i] + reach) / cellWidth_));
    }
    Cell cell;
    for (cell[0] = first[0]; cell[0] <= last[0]; ++cell[0]) {
        for (cell[1] = first[1]; cell[1] <= last[1]; ++cell[1]) {
            for (int at = buckets_[Bucket(cell)]; at >= 0;) {
                const Entry& entry = entries_[static_cast<std::size_t>(at)];
                if (entry.cell == cell && IsNear(points.Row(entry.row), point, tolerance_)) {
                    return true;
                }
                at = entry.next;
            }
        }
    }
    return false;
}

bool PointIndex::IsNear(std::span<const float> a, std::span<const float> b, float tolerance) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::abs(a[i] - b[i]) > tolerance) {
            return false;
        }
    }
    return true;
}

}  // namespace DOpt
