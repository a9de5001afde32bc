#pragma once

#include <cstddef>
#include <vector>

#include "designs/stability/BreakCheck.h"
#include "designs/stability/SubsetSplit.h"

/// How well the subsets of a split are balanced, as the search looks at it.
///
/// The rows are never made. How often levels occur, alone and in pairs, is counted over the paths
/// through the states of the split, in a time that depends on the factors and the reduction but not
/// on the number of runs. All counts are whole numbers, so the codes are those of the rows.
class SplitBalance {
  public:
    /// A subset with this code has no flaw.
    static constexpr int cPerfect = 15;

    /// @param groups borrowed
    /// @throws std::bad_alloc for more states than the memory has room for
    explicit SplitBalance(const LevelGroups& groups);

    /// The quality code of every subset, valid until the next call; the sum of
    ///   8  no two rows are equal, which holds in every subset of a division
    ///   4  in every pair of factors the pairs of levels occur equally often, up to 1
    ///   2  every level of every factor occurs, equally often up to 1
    ///   1  and as evenly as the run count allows
    /// @throws CancelException
    const std::vector<int>& GetCodes(const SubsetSplit& split, const BreakCheck& checkBreak);

  private:
    // Numbers of rows, or of parts of rows. One entry a state or a subset.
    using Counts = std::vector<int>;
    struct Extremes {
        Counts least;
        Counts most;
    };

    [[nodiscard]] std::size_t Order() const { return static_cast<std::size_t>(order_); }
    void TabulateSquares(const SubsetSplit& split);
    void CountPaths();
    void CountLevels();
    void CheckPairs(const BreakCheck& checkBreak);
    /// Ways to complete rows that take `group` at `factor`, by the state there.
    void CompletionsFrom(int factor, int group, Counts& ways) const;
    /// Turns ways from the states after a factor into ways from those before it.
    void StepBack(int factor, const Counts& after, Counts& before) const;
    /// For one group of a later factor, the cells of the cross tables with an earlier factor.
    void AddCells(int factor, const Counts& ways, int laterFactor, int laterGroup);
    void JudgePairs(int laterFactor);
    void SetCodes();
    [[nodiscard]] int LevelCode(std::size_t subset) const;
    [[nodiscard]] bool IsInTable(std::size_t subset, int factor, int group) const {
        return group < largestLevel_[static_cast<std::size_t>(factor)][subset];
    }
    [[nodiscard]] const int* NextStates(int factor, int group) const {
        return next_[static_cast<std::size_t>(factor)].data() +
               static_cast<std::size_t>(group) * Order();
    }

    const LevelGroups& groups_;
    int factors_;
    int order_;                        // groups, states and subsets
    std::vector<Counts> next_;         // by factor: the next state, by group and state
    std::vector<Counts> completions_;  // by factor: rows that begin there in a state
    std::vector<Counts> prefixes_;     // by factor: ways there, by subset and state
    std::vector<std::vector<Counts>>
        levelCounts_;                   // by factor and group: rows with one of its levels
    std::vector<Counts> largestLevel_;  // by factor: the largest level in a subset
    std::vector<Extremes> extremes_;    // by earlier factor, of the cross tables
    std::vector<char> near_;
    std::vector<char> strict_;
    Counts ways_;
    Counts before_;
    Counts cells_;
    std::vector<int> codes_;
};
