// The game window: an SDL window with a 1024 x 768 content area and a single-buffered legacy
// OpenGL context, and the game's own keys kept away from the menus.
#pragma once

#include <SDL.h>

#include <memory>
#include <string>

#include "platform/SdlHandles.h"

#include "engine/Host.h"

namespace tolvar {

class Engine;

class MyWindow {
public:
    // Makes the window (titled, not resizable, not yet shown) and its context: depth buffer,
    // 24-bit colour, 8-bit alpha, no multisampling, single-buffered, compatibility profile,
    // hardware acceleration not required. Check valid() afterwards.
    MyWindow(const std::string& title, int width, int height);
    ~MyWindow();
    MyWindow(const MyWindow&) = delete;
    MyWindow& operator=(const MyWindow&) = delete;

    bool valid() const { return window_ && context_; }
    SDL_Window* sdlWindow() const { return window_.get(); }
    Uint32 windowID() const;

    void makeCurrentContext();
    // Completes a frame of the single-buffered context.
    void flushBuffer();
    // The mouse in screen coordinates, origin at the lower left of the screen.
    void mouseLocation(double& x, double& y) const;
    // Shows the last frame again after something covered the window (a menu, an alert): the
    // single-buffered context still holds it, so it is copied onto itself and flushed.
    void redisplay();

    void orderFront();   // shows it, raises it and gives it the keyboard
    void orderOut();     // hides it
    void center();
    bool isVisible() const;

    // performKeyEquivalent: true when a running game binds the key-down event's first
    // character to a user event, so that no menu shortcut fires for it.
    static bool performKeyEquivalent(const Engine& engine, const CurrentEvent& event);

private:
    SdlWindowPtr window_;
    SdlGlContextPtr context_;
};

}  // namespace tolvar
