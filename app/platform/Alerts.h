// Alert panels: modal, with one button.
#pragma once

#include <SDL.h>

#include <string>

namespace tolvar {

// Shows a modal alert over parent (may be null) and returns when the player dismisses it with
// its one button (the Return key presses it too). An empty title shows as " ".
void runAlertPanel(SDL_Window* parent, const std::string& title, const std::string& message,
                   const std::string& button);

}  // namespace tolvar
