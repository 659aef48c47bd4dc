// The colour of the outline round a selected piece; the removal flash changes it for six frames.
#pragma once

namespace tolvar {

struct SelectColor {
    float red, green, blue;
};

inline constexpr SelectColor kDefaultSelectColor{0.5f, 0.1f, 0.1f};
extern SelectColor gSelectColor;

}  // namespace tolvar
