#include "foundation/utl/Exceptions.h"

// Out of line, so that each class has its type information in one library and a handler in another
// library finds it.
Exception::~Exception() = default;
InvalidOperationException::~InvalidOperationException() = default;
CancelException::~CancelException() = default;
