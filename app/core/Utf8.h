#pragma once

#include <string>

namespace tolvar {

// The UTF-8 form of one character.
std::string utf8(char32_t character);

// text with every byte that does not belong to a well-formed UTF-8 character (a stray
// continuation byte, a cut sequence, an overlong form, a surrogate) replaced by U+FFFD.
std::string validUtf8(const std::string& text);

}  // namespace tolvar
