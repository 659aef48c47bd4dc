#include "presentation/DrawingGlobals.h"

namespace tolvar {

BorderColor gBorderColor = kDefaultBorderColor;
std::int64_t rotValue = 0;

}  // namespace tolvar
