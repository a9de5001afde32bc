#include "frame/Validating.h"

namespace {

bool gValidating = false;

}  // namespace

namespace Validating {

bool Get() {
    return gValidating;
}

void Set() {
    gValidating = true;
}

void Clear() {
    gValidating = false;
}

}  // namespace Validating
