#include "MyWindow.h"

#include <SDL_opengl.h>

#include <cstdio>

#include "engine/Engine.h"

namespace tolvar {

namespace {
void setGameWindowAttributes() {
    SDL_GL_ResetAttributes();
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_COMPATIBILITY);
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 0);
    SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 1);
    SDL_GL_SetAttribute(SDL_GL_RED_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_GREEN_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_BLUE_SIZE, 8);
    SDL_GL_SetAttribute(SDL_GL_ALPHA_SIZE, 8);
    // No multisample buffers: in a software renderer they would cost a third of the program's
    // memory and double the time to make the context.
    SDL_GL_SetAttribute(SDL_GL_MULTISAMPLEBUFFERS, 0);
    SDL_GL_SetAttribute(SDL_GL_MULTISAMPLESAMPLES, 0);
    // Hardware acceleration is welcome but not required: software renderers must do.
}
}  // namespace

MyWindow::MyWindow(const std::string& title, int width, int height) {
    setGameWindowAttributes();
    window_.reset(SDL_CreateWindow(title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width, height,
                                   SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN));
    if (window_) context_.reset(SDL_GL_CreateContext(window_.get()));
    if (!valid())
        std::fprintf(stderr, "tolvar: could not make the game window's OpenGL context: %s\n", SDL_GetError());
}

MyWindow::~MyWindow() {
    context_.reset();
    window_.reset();
}

Uint32 MyWindow::windowID() const { return window_ ? SDL_GetWindowID(window_.get()) : 0; }

void MyWindow::makeCurrentContext() {
    if (valid()) SDL_GL_MakeCurrent(window_.get(), context_.get());
}

void MyWindow::flushBuffer() {
    // Single-buffered: what was flushed is already on the screen; swapping is a no-op for such a
    // context but lets the system present it where it must.
    if (valid()) SDL_GL_SwapWindow(window_.get());
}

void MyWindow::redisplay() {
    if (!valid() || !isVisible()) return;
    int w = 0, h = 0;
    SDL_GL_GetDrawableSize(window_.get(), &w, &h);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0.0, w, 0.0, h, -1.0, 1.0);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_TEXTURE_RECTANGLE_ARB);
    glDisable(GL_BLEND);
    glDisable(GL_CULL_FACE);
    glReadBuffer(GL_FRONT);
    glDrawBuffer(GL_FRONT);
    glRasterPos2i(0, 0);
    glCopyPixels(0, 0, w, h, GL_COLOR);
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glPopAttrib();
    glFlush();
    flushBuffer();
}

void MyWindow::mouseLocation(double& x, double& y) const {
    int gx = 0, gy = 0;
    SDL_GetGlobalMouseState(&gx, &gy);
    SDL_Rect bounds{0, 0, 0, 0};
    const int display = window_ ? SDL_GetWindowDisplayIndex(window_.get()) : 0;
    if (SDL_GetDisplayBounds(display < 0 ? 0 : display, &bounds) != 0) bounds.h = 0;
    x = static_cast<double>(gx);
    y = static_cast<double>(bounds.y + bounds.h - gy);
}

void MyWindow::orderFront() {
    if (!window_) return;
    SDL_ShowWindow(window_.get());
    SDL_RaiseWindow(window_.get());
    // Without a window manager nothing hands the keyboard to a window that appears.
    SDL_SetWindowInputFocus(window_.get());
}

void MyWindow::orderOut() {
    if (window_) SDL_HideWindow(window_.get());
}

void MyWindow::center() {
    if (window_) SDL_SetWindowPosition(window_.get(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED);
}

bool MyWindow::isVisible() const {
    return window_ && (SDL_GetWindowFlags(window_.get()) & SDL_WINDOW_SHOWN) != 0;
}

bool MyWindow::performKeyEquivalent(const Engine& engine, const CurrentEvent& event) {
    return engine.performKeyEquivalent(event);
}

}  // namespace tolvar
