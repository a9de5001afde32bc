#pragma once

#include "host/DesignMaker.h"

/// Appends the mirror image of the runs to a design that was just built.
/// @throws Exception saying why the design cannot be folded over
void MakeFoldOver(BuiltDesign& built, const Study& study);
