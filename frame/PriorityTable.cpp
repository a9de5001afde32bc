#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <string_view>

#include "frame/DesignBuilder.h"

namespace {

// Literal columns 0 to 32 of each row; the columns behind repeat column 32.
constexpr int cLiteralColumns = 33;

// One row for each design type, as runs of values: "1 x4" stands for four columns of 1. A test
// proves that every row fills 33 columns and checks single entries.
constexpr std::array<std::string_view, 35> cRows{
    // clang-format off
    /*  0             */ "0 x33",
    /*  1 FF2         */ "0, 1 x4, 7, 8 x2, 6, 8 x2, 0 x22",
    /*  2 FF3         */ "0, 16 x6, 0 x26",
    /*  3 FFM         */ "0, 2, 25 x9, 0 x22",
    /*  4 L9          */ "0 x2, 3, 4 x2, 0 x28",
    /*  5 L18         */ "0 x2, 4, 5 x2, 4, 5 x2, 0 x25",
    /*  6 L27         */ "0 x2, 5, 6 x2, 5, 6 x2, 4, 5 x5, 0 x19",
    /*  7 L36         */ "0 x2, 6, 7 x2, 6, 7 x2, 5, 6 x5, 0 x19",
    /*  8 FFR_III     */ "0 x3, 2, 0, 2 x3, 0, 1 x3, 2 x3, 3, 0, 1 x4, 3 x5, 2 x6, 0",
    /*  9 FFR_IV      */ "0 x4, 2, 0, 1 x3, 2 x3, 1 x5, 3 x4, 1 x12",
    /* 10 FFR_V       */ "0 x5, 1, 3 x2, 2, 3 x6, 4, 3, 4 x13, 0 x3",
    /* 11 PB          */ "0 x2, 2, 3 x3, 4 x2, 3, 4 x6, 2 x11, 3 x6, 2",
    /* 12 PB_SS       */ "26 x33",
    /* 13 BB          */ "0 x3, 14, 15, 14 x2, 11, 14, 11, 14 x2, 0 x21",
    /* 14 CCC         */ "0 x2, 13 x2, 14, 13 x2, 14, 13, 14, 13 x12, 0 x11",
    /* 15 CCF         */ "0 x2, 12 x2, 13, 12 x2, 13, 12, 13, 12 x12, 0 x11",
    /* 16 CCO         */ "0 x2, 11 x5, 12, 11, 12, 11 x12, 0 x11",
    /* 17 RCCF        */ "0 x4, 12, 0 x28",
    /* 18 RCCC        */ "0 x4, 16, 0 x28",
    /* 19 AxN         */ "0 x2, 18 x9, 17 x10, 0 x12",
    /* 20 AxE         */ "0 x2, 17 x9, 19 x10, 0 x12",
    /* 21 AxR         */ "0 x2, 19 x9, 18 x10, 0 x12",
    /* 22 SimM        */ "0 x2, 20 x2, 21 x2, 20 x7, 0 x20",
    /* 23 SimF        */ "0 x2, 21 x2, 20 x2, 21 x7, 0 x20",
    /* 24 SimSC       */ "0 x2, 22 x11, 0 x20",
    /* 25 SimC        */ "0 x2, 23 x11, 0 x20",
    /* 26 DOpt        */ "0 x2, 24 x31",
    /* 27 OnionDOpt   */ "0, 29 x32",
    /* 28 Rechtsch.   */ "0, 23 x32",
    /* 29             */ "0, 23 x32",
    /* 30 REDMUP      */ "0, 23 x32",
    /* 31 Doehlert    */ "0, 23 x32",
    /* 32 Levels      */ "0, 23 x32",
    /* 33 Custom      */ "27 x33",
    /* 34             */ "0 x33",
    // clang-format on
};

using Row = std::array<unsigned char, cLiteralColumns>;

constexpr int ReadNumber(std::string_view text, std::size_t& at) {
    int number = 0;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
        number = number * 10 + (text[at++] - '0');
    }
    return number;
}

// Reads a row at compile time; a row of another length, or any other text, does not compile.
consteval Row ReadRow(std::string_view text) {
    Row row{};
    std::size_t column = 0;
    std::size_t at = 0;
    while (at < text.size()) {
        const int value = ReadNumber(text, at);
        int count = 1;
        if (text.substr(at).starts_with(" x")) {
            at += 2;
            count = ReadNumber(text, at);
        }
        for (int i = 0; i < count; ++i) {
            row[column++] = static_cast<unsigned char>(value);
        }
        if (at < text.size()) {
            if (!text.substr(at).starts_with(", ")) {
                throw std::logic_error("a comma is missing");
            }
            at += 2;
        }
    }
    if (column != row.size()) {
        throw std::logic_error("the row has another length");
    }
    return row;
}

consteval auto ReadRows() {
    std::array<Row, cRows.size()> rows{};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i] = ReadRow(cRows[i]);
    }
    return rows;
}

consteval auto MakePriorityTable() {
    constexpr auto rows = ReadRows();
    DesignBuilder::PriorityTable table{};
    for (std::size_t type = 0; type < rows.size(); ++type) {
        for (std::size_t count = 0; count < table[type].size(); ++count) {
            table[type][count] = rows[type][std::min<std::size_t>(count, cLiteralColumns - 1)];
        }
    }
    return table;
}

}  // namespace

constinit const DesignBuilder::PriorityTable DesignBuilder::priority = MakePriorityTable();
