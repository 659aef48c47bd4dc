// The game window's current event, made from SDL's events: the last mouse or key event the
// application dispatched, with the event codes the rule engine reads.
#pragma once

#include <SDL.h>

#include <cstdint>
#include <optional>
#include <string>

#include "engine/Host.h"

namespace tolvar {

// Right mouse button down and up: they open the "Actions" menu in the game window.
constexpr std::int64_t kEventTypeRightMouseDown = 3;
constexpr std::int64_t kEventTypeRightMouseUp = 4;

// The fixed key code of a key: Escape is 53, every other key has a code of its own that is
// never 53.
std::uint16_t keyCodeForScancode(SDL_Scancode scancode);

// The characters of a key: " " for space, "\x1b" for Escape, "\r" for Return and the keypad's
// Enter, letters with shift (or caps lock) applied, other characters of the keyboard layout as
// UTF-8; arrow, function and editing keys give a private-use character of their own (see
// KeyCharacter). Empty for a key that has no character at all (SDLK_UNKNOWN, as a dead key
// gives), and for keys that are neither (modifiers, media keys): see translateKey.
std::string charactersForKey(SDL_Keycode key, std::uint16_t modifiers);

// What a key press or release in the game window is for.
struct KeyTranslation {
    enum class Kind {
        Nothing,  // no key event for the game: a modifier or lock key alone, a repeat, a media key
        GameKey,  // event is the key-down or key-up the game reads
        Command,  // a program command: command, with Ctrl, Alt or the Super key held
    };
    Kind kind = Kind::Nothing;
    CurrentEvent event;
    char command = 0;    // the key's unshifted character: 'z', 'n', '1', ...
    bool shift = false;  // Shift was held with it (Ctrl+Shift+Z)
};
KeyTranslation translateKey(const SDL_KeyboardEvent& key);

// The current event an SDL event stands for, with its location in the window whose content is
// windowHeight pixels high (origin at the lower left). Events that are not mouse buttons,
// mouse motion or keys give nothing; so does every key that translateKey gives the game no
// key event for (repeats: a held key is one key-down; modifiers alone; commands).
std::optional<CurrentEvent> currentEventFromSdl(const SDL_Event& event, int windowHeight);

}  // namespace tolvar
