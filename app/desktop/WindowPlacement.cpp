#include "desktop/WindowPlacement.h"

#include <SDL_syswm.h>

#include <algorithm>

#ifdef SDL_VIDEO_DRIVER_X11
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#endif

namespace tolvar {

namespace {
// One side: the length kept within the room (at least the minimum), and the start moved so that
// the length and the frame before and after it lie within [areaStart, areaStart + areaLength).
void placeSide(int& start, int& length, int before, int after, int areaStart, int areaLength, int minimum) {
    const int room = areaLength - before - after;
    length = std::max(minimum, std::min(length, room));
    const int first = areaStart + before;
    const int last = areaStart + areaLength - after - length;
    start = last < first ? first : std::clamp(start, first, last);
}
}  // namespace

SDL_Rect placeInside(const SDL_Rect& window, const WindowFrame& frame, const SDL_Rect& usable, int minWidth,
                     int minHeight) {
    SDL_Rect placed = window;
    if (usable.w <= 0 || usable.h <= 0) return placed;
    placeSide(placed.x, placed.w, frame.left, frame.right, usable.x, usable.w, minWidth);
    placeSide(placed.y, placed.h, frame.top, frame.bottom, usable.y, usable.h, minHeight);
    return placed;
}

bool usableAreaOf(SDL_Window* window, SDL_Rect& usable) {
    const int display = std::max(0, SDL_GetWindowDisplayIndex(window));
    if (SDL_GetDisplayUsableBounds(display, &usable) == 0 && usable.w > 0 && usable.h > 0) return true;
    return SDL_GetDisplayBounds(display, &usable) == 0 && usable.w > 0 && usable.h > 0;
}

WindowFrame frameOf(SDL_Window* window) {
    WindowFrame f;
    if (SDL_GetWindowBordersSize(window, &f.top, &f.left, &f.bottom, &f.right) != 0) return WindowFrame{};
    return f;
}

bool framed(SDL_Window* window) {
    const WindowFrame f = frameOf(window);
    return f.top != 0 || f.left != 0 || f.bottom != 0 || f.right != 0;
}

void keepInsideUsableArea(SDL_Window* window, int minWidth, int minHeight) {
    SDL_Rect usable{0, 0, 0, 0};
    if (!window || !usableAreaOf(window, usable)) return;
    SDL_Rect now{0, 0, 0, 0};
    SDL_GetWindowPosition(window, &now.x, &now.y);
    SDL_GetWindowSize(window, &now.w, &now.h);
    const SDL_Rect placed = placeInside(now, frameOf(window), usable, minWidth, minHeight);
    if (placed.w != now.w || placed.h != now.h) SDL_SetWindowSize(window, placed.w, placed.h);
    if (placed.x != now.x || placed.y != now.y) SDL_SetWindowPosition(window, placed.x, placed.y);
}

bool windowManagerRuns(SDL_Window* window) {
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (!window || !SDL_GetWindowWMInfo(window, &info)) return false;
#ifdef SDL_VIDEO_DRIVER_X11
    if (info.subsystem == SDL_SYSWM_X11) {
        // A running manager names its own check window on the root window, and the check window
        // names itself (a stale name left by a manager that ended names nothing that answers so).
        Display* display = info.info.x11.display;
        const Atom check = XInternAtom(display, "_NET_SUPPORTING_WM_CHECK", True);
        if (check == None) return false;
        const auto checkWindowOf = [&](Window on) -> Window {
            Atom type = None;
            int format = 0;
            unsigned long count = 0, left = 0;
            unsigned char* data = nullptr;
            Window named = None;
            if (XGetWindowProperty(display, on, check, 0, 1, False, XA_WINDOW, &type, &format, &count, &left,
                                   &data) == Success &&
                data && type == XA_WINDOW && format == 32 && count == 1)
                named = static_cast<Window>(*reinterpret_cast<unsigned long*>(data));
            if (data) XFree(data);
            return named;
        };
        // A check window that is gone makes the property read fail: the errors it raises are
        // caught, not fatal.
        XErrorHandler previous = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
        const Window named = checkWindowOf(DefaultRootWindow(display));
        const bool runs = named != None && checkWindowOf(named) == named;
        XSync(display, False);
        XSetErrorHandler(previous);
        return runs;
    }
#endif
    return info.subsystem == SDL_SYSWM_WAYLAND;
}

}  // namespace tolvar
