#include "designs/optimal/engine/DOptExchange.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "designs/optimal/engine/InformationInverse.h"

namespace DOpt {

namespace {

/// Makes the information matrix of an unfinished start design regular.
constexpr double cRidge = 1e-4;

bool AreUsable(const ExchangeModel& model, const std::vector<int>& candidates) {
    return std::ranges::all_of(candidates, [&model](int candidate) {
        return candidate >= 0 && candidate < model.Candidates() && model.IsUsable(candidate);
    });
}

std::vector<int> Shifted(std::vector<int> candidates, int by) {
    for (int& candidate : candidates) {
        candidate += by;
    }
    return candidates;
}

// Code of the level that a run has in the coding columns from `column` on.
double LevelCode(std::span<const float> row, int column, int levels) {
    double code = 0;
    double weight = 1;
    for (int e = 0; e + 1 < levels; ++e, weight *= 3) {
        const auto cell =
            static_cast<int>(row[static_cast<std::size_t>(column) + static_cast<std::size_t>(e)]);
        code += weight * (cell + 1);
    }
    return code;
}

}  // namespace

bool IsBalanced(const ExchangeModel& model,
                const std::vector<int>& rows,
                const BalanceMap& balance) {
    return std::ranges::all_of(balance, [&](const auto& entry) {
        const auto& [column, levels] = entry;
        std::map<double, int> counts;
        for (const int row : rows) {
            ++counts[LevelCode(model.Row(row - 1), column - 1, levels)];
        }
        return counts.size() == static_cast<std::size_t>(levels) &&
               std::ranges::all_of(counts, [&counts](const auto& count) {
                   return count.second == counts.begin()->second;
               });
    });
}

DOptExchange::DOptExchange(ExchangeModel& model, ExchangeSettings settings)
    : model_(model),
      settings_(std::move(settings)),
      inclusions_(Shifted(settings_.inclusions, -1)),
      search_(model, settings_.width, settings_.progress),
      update_(model) {
    if (settings_.runs > model.Candidates()) {
        status_ = IllegalArgument;
    } else if (!AreUsable(model, inclusions_)) {
        status_ = IllegalInclusions;
    }
    // Deliberate: the process-wide generator, seeded anew for every run count.
    std::srand(settings_.seed);
}

Status DOptExchange::Poll() const {
    return settings_.progress(Round, 0);
}

Status DOptExchange::RepetitionLoop(std::vector<ExchangeResult>& results,
                                    int repetitions,
                                    const BalanceMap& balance,
                                    bool onlyBalanced) {
    if (repetitions < 1) {
        return status_ = NoResult;
    }
    for (int repetition = 1; repetition <= repetitions; ++repetition) {
        ExchangeResult result;
        status_ = FindDesign(result);
        if (status_ != Success) {
            return status_;
        }
        result.balanced = !balance.empty() && IsBalanced(model_, result.rows, balance);
        const bool isSound = result.figures.conditionNumber != -99.0F &&
                             result.figures.conditionNumber <= cMaxConditionNumber;
        const bool isWanted = balance.empty() || result.balanced || !onlyBalanced;
        if (isSound && isWanted) {
            results.push_back(std::move(result));
        }
        const int percent = static_cast<int>(repetition * 100LL / repetitions);
        status_ = settings_.progress(RepetitionDone, static_cast<float>(percent));
        if (status_ != Success) {
            return status_;
        }
    }
    return status_;
}

Status DOptExchange::FindDesign(ExchangeResult& result) {
    const StopTest stop = [this](float) { return Poll() != Success; };
    Status status = model_.ResidualisePotential(stop, settings_.cancel);
    if (status == Success) {
        status = StartDesign();
    }
    if (status == Success) {
        status = ExchangeRounds();
    }
    if (status != Success) {
        return status;
    }
    std::vector<int> rows = AllRows();
    std::ranges::sort(rows);
    status = ComputeFigures(model_, rows, settings_.cancel, result.figures);
    result.rows = Shifted(std::move(rows), 1);
    return status;
}

std::vector<int> DOptExchange::AllRows() const {
    std::vector<int> rows = state_.rows;
    rows.insert(rows.end(), inclusions_.begin(), inclusions_.end());
    return rows;
}

Status DOptExchange::StartDesign() {
    Status status = PrepareStart();
    if (status != Success) {
        return status;
    }
    const std::vector<int> drawn = DrawPoints();
    status = CompleteStart(drawn);
    // In a design of few runs the drawn points may depend on one another; that is no fault of the
    // candidates, and need not end the search.
    if (status == Singular && !drawn.empty()) {
        status = CompleteStart({});
    }
    std::ranges::sort(state_.rows);
    return status == Success ? Poll() : status;
}

Status DOptExchange::CompleteStart(const std::vector<int>& drawn) {
    state_ = *start_;
    for (const int point : drawn) {
        update_.Enter(point, state_);
    }
    const Status status = FillUp();
    // Deliberate: with a drawn inclusion the ridge stays in the inverse.
    return status != Success || HasInclusionAmong(drawn) ? status : RecomputeInverse();
}

const SquareMatrix& DOptExchange::InclusionsInfo() {
    if (!inclusionsInfo_) {
        inclusionsInfo_ = model_.CrossProducts(inclusions_);
        for (int j = model_.PrimaryColumns(); j < model_.Columns(); ++j) {
            const auto index = static_cast<std::size_t>(j);
            (*inclusionsInfo_)(index, index) += ExchangeModel::cPotentialScale;
        }
    }
    return *inclusionsInfo_;
}

// The state without design points is the same in every repetition.
Status DOptExchange::PrepareStart() {
    const Status poll = Poll();
    if (poll != Success || start_) {
        return poll;
    }
    SquareMatrix information = InclusionsInfo();
    for (std::size_t j = 0; j < information.Size(); ++j) {
        information(j, j) += cRidge;
    }
    InformationInverse inverted;
    const Status status = InvertInformation(information, settings_.cancel, inverted);
    if (status != Success) {
        return status;
    }
    DOptDesignState start;
    start.inverse = std::move(inverted.inverse);
    start.logDeterminant = static_cast<float>(inverted.logDeterminant);
    model_.ComputeVariances(start.inverse, start.variances);
    start_ = std::move(start);
    return Poll();
}

// Deliberate: the draw is modulo the run count, so only the first candidates can be drawn; the
// order of candidates matters.
std::vector<int> DOptExchange::DrawPoints() const {
    int usable = 0;
    for (int k = 0; k < settings_.runs; ++k) {
        usable += model_.IsUsable(k) ? 1 : 0;
    }
    const int wanted = std::clamp(settings_.randomPoints, 0, usable);
    std::vector<int> points;
    while (static_cast<int>(points.size()) < wanted) {
        const int point = std::rand() % settings_.runs;
        if (model_.IsUsable(point) && std::ranges::find(points, point) == points.end()) {
            points.push_back(point);
        }
    }
    return points;
}

// Points of the largest variance; the same candidate may be taken again.
Status DOptExchange::FillUp() {
    while (static_cast<int>(state_.rows.size()) < settings_.runs) {
        const Status poll = Poll();
        if (poll != Success) {
            return poll;
        }
        const int point = LargestVariance();
        if (point < 0) {
            return Singular;
        }
        update_.Enter(point, state_);
    }
    return Success;
}

// The first of the largest; -1 when no candidate can be used.
int DOptExchange::LargestVariance() const {
    int largest = -1;
    for (int k = 0; k < model_.Candidates(); ++k) {
        if (model_.IsUsable(k) &&
            (largest < 0 || state_.variances[static_cast<std::size_t>(k)] >
                                state_.variances[static_cast<std::size_t>(largest)])) {
            largest = k;
        }
    }
    return largest;
}

bool DOptExchange::HasInclusionAmong(const std::vector<int>& points) const {
    return std::ranges::find_first_of(points, inclusions_) != points.end();
}

// Removes the ridge, and any drift of the updates.
Status DOptExchange::RecomputeInverse() {
    const Status poll = Poll();
    if (poll != Success) {
        return poll;
    }
    SquareMatrix information = model_.CrossProducts(state_.rows);
    information.Add(InclusionsInfo());
    InformationInverse inverted;
    const Status status = InvertInformation(information, settings_.cancel, inverted);
    if (status != Success) {
        return status;
    }
    state_.inverse = std::move(inverted.inverse);
    state_.logDeterminant = static_cast<float>(inverted.logDeterminant);
    model_.ComputeVariances(state_.inverse, state_.variances);
    return Poll();
}

}  // namespace DOpt
