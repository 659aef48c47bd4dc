// Shows the alert a player gets when a best score cannot be saved to a long path, and returns
// once its button is pressed: the end-to-end test measures the panel.
#include <SDL.h>

#include <string>

#include "AlertPanel.h"

int main(int argc, char** argv) {
    if (argc != 2 || SDL_Init(SDL_INIT_VIDEO) != 0) return 2;
    runAlertPanel(nullptr, " ",
                  "You got one of the best scores, but it could not be saved to \"" + std::string(argv[1]) +
                      "/BestScores.dict\": Read-only file system.",
                  "OK");
    SDL_Quit();
    return 0;
}
