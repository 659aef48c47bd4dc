// The game window's current event as the rule engine reads it: types, key codes, characters
// and the location with its origin at the lower left.
#include <gtest/gtest.h>

#include <set>

#include "platform/SdlEvents.h"

namespace tolvar {
namespace {

SDL_Event key(Uint32 type, SDL_Keycode sym, SDL_Scancode scancode, Uint8 repeat = 0) {
    SDL_Event e{};
    e.type = type;
    e.key.keysym.sym = sym;
    e.key.keysym.scancode = scancode;
    e.key.repeat = repeat;
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
    const struct {
        SDL_Keycode key;
        Uint16 mod;
        const char* text;
    } cases[] = {{SDLK_SPACE, KMOD_NONE, " "},   {SDLK_ESCAPE, KMOD_NONE, "\x1b"}, {SDLK_RETURN, KMOD_NONE, "\r"},
                 {SDLK_a, KMOD_NONE, "a"},       {SDLK_a, KMOD_LSHIFT, "A"},      {SDLK_a, KMOD_CAPS, "A"},
                 {SDLK_a, KMOD_CAPS | KMOD_RSHIFT, "a"}, {SDLK_1, KMOD_NONE, "1"}, {SDLK_1, KMOD_SHIFT, "!"},
                 {SDLK_SLASH, KMOD_SHIFT, "?"},  {SDLK_LEFT, KMOD_NONE, ""},      {SDLK_F5, KMOD_NONE, ""},
                 {SDLK_LSHIFT, KMOD_NONE, ""}};
    for (const auto& c : cases) EXPECT_EQ(charactersForKey(c.key, c.mod), c.text) << "key " << c.key << " mod " << c.mod;
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
    const struct {
        Uint32 type;
        Uint8 button;
        int x, y;
        std::int64_t expected;
        float flippedY;
    } cases[] = {{SDL_MOUSEBUTTONDOWN, SDL_BUTTON_LEFT, 100, 18, kEventTypeMouseDown, 750.0f},
                 {SDL_MOUSEBUTTONUP, SDL_BUTTON_LEFT, 0, 767, kEventTypeMouseUp, 1.0f},
                 {SDL_MOUSEBUTTONDOWN, SDL_BUTTON_RIGHT, 5, 5, kEventTypeRightMouseDown, 763.0f},
                 {SDL_MOUSEBUTTONUP, SDL_BUTTON_RIGHT, 5, 5, kEventTypeRightMouseUp, 763.0f},
                 {SDL_MOUSEMOTION, 0, 10, 700, kEventTypeMouseMoved, 68.0f}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        SDL_Event e{};
        e.type = c.type;
        if (c.type == SDL_MOUSEMOTION) {
            e.motion.x = c.x;
            e.motion.y = c.y;
        } else {
            e.button.button = c.button;
            e.button.x = c.x;
            e.button.y = c.y;
        }
        const auto event = currentEventFromSdl(e, 768);
        ASSERT_TRUE(event);
        EXPECT_EQ(event->type, c.expected);
        EXPECT_FLOAT_EQ(event->x, static_cast<float>(c.x));
        EXPECT_FLOAT_EQ(event->y, c.flippedY);
    }
    SDL_Event other{};
    other.type = SDL_MOUSEBUTTONDOWN;
    other.button.button = SDL_BUTTON_MIDDLE;
    EXPECT_FALSE(currentEventFromSdl(other, 768));
    other.type = SDL_WINDOWEVENT;
    EXPECT_FALSE(currentEventFromSdl(other, 768));
}

}  // namespace
}  // namespace tolvar
