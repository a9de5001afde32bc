#include "designs/optimal/engine/FaceWalk.h"

#include <algorithm>
#include <bit>

namespace DOpt {

namespace {

// Branches between two questions whether to stop where no face turns up.
constexpr int cStopInterval = 1024;

}  // namespace

FaceWalk::FaceWalk(const BitTable& onConstraint, int constraints, int size, int minVertices)
    : size_(static_cast<std::size_t>(std::max(size, 0))),
      minVertices_(minVertices),
      levels_(std::max<std::size_t>(size_, 1)) {
    if (size_ > 0 && size <= constraints) {
        FillFirstLevel(onConstraint, constraints);
    }
}

void FaceWalk::FillFirstLevel(const BitTable& onConstraint, int constraints) {
    Level& first = levels_.front();
    for (std::size_t word = 0; word < onConstraint.Words(); ++word) {
        first.wordNumbers.push_back(static_cast<int>(word));
    }
    for (int constraint = 0; constraint < constraints; ++constraint) {
        const auto vertices = onConstraint.Row(constraint);
        if (HasAtLeast(vertices, minVertices_)) {
            first.constraints.push_back(constraint);
            first.sets.insert(first.sets.end(), vertices.begin(), vertices.end());
        }
    }
}

Status FaceWalk::Run(const Visit& visit, const StopTest& stop) {
    visit_ = &visit;
    stop_ = &stop;
    untilStopTest_ = cStopInterval;
    return levels_.front().constraints.empty() ? Success : Walk(1);
}

bool FaceWalk::StopsOnTheWay() {
    if (--untilStopTest_ > 0) {
        return false;
    }
    untilStopTest_ = cStopInterval;
    return MustStop(*stop_, share_);
}

// `depth` constraints will be chosen when one of this level is.
Status FaceWalk::Walk(std::size_t depth) {
    const Level& level = levels_[depth - 1];
    if (depth == size_) {
        return VisitFaces(level);
    }
    const std::size_t missing = size_ - depth;
    for (std::size_t i = 0; i + missing < level.constraints.size(); ++i) {
        if (depth == 1) {
            share_ = static_cast<float>(i) / static_cast<float>(level.constraints.size());
        }
        if (StopsOnTheWay()) {
            return Stopped;
        }
        Descend(depth, i);
        if (levels_[depth].constraints.size() < missing) {
            continue;
        }
        const Status status = Walk(depth + 1);
        if (status != Success) {
            return status;
        }
    }
    return Success;
}

void FaceWalk::Descend(std::size_t depth, std::size_t chosen) {
    const Level& from = levels_[depth - 1];
    Level& to = levels_[depth];
    to.wordNumbers.clear();
    to.constraints.clear();
    places_.clear();
    const auto face = from.Set(chosen);
    for (std::size_t place = 0; place < face.size(); ++place) {
        if (face[place] != 0) {
            places_.push_back(place);
            to.wordNumbers.push_back(from.wordNumbers[place]);
        }
    }
    const std::size_t words = places_.size();
    to.sets.resize(std::max(to.sets.size(), from.constraints.size() * words));
    Word* next = to.sets.data();
    for (std::size_t i = chosen + 1; i < from.constraints.size(); ++i) {
        const Word* other = from.Set(i).data();
        for (std::size_t word = 0; word < words; ++word) {
            next[word] = face[places_[word]] & other[places_[word]];
        }
        if (HasAtLeast({next, words}, minVertices_)) {
            to.constraints.push_back(from.constraints[i]);
            next += words;
        }
    }
}

Status FaceWalk::VisitFaces(const Level& level) {
    for (std::size_t i = 0; i < level.constraints.size(); ++i) {
        const auto face = level.Set(i);
        vertices_.clear();
        for (std::size_t place = 0; place < face.size(); ++place) {
            for (Word rest = face[place]; rest != 0; rest &= rest - 1) {
                vertices_.push_back(level.wordNumbers[place] * BitTable::cWordBits +
                                    std::countr_zero(rest));
            }
        }
        const Status status = (*visit_)(vertices_);
        if (status != Success) {
            return status;
        }
        if (MustStop(*stop_, share_)) {
            return Stopped;
        }
    }
    return Success;
}

}  // namespace DOpt
