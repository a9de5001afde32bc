#include "designs/optimal/engine/DOptVertexGen.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "designs/optimal/engine/AdjacentPairs.h"
#include "designs/optimal/engine/PointIndex.h"

namespace DOpt {

namespace {

// How often a long cut asks whether to go on, in vertices outside the plane.
constexpr std::size_t cStopInterval = 64;

// New vertices lie in the cutting plane, up to rounding. A vertex whose slack is beyond this band
// cannot be a duplicate of one of them, so that only the vertices within the band are compared.
float BandOfDuplicates(std::span<const float> constraint,
                       const PointTable& vertices,
                       float tolerance) {
    float largest = 1;
    for (int vertex = 0; vertex < vertices.Size(); ++vertex) {
        for (const float coordinate : vertices.Row(vertex)) {
            largest = std::max(largest, std::abs(coordinate));
        }
    }
    float sum = 0;
    for (const float coefficient : constraint.first(constraint.size() - 1)) {
        sum += std::abs(coefficient);
    }
    const float scale = sum * largest + std::abs(constraint.back());
    const float rounding =
        static_cast<float>(8 * constraint.size()) * std::numeric_limits<float>::epsilon() * scale;
    return 4 * tolerance * sum + rounding;
}

// The point where the edge from a to b meets a plane with the slacks there.
void PointOnEdge(std::span<const float> a,
                 std::span<const float> b,
                 float slackA,
                 float slackB,
                 std::span<float> point) {
    const float share = slackA / (slackA - slackB);
    const double toB = share;
    for (std::size_t i = 0; i < point.size(); ++i) {
        point[i] = static_cast<float>(static_cast<double>(a[i]) * (1.0 - toB) +
                                      static_cast<double>(b[i]) * toB);
    }
}

// Finds duplicates of new vertices among the vertices in the band and the new ones before.
class DuplicateTest {
  public:
    DuplicateTest(const PointTable& vertices,
                  const std::vector<float>& slack,
                  float band,
                  float tolerance)
        : vertices_(vertices),
          index_(vertices.Width(), tolerance),
          band_(band),
          tolerance_(tolerance) {
        for (int vertex = 0; vertex < vertices.Size(); ++vertex) {
            if (std::abs(slack[static_cast<std::size_t>(vertex)]) <= band) {
                index_.Add(vertices, vertex);
            }
        }
    }

    [[nodiscard]] bool IsDuplicate(std::span<const float> point, float slack) const {
        if (std::abs(slack) <= band_ / 2) {
            return index_.HasNear(vertices_, point);
        }
        for (int vertex = 0; vertex < vertices_.Size(); ++vertex) {
            if (PointIndex::IsNear(vertices_.Row(vertex), point, tolerance_)) {
                return true;
            }
        }
        return false;
    }
    void Add(int vertex) { index_.Add(vertices_, vertex); }

  private:
    const PointTable& vertices_;
    PointIndex index_;
    float band_;
    float tolerance_;
};

// The listed bits of each row, moved together to the front.
BitTable Compacted(const BitTable& table, int rows, const std::vector<int>& kept, int oldBits) {
    std::vector<int> target(static_cast<std::size_t>(oldBits), -1);
    for (std::size_t i = 0; i < kept.size(); ++i) {
        target[static_cast<std::size_t>(kept[i])] = static_cast<int>(i);
    }
    BitTable result(static_cast<int>(kept.size()), rows);
    for (int row = 0; row < rows; ++row) {
        ForEachBit(table.Row(row), [&](int bit) {
            if (target[static_cast<std::size_t>(bit)] >= 0) {
                result.Set(row, target[static_cast<std::size_t>(bit)]);
            }
        });
    }
    return result;
}

}  // namespace

std::vector<int> ConstraintsToKeep(const BitTable& tight,
                                   const BitTable& notAbove,
                                   int vertices,
                                   int constraints) {
    // Row a: the constraints that are not above the tolerance wherever a is.
    BitTable common(constraints, constraints);
    std::vector<bool> seen(static_cast<std::size_t>(constraints), false);
    std::vector<bool> touches(static_cast<std::size_t>(constraints), false);
    for (int vertex = 0; vertex < vertices; ++vertex) {
        const auto here = notAbove.Row(vertex);
        ForEachBit(here, [&](int constraint) {
            const auto row = common.Row(constraint);
            const bool first = !seen[static_cast<std::size_t>(constraint)];
            for (std::size_t word = 0; word < row.size(); ++word) {
                row[word] = first ? here[word] : row[word] & here[word];
            }
            seen[static_cast<std::size_t>(constraint)] = true;
        });
        ForEachBit(tight.Row(vertex),
                   [&](int constraint) { touches[static_cast<std::size_t>(constraint)] = true; });
    }
    std::vector<int> kept;
    for (int constraint = 0; constraint < constraints; ++constraint) {
        // Its own bit is always there. Deliberate: two constraints tight at the same vertices drop
        // each other.
        if (touches[static_cast<std::size_t>(constraint)] &&
            !HasAtLeast(common.Row(constraint), 2)) {
            kept.push_back(constraint);
        }
    }
    return kept;
}

DOptVertexGen::DOptVertexGen(PointTable vertices,
                             PointTable constraints,
                             bool hasMixture,
                             VertexTolerances tolerances,
                             int maxVertices)
    : vertices_(std::move(vertices)),
      constraints_(std::move(constraints)),
      tight_(constraints_.Size()),
      notAbove_(constraints_.Size()),
      tolerances_(tolerances),
      shared_(vertices_.Width() - (hasMixture ? 1 : 0) - 1),
      maxVertices_(maxVertices) {
    for (int vertex = 0; vertex < vertices_.Size(); ++vertex) {
        AppendFlags(vertex);
    }
}

float DOptVertexGen::Slack(std::span<const float> constraint, std::span<const float> point) {
    double sum = 0;
    for (std::size_t i = 0; i < point.size(); ++i) {
        sum += static_cast<double>(constraint[i]) * static_cast<double>(point[i]);
    }
    return static_cast<float>(sum + static_cast<double>(constraint[point.size()]));
}

void DOptVertexGen::SetFlags(int vertex, int constraint, float slack) {
    if (std::abs(slack) < tolerances_.tight) {
        tight_.Set(vertex, constraint);
    }
    if (std::abs(slack) <= tolerances_.tight) {
        notAbove_.Set(vertex, constraint);
    }
    if (slack < -tolerances_.tight) {
        violates_[static_cast<std::size_t>(vertex)] = true;
    }
}

void DOptVertexGen::AppendFlags(int vertex) {
    tight_.AppendRow();
    notAbove_.AppendRow();
    violates_.push_back(false);
    for (int constraint = 0; constraint < constraints_.Size(); ++constraint) {
        SetFlags(vertex, constraint, Slack(constraints_.Row(constraint), vertices_.Row(vertex)));
    }
}

Status DOptVertexGen::Cut(const PointTable& newConstraints, const StopTest& stop) {
    if (vertices_.Size() > maxVertices_) {
        return TooManyVertices;
    }
    Status status = DropRedundantConstraints();
    for (int i = 0; status == Success && i < newConstraints.Size(); ++i) {
        status = AddConstraint(newConstraints.Row(i), stop);
        const auto done = static_cast<float>(i + 1) / static_cast<float>(newConstraints.Size());
        if (status == Success && MustStop(stop, done)) {
            status = Stopped;
        }
    }
    return status;
}

DOptVertexGen::Sides DOptVertexGen::Classify(std::span<const float> constraint) const {
    Sides sides;
    sides.slack.reserve(static_cast<std::size_t>(vertices_.Size()));
    for (int vertex = 0; vertex < vertices_.Size(); ++vertex) {
        const float slack = Slack(constraint, vertices_.Row(vertex));
        sides.slack.push_back(slack);
        sides.hasNegative = sides.hasNegative || slack <= -tolerances_.tight;
        sides.hasPositive = sides.hasPositive || slack >= tolerances_.tight;
        if (slack < -tolerances_.tight) {
            sides.outside.push_back(vertex);
        }
        if (slack > tolerances_.tight) {
            sides.inside.push_back(vertex);
        }
    }
    return sides;
}

Status DOptVertexGen::AddConstraint(std::span<const float> constraint, const StopTest& stop) {
    Sides sides = Classify(constraint);
    if (!sides.hasNegative) {
        return Success;  // it does not cut
    }
    if (!sides.hasPositive) {
        return Inconsistent;
    }
    AppendConstraint(constraint, sides.slack);
    const Status status = MakeNewVertices(sides, constraint, stop);
    if (status != Success) {
        return status;
    }
    KeepInside(sides.slack);
    return DropRedundantConstraints();
}

void DOptVertexGen::AppendConstraint(std::span<const float> constraint,
                                     const std::vector<float>& slack) {
    const int number = constraints_.Size();
    constraints_.Append(constraint);
    tight_.Widen(number + 1, vertices_.Size());
    notAbove_.Widen(number + 1, vertices_.Size());
    for (int vertex = 0; vertex < vertices_.Size(); ++vertex) {
        SetFlags(vertex, number, slack[static_cast<std::size_t>(vertex)]);
    }
}

Status DOptVertexGen::MakeNewVertices(Sides& sides,
                                      std::span<const float> constraint,
                                      const StopTest& stop) {
    const float band = BandOfDuplicates(constraint, vertices_, tolerances_.duplicate);
    DuplicateTest duplicates(vertices_, sides.slack, band, tolerances_.duplicate);
    AdjacentPairs pairs(tight_, sides.inside, shared_, static_cast<int>(sides.outside.size()));
    std::vector<float> point(static_cast<std::size_t>(vertices_.Width()));
    for (std::size_t i = 0; i < sides.outside.size(); ++i) {
        if (i % cStopInterval == cStopInterval - 1 && MustStop(stop, cUnknownShare)) {
            return Stopped;
        }
        const int outside = sides.outside[i];
        for (const int inside : pairs.Of(outside)) {
            PointOnEdge(vertices_.Row(outside),
                        vertices_.Row(inside),
                        sides.slack[static_cast<std::size_t>(outside)],
                        sides.slack[static_cast<std::size_t>(inside)],
                        point);
            const float slack = Slack(constraint, point);
            if (duplicates.IsDuplicate(point, slack)) {
                continue;
            }
            if (vertices_.Size() >= maxVertices_) {
                return TooManyVertices;
            }
            vertices_.Append(point);
            AppendFlags(vertices_.Size() - 1);
            sides.slack.push_back(slack);
            duplicates.Add(vertices_.Size() - 1);
        }
    }
    return Success;
}

void DOptVertexGen::KeepInside(const std::vector<float>& slack) {
    int kept = 0;
    for (int vertex = 0; vertex < vertices_.Size(); ++vertex) {
        if (slack[static_cast<std::size_t>(vertex)] >= -tolerances_.tight) {
            vertices_.MoveRow(vertex, kept);
            tight_.MoveRow(vertex, kept);
            notAbove_.MoveRow(vertex, kept);
            violates_[static_cast<std::size_t>(kept)] = violates_[static_cast<std::size_t>(vertex)];
            ++kept;
        }
    }
    vertices_.Truncate(kept);
    tight_.Truncate(kept);
    notAbove_.Truncate(kept);
    violates_.resize(static_cast<std::size_t>(kept));
}

Status DOptVertexGen::DropRedundantConstraints() {
    if (std::find(violates_.begin(), violates_.end(), true) != violates_.end()) {
        return Inconsistent;
    }
    const int before = constraints_.Size();
    const std::vector<int> kept = ConstraintsToKeep(tight_, notAbove_, vertices_.Size(), before);
    if (static_cast<int>(kept.size()) == before) {
        return Success;
    }
    tight_ = Compacted(tight_, vertices_.Size(), kept, before);
    notAbove_ = Compacted(notAbove_, vertices_.Size(), kept, before);
    for (std::size_t i = 0; i < kept.size(); ++i) {
        constraints_.MoveRow(kept[i], static_cast<int>(i));
    }
    constraints_.Truncate(static_cast<int>(kept.size()));
    return Success;
}

}  // namespace DOpt
