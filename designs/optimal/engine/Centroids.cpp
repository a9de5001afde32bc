#include "designs/optimal/engine/Centroids.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "designs/optimal/engine/BitTable.h"
#include "designs/optimal/engine/DOptVertexGen.h"
#include "designs/optimal/engine/FaceWalk.h"
#include "designs/optimal/engine/LengthInfoList.h"
#include "designs/optimal/engine/PointIndex.h"

namespace DOpt {

namespace {

// The vertices on each constraint that bounds the region.
BitTable VerticesOnConstraints(const Region& region, float tolerance, int& constraints) {
    const int vertices = region.vertices.Size();
    const int all = region.constraints.Size();
    BitTable tight(all, vertices);
    BitTable notAbove(all, vertices);
    bool violated = false;
    for (int vertex = 0; vertex < vertices; ++vertex) {
        for (int constraint = 0; constraint < all; ++constraint) {
            const float slack = DOptVertexGen::Slack(region.constraints.Row(constraint),
                                                     region.vertices.Row(vertex));
            violated = violated || slack < -tolerance;
            if (std::abs(slack) < tolerance) {
                tight.Set(vertex, constraint);
            }
            if (std::abs(slack) <= tolerance) {
                notAbove.Set(vertex, constraint);
            }
        }
    }
    std::vector<int> kept;
    if (violated) {
        // Deliberate: nothing is dropped then, and nothing is reported.
        for (int constraint = 0; constraint < all; ++constraint) {
            kept.push_back(constraint);
        }
    } else {
        kept = ConstraintsToKeep(tight, notAbove, vertices, all);
    }
    constraints = static_cast<int>(kept.size());
    BitTable onConstraint(vertices, constraints);
    for (int i = 0; i < constraints; ++i) {
        for (int vertex = 0; vertex < vertices; ++vertex) {
            if (notAbove.Has(vertex, kept[static_cast<std::size_t>(i)])) {
                onConstraint.Set(i, vertex);
            }
        }
    }
    return onConstraint;
}

std::vector<float> SquaredRanges(const PointTable& vertices) {
    std::vector<float> squared;
    for (std::size_t variable = 0; variable < static_cast<std::size_t>(vertices.Width());
         ++variable) {
        float low = vertices.Row(0)[variable];
        float high = low;
        for (int vertex = 1; vertex < vertices.Size(); ++vertex) {
            low = std::min(low, vertices.Row(vertex)[variable]);
            high = std::max(high, vertices.Row(vertex)[variable]);
        }
        squared.push_back((high - low) * (high - low));
    }
    return squared;
}

// A running sum this close to 0, compared with the sum before, is rounding noise.
bool IsCancelled(double sum, double before) {
    if (before == 0) {
        return false;
    }
    int exponent = 0;
    static_cast<void>(std::frexp(before, &exponent));
    return std::abs(sum) <=
           std::ldexp(static_cast<double>(std::numeric_limits<float>::epsilon()), exponent);
}

// Collects the points of one region.
class PointCollector {
  public:
    PointCollector(const Region& region,
                   const WorkingScale& scale,
                   const CentroidRequest& request,
                   CtdList& result)
        : region_(region),
          scale_(scale),
          request_(request),
          result_(result),
          index_(region.vertices.Width(), request.duplicateTolerance),
          squaredRanges_(SquaredRanges(region.vertices)),
          sums_(static_cast<std::size_t>(region.vertices.Width())),
          point_(static_cast<std::size_t>(region.vertices.Width())) {}

    Status AddFace(int dimension, const std::vector<int>& vertices) {
        const bool isEdge = dimension == 1;
        const CtdData record{dimension,
                             static_cast<int>(vertices.size()),
                             isEdge ? EdgeLength(vertices[0], vertices[1]) : 0.0F};
        if (isEdge && !HasRoomForEdge(record.edgeLength)) {
            return Success;  // before its points are formed: there are far more edges than room
        }
        if (!isEdge || request_.edgeCentres) {
            FormCentroid(vertices);
            Add(record);
        }
        if (isEdge && request_.edgeThirds) {
            FormThird(vertices[0], vertices[1]);
            Add(record);
            FormThird(vertices[1], vertices[0]);
            Add(record);
        }
        return rows_ > request_.maxPoints ? TooManyCentroids : Success;
    }

    Status AddOverallCentroid(int dimension) {
        FormMean();
        Append({dimension, region_.vertices.Size(), 0.0F});
        return rows_ > request_.maxPoints ? TooManyCentroids : Success;
    }

    // Closes the gaps of the edge points that gave way to longer ones.
    void Finish() {
        int kept = 0;
        for (int row = 0; row < result_.points.Size(); ++row) {
            if (!removed_[static_cast<std::size_t>(row)]) {
                result_.points.MoveRow(row, kept);
                result_.records[static_cast<std::size_t>(kept)] =
                    result_.records[static_cast<std::size_t>(row)];
                ++kept;
            }
        }
        result_.points.Truncate(kept);
        result_.records.resize(static_cast<std::size_t>(kept));
    }

  private:
    // Forms a point in the working scale. Deliberate: where it then lies outside the region, which
    // need not be convex in that scale, it is formed in the scale of the vertices instead.
    template <class Form>
    void FormInside(const Form& form) {
        form(scale_.vertices);
        if (!scale_.back) {
            return;
        }
        for (std::size_t i = 0; i < point_.size(); ++i) {
            point_[i] = scale_.back(static_cast<int>(i), point_[i]);
        }
        if (IsOutside()) {
            form(region_.vertices);
        }
    }

    [[nodiscard]] bool IsOutside() const {
        for (int constraint = 0; constraint < region_.constraints.Size(); ++constraint) {
            if (DOptVertexGen::Slack(region_.constraints.Row(constraint), point_) <
                -cVertexTolerance) {
                return true;
            }
        }
        return false;
    }

    void FormCentroid(const std::vector<int>& vertices) {
        FormInside([&](const PointTable& table) {
            std::ranges::fill(sums_, 0.0);
            for (const int vertex : vertices) {
                const auto row = table.Row(vertex);
                for (std::size_t i = 0; i < sums_.size(); ++i) {
                    sums_[i] += static_cast<double>(row[i]);
                }
            }
            for (std::size_t i = 0; i < sums_.size(); ++i) {
                point_[i] = static_cast<float>(sums_[i] / static_cast<double>(vertices.size()));
            }
        });
    }

    void FormThird(int near, int far) {
        FormInside([&](const PointTable& table) {
            const auto a = table.Row(near);
            const auto b = table.Row(far);
            for (std::size_t i = 0; i < point_.size(); ++i) {
                point_[i] = (2.0F * a[i] + b[i]) / 3.0F;
            }
        });
    }

    void FormMean() {
        FormInside([&](const PointTable& table) {
            const auto count = static_cast<float>(table.Size());
            std::ranges::fill(sums_, 0.0);
            for (int vertex = 0; vertex < table.Size(); ++vertex) {
                const auto row = table.Row(vertex);
                for (std::size_t i = 0; i < sums_.size(); ++i) {
                    const double before = sums_[i];
                    sums_[i] += static_cast<double>(row[i] / count);
                    if (IsCancelled(sums_[i], before)) {
                        sums_[i] = 0;
                    }
                }
            }
            for (std::size_t i = 0; i < sums_.size(); ++i) {
                point_[i] = static_cast<float>(sums_[i]);
            }
        });
    }

    [[nodiscard]] float EdgeLength(int first, int second) const {
        const auto a = region_.vertices.Row(first);
        const auto b = region_.vertices.Row(second);
        double sum = 0;
        for (std::size_t i = 0; i < squaredRanges_.size(); ++i) {
            // A variable that is the same everywhere adds no length.
            if (squaredRanges_[i] > 0) {
                const double difference = static_cast<double>(a[i]) - static_cast<double>(b[i]);
                sum += difference * difference / static_cast<double>(squaredRanges_[i]);
            }
        }
        return static_cast<float>(std::sqrt(sum));
    }

    void Add(const CtdData& record) {
        if (index_.HasNear(result_.points, point_)) {
            return;
        }
        if (record.dimension == 1 && !MakeRoomForEdge(record.edgeLength)) {
            return;
        }
        Append(record);
        if (record.dimension == 1) {
            lengths_.Insert(record.edgeLength, result_.points.Size() - 1);
        }
    }

    [[nodiscard]] bool HasRoomForEdge(float length) const {
        return rows_ < cMaxEdgePoints || lengths_.IsEmpty() || length > lengths_.ShortestLength();
    }

    // The shortest edge gives way to a longer one when there are enough points.
    bool MakeRoomForEdge(float length) {
        if (!HasRoomForEdge(length)) {
            return false;
        }
        if (rows_ < cMaxEdgePoints || lengths_.IsEmpty()) {
            return true;
        }
        const int row = lengths_.ShortestRow();
        lengths_.RemoveShortest();
        index_.Remove(result_.points, row);
        removed_[static_cast<std::size_t>(row)] = true;
        --rows_;
        return true;
    }

    void Append(const CtdData& record) {
        result_.points.Append(point_);
        result_.records.push_back(record);
        removed_.push_back(false);
        index_.Add(result_.points, result_.points.Size() - 1);
        ++rows_;
    }

    const Region& region_;
    const WorkingScale& scale_;
    const CentroidRequest& request_;
    CtdList& result_;
    PointIndex index_;
    LengthInfoList lengths_;
    std::vector<float> squaredRanges_;
    std::vector<double> sums_;
    std::vector<float> point_;
    std::vector<bool> removed_;  // by row of the result, which keeps removed rows until the end
    int rows_ = 0;               // without the removed ones
};

}  // namespace

int CtdList::CountOfDimension(int dimension) const {
    return static_cast<int>(std::ranges::count(records, dimension, &CtdData::dimension));
}

Status ComputeCentroids(const Region& region,
                        const WorkingScale& scale,
                        const CentroidRequest& request,
                        const StopTest& stop,
                        CtdList& result) {
    if (region.vertices.Size() == 0) {
        return IllegalArgument;
    }
    int constraints = 0;
    const BitTable onConstraint =
        VerticesOnConstraints(region, request.tightTolerance, constraints);
    PointCollector collector(region, scale, request, result);
    const int regionDimension = region.vertices.Width() - (region.hasMixture ? 1 : 0);
    for (const int dimension : request.dimensions) {
        const int size = regionDimension - dimension;
        const Status status = size > 0 ? FaceWalk(onConstraint, constraints, size, dimension + 1)
                                             .Run(
                                                 [&](const std::vector<int>& vertices) {
                                                     return collector.AddFace(dimension, vertices);
                                                 },
                                                 stop)
                                       : collector.AddOverallCentroid(dimension);
        if (status != Success) {
            return status;
        }
        if (MustStop(stop, 1)) {
            return Stopped;
        }
    }
    collector.Finish();
    return Success;
}

}  // namespace DOpt
