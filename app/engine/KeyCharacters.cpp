#include "engine/Host.h"

namespace tolvar {

char32_t firstKeyCharacter(const CurrentEvent& event) {
    const std::string& s = event.characters;
    if (s.empty()) return 0;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(s[i]); };
    const unsigned char lead = byte(0);
    int extra = 0;
    char32_t c = 0;
    if (lead < 0x80) return lead;
    if ((lead & 0xE0) == 0xC0) extra = 1, c = lead & 0x1F;
    else if ((lead & 0xF0) == 0xE0) extra = 2, c = lead & 0x0F;
    else if ((lead & 0xF8) == 0xF0) extra = 3, c = lead & 0x07;
    else return 0;
    if (s.size() < static_cast<std::size_t>(extra) + 1) return 0;
    for (int i = 1; i <= extra; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return 0;
        c = (c << 6) | (byte(i) & 0x3F);
    }
    return c;
}

}  // namespace tolvar
