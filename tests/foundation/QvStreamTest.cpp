#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <sstream>
#include <string>

#include "foundation/stream/QvStreamBase.h"

namespace {

TEST(QvStream, NumbersAreStoredLowestByteFirst) {
    std::stringstream bytes;
    QvOutStream out(bytes);
    out.WriteUInt32(0x01020304u);
    out.WriteUInt64(0x1112131415161718u);
    EXPECT_EQ(bytes.str(), "\x04\x03\x02\x01\x18\x17\x16\x15\x14\x13\x12\x11");
}

TEST(QvStream, FloatsAreStoredAsTheirIeeeBits) {
    std::stringstream bytes;
    QvOutStream out(bytes);
    out.WriteFloat(1.0f);
    out.WriteDouble(-2.0);
    EXPECT_EQ(bytes.str(), std::string("\0\0\x80\x3f\0\0\0\0\0\0\0\xc0", 12));
}

TEST(QvStream, EveryKindOfNumberComesBackBitForBit) {
    std::stringstream bytes;
    QvOutStream out(bytes);
    out.WriteUInt32(std::numeric_limits<std::uint32_t>::max());
    out.WriteUInt64(std::numeric_limits<std::uint64_t>::max() - 1);
    out.WriteFloat(-0.0f);
    out.WriteDouble(std::numeric_limits<double>::denorm_min());
    QvInStream in(bytes);
    std::uint32_t small = 0;
    std::uint64_t large = 0;
    float single = 1;
    double wide = 1;
    ASSERT_TRUE(in.ReadUInt32(small) && in.ReadUInt64(large) && in.ReadFloat(single) &&
                in.ReadDouble(wide));
    EXPECT_EQ(small, 0xFFFFFFFFu);
    EXPECT_EQ(large, 0xFFFFFFFFFFFFFFFEu);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(single), 0x80000000u);
    EXPECT_EQ(wide, std::numeric_limits<double>::denorm_min());
}

TEST(QvStream, NaNComesBackAsNaN) {
    std::stringstream bytes;
    QvOutStream out(bytes);
    out.WriteFloat(std::numeric_limits<float>::quiet_NaN());
    QvInStream in(bytes);
    float value = 0;
    ASSERT_TRUE(in.ReadFloat(value));
    EXPECT_TRUE(std::isnan(value));
}

TEST(QvStream, AReadPastTheEndLeavesItsDestination) {
    std::stringstream bytes("abc");
    QvInStream in(bytes);
    std::uint32_t value = 77;
    EXPECT_FALSE(in.ReadUInt32(value));
    EXPECT_EQ(value, 77u);
}

TEST(QvStream, ADoubleCutInHalfIsNotRead) {
    std::stringstream bytes("1234");
    QvInStream in(bytes);
    double value = 7.5;
    EXPECT_FALSE(in.ReadDouble(value));
    EXPECT_EQ(value, 7.5);
}

TEST(QvStream, AFailedWriteIsSeen) {
    std::ostringstream bytes;
    QvOutStream out(bytes);
    out.WriteUInt32(1);
    EXPECT_TRUE(out.IsGood());
    bytes.setstate(std::ios::badbit);
    out.WriteUInt32(2);
    EXPECT_FALSE(out.IsGood());
}

}  // namespace
