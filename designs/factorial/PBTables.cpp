// The generators of the Plackett-Burman designs. Source: Plackett and Burman (1946), "The design of
// optimum multifactorial experiments", Biometrika 33, 305-325.
//
// Invariants of every design made of them: as many -1 as 1 in each column, and each two columns
// orthogonal. PlackettBurmanTest proves them, and compares the generators of 12, 20 and 24 runs
// with their number-theoretic construction.

#include <string_view>

#include "designs/factorial/PB.h"

namespace {

template <std::size_t N>
consteval PB::Signs<N> ReadSigns(std::string_view text) {
    PB::Signs<N> signs{};
    // A text that is too short or too long does not compile.
    for (std::size_t i = 0; i < (text.size() > N ? text.size() : N); ++i) {
        signs.at(i) = text.at(i) == '+' ? 1.0F : -1.0F;
    }
    return signs;
}

consteval PB::Block ReadBlock(const std::array<std::string_view, 9>& rows) {
    PB::Block block{};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        block.at(i) = ReadSigns<9>(rows.at(i));
    }
    return block;
}

}  // namespace

// clang-format off
constinit const PB::Signs<7>  PB::pb8  = ReadSigns<7> ("+++-+--");
constinit const PB::Signs<11> PB::pb12 = ReadSigns<11>("++-+++---+-");
constinit const PB::Signs<15> PB::pb16 = ReadSigns<15>("++++-+-++--+---");
constinit const PB::Signs<19> PB::pb20 = ReadSigns<19>("++--++++-+-+----++-");
constinit const PB::Signs<23> PB::pb24 = ReadSigns<23>("+++++-+-++--++--+-+----");
constinit const PB::Signs<31> PB::pb32 = ReadSigns<31>("+++++--++-+--+----+-+-+++-++---");
constinit const PB::Signs<35> PB::pb36 = ReadSigns<35>("--+--++-+-+----+--+++-+++++---+++-+");

constinit const PB::Block PB::pb28A = ReadBlock({
    "+-++++---",
    "++-+++---",
    "-+++++---",
    "---+-++++",
    "---++-+++",
    "----+++++",
    "+++---+-+",
    "+++---++-",
    "+++----++",
});

constinit const PB::Block PB::pb28B = ReadBlock({
    "-+---+--+",
    "--++--+--",
    "+---+--+-",
    "--+-+---+",
    "+----++--",
    "-+-+---+-",
    "--+--+-+-",
    "+--+----+",
    "-+--+-+--",
});

constinit const PB::Block PB::pb28C = ReadBlock({
    "++-+-++-+",
    "-++++-++-",
    "+-+-++-++",
    "+-+++-+-+",
    "++--++++-",
    "-+++-+-++",
    "+-++-+++-",
    "++-++--++",
    "-++-+++-+",
});
// clang-format on
