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

// The text a key types: " " for space, "\x1b" for Escape, "\r" for Return, letters with shift
// (or caps lock) applied; empty for keys that type nothing (arrows, function keys, modifiers).
std::string charactersForKey(SDL_Keycode key, std::uint16_t modifiers);

// The current event an SDL event stands for, with its location in the window whose content is
// windowHeight pixels high (origin at the lower left). Events that are not mouse buttons,
// mouse motion or keys give nothing; so do key repeats (a held key is one key-down).
std::optional<CurrentEvent> currentEventFromSdl(const SDL_Event& event, int windowHeight);

}  // namespace tolvar
