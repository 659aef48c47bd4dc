// The game window's current event as the rule engine reads it: types, key codes, characters
// and the location with its origin at the lower left.
#include <gtest/gtest.h>

#include <set>

#include "platform/SdlEvents.h"

namespace tolvar {
namespace {

SDL_Event key(Uint32 type, SDL_Keycode sym, SDL_Scancode scancode, Uint16 mod = KMOD_NONE, Uint8 repeat = 0) {
    SDL_Event e{};
    e.type = type;
    e.key.keysym.sym = sym;
    e.key.keysym.scancode = scancode;
    e.key.keysym.mod = mod;
    e.key.repeat = repeat;
    return e;
}

SDL_Event button(Uint32 type, Uint8 which, int x, int y) {
    SDL_Event e{};
    e.type = type;
    e.button.button = which;
    e.button.x = x;
    e.button.y = y;
    return e;
}

TEST(CurrentEvent, EscapeIsKey53AndNoOtherKeyIs) {
    EXPECT_EQ(keyCodeForScancode(SDL_SCANCODE_ESCAPE), 53);
    std::set<std::uint16_t> codes;
    for (int s = 0; s < SDL_NUM_SCANCODES; ++s) {
        if (s == SDL_SCANCODE_ESCAPE) continue;
        const std::uint16_t code = keyCodeForScancode(static_cast<SDL_Scancode>(s));
        EXPECT_NE(code, 53) << "scancode " << s;
        codes.insert(code);
    }
    EXPECT_EQ(codes.size(), static_cast<std::size_t>(SDL_NUM_SCANCODES - 1)) << "every key has a code of its own";
}

TEST(CurrentEvent, KeysCarryTheirText) {
    EXPECT_EQ(charactersForKey(SDLK_SPACE, KMOD_NONE), " ");
    EXPECT_EQ(charactersForKey(SDLK_ESCAPE, KMOD_NONE), "\x1b");
    EXPECT_EQ(charactersForKey(SDLK_RETURN, KMOD_NONE), "\r");
    EXPECT_EQ(charactersForKey(SDLK_a, KMOD_NONE), "a");
    EXPECT_EQ(charactersForKey(SDLK_a, KMOD_LSHIFT), "A");
    EXPECT_EQ(charactersForKey(SDLK_a, KMOD_CAPS), "A");
    EXPECT_EQ(charactersForKey(SDLK_a, KMOD_CAPS | KMOD_RSHIFT), "a");
    EXPECT_EQ(charactersForKey(SDLK_1, KMOD_NONE), "1");
    EXPECT_EQ(charactersForKey(SDLK_1, KMOD_SHIFT), "!");
    EXPECT_EQ(charactersForKey(SDLK_SLASH, KMOD_SHIFT), "?");
    EXPECT_EQ(charactersForKey(SDLK_LEFT, KMOD_NONE), "");
    EXPECT_EQ(charactersForKey(SDLK_F5, KMOD_NONE), "");
    EXPECT_EQ(charactersForKey(SDLK_LSHIFT, KMOD_NONE), "");
}

TEST(CurrentEvent, KeyDownAndUpButNoRepeats) {
    auto down = currentEventFromSdl(key(SDL_KEYDOWN, SDLK_SPACE, SDL_SCANCODE_SPACE), 768);
    ASSERT_TRUE(down);
    EXPECT_EQ(down->type, kEventTypeKeyDown);
    EXPECT_EQ(down->characters, " ");
    auto up = currentEventFromSdl(key(SDL_KEYUP, SDLK_SPACE, SDL_SCANCODE_SPACE), 768);
    ASSERT_TRUE(up);
    EXPECT_EQ(up->type, kEventTypeKeyUp);
    EXPECT_EQ(up->keyCode, down->keyCode);
    EXPECT_FALSE(currentEventFromSdl(key(SDL_KEYDOWN, SDLK_SPACE, SDL_SCANCODE_SPACE, KMOD_NONE, 1), 768))
        << "a held key is one key-down";
    auto esc = currentEventFromSdl(key(SDL_KEYDOWN, SDLK_ESCAPE, SDL_SCANCODE_ESCAPE), 768);
    ASSERT_TRUE(esc);
    EXPECT_EQ(esc->keyCode, kKeyCodeEscape);
}

TEST(CurrentEvent, MouseLocationHasItsOriginAtTheLowerLeft) {
    auto down = currentEventFromSdl(button(SDL_MOUSEBUTTONDOWN, SDL_BUTTON_LEFT, 100, 18), 768);
    ASSERT_TRUE(down);
    EXPECT_EQ(down->type, kEventTypeMouseDown);
    EXPECT_FLOAT_EQ(down->x, 100.0f);
    EXPECT_FLOAT_EQ(down->y, 750.0f);
    auto up = currentEventFromSdl(button(SDL_MOUSEBUTTONUP, SDL_BUTTON_LEFT, 0, 767), 768);
    ASSERT_TRUE(up);
    EXPECT_EQ(up->type, kEventTypeMouseUp);
    EXPECT_FLOAT_EQ(up->y, 1.0f);
    auto right = currentEventFromSdl(button(SDL_MOUSEBUTTONDOWN, SDL_BUTTON_RIGHT, 5, 5), 768);
    ASSERT_TRUE(right);
    EXPECT_EQ(right->type, kEventTypeRightMouseDown);
    EXPECT_NE(right->type, kEventTypeMouseDown);
    auto rightUp = currentEventFromSdl(button(SDL_MOUSEBUTTONUP, SDL_BUTTON_RIGHT, 5, 5), 768);
    ASSERT_TRUE(rightUp);
    EXPECT_EQ(rightUp->type, kEventTypeRightMouseUp);
    EXPECT_FALSE(currentEventFromSdl(button(SDL_MOUSEBUTTONDOWN, SDL_BUTTON_MIDDLE, 5, 5), 768));

    SDL_Event motion{};
    motion.type = SDL_MOUSEMOTION;
    motion.motion.x = 10;
    motion.motion.y = 700;
    auto moved = currentEventFromSdl(motion, 768);
    ASSERT_TRUE(moved);
    EXPECT_EQ(moved->type, kEventTypeMouseMoved);
    EXPECT_FLOAT_EQ(moved->y, 68.0f);

    SDL_Event other{};
    other.type = SDL_WINDOWEVENT;
    EXPECT_FALSE(currentEventFromSdl(other, 768));
}

}  // namespace
}  // namespace tolvar
