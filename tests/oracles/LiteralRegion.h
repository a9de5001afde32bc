#pragma once

#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <vector>

/// Vertices and centroids of a constrained region in their plainest form: a matrix of slacks, all
/// pairs of vertices, all combinations of constraints, every point compared with every other one.
/// Shares no code with the engine and is its yardstick, point by point and in order.
namespace LiteralRegion {

using Row = std::vector<float>;
using Rows = std::vector<Row>;

struct State {
    Rows vertices;
    Rows constraints;     // coefficients, then the constant
    Rows slacks;          // by vertex
    Rows allConstraints;  // as they were before the centroids were sought
    bool hasMixture = false;
    float tolerance = 1e-5F;
    float duplicate = 1e-5F;
    // Work done, for a measure that does not depend on the machine.
    long long pairTests = 0;
    long long combinations = 0;
};

inline float Slack(const Row& constraint, const Row& point) {
    double sum = 0;
    for (std::size_t i = 0; i < point.size(); ++i) {
        sum += static_cast<double>(constraint[i]) * static_cast<double>(point[i]);
    }
    return static_cast<float>(sum + static_cast<double>(constraint.back()));
}

inline Row SlacksOf(const State& state, const Row& point) {
    Row slacks;
    for (const Row& constraint : state.constraints) {
        slacks.push_back(Slack(constraint, point));
    }
    return slacks;
}

inline bool Near(const Row& a, const Row& b, float tolerance) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::fabs(a[i] - b[i]) > tolerance) {
            return false;
        }
    }
    return true;
}

/// -1 when a vertex breaks a constraint, 1 when constraints were dropped, else 0.
inline int DropRedundant(State& state) {
    const std::size_t count = state.constraints.size();
    std::vector<bool> kept(count, true);
    int result = 0;
    for (std::size_t a = 0; a < count; ++a) {
        bool touches = false;
        for (const Row& slacks : state.slacks) {
            if (slacks[a] < -state.tolerance) {
                return -1;
            }
            touches = touches || std::fabs(slacks[a]) < state.tolerance;
        }
        if (!touches) {
            kept[a] = false;
            result = 1;
        }
    }
    for (std::size_t a = 0; a < count; ++a) {
        for (std::size_t b = 0; kept[a] && b < count; ++b) {
            if (a == b) {
                continue;
            }
            bool within = true;
            for (const Row& slacks : state.slacks) {
                if (std::fabs(slacks[a]) <= state.tolerance &&
                    std::fabs(slacks[b]) > state.tolerance) {
                    within = false;
                    break;
                }
            }
            if (within) {
                kept[a] = false;
                result = 1;
            }
        }
    }
    if (result == 1) {
        Rows constraints;
        Rows slacks(state.slacks.size());
        for (std::size_t a = 0; a < count; ++a) {
            if (kept[a]) {
                constraints.push_back(state.constraints[a]);
                for (std::size_t v = 0; v < slacks.size(); ++v) {
                    slacks[v].push_back(state.slacks[v][a]);
                }
            }
        }
        state.constraints = constraints;
        state.slacks = slacks;
    }
    return result;
}

inline void NewVertexOnEdge(State& state, std::size_t i, std::size_t j) {
    const std::size_t added = state.constraints.size() - 1;
    int shared = 0;
    for (std::size_t c = 0; c < added; ++c) {
        shared += std::fabs(state.slacks[i][c]) < state.tolerance &&
                          std::fabs(state.slacks[j][c]) < state.tolerance
                      ? 1
                      : 0;
    }
    ++state.pairTests;
    if (shared < static_cast<int>(state.vertices[i].size()) - (state.hasMixture ? 1 : 0) - 1) {
        return;
    }
    const float t = state.slacks[i][added] / (state.slacks[i][added] - state.slacks[j][added]);
    Row point;
    for (std::size_t x = 0; x < state.vertices[i].size(); ++x) {
        const double value =
            static_cast<double>(state.vertices[i][x]) * (1.0 - static_cast<double>(t)) +
            static_cast<double>(state.vertices[j][x]) * static_cast<double>(t);
        point.push_back(static_cast<float>(value));
    }
    for (const Row& vertex : state.vertices) {
        if (Near(vertex, point, state.duplicate)) {
            return;
        }
    }
    state.slacks.push_back(SlacksOf(state, point));
    state.vertices.push_back(point);
}

/// 0, or 6001.
inline int AddConstraint(State& state, const Row& constraint) {
    state.constraints.push_back(constraint);
    bool negative = false;
    bool positive = false;
    for (std::size_t v = 0; v < state.vertices.size(); ++v) {
        const float slack = Slack(constraint, state.vertices[v]);
        state.slacks[v].push_back(slack);
        negative = negative || slack <= -state.tolerance;
        positive = positive || slack >= state.tolerance;
    }
    if (!negative || !positive) {
        state.constraints.pop_back();
        for (Row& slacks : state.slacks) {
            slacks.pop_back();
        }
        return negative ? 6001 : 0;
    }
    const std::size_t added = state.constraints.size() - 1;
    for (std::size_t i = 0; i < state.vertices.size(); ++i) {
        for (std::size_t j = 0;
             state.slacks[i][added] < -state.tolerance && j < state.vertices.size();
             ++j) {
            if (state.slacks[j][added] > state.tolerance) {
                NewVertexOnEdge(state, i, j);
            }
        }
    }
    Rows vertices;
    Rows slacks;
    for (std::size_t v = 0; v < state.vertices.size(); ++v) {
        if (state.slacks[v][added] >= -state.tolerance) {
            vertices.push_back(state.vertices[v]);
            slacks.push_back(state.slacks[v]);
        }
    }
    state.vertices = vertices;
    state.slacks = slacks;
    return DropRedundant(state) < 0 ? 6001 : 0;
}

/// Cuts with the constraints in order. 0, or 6001.
inline int Cut(State& state, const Rows& newConstraints) {
    state.slacks.clear();
    for (const Row& vertex : state.vertices) {
        state.slacks.push_back(SlacksOf(state, vertex));
    }
    if (DropRedundant(state) < 0) {
        return 6001;
    }
    for (const Row& constraint : newConstraints) {
        if (AddConstraint(state, constraint) != 0) {
            return 6001;
        }
    }
    return 0;
}

/// The working scale of each variable; both empty where it is the scale of the vertices.
struct Scale {
    std::function<float(std::size_t, float)> to;
    std::function<float(std::size_t, float)> back;
};

struct Point {
    Row values;
    int dimension = 0;
    float length = 0;
};

struct Centroids {
    std::vector<Point> points;
    std::vector<std::pair<float, std::size_t>> lengths;  // ascending, with the row
};

inline void AddEdgeOrFace(const State& state, Centroids& found, Point point) {
    for (const Point& other : found.points) {
        if (Near(other.values, point.values, state.duplicate)) {
            return;
        }
    }
    if (point.dimension == 1 && found.points.size() >= 500) {
        const auto [shortest, row] = found.lengths.front();
        if (point.length <= shortest) {
            return;
        }
        found.points.erase(found.points.begin() + static_cast<std::ptrdiff_t>(row));
        found.lengths.erase(found.lengths.begin());
        for (auto& entry : found.lengths) {
            entry.second -= entry.second > row ? 1U : 0U;
        }
    }
    found.points.push_back(point);
    if (point.dimension == 1) {
        auto at = found.lengths.begin();
        while (at != found.lengths.end() && at->first < point.length) {
            ++at;
        }
        found.lengths.insert(at, {point.length, found.points.size() - 1});
    }
}

inline bool IsOutside(const State& state, const Row& point) {
    for (const Row& constraint : state.allConstraints) {
        if (Slack(constraint, point) < -1e-5F) {
            return true;
        }
    }
    return false;
}

inline void FacePoints(const State& state,
                       const Scale& scale,
                       const Row& squaredRange,
                       const std::vector<std::size_t>& combination,
                       int dimension,
                       bool centres,
                       bool thirds,
                       Centroids& found) {
    const std::size_t variables = squaredRange.size();
    const auto working = [&](std::size_t v, std::size_t x, bool plain) {
        return scale.to && !plain ? scale.to(x, state.vertices[v][x]) : state.vertices[v][x];
    };
    const auto back = [&](std::size_t x, float value, bool plain) {
        return scale.back && !plain ? scale.back(x, value) : value;
    };
    std::vector<std::size_t> face;
    for (std::size_t v = 0; v < state.vertices.size(); ++v) {
        bool on = true;
        for (const std::size_t c : combination) {
            on = on && std::fabs(state.slacks[v][c]) <= state.tolerance;
        }
        if (on) {
            face.push_back(v);
        }
    }
    if (static_cast<int>(face.size()) < dimension + 1) {
        return;
    }
    std::vector<Point> slots;
    // A point that falls outside in the working scale is formed again without it.
    const auto form = [&](const std::function<float(std::size_t, bool)>& value) {
        Row point;
        for (const bool plain : {false, true}) {
            point.clear();
            for (std::size_t x = 0; x < variables; ++x) {
                point.push_back(back(x, value(x, plain), plain));
            }
            if (!scale.back || !IsOutside(state, point)) {
                break;
            }
        }
        return point;
    };
    if (dimension != 1 || centres) {
        slots.push_back({form([&](std::size_t x, bool plain) {
                             double sum = 0;
                             for (const std::size_t v : face) {
                                 sum += static_cast<double>(working(v, x, plain));
                             }
                             return static_cast<float>(sum / static_cast<double>(face.size()));
                         }),
                         dimension,
                         0});
    }
    if (dimension == 1 && thirds) {
        for (const bool swap : {false, true}) {
            slots.push_back({form([&](std::size_t x, bool plain) {
                                 const float a = working(face[swap ? 1 : 0], x, plain);
                                 const float b = working(face[swap ? 0 : 1], x, plain);
                                 return (2.0F * a + b) / 3.0F;
                             }),
                             1,
                             0});
        }
    }
    double squaredLength = 0;
    for (std::size_t x = 0; dimension == 1 && x < variables; ++x) {
        const double difference = static_cast<double>(state.vertices[face[0]][x]) -
                                  static_cast<double>(state.vertices[face[1]][x]);
        if (squaredRange[x] > 0) {
            squaredLength += difference * difference / static_cast<double>(squaredRange[x]);
        }
    }
    for (Point& point : slots) {
        point.length = dimension == 1 ? static_cast<float>(std::sqrt(squaredLength)) : 0.0F;
        AddEdgeOrFace(state, found, point);
    }
}

inline void OverallCentroid(const State& state,
                            const Scale& scale,
                            int dimension,
                            Centroids& found) {
    Point point{{}, dimension, 0};
    for (const bool plain : {false, true}) {
        point.values.clear();
        for (std::size_t x = 0; x < state.vertices.front().size(); ++x) {
            double sum = 0;
            for (const Row& vertex : state.vertices) {
                const double before = sum;
                const float value = scale.to && !plain ? scale.to(x, vertex[x]) : vertex[x];
                sum += static_cast<double>(value / static_cast<float>(state.vertices.size()));
                int exponent = 0;
                std::frexp(before, &exponent);
                if (before != 0 && std::fabs(sum) <= std::ldexp(1.0, exponent - 23)) {
                    sum = 0;
                }
            }
            const auto mean = static_cast<float>(sum);
            point.values.push_back(scale.back && !plain ? scale.back(x, mean) : mean);
        }
        if (!scale.back || !IsOutside(state, point.values)) {
            break;
        }
    }
    found.points.push_back(point);
}

/// Points of the faces of the given dimensions, after Cut.
inline Centroids FindCentroids(State& state,
                               const Scale& scale,
                               const std::vector<int>& dimensions,
                               bool centres,
                               bool thirds) {
    state.tolerance = 1e-4F;
    state.allConstraints = state.constraints;
    state.slacks.clear();
    for (const Row& vertex : state.vertices) {
        state.slacks.push_back(SlacksOf(state, vertex));
    }
    DropRedundant(state);
    Row squaredRange;
    for (std::size_t x = 0; x < state.vertices.front().size(); ++x) {
        float low = std::numeric_limits<float>::max();
        float high = std::numeric_limits<float>::lowest();
        for (const Row& vertex : state.vertices) {
            low = std::fmin(low, vertex[x]);
            high = std::fmax(high, vertex[x]);
        }
        squaredRange.push_back((high - low) * (high - low));
    }
    Centroids found;
    const std::size_t constraints = state.constraints.size();
    for (const int dimension : dimensions) {
        const int size =
            static_cast<int>(squaredRange.size()) - (state.hasMixture ? 1 : 0) - dimension;
        if (size <= 0) {
            OverallCentroid(state, scale, dimension, found);
            continue;
        }
        const auto k = static_cast<std::size_t>(size);
        if (k > constraints) {
            continue;
        }
        std::vector<std::size_t> combination(k);
        for (std::size_t i = 0; i < k; ++i) {
            combination[i] = i;
        }
        for (bool more = true; more;) {
            ++state.combinations;
            FacePoints(state, scale, squaredRange, combination, dimension, centres, thirds, found);
            more = false;
            for (std::size_t i = k; i-- > 0;) {
                if (combination[i] < constraints - k + i) {
                    ++combination[i];
                    for (std::size_t next = i + 1; next < k; ++next) {
                        combination[next] = combination[next - 1] + 1;
                    }
                    more = true;
                    break;
                }
            }
        }
    }
    return found;
}

}  // namespace LiteralRegion
