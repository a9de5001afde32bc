#include "designs/optimal/IOptimal.h"

#include <algorithm>
#include <boost/function.hpp>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <set>
#include <stdexcept>
#include <utility>

#include "designs/optimal/engine/ExchangeTable.h"
#include "designs/optimal/engine/InverseInformation.h"
#include "designs/optimal/engine/PaddedMatrix.h"
#include "foundation/mat/DlibMatrix.h"
#include "foundation/util/NCError.h"
#include "foundation/utl/ExceptionMessage.h"
#include "foundation/utl/Exceptions.h"
#include "foundation/utl/QvRandom.h"

namespace NCDOE {
namespace {

constexpr double cUnknown = -99.0;
// An exchange must gain this share of the new I-value.
constexpr double cSmallestGain = 0.001;

NCError Failure(const ExceptionMessage& message) {
    return {message, NCError::Severe};
}

void AssureNotCancelled(const boost::function<bool()>& cancelled) {
    if (cancelled && cancelled()) {
        throw CancelException();
    }
}

std::vector<const double*> RowPointers(const PaddedMatrix& matrix) {
    std::vector<const double*> rows;
    rows.reserve(matrix.Rows());
    for (std::size_t i = 0; i < matrix.Rows(); ++i) {
        rows.push_back(matrix.Row(i));
    }
    return rows;
}

PaddedMatrix ToPadded(const NCDataMatrix<float>& matrix) {
    PaddedMatrix result(static_cast<std::size_t>(matrix.SizeRows()),
                        static_cast<std::size_t>(matrix.SizeColumns()));
    for (int row = 1; row <= matrix.SizeRows(); ++row) {
        const auto from = matrix.RowSpan(row);
        std::copy(from.begin(), from.end(), result.Row(static_cast<std::size_t>(row - 1)));
    }
    return result;
}

/// Takes one element out; the last one closes the gap.
void RemoveFrom(std::vector<int>& pool, std::size_t at) {
    std::swap(pool[at], pool.back());
    pool.pop_back();
}

/// Draws all runs of a design without repetition and takes them out of the pool.
std::vector<int> DrawRuns(std::vector<int>& pool, std::size_t runs, std::mt19937& engine) {
    std::vector<int> design;
    while (design.size() < runs) {
        const std::size_t at = QvRandom::DrawBelow(engine, static_cast<std::uint32_t>(pool.size()));
        design.push_back(pool[at]);
        RemoveFrom(pool, at);
    }
    return design;
}

}  // namespace

struct IOptimal::Data {
    PaddedMatrix mCandidates;
    PaddedMatrix mMoments;
};

struct IOptimal::GenDesignArgs {
    std::vector<int> mPool;    // candidates that may still enter
    std::vector<int> mDesign;  // candidates of the present design, one per run
    double mIValue = cUnknown;
    ExchangeTable table;
};

IOptimal::IOptimal(const NCDataMatrix<float>& candidates) : data_(Init(candidates)) {}

std::shared_ptr<const IOptimal::Data> IOptimal::Init(const NCDataMatrix<float>& candidates) {
    if (candidates.IsEmpty()) {
        throw std::logic_error("Internal error in IOptimal::Init (1).");
    }
    auto data = std::make_shared<Data>();
    data->mCandidates = ToPadded(candidates);
    data->mMoments = InverseInformation::CrossProduct(RowPointers(data->mCandidates),
                                                      data->mCandidates.Columns());
    return data;
}

std::vector<int> IOptimal::GetDesign(unsigned int runs,
                                     int seed,
                                     unsigned int maxIterations,
                                     const std::vector<int>* start,
                                     // NOLINTNEXTLINE(performance-unnecessary-value-param)
                                     boost::function<bool()> cancelled) const {
    const boost::function<bool()> isCancelled = std::move(cancelled);
    const PaddedMatrix& candidates = data_->mCandidates;
    const std::size_t size = start ? start->size() : runs;
    if (size < candidates.Columns()) {
        throw Failure(ExceptionMessage::translate("The number of runs can not be less than {1}")
                      << candidates.Columns());
    }
    if (!start && size > candidates.Rows()) {
        // Runs are drawn without repetition.
        throw Failure(ExceptionMessage::translate("No design could be found"));
    }
    GenDesignArgs args{{}, {}, cUnknown, ExchangeTable(candidates, size)};
    args.mPool.resize(candidates.Rows());
    std::iota(args.mPool.begin(), args.mPool.end(), 0);
    if (start) {
        args.mDesign = *start;
    } else {
        args.mDesign.assign(size, 0);
        DrawStart(args, seed, maxIterations, isCancelled);
    }
    args.mIValue = GetIValue(args.mDesign);
    AssureNotCancelled(isCancelled);
    if (std::isnan(args.mIValue)) {
        // No exchange compares with it.
        return args.mDesign;
    }
    for (unsigned int left = maxIterations; NextIter(args) && left != 0; --left) {
        AssureNotCancelled(isCancelled);
    }
    return args.mDesign;
}

double IOptimal::GetIValue(const std::vector<int>& design) const {
    if (design.size() < data_->mCandidates.Columns()) {
        return IValueOf(std::vector<const double*>(design.size()));
    }
    const auto [lowest, highest] = std::minmax_element(design.begin(), design.end());
    if (*lowest < 0 || static_cast<std::size_t>(*highest) >= data_->mCandidates.Rows()) {
        throw std::invalid_argument("IOptimal::GetIValue : Candidate set row index out of range.");
    }
    return IValueOf(RowsOf(design));
}

double IOptimal::GetIValueOfRows(const DlibMatrix& rows) const {
    PaddedMatrix matrix(static_cast<std::size_t>(rows.nr()), static_cast<std::size_t>(rows.nc()));
    for (long i = 0; i < rows.nr(); ++i) {
        for (long j = 0; j < rows.nc(); ++j) {
            matrix(static_cast<std::size_t>(i), static_cast<std::size_t>(j)) = rows(i, j);
        }
    }
    if (matrix.Columns() != data_->mCandidates.Columns()) {
        throw std::invalid_argument("IOptimal::GetIValue : The columns must be the model's.");
    }
    return IValueOf(RowPointers(matrix));
}

double IOptimal::GetIValueOfRows(const NCDataMatrix<float>& rows) const {
    const PaddedMatrix matrix = ToPadded(rows);
    if (matrix.Columns() != data_->mCandidates.Columns()) {
        throw std::invalid_argument("IOptimal::GetIValue : The columns must be the model's.");
    }
    return IValueOf(RowPointers(matrix));
}

std::vector<const double*> IOptimal::RowsOf(const std::vector<int>& design) const {
    std::vector<const double*> rows;
    rows.reserve(design.size());
    for (const int row : design) {
        rows.push_back(data_->mCandidates.Row(static_cast<std::size_t>(row)));
    }
    return rows;
}

double IOptimal::IValueOf(const std::vector<const double*>& rows) const {
    const std::size_t columns = data_->mCandidates.Columns();
    if (rows.size() < columns) {
        throw std::invalid_argument(
            "IOptimal::GetIValue : The design must contain at least as many rows as there are "
            "variables.");
    }
    const auto inverse = InverseInformation::Find(InverseInformation::CrossProduct(rows, columns));
    if (!inverse) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    return static_cast<double>(rows.size()) *
           InverseInformation::TraceOfProduct(data_->mMoments, *inverse) /
           static_cast<double>(data_->mCandidates.Rows());
}

void IOptimal::DrawStart(GenDesignArgs& args,
                         int seed,
                         unsigned int attempts,
                         const boost::function<bool()>& cancelled) const {
    std::mt19937 engine =
        seed >= 0 ? std::mt19937(static_cast<std::uint32_t>(seed)) : QvRandom::MakeSeededEngine();
    const std::size_t runs = args.mDesign.size();
    for (unsigned int attempt = 0; attempt < attempts; ++attempt) {
        args.mDesign = DrawRuns(args.mPool, runs, engine);
        if (InverseInformation::AreStartRows(RowsOf(args.mDesign), data_->mCandidates.Columns())) {
            return;
        }
        const std::set<int> drawn(args.mDesign.begin(), args.mDesign.end());
        args.mPool.insert(args.mPool.end(), drawn.begin(), drawn.end());
        AssureNotCancelled(cancelled);
    }
    throw Failure(ExceptionMessage::translate("No design could be found"));
}

bool IOptimal::NextIter(GenDesignArgs& args) const {
    const PaddedMatrix& moments = data_->mMoments;
    auto inverse = InverseInformation::Find(
        InverseInformation::CrossProduct(RowsOf(args.mDesign), moments.Columns()));
    if (!inverse) {
        throw std::logic_error("Internal error in IOptimal::GetNextRow");
    }
    ExchangeTable::Step step;
    step.trace = InverseInformation::TraceOfProduct(moments, *inverse);
    step.spread =
        InverseInformation::Product(InverseInformation::Product(*inverse, moments), *inverse);
    step.inverse = std::move(*inverse);
    const ExchangeTable::Exchange best = args.table.FindBest(args.mPool, args.mDesign, step);
    if (best.pool < 0) {
        return false;
    }
    const int entering = args.mPool[static_cast<std::size_t>(best.pool)];
    if (!UpdateResult(args, best.change, best.pool, best.run)) {
        return false;
    }
    args.table.Replace(entering, best.run, step);
    return true;
}

bool IOptimal::UpdateResult(GenDesignArgs& args,
                            double change,
                            int poolIndex,
                            int designIndex) const {
    const double value = static_cast<double>(args.mDesign.size()) * change /
                             static_cast<double>(data_->mCandidates.Rows()) +
                         args.mIValue;
    if (!(value < args.mIValue) || !(args.mIValue - value >= cSmallestGain * value)) {
        return false;
    }
    args.mIValue = value;
    const auto at = static_cast<std::size_t>(poolIndex);
    args.mDesign[static_cast<std::size_t>(designIndex)] = args.mPool[at];
    // Deliberate: the run that leaves does not go back into the pool, so a search cannot turn
    // round.
    RemoveFrom(args.mPool, at);
    return true;
}

}  // namespace NCDOE
