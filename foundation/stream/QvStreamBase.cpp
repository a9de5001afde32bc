#include "foundation/stream/QvStreamBase.h"

#include <array>
#include <bit>
#include <istream>
#include <ostream>

namespace {

/// Lowest byte first, whatever the order of the machine.
template <class Unsigned>
void WriteLittleEndian(std::ostream& stream, Unsigned value) {
    std::array<char, sizeof(Unsigned)> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>(static_cast<unsigned char>(value >> (8 * i)));
    }
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

template <class Unsigned>
bool ReadLittleEndian(std::istream& stream, Unsigned& value) {
    std::array<char, sizeof(Unsigned)> bytes{};
    if (!stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()))) {
        return false;
    }
    Unsigned assembled = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<Unsigned>(static_cast<unsigned char>(bytes[i]));
        assembled |= static_cast<Unsigned>(byte << (8 * i));
    }
    value = assembled;
    return true;
}

}  // namespace

void QvOutStream::WriteUInt32(std::uint32_t value) {
    WriteLittleEndian(stream_, value);
}

void QvOutStream::WriteUInt64(std::uint64_t value) {
    WriteLittleEndian(stream_, value);
}

void QvOutStream::WriteFloat(float value) {
    WriteUInt32(std::bit_cast<std::uint32_t>(value));
}

void QvOutStream::WriteDouble(double value) {
    WriteUInt64(std::bit_cast<std::uint64_t>(value));
}

bool QvOutStream::IsGood() const {
    return stream_.good();
}

bool QvInStream::ReadUInt32(std::uint32_t& value) {
    return ReadLittleEndian(stream_, value);
}

bool QvInStream::ReadUInt64(std::uint64_t& value) {
    return ReadLittleEndian(stream_, value);
}

bool QvInStream::ReadFloat(float& value) {
    std::uint32_t bits = 0;
    if (!ReadUInt32(bits)) {
        return false;
    }
    value = std::bit_cast<float>(bits);
    return true;
}

bool QvInStream::ReadDouble(double& value) {
    std::uint64_t bits = 0;
    if (!ReadUInt64(bits)) {
        return false;
    }
    value = std::bit_cast<double>(bits);
    return true;
}

QvStreamBase::~QvStreamBase() = default;
