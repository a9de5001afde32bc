#include "designs/plate/PlateRows.h"

#include <array>
#include <string>
#include <string_view>

#include "designs/plate/LevelsDuplicate.h"
#include "designs/plate/PreCreatedDesign.h"
#include "designs/plate/PreCreatedRows.h"
#include "designs/plate/ReducedDesign.h"
#include "designs/plate/ReducedRows.h"
#include "frame/Factors.h"

namespace {

constexpr std::array cTimes{2U, 3U, 4U, 6U};

constexpr const char* cStarLeftOut =
    "Central Composite Face design composed of a full or fractional factorial design and star "
    "points placed on the faces of the sides. One star point is left out.";
constexpr const char* cStarsLeftOut =
    "Central Composite Face design composed of a full or fractional factorial design and star "
    "points placed on the faces of the sides. One star point of each factor is left out.";
constexpr const char* cCentreLeftOut =
    "Central Composite Face design composed of a full or fractional factorial design and star "
    "points placed on the faces of the sides. The centre point is left out.";

// Empty where the display name says it all.
const char* DescriptionOf(std::string_view displayName) {
    if (displayName == ReducedRows::cNoStar) {
        return cStarLeftOut;
    }
    if (displayName == ReducedRows::cNoStars) {
        return cStarsLeftOut;
    }
    return displayName == ReducedRows::cNoCentre ? cCentreLeftOut : "";
}

std::vector<int> Digits(std::string_view text) {
    std::vector<int> digits;
    digits.reserve(text.size());
    for (const char digit : text) {
        digits.push_back(digit - '0');
    }
    return digits;
}

float Cell(char symbol) {
    switch (symbol) {
        case '-':
            return -1.0F;
        case '0':
            return 0.0F;
        case '+':
            return 1.0F;
        default:
            return Factors::cFirstLevelCode + static_cast<float>(symbol - 'A');
    }
}

NCDataMatrix<float> Matrix(PreCreatedRows::Runs runs) {
    NCDataMatrix<float> matrix(static_cast<int>(runs.size()), static_cast<int>(runs[0].size()));
    int row = 1;
    for (const std::string_view run : runs) {
        int column = 1;
        for (const char symbol : run) {
            matrix(row, column, Cell(symbol));
            ++column;
        }
        ++row;
    }
    return matrix;
}

std::shared_ptr<const DesignBuilder> MakeBuilder(const ReducedRows::Row& row) {
    const std::span<const int> list = row.RowList();
    return std::make_shared<const ReducedDesign>(
        TableColumns{Digits(row.levels), Digits(row.typeMasks)},
        row.model,
        row.base,
        row.runs,
        row.listed == ReducedRows::Listed::Removed,
        std::vector<int>(list.begin(), list.end()),
        row.displayName,
        row.shortString,
        1U,
        DescriptionOf(row.displayName));
}

std::shared_ptr<const DesignBuilder> MakeBuilder(const PreCreatedRows::Row& row) {
    return std::make_shared<const PreCreatedDesign>(
        TableColumns{Digits(row.levels), Digits(row.typeMasks)},
        row.model,
        Matrix(row.runs),
        row.displayName,
        row.shortString);
}

}  // namespace

std::vector<std::shared_ptr<const DesignBuilder>> MakePlateRows() {
    std::vector<std::shared_ptr<const DesignBuilder>> builders;
    builders.reserve(cTimes.size() + ReducedRows::cRows.size() + PreCreatedRows::cRows.size());
    for (const unsigned int times : cTimes) {
        builders.push_back(std::make_shared<const LevelsDuplicate>(times));
    }
    for (const ReducedRows::Row& row : ReducedRows::cRows) {
        builders.push_back(MakeBuilder(row));
    }
    for (const PreCreatedRows::Row& row : PreCreatedRows::cRows) {
        builders.push_back(MakeBuilder(row));
    }
    return builders;
}
