#pragma once

#include <vector>

/// Collects columns of numbers and tells of each new one whether it is a combination of those
/// collected so far.
class IndependentColumns {
  public:
    /// Takes the column and answers true, or answers false for a combination of earlier ones, which
    /// is not taken.
    bool Add(std::vector<double> column);

  private:
    std::vector<std::vector<double>> basis_;  // orthogonal, of length 1
};
