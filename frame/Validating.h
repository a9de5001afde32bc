#pragma once

/// The process-wide switch to reproducible searches and shuffles. It is not locked.
namespace Validating {

[[nodiscard]] bool Get();
/// On for the rest of the process, as hosts see it.
void Set();
/// Off again, between two checks of one process.
void Clear();

}  // namespace Validating
