#pragma once

#include <memory>
#include <vector>

class DesignBuilder;

/// The builders that fit a side of a plate, in the order of registration: repeated levels, then the
/// rows made from classical designs, then those with tables of their own.
[[nodiscard]] std::vector<std::shared_ptr<const DesignBuilder>> MakePlateRows();
