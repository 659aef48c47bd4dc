#include "AlertPanel.h"

#include <cstdio>

void runAlertPanel(SDL_Window* parent, const std::string& title, const std::string& message,
                   const std::string& button) {
    const std::string shownTitle = title.empty() ? std::string(" ") : title;
    const std::string label = button.empty() ? std::string("OK") : button;
    SDL_MessageBoxButtonData buttons[1] = {};
    buttons[0].flags = SDL_MESSAGEBOX_BUTTON_RETURNKEY_DEFAULT | SDL_MESSAGEBOX_BUTTON_ESCAPEKEY_DEFAULT;
    buttons[0].buttonid = 0;
    buttons[0].text = label.c_str();
    SDL_MessageBoxData data = {};
    data.flags = SDL_MESSAGEBOX_INFORMATION;
    data.window = parent;
    data.title = shownTitle.c_str();
    data.message = message.c_str();
    data.numbuttons = 1;
    data.buttons = buttons;
    int pressed = -1;
    if (SDL_ShowMessageBox(&data, &pressed) != 0)
        std::fprintf(stderr, "%s (the alert could not be shown: %s)\n", message.c_str(), SDL_GetError());
}
