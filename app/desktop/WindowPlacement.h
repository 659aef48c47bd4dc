// Where the program's windows go on the screen: inside the display's usable area (less panels)
// with their title bar and borders, made smaller where they must be; and whether a window manager
// runs, which decides how the game window fills the screen.
#pragma once

#include <SDL.h>

namespace tolvar {

// The decorations a window manager puts round a window, in pixels.
struct WindowFrame {
    int top = 0;
    int left = 0;
    int bottom = 0;
    int right = 0;
};

// The window's content rectangle moved, and made smaller where it must be (never below minWidth x
// minHeight), so that with its frame it lies inside the usable area. A window that fits stays as
// it is.
SDL_Rect placeInside(const SDL_Rect& window, const WindowFrame& frame, const SDL_Rect& usable, int minWidth,
                     int minHeight);

// The usable area of the display the window is on (the whole display when the desktop tells no
// smaller one); false when the display cannot be asked.
bool usableAreaOf(SDL_Window* window, SDL_Rect& usable);
// The frame the window manager put round the window; all zero without one, or before it has.
WindowFrame frameOf(SDL_Window* window);
// The window manager has put a frame round the window.
bool framed(SDL_Window* window);

// Moves, and where it must shrinks, a shown window so that it and its frame lie inside the usable
// area of its display.
void keepInsideUsableArea(SDL_Window* window, int minWidth, int minHeight);

// A window manager looks after the window's display (on X11: the root window names a running
// manager); a Wayland compositor always does.
bool windowManagerRuns(SDL_Window* window);

}  // namespace tolvar
