#include "foundation/mat/TransformStruct.h"

#include <cassert>
#include <cmath>
#include <cstdint>
#include <limits>

namespace {

constexpr float cMissing = -99;
constexpr double cNoImage = std::numeric_limits<double>::quiet_NaN();

double Logarithm(double u) {
    return u > 0 ? std::log10(u) : cNoImage;
}

/// u^exponent where it is one-to-one for every exponent, that is for u >= 0.
double PowerOf(double u, double exponent) {
    return u >= 0 ? std::pow(u, exponent) : cNoImage;
}

/// The working value of u = scale * x + offset, for all kinds but Identity.
double Forward(TransformStruct::Kind kind, double u, double exponent) {
    switch (kind) {
        case TransformStruct::Log10:
            return Logarithm(u);
        case TransformStruct::NegLog10:
            // A difference, since a change of sign would give -0 at u = 1.
            return 0 - Logarithm(u);
        case TransformStruct::Ln:
            return u > 0 ? std::log(u) : cNoImage;
        case TransformStruct::Power:
            return PowerOf(u, exponent);
        case TransformStruct::Exp:
            return std::exp(u);
        case TransformStruct::Logit:
            return u < 1 ? Logarithm(u / (1 - u)) : cNoImage;
        case TransformStruct::Identity:
            break;
    }
    return cNoImage;
}

/// u of a working value, for all kinds but Identity.
double Backward(TransformStruct::Kind kind, double working, double exponent) {
    switch (kind) {
        case TransformStruct::Log10:
            return std::pow(10.0, working);
        case TransformStruct::NegLog10:
            return std::pow(10.0, -working);
        case TransformStruct::Ln:
            return std::exp(working);
        case TransformStruct::Power:
            return PowerOf(working, 1 / exponent);
        case TransformStruct::Exp:
            return working > 0 ? std::log(working) : cNoImage;
        case TransformStruct::Logit:
            return 1 / (1 + std::pow(10.0, -working));
        case TransformStruct::Identity:
            break;
    }
    return cNoImage;
}

NCTransformError::Error Store(double image, float* value) {
    const auto rounded = static_cast<float>(image);
    const bool isFinite = std::isfinite(rounded);
    *value = isFinite ? rounded : cMissing;
    return isFinite ? NCTransformError::None : NCTransformError::OutOfRange;
}

/// Replaces a value that is missing or not finite, and says whether it did.
bool RejectMissing(float* value) {
    assert(value != nullptr);
    const bool isMissing = *value == cMissing || !std::isfinite(*value);
    if (isMissing) {
        *value = cMissing;
    }
    return isMissing;
}

bool IsKind(std::uint32_t number) {
    return number >= TransformStruct::Identity && number <= TransformStruct::Logit;
}

}  // namespace

NCTransformError::Error TransformStruct::TransformValue(float* value) const {
    if (RejectMissing(value)) {
        return NCTransformError::OutOfRange;
    }
    if (kind == Identity) {
        return NCTransformError::None;
    }
    const double u = static_cast<double>(scale) * *value + static_cast<double>(offset);
    return Store(Forward(kind, u, exponent), value);
}

NCTransformError::Error TransformStruct::BackTransformValue(float* value) const {
    if (RejectMissing(value)) {
        return NCTransformError::OutOfRange;
    }
    if (kind == Identity) {
        return NCTransformError::None;
    }
    const double u = Backward(kind, *value, exponent);
    return Store((u - static_cast<double>(offset)) / static_cast<double>(scale), value);
}

bool TransformStruct::QvStreamableStartRead(QvInStream& stream) {
    std::uint32_t number = 0;
    TransformStruct read;
    if (!stream.ReadUInt32(number) || !IsKind(number) || !stream.ReadFloat(read.scale) ||
        !stream.ReadFloat(read.offset) || !stream.ReadFloat(read.exponent)) {
        return false;
    }
    read.kind = static_cast<Kind>(number);
    *this = read;
    return true;
}

bool TransformStruct::QvStreamableStartWrite(QvOutStream& stream) const {
    stream.WriteUInt32(static_cast<std::uint32_t>(kind));
    stream.WriteFloat(scale);
    stream.WriteFloat(offset);
    stream.WriteFloat(exponent);
    return stream.IsGood();
}

void TransformStruct::QvStreamableReset() {
    *this = TransformStruct();
}
