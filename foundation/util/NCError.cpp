#include "foundation/util/NCError.h"

NCError::~NCError() = default;
