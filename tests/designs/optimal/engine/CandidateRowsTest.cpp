#include "designs/optimal/engine/CandidateRows.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace {

using DOpt::BlockRows;
using DOpt::CandidateRequest;
using DOpt::CombineCandidates;
using DOpt::PointTable;

// Cell values that tell block, row and variable.
BlockRows Block(int rows, std::vector<int> columns, bool endsInCentroid, float mark) {
    PointTable points(static_cast<int>(columns.size()));
    std::vector<float> row(columns.size());
    for (int i = 0; i < rows; ++i) {
        for (std::size_t x = 0; x < columns.size(); ++x) {
            row[x] = mark + static_cast<float>(10 * i) + static_cast<float>(x);
        }
        points.Append(row);
    }
    return {points, endsInCentroid, std::move(columns)};
}

DOpt::LevelColumns Levels(int firstColumn, int levels) {
    PointTable settings(1);
    for (int i = 1; i <= levels; ++i) {
        const auto value = static_cast<float>(-i);
        settings.Append(std::span(&value, 1));
    }
    return {firstColumn, settings};
}

// Cell by cell from the row's number, as the order of the rows is told.
float Expected(const CandidateRequest& request, long long row, int column) {
    const auto rowsOf = [](const BlockRows* block) { return block->points.Size(); };
    const BlockRows* p = request.process;
    const BlockRows* m = request.mixture;
    long long copyRows = 1;
    const auto crossed = [&](const BlockRows* b) {
        return rowsOf(b) - (b->endsInCentroid ? 1 : 0);
    };
    const bool closes = p != nullptr && m != nullptr && p->endsInCentroid && m->endsInCentroid;
    if (p != nullptr && m != nullptr) {
        copyRows = static_cast<long long>(crossed(p)) * crossed(m) + (closes ? 1 : 0);
    } else if (p != nullptr || m != nullptr) {
        copyRows = rowsOf(p != nullptr ? p : m);
    }
    const long long within = row % copyRows;
    long long stride = copyRows;
    for (const auto& level : request.levels) {
        if (level.firstColumn == column) {
            return level.settings.Row(static_cast<int>(row / stride % level.settings.Size()))[0];
        }
        stride *= level.settings.Size();
    }
    for (const BlockRows* block : {p, m}) {
        for (std::size_t x = 0; block != nullptr && x < block->columns.size(); ++x) {
            if (block->columns[x] != column) {
                continue;
            }
            long long number = within;
            if (p != nullptr && m != nullptr) {
                number = closes && within == copyRows - 1 ? rowsOf(block) - 1
                         : block == p                     ? within / crossed(m)
                                                          : within % crossed(m);
            }
            return block->points.Row(static_cast<int>(number))[x];
        }
    }
    return -99;
}

TEST(CandidateRows, EveryCellIsTheOneItsRowNumberTells) {
    for (unsigned seed = 1; seed <= 200; ++seed) {
        std::mt19937 engine(seed);
        const auto draw = [&](int from, int to) {
            return from + static_cast<int>(engine() % static_cast<unsigned>(to - from + 1));
        };
        const BlockRows process = Block(draw(1, 5), {3, 0}, draw(0, 1) == 1, 1000);
        const BlockRows mixture = Block(draw(1, 5), {4}, draw(0, 1) == 1, 2000);
        CandidateRequest request;
        request.process = draw(0, 3) != 0 ? &process : nullptr;
        request.mixture = draw(0, 3) != 0 ? &mixture : nullptr;
        request.columns = 6;
        const int first = draw(1, 4);
        const int second = draw(1, 3);
        request.levels = {Levels(1, first), Levels(5, second)};
        request.combinations = first * second;
        NCDataMatrix<float> rows;
        ASSERT_EQ(CombineCandidates(request, {}, rows), DOpt::Success);
        for (int row = 1; row <= rows.SizeRows(); ++row) {
            for (int column = 1; column <= 6; ++column) {
                ASSERT_EQ(rows(row, column), Expected(request, row - 1, column - 1))
                    << "seed " << seed << " row " << row << " column " << column;
            }
        }
    }
}

TEST(CandidateRows, ALimitCountsCells) {
    const BlockRows process = Block(5, {0, 1}, true, 0);
    CandidateRequest request;
    request.process = &process;
    request.columns = 2;
    request.maxCells = 10;
    NCDataMatrix<float> rows;
    EXPECT_EQ(CombineCandidates(request, {}, rows), DOpt::Success);
    request.maxCells = 9;
    EXPECT_EQ(CombineCandidates(request, {}, rows), DOpt::OverLimit);
}

TEST(CandidateRows, ALimitHoldsWhereTheProductPasses64Bits) {
    const BlockRows process = Block(50000, {0}, false, 0);
    const BlockRows mixture = Block(50000, {1}, false, 0);
    CandidateRequest request;
    request.process = &process;
    request.mixture = &mixture;
    request.columns = std::numeric_limits<int>::max();
    request.combinations = 0x7ffffffe;
    request.maxCells = 1000;
    NCDataMatrix<float> rows;
    EXPECT_EQ(CombineCandidates(request, {}, rows), DOpt::OverLimit);
    request.maxCells = 0;
    EXPECT_EQ(CombineCandidates(request, {}, rows), DOpt::TooManyVertices);
}

TEST(CandidateRows, NoCombinationsGiveNoRows) {
    CandidateRequest request;
    request.columns = 1;
    request.combinations = 0;
    NCDataMatrix<float> rows(2, 1);
    EXPECT_EQ(CombineCandidates(request, {}, rows), DOpt::Success);
    EXPECT_EQ(rows.SizeRows(), 0);
}

TEST(CandidateRows, StopsAtEveryQuestion) {
    const BlockRows process = Block(100, {0}, true, 0);
    const BlockRows mixture = Block(60, {1}, true, 0);
    CandidateRequest request;
    request.process = &process;
    request.mixture = &mixture;
    request.columns = 3;
    request.levels = {Levels(2, 2)};
    request.combinations = 2;
    NCDataMatrix<float> rows;
    int questions = 0;
    ASSERT_EQ(CombineCandidates(
                  request, [&](float) { return ++questions < 0; }, rows),
              DOpt::Success);
    ASSERT_GT(questions, 20);
    for (int last = 1; last <= questions; ++last) {
        int asked = 0;
        EXPECT_EQ(CombineCandidates(
                      request, [&](float) { return ++asked == last; }, rows),
                  DOpt::Stopped)
            << last;
    }
}

}  // namespace
