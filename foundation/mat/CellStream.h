#pragma once

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "foundation/stream/QvStreamBase.h"

/// The common stream form of vectors and matrices: a tag that tells kind and element type, the
/// sizes, the cells.
namespace CellStream {

/// First word of a stored value; float and double forms have tags of their own, so that one is
/// never taken for the other.
template <class T>
constexpr std::uint32_t cVectorTag = sizeof(T) == sizeof(float) ? 0x4656434Eu : 0x4456434Eu;
template <class T>
constexpr std::uint32_t cMatrixTag = sizeof(T) == sizeof(float) ? 0x464D434Eu : 0x444D434Eu;

inline bool ReadTag(QvInStream& stream, std::uint32_t expected) {
    std::uint32_t tag = 0;
    return stream.ReadUInt32(tag) && tag == expected;
}

inline void WriteSize(QvOutStream& stream, int size) {
    stream.WriteUInt32(static_cast<std::uint32_t>(size));
}

/// A count of rows, columns or elements; nothing when there is none or it is no int.
inline std::optional<int> ReadSize(QvInStream& stream) {
    std::uint32_t size = 0;
    if (!stream.ReadUInt32(size) || size > static_cast<std::uint32_t>(INT_MAX)) {
        return std::nullopt;
    }
    return static_cast<int>(size);
}

inline bool ReadCell(QvInStream& stream, float& value) {
    return stream.ReadFloat(value);
}
inline bool ReadCell(QvInStream& stream, double& value) {
    return stream.ReadDouble(value);
}
inline void WriteCell(QvOutStream& stream, float value) {
    stream.WriteFloat(value);
}
inline void WriteCell(QvOutStream& stream, double value) {
    stream.WriteDouble(value);
}

template <class T>
void WriteCells(QvOutStream& stream, std::span<const T> cells) {
    for (const T cell : cells) {
        WriteCell(stream, cell);
    }
}

/// Exactly `count` cells, or nothing. The storage grows with the data that really arrives, so that
/// a damaged header which promises billions of cells costs no memory.
template <class T>
std::optional<std::vector<T>> ReadCells(QvInStream& stream, std::size_t count) {
    constexpr std::size_t cTrustedCells = 4096;
    std::vector<T> cells;
    cells.reserve(std::min(count, cTrustedCells));
    T cell{};
    while (cells.size() < count) {
        if (!ReadCell(stream, cell)) {
            return std::nullopt;
        }
        cells.push_back(cell);
    }
    return cells;
}

}  // namespace CellStream
