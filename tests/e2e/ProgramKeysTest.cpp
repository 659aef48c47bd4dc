// The program's own keys, in the game window and in the main window.
#include <gtest/gtest.h>

#include <set>
#include <tuple>

#include "desktop/ProgramKeys.h"

namespace tolvar {
namespace {

using C = ProgramCommand;

TEST(ProgramKeys, CommandsOfTheKeys) {
    // key, modifiers, in the game window, cursor shown -> command
    const std::tuple<SDL_Keycode, Uint16, bool, bool, C> cases[] = {
        {SDLK_z, KMOD_LCTRL, true, false, C::Undo},
        {SDLK_z, KMOD_RCTRL | KMOD_LSHIFT, true, false, C::Redo},
        {SDLK_y, KMOD_LCTRL, true, false, C::Redo},
        {SDLK_z, KMOD_LCTRL, false, false, C::Undo},  // also from the main window
        {SDLK_n, KMOD_LCTRL, true, false, C::NewGame},
        {SDLK_F2, KMOD_NONE, true, false, C::NewGame},
        {SDLK_F1, KMOD_NONE, false, false, C::Help},
        {SDLK_F1, KMOD_NONE, true, false, C::Help},
        {SDLK_F11, KMOD_NONE, true, false, C::Fullscreen},
        {SDLK_F11, KMOD_NONE, false, false, C::None},  // the main window keeps its size
        {SDLK_w, KMOD_LCTRL, true, false, C::ReturnToMain},
        {SDLK_q, KMOD_LCTRL, false, false, C::Quit},
        {SDLK_q, KMOD_LGUI, true, false, C::Quit},
        {SDLK_h, KMOD_NONE, true, false, C::Hint},
        {SDLK_h, KMOD_CAPS, true, false, C::Hint},
        {SDLK_h, KMOD_LSHIFT, true, false, C::None},
        {SDLK_h, KMOD_NONE, false, false, C::None},
        {SDLK_LEFT, KMOD_NONE, true, false, C::None},  // the arrows and Return move and press the cursor
        {SDLK_DOWN, KMOD_NONE, true, true, C::None},
        {SDLK_RETURN, KMOD_NONE, true, true, C::None},
        {SDLK_KP_ENTER, KMOD_NONE, true, true, C::None},
        {SDLK_RETURN, KMOD_NONE, true, false, C::ReturnToMain},
        {SDLK_KP_ENTER, KMOD_NONE, true, false, C::ReturnToMain},
        {SDLK_RETURN, KMOD_NONE, false, false, C::None},
        {SDLK_x, KMOD_LCTRL, true, false, C::None},  // Ctrl+letter is never the letter, nor a move
        {SDLK_z, KMOD_LCTRL | KMOD_LALT, true, false, C::None},
        {SDLK_h, KMOD_LALT, true, false, C::None},
        {SDLK_LSHIFT, KMOD_LSHIFT, true, false, C::None},
        {SDLK_LCTRL, KMOD_LCTRL, true, false, C::None},
        {SDLK_SPACE, KMOD_NONE, true, false, C::None},
        {SDLK_ESCAPE, KMOD_NONE, true, false, C::None},  // the game's own restart
    };
    for (const auto& [key, mod, inGame, cursor, expected] : cases)
        EXPECT_EQ(programCommandForKey(key, mod, inGame, cursor), expected)
            << SDL_GetKeyName(key) << " mod " << mod << (inGame ? " in game" : " in main") << (cursor ? " cursor" : "");
}

TEST(ProgramKeys, GameMenuItemsAnswerTheirKeysAndGreyWhenNotPossible) {
    // Every item's shown key gives its command in the game window.
    const std::tuple<SDL_Keycode, Uint16> keyOf[] = {
        {SDLK_F2, KMOD_NONE}, {SDLK_z, KMOD_LCTRL}, {SDLK_z, KMOD_LCTRL | KMOD_LSHIFT}, {SDLK_h, KMOD_NONE}};
    for (std::size_t i = 0; i < gameMenuItems().size(); ++i) {
        const GameMenuItem& item = gameMenuItems()[i];
        EXPECT_EQ(programCommandForKey(std::get<0>(keyOf[i]), std::get<1>(keyOf[i]), true, false), item.command)
            << item.title << " " << item.keys;
        GameMenuState none;
        EXPECT_FALSE(none.enabled(item.command)) << item.title;
        GameMenuState only;
        (item.command == C::NewGame ? only.newGame
         : item.command == C::Undo  ? only.undo
         : item.command == C::Redo  ? only.redo
                                    : only.hint) = true;
        for (const GameMenuItem& other : gameMenuItems())
            EXPECT_EQ(only.enabled(other.command), other.command == item.command) << item.title << "/" << other.title;
    }
}

TEST(ProgramKeys, HelpListsEveryKeyOnce) {
    std::set<std::string> keys;
    for (const auto& [key, what] : programKeysHelp()) {
        EXPECT_FALSE(what.empty()) << key;
        EXPECT_TRUE(keys.insert(key).second) << key;
    }
    for (const char* k : {"Ctrl+Z", "F1", "F11", "H", "Arrows", "Enter", "Ctrl+W"}) EXPECT_TRUE(keys.count(k)) << k;
}

}  // namespace
}  // namespace tolvar
