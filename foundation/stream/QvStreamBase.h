#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>

#include "foundation/stream/Export.h"

/// Writes the binary form of streamable values: little-endian, fixed widths.
class QORVA_EXPORT QvOutStream {
  public:
    /// `stream` is borrowed and must be open in binary mode.
    explicit QvOutStream(std::ostream& stream) : stream_(stream) {}

    void WriteUInt32(std::uint32_t value);
    void WriteUInt64(std::uint64_t value);
    void WriteFloat(float value);
    void WriteDouble(double value);
    /// False once any write has failed.
    [[nodiscard]] bool IsGood() const;

  private:
    std::ostream& stream_;
};

/// Reads what `QvOutStream` wrote. Every read returns false, and leaves its destination untouched,
/// at the end of the stream or on an error.
class QORVA_EXPORT QvInStream {
  public:
    /// `stream` is borrowed and must be open in binary mode.
    explicit QvInStream(std::istream& stream) : stream_(stream) {}

    [[nodiscard]] bool ReadUInt32(std::uint32_t& value);
    [[nodiscard]] bool ReadUInt64(std::uint64_t& value);
    [[nodiscard]] bool ReadFloat(float& value);
    [[nodiscard]] bool ReadDouble(double& value);

  private:
    std::istream& stream_;
};

/// Base of every value that can be carried by a binary stream.
class QORVA_EXPORT QvStreamBase {
  public:
    QvStreamBase() = default;
    QvStreamBase(const QvStreamBase&) = default;
    QvStreamBase(QvStreamBase&&) noexcept = default;
    QvStreamBase& operator=(const QvStreamBase&) = default;
    QvStreamBase& operator=(QvStreamBase&&) noexcept = default;
    virtual ~QvStreamBase();

    /// Replaces the value by the next one of the stream. Returns false, with the value unchanged,
    /// when the stream does not hold one.
    virtual bool QvStreamableStartRead(QvInStream& stream) = 0;
    /// Appends the value to the stream. Returns false when the stream does not take it.
    virtual bool QvStreamableStartWrite(QvOutStream& stream) const = 0;
    /// Back to the state of a default-constructed value.
    virtual void QvStreamableReset() = 0;
};
