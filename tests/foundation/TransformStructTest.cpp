#include "foundation/mat/TransformStruct.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <vector>

namespace {

constexpr float cInfinity = std::numeric_limits<float>::infinity();
constexpr float cNaN = std::numeric_limits<float>::quiet_NaN();

float Transformed(const TransformStruct& transform, float value) {
    EXPECT_EQ(transform.TransformValue(&value), NCTransformError::None);
    return value;
}

float BackTransformed(const TransformStruct& transform, float value) {
    EXPECT_EQ(transform.BackTransformValue(&value), NCTransformError::None);
    return value;
}

void ExpectNoImage(const TransformStruct& transform, float value) {
    float changed = value;
    EXPECT_EQ(transform.TransformValue(&changed), NCTransformError::OutOfRange)
        << "kind " << transform.kind << ", value " << value;
    EXPECT_EQ(changed, -99.0f) << "kind " << transform.kind << ", value " << value;
}

void ExpectNoSource(const TransformStruct& transform, float value) {
    float changed = value;
    EXPECT_EQ(transform.BackTransformValue(&changed), NCTransformError::OutOfRange)
        << "kind " << transform.kind << ", value " << value;
    EXPECT_EQ(changed, -99.0f) << "kind " << transform.kind << ", value " << value;
}

/// Every kind with parameters of its own, and a range of x in which it is defined and well
/// conditioned.
struct Case {
    TransformStruct transform;
    float low;
    float high;
};
std::vector<Case> AllCases() {
    using T = TransformStruct;
    return {{T(T::Identity), -1e6f, 1e6f},
            {T(T::Log10), 1e-3f, 1e6f},
            {T(T::Log10, 2, 5), -2.4f, 100},
            {T(T::NegLog10), 1e-3f, 1e6f},
            {T(T::Ln), 1e-3f, 1e6f},
            {T(T::Power, 1, 0, 0.5f), 0, 1e4f},
            {T(T::Power, 1, 0, -1), 0.01f, 1e4f},
            {T(T::Power, 1, 10, 3), -9, 1e3f},
            {T(T::Exp), -5, 5},
            {T(T::Exp, 0.01f, -1), 0, 400},
            {T(T::Logit), 0.001f, 0.999f},
            {T(T::Logit, 0.01f), 0.1f, 99.9f}};
}

TEST(TransformStruct, TheDefaultIsTheIdentity) {
    EXPECT_EQ(TransformStruct().kind, TransformStruct::Identity);
    EXPECT_EQ(Transformed(TransformStruct(), 12.5f), 12.5f);
}

TEST(TransformStruct, PowersOfTenHaveExactLogarithms) {
    const TransformStruct transform(TransformStruct::Log10);
    EXPECT_EQ(Transformed(transform, 100), 2.0f);
    EXPECT_EQ(Transformed(transform, 1000), 3.0f);
    EXPECT_EQ(BackTransformed(transform, 2), 100.0f);
}

TEST(TransformStruct, KnownValuesOfEveryKind) {
    using T = TransformStruct;
    EXPECT_EQ(Transformed(T(T::NegLog10), 0.01f), 2.0f);
    EXPECT_FLOAT_EQ(Transformed(T(T::Ln), 2), 0.69314718f);
    EXPECT_EQ(Transformed(T(T::Power, 1, 0, 0.5f), 9), 3.0f);
    EXPECT_FLOAT_EQ(Transformed(T(T::Exp), 1), 2.7182818f);
    EXPECT_EQ(Transformed(T(T::Logit), 0.5f), 0.0f);
    EXPECT_FLOAT_EQ(Transformed(T(T::Logit, 0.01f), 90), 0.95424251f);  // log10 of 9
    EXPECT_EQ(Transformed(T(T::Log10, 2, 4), 48), 2.0f);
}

TEST(TransformStruct, TheNegativeLogarithmOfOneIsAPositiveZero) {
    EXPECT_FALSE(std::signbit(Transformed(TransformStruct(TransformStruct::NegLog10), 1)));
}

TEST(TransformStruct, BackTransformRestoresTheValueOverTheWholeRange) {
    constexpr int cSteps = 1000;
    // The working value is rounded to float, and the inverse functions magnify that by up to the
    // size of the exponent: ln(1e6) = 14 units in the last place, 9 for the cube of small values.
    constexpr float cRelative = 20 * std::numeric_limits<float>::epsilon();
    for (const Case& c : AllCases()) {
        for (int step = 0; step <= cSteps; ++step) {
            const float x = c.low + (c.high - c.low) * static_cast<float>(step) / cSteps;
            const float back = BackTransformed(c.transform, Transformed(c.transform, x));
            const float u = std::abs(x) + std::abs(c.transform.offset / c.transform.scale);
            ASSERT_NEAR(back, x, cRelative * u)
                << "kind " << c.transform.kind << ", exponent " << c.transform.exponent;
        }
    }
}

TEST(TransformStruct, EveryKindIsStrictlyMonotone) {
    constexpr int cSteps = 100;
    for (const Case& c : AllCases()) {
        const bool rises = Transformed(c.transform, c.high) > Transformed(c.transform, c.low);
        float before = Transformed(c.transform, c.low);
        for (int step = 1; step <= cSteps; ++step) {
            const float x = c.low + (c.high - c.low) * static_cast<float>(step) / cSteps;
            const float now = Transformed(c.transform, x);
            ASSERT_TRUE(rises ? now > before : now < before)
                << "kind " << c.transform.kind << ", x " << x;
            before = now;
        }
    }
}

TEST(TransformStruct, MissingAndNonFiniteValuesHaveNoImage) {
    for (const Case& c : AllCases()) {
        for (const float value : {-99.0f, cNaN, cInfinity, -cInfinity}) {
            ExpectNoImage(c.transform, value);
            ExpectNoSource(c.transform, value);
        }
    }
}

TEST(TransformStruct, LogarithmsOfZeroAndNegativesDoNotExist) {
    using T = TransformStruct;
    for (const T::Kind kind : {T::Log10, T::NegLog10, T::Ln, T::Logit}) {
        for (const float value : {0.0f, -0.0f, -1.0f, -1e30f}) {
            ExpectNoImage(T(kind), value);
        }
    }
}

TEST(TransformStruct, PowersOfNegativesDoNotExist) {
    for (const float exponent : {0.5f, 2.0f, 3.0f, -1.0f}) {
        ExpectNoImage(TransformStruct(TransformStruct::Power, 1, 0, exponent), -4);
    }
}

TEST(TransformStruct, ZeroHasNoNegativePower) {
    ExpectNoImage(TransformStruct(TransformStruct::Power, 1, 0, -1), 0);
}

TEST(TransformStruct, SharesOfOneAndMoreHaveNoLogit) {
    ExpectNoImage(TransformStruct(TransformStruct::Logit), 1);
    ExpectNoImage(TransformStruct(TransformStruct::Logit), 1.5f);
}

TEST(TransformStruct, ValuesTooLargeForAFloatHaveNoImage) {
    ExpectNoImage(TransformStruct(TransformStruct::Exp), 100);
    ExpectNoImage(TransformStruct(TransformStruct::Power, 1, 0, 3), 1e20f);
    ExpectNoSource(TransformStruct(TransformStruct::Log10), 39);
}

TEST(TransformStruct, WorkingValuesOutsideTheImageHaveNoSource) {
    ExpectNoSource(TransformStruct(TransformStruct::Exp), 0);
    ExpectNoSource(TransformStruct(TransformStruct::Exp), -1);
    ExpectNoSource(TransformStruct(TransformStruct::Power, 1, 0, 0.5f), -2);
}

TEST(TransformStruct, AScaleOfZeroHasNoSource) {
    ExpectNoSource(TransformStruct(TransformStruct::Ln, 0, 1), 1);
}

TEST(TransformStruct, AStreamBringsItBack) {
    for (const Case& c : AllCases()) {
        std::stringstream bytes;
        QvOutStream out(bytes);
        ASSERT_TRUE(c.transform.QvStreamableStartWrite(out));
        QvInStream in(bytes);
        TransformStruct read;
        ASSERT_TRUE(read.QvStreamableStartRead(in));
        EXPECT_EQ(read, c.transform);
    }
}

TEST(TransformStruct, EveryCutStreamLeavesTheValue) {
    std::stringstream bytes;
    QvOutStream out(bytes);
    ASSERT_TRUE(TransformStruct(TransformStruct::Power, 2, 3, 4).QvStreamableStartWrite(out));
    const std::string whole = bytes.str();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        std::istringstream cut(whole.substr(0, length));
        QvInStream in(cut);
        TransformStruct transform(TransformStruct::Ln, 7, 8, 9);
        EXPECT_FALSE(transform.QvStreamableStartRead(in)) << "length " << length;
        EXPECT_EQ(transform, TransformStruct(TransformStruct::Ln, 7, 8, 9)) << "length " << length;
    }
}

TEST(TransformStruct, UnknownKindsAreNotRead) {
    for (const std::uint32_t kind : {0u, 8u, 0xFFFFFFFFu}) {
        std::stringstream bytes;
        QvOutStream out(bytes);
        out.WriteUInt32(kind);
        for (int i = 0; i < 3; ++i) {
            out.WriteFloat(1);
        }
        QvInStream in(bytes);
        TransformStruct transform;
        EXPECT_FALSE(transform.QvStreamableStartRead(in)) << "kind " << kind;
    }
}

TEST(TransformStruct, AResetTransformIsTheDefault) {
    TransformStruct transform(TransformStruct::Power, 2, 3, 4);
    transform.QvStreamableReset();
    EXPECT_EQ(transform, TransformStruct());
}

}  // namespace
