#include "rules/GameOutput.h"

#include <cstdarg>

namespace tolvar {

void GameOutput::print(const char* format, ...) const {
    if (stream_ == nullptr) return;
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stream_, format, arguments);
    va_end(arguments);
}

}  // namespace tolvar
