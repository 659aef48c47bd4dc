// Alert panels: modal, with one button.
#pragma once

#include <SDL.h>

#include <cstddef>
#include <string>

// Shows a modal alert over parent (may be null) and returns when the player dismisses it with
// its one button (the Return and Escape keys press it too). An empty title shows as " ", an
// empty button label as "OK". When no panel can be shown, the message goes to standard error.
// The message is shown as alertPanelText gives it.
void runAlertPanel(SDL_Window* parent, const std::string& title, const std::string& message,
                   const std::string& button);

// A message as an alert panel shows it: in lines of at most kAlertColumns characters, so that the
// panel fits a small screen. Lines break between words; a word too long for a line (a path)
// breaks after a "/" or, without one, where the line ends. Past kAlertCharacters the message is
// cut and ends in "…".
inline constexpr std::size_t kAlertColumns = 60;
inline constexpr std::size_t kAlertCharacters = 2000;
std::string alertPanelText(const std::string& message);
