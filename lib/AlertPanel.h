// Alert panels: modal, with one button.
#pragma once

#include <SDL.h>

#include <string>

// Shows a modal alert over parent (may be null) and returns when the player dismisses it with
// its one button (the Return and Escape keys press it too). An empty title shows as " ", an
// empty button label as "OK". When no panel can be shown, the message goes to standard error.
void runAlertPanel(SDL_Window* parent, const std::string& title, const std::string& message,
                   const std::string& button);
