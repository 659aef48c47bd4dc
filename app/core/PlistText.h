// The XML text of a value, handed out in pieces as it is written, so that a fingerprint of the
// rules costs neither a copy of them in the library's nodes nor the whole text at once.
#pragma once

#include <functional>
#include <string_view>

#include "core/PropertyList.h"

namespace tolvar {

// Hands out, in order, pieces whose concatenation is exactly toXmlPropertyList(value).
void writeXmlPropertyList(const Value& value, const std::function<void(std::string_view)>& out);

}  // namespace tolvar
