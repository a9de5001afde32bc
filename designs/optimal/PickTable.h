#pragma once

#include "foundation/mat/NCDataMatrix.h"
#include "frame/CandidateSet.h"

class DesignOptions;
class DOptFactorAdapter;
class DOptGen;

namespace DOpt {

/// The rows that a search picks from: inclusions, then the candidates, repeated as a whole where
/// there are too few.
struct PickTable {
    NCDataMatrix<float> rows;  // in the adapter's order
    int inclusions = 0;        // how many of the first rows
    NumData counts;            // of the candidates by kind
};

/// Takes the stored candidates of the options, or generates new ones, and puts the inclusions on
/// top. The generator learns its variables and their limits, but not the rows.
/// @param layer of the stored set, counted from 1; 0 or less for the whole set
/// @param leastRows as many rows as a list of picks needs
/// @throws Exception for no candidates or inclusions of another width; CancelException on a stop
[[nodiscard]] PickTable MakePickTable(DOptGen& generator,
                                      const DOptFactorAdapter& adapter,
                                      const DesignOptions& options,
                                      int layer,
                                      int leastRows,
                                      const bool* cancel);

}  // namespace DOpt
