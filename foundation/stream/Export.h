#pragma once

/// Marks what the shared libraries export; everything else is hidden.
#define QORVA_EXPORT __attribute__((visibility("default")))
