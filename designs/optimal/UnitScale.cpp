#include "designs/optimal/UnitScale.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace DOpt {

namespace {

// Vertices are stored as floats of the order of one and pass through a few dozen cuts.
constexpr float cGeometryRounding = 1e-6F;
// A transform and its inverse, both in float.
constexpr float cTransformRounding = 4 * std::numeric_limits<float>::epsilon();

bool IsImage(const TransformStruct& transform, float value) {
    return transform.TransformValue(&value) == NCTransformError::None && std::isfinite(value);
}

bool IsSame(float working, float limit) {
    return std::abs(working - limit) <= cTransformRounding * std::abs(limit);
}

}  // namespace

float SnapToLimits(float value, float low, float high) {
    if (value <= low + cGeometryRounding) {
        return low;
    }
    return value >= high - cGeometryRounding ? high : value;
}

UnitScale::UnitScale(std::vector<Variable> variables) : variables_(std::move(variables)) {
    for (Variable& variable : variables_) {
        const TransformStruct* transform = variable.transform;
        const bool isOfUse = transform != nullptr && transform->kind != TransformStruct::Identity &&
                             IsImage(*transform, variable.low) &&
                             IsImage(*transform, variable.high);
        variable.transform = isOfUse ? transform : nullptr;
    }
}

bool UnitScale::HasTransform(int variable) const {
    return At(variable).transform != nullptr;
}

float UnitScale::ToReal(int variable, float unit) const {
    const auto [low, high, transform] = At(variable);
    const float snapped = SnapToLimits(unit, 0, 1);
    if (snapped == 0 || snapped == 1) {
        return snapped == 0 ? low : high;
    }
    const double real =
        static_cast<double>(low) +
        static_cast<double>(snapped) * (static_cast<double>(high) - static_cast<double>(low));
    return static_cast<float>(real);
}

PointTable UnitScale::ToReal(const PointTable& points) const {
    PointTable real = points;
    for (int row = 0; row < real.Size(); ++row) {
        for (int variable = 0; variable < real.Width(); ++variable) {
            float& value = real.Row(row)[static_cast<std::size_t>(variable)];
            value = ToReal(variable, value);
        }
    }
    return real;
}

std::vector<float> UnitScale::ToUnits(std::span<const float> constraint) const {
    std::vector<double> row;
    row.reserve(constraint.size());
    double constant = constraint.back();
    double largest = 0;
    double largestTerm = std::abs(constant);
    for (std::size_t i = 0; i < variables_.size(); ++i) {
        const double coefficient = constraint[i];
        const double low = variables_[i].low;
        row.push_back(coefficient * (static_cast<double>(variables_[i].high) - low));
        constant += coefficient * low;
        largest = std::max(largest, std::abs(row.back()));
        largestTerm = std::max(largestTerm, std::abs(coefficient * low));
    }
    row.push_back(constant);
    // A constraint on variables without range is true or false everywhere.
    const double scale = largest > 0 ? largest : largestTerm;
    std::vector<float> units;
    units.reserve(row.size());
    for (const double value : row) {
        units.push_back(static_cast<float>(scale > 0 ? value / scale : value));
    }
    return units;
}

float UnitScale::ToWorking(int variable, float unit) const {
    if (!HasTransform(variable)) {
        return unit;
    }
    float value = ToReal(variable, unit);
    At(variable).transform->TransformValue(&value);
    return value;
}

float UnitScale::FromWorking(int variable, float working) const {
    if (!HasTransform(variable)) {
        return working;
    }
    for (const float limit : {0.0F, 1.0F}) {
        if (IsSame(working, ToWorking(variable, limit))) {
            return limit;
        }
    }
    float real = working;
    At(variable).transform->BackTransformValue(&real);
    const double low = At(variable).low;
    const double range = static_cast<double>(At(variable).high) - low;
    const double unit = range != 0 ? (static_cast<double>(real) - low) / range : 0;
    return static_cast<float>(std::clamp(unit, 0.0, 1.0));
}

WorkingScale UnitScale::MakeWorkingScale(const PointTable& vertices) const {
    WorkingScale scale{vertices, {}};
    bool any = false;
    for (int variable = 0; variable < vertices.Width(); ++variable) {
        any = any || HasTransform(variable);
    }
    if (!any) {
        return scale;
    }
    for (int row = 0; row < vertices.Size(); ++row) {
        for (int variable = 0; variable < vertices.Width(); ++variable) {
            float& value = scale.vertices.Row(row)[static_cast<std::size_t>(variable)];
            value = ToWorking(variable, value);
        }
    }
    scale.back = [this](int variable, float value) { return FromWorking(variable, value); };
    return scale;
}

}  // namespace DOpt
