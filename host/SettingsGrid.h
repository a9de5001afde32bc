#pragma once

#include "host/Study.h"

/// The runs of an even grid over the region of a study.
struct SettingsGrid {
    /// [points x expanded factor count] in real units, Qualitative factors as coding columns.
    NCDataMatrix<float> points;
    long long all = 0;  // points of the grid before those outside the region were left out
};

/// Every combination of settings: continuous factors in even steps of their (transformed) range,
/// the levels of the others, shares of a mixture in even steps of what the low settings leave.
/// Points outside the ranges and constraints are left out.
/// @param levels settings of a continuous factor
/// @throws Exception for a grid of too many points, for factors that a grid cannot hold, and when
///         no point is left; CancelException when the user asked to stop
[[nodiscard]] SettingsGrid MakeSettingsGrid(const Study& study, long long levels);
