#pragma once

#include "foundation/stream/Export.h"
#include "foundation/stream/QvStreamBase.h"

namespace NCTransformError {

enum Error {
    None = 0,
    /// The value has no image under the transform; it was replaced by -99.
    OutOfRange = 1
};

}  // namespace NCTransformError

/// A transform of one factor's scale: monotone functions between the real and the working scale.
/// With u = scale * x + offset the working value is
///   Identity x, Log10 log10(u), NegLog10 -log10(u), Ln ln(u), Power u^exponent (for
///   u >= 0), Exp e^u, Logit log10(u / (1 - u)).
/// A value that is missing (-99), or has no finite image, becomes -99.
struct QORVA_EXPORT TransformStruct : public QvStreamBase {
    /// The numbers are stored.
    enum Kind { Identity = 1, Log10 = 2, NegLog10 = 3, Ln = 4, Power = 5, Exp = 6, Logit = 7 };

    TransformStruct() = default;
    explicit TransformStruct(Kind kind_, float scale_ = 1, float offset_ = 0, float exponent_ = 1)
        : kind(kind_), scale(scale_), offset(offset_), exponent(exponent_) {}

    NCTransformError::Error TransformValue(float* value) const;
    NCTransformError::Error BackTransformValue(float* value) const;

    bool QvStreamableStartRead(QvInStream& stream) override;
    bool QvStreamableStartWrite(QvOutStream& stream) const override;
    void QvStreamableReset() override;

    friend bool operator==(const TransformStruct& a, const TransformStruct& b) {
        return a.kind == b.kind && a.scale == b.scale && a.offset == b.offset &&
               a.exponent == b.exponent;
    }

    Kind kind = Identity;
    float scale = 1;
    float offset = 0;
    /// Of Power only; not 0.
    float exponent = 1;
};
