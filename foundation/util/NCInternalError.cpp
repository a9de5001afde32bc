#include "foundation/util/NCInternalError.h"

NCInternalError::~NCInternalError() = default;
