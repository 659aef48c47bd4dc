#include "engine/SelectColor.h"

namespace tolvar {

SelectColor gSelectColor = kDefaultSelectColor;

}  // namespace tolvar
