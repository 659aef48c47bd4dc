#include "desktop/MyWindow.h"

#include <SDL_opengl.h>

#include <algorithm>
#include <cstdio>

#include "desktop/WindowPlacement.h"
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
                                   SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN | SDL_WINDOW_RESIZABLE));
    if (window_) context_.reset(SDL_GL_CreateContext(window_.get()));
    if (!valid()) {
        std::fprintf(stderr, "tolvar: could not make the game window's OpenGL context: %s\n", SDL_GetError());
        return;
    }
    pictureWidth_ = static_cast<float>(width);
    pictureHeight_ = static_cast<float>(height);
    SDL_SetWindowMinimumSize(window_.get(), width / 4, height / 4);
}

MyWindow::~MyWindow() {
    context_.reset();
    window_.reset();
}

Uint32 MyWindow::windowID() const { return window_ ? SDL_GetWindowID(window_.get()) : 0; }

namespace {
PictureFit fitInPixels(SDL_Window* window, float pictureWidth, float pictureHeight, bool drawable) {
    int w = 0, h = 0;
    if (drawable)
        SDL_GL_GetDrawableSize(window, &w, &h);
    else
        SDL_GetWindowSize(window, &w, &h);
    return PictureFit::within(w, h, pictureWidth, pictureHeight);
}
}  // namespace

void MyWindow::makeCurrentContext() {
    if (!valid()) return;
    SDL_GL_MakeCurrent(window_.get(), context_.get());
    // The picture's units map onto its place in the window; nothing is drawn on the bars.
    const PictureFit fit = pictureFitInPixels();
    glViewport(fit.x, fit.y, fit.width, fit.height);
    glScissor(fit.x, fit.y, fit.width, fit.height);
    glEnable(GL_SCISSOR_TEST);
}

PictureFit MyWindow::pictureFit() const {
    if (!window_) return PictureFit::within(0, 0, pictureWidth_, pictureHeight_);
    return fitInPixels(window_.get(), pictureWidth_, pictureHeight_, false);
}

PictureFit MyWindow::pictureFitInPixels() const {
    if (!window_) return PictureFit::within(0, 0, pictureWidth_, pictureHeight_);
    return fitInPixels(window_.get(), pictureWidth_, pictureHeight_, true);
}

void MyWindow::takeNewSize() {
    if (!valid()) return;
    makeCurrentContext();
    // The driver sizes its buffers anew when a frame is shown.
    flushBuffer();
    glDisable(GL_SCISSOR_TEST);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_SCISSOR_TEST);
}

void MyWindow::toggleFullscreen() {
    if (!window_) return;
    SDL_Window* w = window_.get();
    if (windowed_) {
        if (managerFullscreen_) SDL_SetWindowFullscreen(w, 0);
        else SDL_SetWindowBordered(w, SDL_TRUE);
        SDL_SetWindowSize(w, windowed_->w, windowed_->h);
        SDL_SetWindowPosition(w, windowed_->x, windowed_->y);
        windowed_.reset();
        return;
    }
    SDL_Rect before{0, 0, 0, 0};
    SDL_GetWindowPosition(w, &before.x, &before.y);
    SDL_GetWindowSize(w, &before.w, &before.h);
    // A window manager fills the screen itself (over its panels, without the title bar) and
    // knows the window for full screen; without one, the window covers the screen borderless.
    managerFullscreen_ = windowManagerRuns(w);
    if (managerFullscreen_) {
        if (SDL_SetWindowFullscreen(w, SDL_WINDOW_FULLSCREEN_DESKTOP) != 0) return;
        windowed_ = before;
        return;
    }
    SDL_Rect screen{0, 0, 0, 0};
    if (SDL_GetDisplayBounds(std::max(0, SDL_GetWindowDisplayIndex(w)), &screen) != 0) return;
    windowed_ = before;
    SDL_SetWindowBordered(w, SDL_FALSE);
    SDL_SetWindowPosition(w, screen.x, screen.y);
    SDL_SetWindowSize(w, screen.w, screen.h);
    SDL_RaiseWindow(w);
}

void MyWindow::fitToUsableArea() {
    if (!window_) return;
    SDL_Rect usable{0, 0, 0, 0};
    if (!usableAreaOf(window_.get(), usable)) return;
    // The title bar and borders, where the desktop tells them (it may only once the window shows).
    const WindowFrame frame = frameOf(window_.get());
    int w = 0, h = 0;
    openingSize(pictureWidth_, pictureHeight_, usable.w, usable.h, frame.left + frame.right, frame.top + frame.bottom,
                w, h);
    SDL_SetWindowSize(window_.get(), w, h);
}

void MyWindow::keepOnScreen() {
    if (!window_ || isFullscreen()) return;
    SDL_Window* w = window_.get();
    SDL_Rect usable{0, 0, 0, 0};
    if (!usableAreaOf(w, usable)) return;
    const WindowFrame frame = frameOf(w);
    int width = 0, height = 0;
    SDL_GetWindowSize(w, &width, &height);
    // Too large with its frame: the largest size that fits, in the picture's proportions.
    if (width + frame.left + frame.right > usable.w || height + frame.top + frame.bottom > usable.h) {
        openingSize(pictureWidth_, pictureHeight_, usable.w, usable.h, frame.left + frame.right,
                    frame.top + frame.bottom, width, height);
        SDL_SetWindowSize(w, width, height);
    }
    keepInsideUsableArea(w, static_cast<int>(pictureWidth_) / 4, static_cast<int>(pictureHeight_) / 4);
}

void MyWindow::windowEvent() {
    if (!placing_ || !window_ || !framed(window_.get())) return;
    placing_ = false;
    keepOnScreen();
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
    glViewport(0, 0, w, h);
    glDisable(GL_SCISSOR_TEST);
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
    // Placed again once the window manager tells the frame it put round the window.
    keepOnScreen();
    placing_ = windowManagerRuns(window_.get());
    SDL_RaiseWindow(window_.get());
    // Without a window manager nothing hands the keyboard to a window that appears.
    SDL_SetWindowInputFocus(window_.get());
}

void MyWindow::orderOut() {
    if (window_) SDL_HideWindow(window_.get());
}

void MyWindow::center() {
    SDL_Rect usable{0, 0, 0, 0};
    if (!window_ || !usableAreaOf(window_.get(), usable)) return;
    int w = 0, h = 0;
    SDL_GetWindowSize(window_.get(), &w, &h);
    SDL_SetWindowPosition(window_.get(), usable.x + (usable.w - w) / 2, usable.y + (usable.h - h) / 2);
}

bool MyWindow::isVisible() const {
    return window_ && (SDL_GetWindowFlags(window_.get()) & SDL_WINDOW_SHOWN) != 0;
}

bool MyWindow::performKeyEquivalent(const Engine& engine, const CurrentEvent& event) {
    return engine.performKeyEquivalent(event);
}

}  // namespace tolvar
