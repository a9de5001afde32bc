#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

#include "designs/optimal/engine/BitTable.h"
#include "designs/optimal/engine/DOptStatus.h"

namespace DOpt {

/// Visits, in lexicographic order, every combination of `size` constraints that has at least
/// `minVertices` vertices in common. Whole branches are left out as soon as too few vertices or too
/// few constraints remain, so that the work follows the number of faces and not the number of
/// combinations.
class FaceWalk {
  public:
    using Word = BitTable::Word;
    /// Gets the vertices of a face, ascending. Anything but Success ends the walk with that status.
    using Visit = std::function<Status(const std::vector<int>& vertices)>;

    /// @param onConstraint vertices by constraint; borrowed
    FaceWalk(const BitTable& onConstraint, int constraints, int size, int minVertices);

    /// Stopped when `stop` says so, which is asked after every face and on the way.
    [[nodiscard]] Status Run(const Visit& visit, const StopTest& stop);

  private:
    // The faces that extend one combination by one constraint; only words with vertices are kept.
    struct Level {
        std::vector<int> wordNumbers;
        std::vector<int> constraints;
        std::vector<Word> sets;  // [constraints x wordNumbers], with room behind them

        [[nodiscard]] std::span<const Word> Set(std::size_t i) const {
            return std::span(sets).subspan(i * wordNumbers.size(), wordNumbers.size());
        }
    };

    void FillFirstLevel(const BitTable& onConstraint, int constraints);
    void Descend(std::size_t depth, std::size_t chosen);
    [[nodiscard]] Status VisitFaces(const Level& level);
    [[nodiscard]] Status Walk(std::size_t depth);
    [[nodiscard]] bool StopsOnTheWay();

    std::size_t size_;
    int minVertices_;
    std::vector<Level> levels_;        // by the number of constraints chosen
    std::vector<std::size_t> places_;  // of the chosen face's words
    std::vector<int> vertices_;
    const Visit* visit_ = nullptr;
    const StopTest* stop_ = nullptr;
    float share_ = 0;
    int untilStopTest_ = 0;
};

}  // namespace DOpt
