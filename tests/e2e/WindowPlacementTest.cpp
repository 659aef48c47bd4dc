// A window and its frame kept inside the screen's usable area: moved, made smaller only where it must be.
#include <gtest/gtest.h>

#include <tuple>

#include "desktop/WindowPlacement.h"

namespace tolvar {
namespace {

TEST(WindowPlacement, WindowAndFrameLieInsideTheUsableArea) {
    const WindowFrame none{}, titled{20, 1, 1, 1};
    const SDL_Rect small{0, 0, 1024, 600}, panel{0, 32, 1366, 736}, right{1920, 0, 1024, 600};
    struct Case {
        const char* what;
        SDL_Rect window;
        WindowFrame frame;
        SDL_Rect usable;
        SDL_Rect placed;
    };
    const Case cases[] = {
        {"fits: stays", {60, 60, 640, 540}, none, small, {60, 60, 640, 540}},
        {"title bar below the bottom: moved up", {61, 80, 640, 540}, titled, small, {61, 59, 640, 540}},
        {"taller, off the right: as tall as it holds, moved", {700, 60, 560, 620}, titled, small, {463, 20, 560, 579}},
        {"off the right edge: moved left", {700, 60, 560, 500}, none, small, {464, 60, 560, 500}},
        {"above a top panel: moved below it", {100, 0, 640, 540}, titled, panel, {100, 52, 640, 540}},
        {"on a second display to the right", {1800, 10, 640, 540}, titled, right, {1921, 20, 640, 540}},
        {"wider and taller: both shrink", {0, 0, 1100, 700}, titled, small, {1, 20, 1022, 579}},
    };
    for (const Case& c : cases) {
        const SDL_Rect p = placeInside(c.window, c.frame, c.usable, 320, 240);
        EXPECT_EQ(std::make_tuple(p.x, p.y, p.w, p.h), std::make_tuple(c.placed.x, c.placed.y, c.placed.w, c.placed.h))
            << c.what;
    }
}

TEST(WindowPlacement, NeverBelowTheMinimumNorMovedByAnUnknownArea) {
    // An area smaller than the smallest window: the window keeps its minimum, at the area's corner.
    const SDL_Rect tiny = placeInside({50, 50, 640, 540}, {20, 1, 1, 1}, {0, 0, 200, 100}, 320, 240);
    EXPECT_EQ(std::make_tuple(tiny.x, tiny.y, tiny.w, tiny.h), std::make_tuple(1, 20, 320, 240));
    // No usable area known: the window stays where it is.
    const SDL_Rect unknown = placeInside({50, 50, 640, 540}, {}, {0, 0, 0, 0}, 320, 240);
    EXPECT_EQ(std::make_tuple(unknown.x, unknown.y, unknown.w, unknown.h), std::make_tuple(50, 50, 640, 540));
}

}  // namespace
}  // namespace tolvar
