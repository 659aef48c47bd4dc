#pragma once

#include <string>

namespace tolvar {

// The UTF-8 form of one character.
std::string utf8(char32_t character);

}  // namespace tolvar
