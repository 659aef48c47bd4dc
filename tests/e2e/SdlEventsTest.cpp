// The game window's current event as the rule engine reads it: types, key codes, characters
// and the location with its origin at the lower left.
#include <gtest/gtest.h>

#include <set>
#include <tuple>

#include "platform/SdlEvents.h"

namespace tolvar {
namespace {

SDL_Event key(Uint32 type, SDL_Keycode sym, SDL_Scancode scancode, Uint8 repeat = 0) {
    SDL_Event e{};
    e.key = SDL_KeyboardEvent{type, 0, 0, SDL_PRESSED, repeat, 0, 0, SDL_Keysym{scancode, sym, KMOD_NONE, 0}};
    return e;
}

TEST(CurrentEvent, EscapeIsKey53AndEveryOtherKeyHasACodeOfItsOwn) {
    EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_ESCAPE), 53);
    std::set<std::uint16_t> codes{53};
    for (int s = 0; s < SDL_NUM_SCANCODES; ++s)
        if (s != SDL_SCANCODE_ESCAPE) codes.insert(keyCodeForScancode(static_cast<SDL_Scancode>(s)));
    EXPECT_EQ(codes.size(), static_cast<std::size_t>(SDL_NUM_SCANCODES));
}

TEST(CurrentEvent, KeysCarryTheirText) {
    const std::tuple<SDL_Keycode, Uint16, const char*> cases[] = {
        {SDLK_SPACE, KMOD_NONE, " "}, {SDLK_ESCAPE, KMOD_NONE, "\x1b"}, {SDLK_RETURN, KMOD_NONE, "\r"},
        {SDLK_a, KMOD_NONE, "a"}, {SDLK_a, KMOD_LSHIFT, "A"}, {SDLK_a, KMOD_CAPS, "A"}, {SDLK_1, KMOD_NONE, "1"},
        {SDLK_a, KMOD_CAPS | KMOD_RSHIFT, "a"}, {SDLK_1, KMOD_SHIFT, "!"}, {SDLK_SLASH, KMOD_SHIFT, "?"},
        {SDLK_LEFT, KMOD_NONE, ""}, {SDLK_F5, KMOD_NONE, ""}, {SDLK_LSHIFT, KMOD_NONE, ""}};
    for (const auto& [key, mod, text] : cases) EXPECT_EQ(charactersForKey(key, mod), text) << key << " mod " << mod;
}

TEST(CurrentEvent, KeyDownAndUpButNoRepeats) {
    const auto down = currentEventFromSdl(key(SDL_KEYDOWN, SDLK_SPACE, SDL_SCANCODE_SPACE), 768);
    const auto up = currentEventFromSdl(key(SDL_KEYUP, SDLK_SPACE, SDL_SCANCODE_SPACE), 768);
    const auto esc = currentEventFromSdl(key(SDL_KEYDOWN, SDLK_ESCAPE, SDL_SCANCODE_ESCAPE), 768);
    ASSERT_TRUE(down && up && esc);
    EXPECT_EQ(down->type, kEventTypeKeyDown);
    EXPECT_EQ(down->characters, " ");
    EXPECT_EQ(up->type, kEventTypeKeyUp);
    EXPECT_EQ(up->keyCode, down->keyCode);
    EXPECT_EQ(esc->keyCode, kKeyCodeEscape);
    EXPECT_FALSE(currentEventFromSdl(key(SDL_KEYDOWN, SDLK_SPACE, SDL_SCANCODE_SPACE, 1), 768))
        << "a held key is one key-down";
}

TEST(CurrentEvent, MouseLocationHasItsOriginAtTheLowerLeft) {
    // The SDL event, its button, where SDL puts it; the game's event and its height from the bottom.
    const std::tuple<Uint32, Uint8, int, int, std::int64_t, float> cases[] = {
        {SDL_MOUSEBUTTONDOWN, SDL_BUTTON_LEFT, 100, 18, kEventTypeMouseDown, 750.0f},
        {SDL_MOUSEBUTTONUP, SDL_BUTTON_LEFT, 0, 767, kEventTypeMouseUp, 1.0f},
        {SDL_MOUSEBUTTONDOWN, SDL_BUTTON_RIGHT, 5, 5, kEventTypeRightMouseDown, 763.0f},
        {SDL_MOUSEBUTTONUP, SDL_BUTTON_RIGHT, 5, 5, kEventTypeRightMouseUp, 763.0f},
        {SDL_MOUSEMOTION, 0, 10, 700, kEventTypeMouseMoved, 68.0f}};
    for (const auto& [type, button, x, y, expected, flippedY] : cases) {
        SCOPED_TRACE(expected);
        SDL_Event e{};
        if (type == SDL_MOUSEMOTION)
            e.motion = SDL_MouseMotionEvent{type, 0, 0, 0, 0, x, y, 0, 0};
        else
            e.button = SDL_MouseButtonEvent{type, 0, 0, 0, button, SDL_PRESSED, 1, 0, x, y};
        const auto event = currentEventFromSdl(e, 768);
        ASSERT_TRUE(event);
        EXPECT_EQ(event->type, expected);
        EXPECT_FLOAT_EQ(event->x, static_cast<float>(x));
        EXPECT_FLOAT_EQ(event->y, flippedY);
    }
    SDL_Event other{};
    other.button = SDL_MouseButtonEvent{SDL_MOUSEBUTTONDOWN, 0, 0, 0, SDL_BUTTON_MIDDLE, SDL_PRESSED, 1, 0, 5, 5};
    EXPECT_FALSE(currentEventFromSdl(other, 768)) << "the middle button";
    other.type = SDL_WINDOWEVENT;
    EXPECT_FALSE(currentEventFromSdl(other, 768));
}

}  // namespace
}  // namespace tolvar
