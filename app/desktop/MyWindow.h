// The game window: a resizable SDL window showing the 1024 x 768 picture scaled to fit, with a
// single-buffered legacy OpenGL context, and the game's own keys kept away from the menus.
#pragma once

#include <SDL.h>

#include <memory>
#include <optional>
#include <string>

#include "desktop/PictureFit.h"
#include "desktop/SdlHandles.h"

#include "engine/Host.h"

namespace tolvar {

class Engine;

class MyWindow {
public:
    // Makes the window (titled, resizable, not yet shown) and its context: depth buffer,
    // 24-bit colour, 8-bit alpha, no multisampling, single-buffered, compatibility profile,
    // hardware acceleration not required. Check valid() afterwards.
    MyWindow(const std::string& title, int width, int height);
    ~MyWindow();
    MyWindow(const MyWindow&) = delete;
    MyWindow& operator=(const MyWindow&) = delete;

    bool valid() const { return window_ && context_; }
    SDL_Window* sdlWindow() const { return window_.get(); }
    Uint32 windowID() const;

    // Makes the context current, drawing into the part of the window the picture fits in.
    void makeCurrentContext();
    // Where the picture lies in the window now (in the window's points, for the mouse).
    PictureFit pictureFit() const;
    // The same in the drawable's pixels (more than points on a high-density screen).
    PictureFit pictureFitInPixels() const;
    // After the window changed size: the context's buffers follow it, and the whole window is
    // black, so the bars beside the picture are clean. The picture is to be drawn again.
    void takeNewSize();
    // Full screen on and off (F11): the window manager's full-screen state where one runs, else
    // a borderless window over the whole screen; off, the window is back where it was.
    void toggleFullscreen();
    bool isFullscreen() const { return windowed_.has_value(); }
    // The size the window opens at: the picture's own, or smaller where the screen's usable area
    // (less panels) cannot hold it.
    void fitToUsableArea();
    // A shown window that does not fit the usable area with its title bar and borders is made
    // smaller, in the picture's proportions, and moved inside it.
    void keepOnScreen();
    // Any event of the window: once the window manager has told the frame of a window just
    // shown, the window is kept on the screen with it.
    void windowEvent();
    // Completes a frame of the single-buffered context.
    void flushBuffer();
    // The mouse in screen coordinates, origin at the lower left of the screen.
    void mouseLocation(double& x, double& y) const;
    // Shows the last frame again after something covered the window (a menu, an alert): the
    // single-buffered context still holds it, so it is copied onto itself and flushed.
    void redisplay();

    void orderFront();   // shows it inside the usable area, raises it and gives it the keyboard
    void orderOut();     // hides it
    void center();       // in the middle of the usable area
    bool isVisible() const;

    // performKeyEquivalent: true when a running game binds the key-down event's first
    // character to a user event, so that no menu shortcut fires for it.
    static bool performKeyEquivalent(const Engine& engine, const CurrentEvent& event);

private:
    SdlWindowPtr window_;
    SdlGlContextPtr context_;
    float pictureWidth_ = 0.0f;
    float pictureHeight_ = 0.0f;
    std::optional<SDL_Rect> windowed_;  // where the window was before it filled the screen
    bool managerFullscreen_ = false;    // ... in the window manager's full-screen state
    bool placing_ = false;              // shown, and the window manager has not yet told its frame
};

}  // namespace tolvar
