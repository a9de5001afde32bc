#pragma once

#include "frame/Validating.h"

/// Makes searches and shuffles reproducible for the life of the object.
class ValidatingScope {
  public:
    ValidatingScope() { Validating::Set(); }
    ValidatingScope(const ValidatingScope&) = delete;
    ValidatingScope& operator=(const ValidatingScope&) = delete;
    ~ValidatingScope() { Validating::Clear(); }
};
