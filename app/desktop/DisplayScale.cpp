#include "desktop/DisplayScale.h"

#include <SDL.h>
#ifdef SDL_VIDEO_DRIVER_X11
#include <X11/Xlib.h>
#endif

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <sstream>

namespace tolvar {

namespace {
constexpr double kUsualDpi = 96.0;
constexpr double kUsualScreenLines = 1080.0;
constexpr double kSteps = 4.0;  // quarters

// The X server's resource text (xrdb), or empty.
std::string xResources() {
#ifdef SDL_VIDEO_DRIVER_X11
    const char* driver = SDL_GetCurrentVideoDriver();
    if (driver == nullptr || std::string(driver) != "x11") return {};
    struct DisplayCloser {
        void operator()(Display* d) const { XCloseDisplay(d); }
    };
    const std::unique_ptr<Display, DisplayCloser> display(XOpenDisplay(nullptr));
    if (!display) return {};
    const char* text = XResourceManagerString(display.get());
    return text ? std::string(text) : std::string();
#else
    return {};
#endif
}
}  // namespace

float roundedScale(double raw) {
    if (!std::isfinite(raw)) return kSmallestDisplayScale;
    const double stepped = std::round(raw * kSteps) / kSteps;
    return static_cast<float>(std::clamp(stepped, double{kSmallestDisplayScale}, double{kLargestDisplayScale}));
}

float scaleFromSetting(const char* text) {
    if (text == nullptr || *text == '\0') return 0.0f;
    char* end = nullptr;
    const double value = std::strtod(text, &end);
    if (end == text || *end != '\0' || !(value > 0.0)) return 0.0f;
    return roundedScale(value);
}

float scaleFromResources(const std::string& resources) {
    std::istringstream lines(resources);
    std::string line;
    while (std::getline(lines, line)) {
        const std::string key = "Xft.dpi:";
        if (line.compare(0, key.size(), key) != 0) continue;
        const double dpi = std::strtod(line.c_str() + key.size(), nullptr);
        return dpi > 0.0 ? roundedScale(dpi / kUsualDpi) : 0.0f;
    }
    return 0.0f;
}

float scaleFromScreenHeight(int lines) { return lines > 0 ? roundedScale(lines / kUsualScreenLines) : 0.0f; }

float displayScale() {
    static const float scale = [] {
        if (const float set = scaleFromSetting(std::getenv("TOLVAR_DISPLAY_SCALE")); set > 0.0f) return set;
        if (const float desktop = scaleFromResources(xResources()); desktop > 0.0f) return desktop;
        SDL_DisplayMode mode;
        if (SDL_GetDesktopDisplayMode(0, &mode) == 0)
            if (const float screen = scaleFromScreenHeight(mode.h); screen > 0.0f) return screen;
        return kSmallestDisplayScale;
    }();
    return scale;
}

}  // namespace tolvar
