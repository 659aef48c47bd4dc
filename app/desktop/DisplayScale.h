// How dense the display is against a 1080-line screen, so that the windows' texts and controls
// have the same size to the eye on a 4K screen as on a 1080p one.
//
// In order: TOLVAR_DISPLAY_SCALE (a number, for tests and for players who want another size);
// the desktop's own text density, Xft.dpi, against the usual 96 (what desktops set when the
// player scales the screen, and what other programs follow); else the screen's height against
// 1080 lines, which every X server knows, Xvfb too. The physical density is not used: under Xvfb
// it is unknown (SDL_GetDisplayDPI fails), and a real screen's reported size may mean nothing
// (televisions, projectors, servers set to 96 whatever the screen).
#pragma once

#include <string>

namespace tolvar {

// The smallest and largest scale, and its steps: windows grow by quarters.
inline constexpr float kSmallestDisplayScale = 1.0f;
inline constexpr float kLargestDisplayScale = 4.0f;

// The scale, worked out once (SDL's video must be running).
float displayScale();

// The parts, on their own: each gives 0 when it has nothing to say.
float scaleFromSetting(const char* text);        // "2", "1.5"
float scaleFromResources(const std::string& resources);  // the X resources' text, "Xft.dpi:\t192\n..."
float scaleFromScreenHeight(int lines);
// A raw scale in quarter steps, between the smallest and the largest.
float roundedScale(double raw);

}  // namespace tolvar
