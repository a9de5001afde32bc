#pragma once

#include <functional>

#include "designs/optimal/engine/DOptStatus.h"

class NCProgress;

namespace DOpt {

/// What a search reports; the numbers are fixed.
enum EClassName : int { RepetitionDone = 1, Round = 2, Step = 3, SubStep = 4, Base = 5 };

/// Called by a search at safe points. Anything but Success ends the search.
using ProgressEvent = std::function<Status(EClassName event, float value)>;

/// The callback that shows a search on a progress display and passes on a stop request. Both
/// pointers are borrowed and may be null.
[[nodiscard]] ProgressEvent MakeProgressEvent(NCProgress* progress, const bool* cancel);

/// The question of the numeric kernels: shows `share` as the part done of the range 0 to `full`;
/// a negative share only asks.
[[nodiscard]] StopTest MakeStopTest(NCProgress* progress, const bool* cancel, float full);

}  // namespace DOpt
