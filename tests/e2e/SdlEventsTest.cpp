// The game window's current event as the rule engine reads it: types, key codes, characters
// and the location with its origin at the lower left; and the keys the program keeps for itself.
#include <gtest/gtest.h>

#include <set>
#include <tuple>

#include "desktop/ProgramKeys.h"
#include "desktop/SdlEvents.h"

namespace tolvar {
namespace {

SDL_Event key(Uint32 type, SDL_Keycode sym, SDL_Scancode scancode, Uint8 repeat = 0,
              Uint16 mod = KMOD_NONE) {
    SDL_Event e{};
    e.key = SDL_KeyboardEvent{type, 0, 0, SDL_PRESSED, repeat, 0, 0, SDL_Keysym{scancode, sym, mod, 0}};
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
        // Arrows, function and editing keys: private-use characters, first byte 0xEF.
        {SDLK_UP, KMOD_NONE, "\xEF\x9C\x80"}, {SDLK_LEFT, KMOD_NONE, "\xEF\x9C\x82"},
        {SDLK_F1, KMOD_NONE, "\xEF\x9C\x84"}, {SDLK_F5, KMOD_SHIFT, "\xEF\x9C\x88"},
        {SDLK_F13, KMOD_NONE, "\xEF\x9C\x90"}, {SDLK_DELETE, KMOD_NONE, "\xEF\x9C\xA8"},
        {SDLK_HOME, KMOD_NONE, "\xEF\x9C\xA9"}, {SDLK_PAGEDOWN, KMOD_NONE, "\xEF\x9C\xAD"},
        {SDLK_KP_ENTER, KMOD_NONE, "\r"}, {SDLK_KP_PLUS, KMOD_NONE, "+"},
        {0xE9, KMOD_NONE, "\xC3\xA9"},  // an accented letter of the layout
        {SDLK_UNKNOWN, KMOD_NONE, ""}, {SDLK_LSHIFT, KMOD_NONE, ""}, {SDLK_AUDIONEXT, KMOD_NONE, ""}};
    for (const auto& [key, mod, text] : cases) EXPECT_EQ(charactersForKey(key, mod), text) << key << " mod " << mod;
}

TEST(CurrentEvent, ModifiersAloneAreNoKeyAndCtrlOrAltMakeCommands) {
    using Kind = KeyTranslation::Kind;
    struct Case {
        Uint32 type;
        SDL_Keycode sym;
        Uint16 mod;
        Kind kind;
        const char* characters;  // GameKey
        char command;            // Command
        bool shift;
    };
    const Case cases[] = {
        {SDL_KEYDOWN, SDLK_LSHIFT, KMOD_LSHIFT, Kind::Nothing, "", 0, false},
        {SDL_KEYUP, SDLK_RCTRL, KMOD_NONE, Kind::Nothing, "", 0, false},
        {SDL_KEYDOWN, SDLK_LALT, KMOD_LALT, Kind::Nothing, "", 0, false},
        {SDL_KEYDOWN, SDLK_CAPSLOCK, KMOD_CAPS, Kind::Nothing, "", 0, false},
        {SDL_KEYDOWN, SDLK_LGUI, KMOD_LGUI, Kind::Nothing, "", 0, false},
        {SDL_KEYDOWN, SDLK_q, KMOD_RGUI, Kind::Command, "", 'q', false},
        {SDL_KEYDOWN, SDLK_AUDIOPLAY, KMOD_NONE, Kind::Nothing, "", 0, false},
        {SDL_KEYDOWN, SDLK_z, KMOD_LCTRL, Kind::Command, "", 'z', false},
        {SDL_KEYDOWN, SDLK_z, KMOD_RCTRL | KMOD_LSHIFT, Kind::Command, "", 'z', true},
        {SDL_KEYDOWN, SDLK_x, KMOD_LALT, Kind::Command, "", 'x', false},
        {SDL_KEYDOWN, SDLK_n, KMOD_CTRL | KMOD_CAPS, Kind::Command, "", 'n', false},
        {SDL_KEYUP, SDLK_z, KMOD_LCTRL, Kind::Nothing, "", 0, false},  // the command went at the press
        {SDL_KEYDOWN, SDLK_x, KMOD_NONE, Kind::GameKey, "x", 0, false},
        {SDL_KEYDOWN, SDLK_LEFT, KMOD_LCTRL, Kind::GameKey, "\xEF\x9C\x82", 0, false},
        {SDL_KEYUP, SDLK_F2, KMOD_NONE, Kind::GameKey, "\xEF\x9C\x85", 0, false},
        {SDL_KEYDOWN, SDLK_UNKNOWN, KMOD_NONE, Kind::GameKey, "", 0, false},  // a dead key: character 0
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.sym) + " mod " + std::to_string(c.mod));
        const KeyTranslation t = translateKey(key(c.type, c.sym, SDL_SCANCODE_A, 0, c.mod).key);
        EXPECT_EQ(t.kind, c.kind);
        EXPECT_EQ(t.command, c.command);
        EXPECT_EQ(t.shift, c.shift);
        if (c.kind != Kind::GameKey) continue;
        EXPECT_EQ(t.event.type, c.type == SDL_KEYDOWN ? kEventTypeKeyDown : kEventTypeKeyUp);
        EXPECT_EQ(t.event.characters, c.characters);
        EXPECT_EQ(t.event.keyCode, keyCodeForScancode(SDL_SCANCODE_A));
    }
    EXPECT_FALSE(currentEventFromSdl(key(SDL_KEYDOWN, SDLK_RSHIFT, SDL_SCANCODE_RSHIFT, 0, KMOD_RSHIFT), 768))
        << "Shift alone is no key for the game";
    EXPECT_FALSE(currentEventFromSdl(key(SDL_KEYDOWN, SDLK_x, SDL_SCANCODE_X, 0, KMOD_LCTRL), 768))
        << "Ctrl+X never reaches the game as x";
}

TEST(CurrentEvent, KeyDownAndUpButNoRepeats) {
    const auto down = currentEventFromSdl(key(SDL_KEYDOWN, SDLK_SPACE, SDL_SCANCODE_SPACE), 768);
    const auto up = currentEventFromSdl(key(SDL_KEYUP, SDLK_SPACE, SDL_SCANCODE_SPACE), 768);
    const auto esc = currentEventFromSdl(key(SDL_KEYDOWN, SDLK_ESCAPE, SDL_SCANCODE_ESCAPE), 768);
    ASSERT_TRUE(down);
    ASSERT_TRUE(up);
    ASSERT_TRUE(esc);
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

TEST(ProgramKeys, CommandsOfTheKeysInEitherWindow) {
    using C = ProgramCommand;
    struct Case {
        SDL_Keycode key;
        Uint16 mod;
        bool inGame, cursorShown;
        C command;
    };
    const Case cases[] = {
        {SDLK_q, KMOD_LCTRL, false, false, C::Quit}, {SDLK_q, KMOD_RGUI, true, false, C::Quit},
        {SDLK_w, KMOD_CTRL, true, false, C::ReturnToMain}, {SDLK_n, KMOD_CTRL, true, false, C::NewGame},
        {SDLK_z, KMOD_CTRL, true, false, C::Undo}, {SDLK_z, KMOD_CTRL | KMOD_SHIFT, true, false, C::Redo},
        {SDLK_y, KMOD_CTRL, true, false, C::Redo}, {SDLK_z, KMOD_CTRL | KMOD_ALT, true, false, C::None},
        {SDLK_x, KMOD_CTRL, true, false, C::None}, {SDLK_x, KMOD_LALT, true, false, C::None},
        {SDLK_F1, KMOD_NONE, false, false, C::Help}, {SDLK_F1, KMOD_NONE, true, false, C::Help},
        {SDLK_F2, KMOD_NONE, true, false, C::NewGame}, {SDLK_F1, KMOD_LALT, true, false, C::None},
        {SDLK_F11, KMOD_NONE, true, false, C::Fullscreen}, {SDLK_F11, KMOD_NONE, false, false, C::None},
        {SDLK_h, KMOD_NONE, true, false, C::Hint}, {SDLK_h, KMOD_SHIFT, true, false, C::None},
        {SDLK_h, KMOD_NONE, false, false, C::None}, {SDLK_RETURN, KMOD_NONE, true, false, C::ReturnToMain},
        {SDLK_KP_ENTER, KMOD_NONE, true, false, C::ReturnToMain}, {SDLK_RETURN, KMOD_NONE, true, true, C::None},
        {SDLK_RETURN, KMOD_NONE, false, false, C::None}, {SDLK_LEFT, KMOD_NONE, true, false, C::None},
        {SDLK_F3, KMOD_NONE, true, false, C::None}, {SDLK_ESCAPE, KMOD_NONE, true, false, C::None},
        {SDLK_b, KMOD_CTRL, false, false, C::BestScores}, {SDLK_b, KMOD_CTRL, true, true, C::BestScores},
        {SDLK_b, KMOD_NONE, true, false, C::None}, {SDLK_m, KMOD_CTRL, true, false, C::Symbols},
        {SDLK_m, KMOD_CTRL, false, false, C::Symbols}, {SDLK_m, KMOD_NONE, true, false, C::ToggleSound},
    };
    for (const Case& c : cases)
        EXPECT_EQ(programCommandForKey(c.key, c.mod, c.inGame, c.cursorShown), c.command)
            << c.key << " mod " << c.mod << (c.inGame ? " in the game" : " in the main window")
            << (c.cursorShown ? " with the cursor" : "");
}

}  // namespace
}  // namespace tolvar
