#pragma once

#include <functional>

namespace DOpt {

/// What a step of the D-optimal engine ended with. The numbers are shown to the user.
enum Status : int {
    Success = 0,
    OutOfMemory = 5001,
    Singular = 5005,
    NotInvertible = 5006,
    Inconsistent = 6001,     // the constraints leave nothing of the region
    TooManyVertices = 6002,  // or level combinations
    MissingObject = 6003,
    NotConverged = 6004,
    IllegalFace = 6005,
    TooManyCentroids = 6006,
    IllegalArgument = 6007,
    MissingCentroids = 6008,
    NoRange = 6010,
    Cancelled = 6011,
    MissingSource = 6012,
    BuiltTwice = 6013,
    MissingResult = 6014,
    NoCentroidPlan = 6015,  // no failure: there are no centroids to compute
    Stopped = 6016,         // what a progress callback answers
    NoDeterminant = 6017,
    IllegalInclusions = 6018,
    OverLimit = 6019,  // the caller's limit on the candidate set
    NoResult = 6020,
    IllegalFile = 6021
};

/// The user asked to stop; never reported as a failure.
[[nodiscard]] constexpr bool IsBreak(Status status) {
    return status == Cancelled || status == Stopped;
}

/// Asks at a safe point whether to go on. `share` is the part of the present step that is done,
/// from 0 to 1, or negative where it is not known. Returns true to stop. An empty function never
/// stops.
using StopTest = std::function<bool(float share)>;

inline constexpr float cUnknownShare = -1;

[[nodiscard]] inline bool MustStop(const StopTest& stop, float share) {
    return stop && stop(share);
}

}  // namespace DOpt
