#include "foundation/utl/QvString.h"

#include "foundation/utl/NumberText.h"

bool QvString::ToFloat(const char* text, float& value) {
    return text != nullptr && QvNumberText::Parse(text, value);
}
