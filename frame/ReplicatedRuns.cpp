// Which runs of a design are repeated when replicated runs are asked for.

#include <numeric>
#include <span>
#include <vector>

#include "foundation/utl/QvRandom.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "frame/Validating.h"

namespace {

// The runs in random order, repeated from the front when more are asked for than there are; in
// order of the design where results must repeat.
std::vector<int> ShuffledRuns(int rows, int count) {
    std::vector<int> order(static_cast<std::size_t>(rows));
    std::iota(order.begin(), order.end(), 1);
    if (!Validating::Get()) {
        std::mt19937 engine = QvRandom::MakeSeededEngine();
        QvRandom::Shuffle(std::span<int>(order), engine);
    }
    std::vector<int> chosen;
    chosen.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        chosen.push_back(order[static_cast<std::size_t>(i % rows)]);
    }
    return chosen;
}

}  // namespace

void NCDesign::AddReplicatedRuns(NCDataMatrix<float>& matrix,
                                 const Factors& /*factors*/,
                                 const DesignOptions& options) const {
    const int rows = matrix.SizeRows();
    const int count = static_cast<int>(options.GetReplicatedRuns());
    if (count <= 0 || rows == 0) {
        return;
    }
    const std::vector<int> chosen = ShuffledRuns(rows, count);
    matrix.InsertRows(rows + 1, count);
    for (int i = 0; i < count; ++i) {
        matrix.SetRow(rows + 1 + i, matrix.GetRow(chosen[static_cast<std::size_t>(i)]));
    }
}
