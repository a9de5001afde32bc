#pragma once

#include <vector>

#include "evaluation/DesignStatistics.h"

/// One design of a search.
struct DOptResults : DesignStatistics::Results {
    bool balanced = false;
    std::vector<int> rows;  // candidates counted from 1, ascending, inclusions among them
};
