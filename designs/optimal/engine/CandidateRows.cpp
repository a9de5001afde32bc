#include "designs/optimal/engine/CandidateRows.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

namespace DOpt {

namespace {

constexpr float cMissing = -99.0F;
constexpr unsigned long long cMaxRows = std::numeric_limits<int>::max();
constexpr long long cStopInterval = 1024;  // rows between two questions whether to stop

// Rows of a block that are crossed with those of the other.
int CrossedRows(const BlockRows& block) {
    return block.points.Size() - (block.endsInCentroid ? 1 : 0);
}

bool HasCentroidRow(const BlockRows& process, const BlockRows& mixture) {
    return process.endsInCentroid && mixture.endsInCentroid;
}

unsigned long long RowsOfOneCopy(const CandidateRequest& request) {
    if (request.process != nullptr && request.mixture != nullptr) {
        return static_cast<unsigned long long>(CrossedRows(*request.process)) *
                   static_cast<unsigned long long>(CrossedRows(*request.mixture)) +
               (HasCentroidRow(*request.process, *request.mixture) ? 1 : 0);
    }
    const BlockRows* block = request.process != nullptr ? request.process : request.mixture;
    return block != nullptr ? static_cast<unsigned long long>(block->points.Size()) : 1;
}

// Fills the result row by row, and asks now and then whether to go on.
class RowWriter {
  public:
    RowWriter(NCDataMatrix<float>& result, const StopTest& stop) : result_(result), stop_(stop) {}

    // Writes one row; the blocks may be null. False to stop.
    bool Write(const BlockRows* process, int processRow, const BlockRows* mixture, int mixtureRow) {
        const auto row = result_.RowSpan(++written_);
        Place(process, processRow, row);
        Place(mixture, mixtureRow, row);
        return GoesOn();
    }
    // Repeats the first rows.
    bool Copy(int rows) {
        for (int row = 1; row <= rows; ++row) {
            std::ranges::copy(result_.RowSpan(row), result_.RowSpan(++written_).begin());
            if (!GoesOn()) {
                return false;
            }
        }
        return true;
    }
    bool GoesOn() {
        return ++steps_ % cStopInterval != 0 ||
               !MustStop(stop_,
                         static_cast<float>(written_) / static_cast<float>(result_.SizeRows()));
    }

  private:
    static void Place(const BlockRows* block, int row, std::span<float> target) {
        for (std::size_t i = 0; block != nullptr && i < block->columns.size(); ++i) {
            target[static_cast<std::size_t>(block->columns[i])] = block->points.Row(row)[i];
        }
    }

    NCDataMatrix<float>& result_;
    const StopTest& stop_;
    int written_ = 0;
    long long steps_ = 0;
};

bool CrossProcessMixture(const BlockRows& process, const BlockRows& mixture, RowWriter& writer) {
    for (int i = 0; i < CrossedRows(process); ++i) {
        for (int j = 0; j < CrossedRows(mixture); ++j) {
            if (!writer.Write(&process, i, &mixture, j)) {
                return false;
            }
        }
    }
    return !HasCentroidRow(process, mixture) ||
           writer.Write(&process, process.points.Size() - 1, &mixture, mixture.points.Size() - 1);
}

bool WriteFirstCopy(const CandidateRequest& request, RowWriter& writer) {
    if (request.process != nullptr && request.mixture != nullptr) {
        return CrossProcessMixture(*request.process, *request.mixture, writer);
    }
    const BlockRows* block = request.process != nullptr ? request.process : request.mixture;
    const int rows = block != nullptr ? block->points.Size() : 1;
    for (int row = 0; row < rows; ++row) {
        if (!writer.Write(block, row, nullptr, 0)) {
            return false;
        }
    }
    return true;
}

// All rows of one copy have the same levels.
bool FillLevelColumns(const CandidateRequest& request,
                      int rowsOfOneCopy,
                      RowWriter& writer,
                      NCDataMatrix<float>& result) {
    for (int row = 1; row <= result.SizeRows(); ++row) {
        long long counter = (row - 1) / rowsOfOneCopy;
        for (const LevelColumns& level : request.levels) {
            const int setting = static_cast<int>(counter % level.settings.Size());
            counter /= level.settings.Size();
            std::ranges::copy(level.settings.Row(setting),
                              result.RowSpan(row).begin() + level.firstColumn);
        }
        if (!writer.GoesOn()) {
            return false;
        }
    }
    return true;
}

}  // namespace

Status CombineCandidates(const CandidateRequest& request,
                         const StopTest& stop,
                         NCDataMatrix<float>& result) {
    const unsigned long long rows = RowsOfOneCopy(request);
    const auto combinations = static_cast<unsigned long long>(std::max(request.combinations, 0LL));
    if (rows == 0 || combinations == 0) {
        result.Clear();
        return Success;
    }
    const auto columns = static_cast<unsigned long long>(request.columns);
    // Divided instead of multiplied: the product may pass 64 bits.
    if (request.maxCells > 0 && rows > request.maxCells / combinations / columns) {
        return OverLimit;
    }
    if (rows > cMaxRows / combinations) {
        return TooManyVertices;
    }
    try {
        result =
            NCDataMatrix<float>(static_cast<int>(rows * combinations), request.columns, cMissing);
    } catch (const std::bad_alloc&) {
        return OutOfMemory;
    } catch (const std::length_error&) {
        return OutOfMemory;
    }
    RowWriter writer(result, stop);
    bool goesOn = WriteFirstCopy(request, writer);
    for (unsigned long long copy = 1; goesOn && copy < combinations; ++copy) {
        goesOn = writer.Copy(static_cast<int>(rows));
    }
    goesOn = goesOn && FillLevelColumns(request, static_cast<int>(rows), writer, result);
    return goesOn ? Success : Stopped;
}

}  // namespace DOpt
