#include "presentation/TextLabel.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <utility>

#include "TextPixels.h"

namespace tolvar {

TextLabel::~TextLabel() { release(); }

TextLabel::TextLabel(TextLabel&& other) noexcept { *this = std::move(other); }

TextLabel& TextLabel::operator=(TextLabel&& other) noexcept {
    if (this == &other) return *this;
    release();
    text_ = std::move(other.text_), family_ = std::move(other.family_);
    pixels_ = other.pixels_, width_ = other.width_, height_ = other.height_, ascent_ = other.ascent_;
    texture_ = std::exchange(other.texture_, 0u);
    other.pixels_ = other.width_ = other.height_ = other.ascent_ = 0;
    return *this;
}

void TextLabel::release() {
    if (texture_ != 0) {
        const GLuint name = texture_;
        glDeleteTextures(1, &name);
    }
    texture_ = 0;
    width_ = height_ = ascent_ = 0;
}

bool TextLabel::set(const std::string& text, const std::string& family, int pixels) {
    if (text == text_ && family == family_ && pixels == pixels_) return false;
    text_ = text, family_ = family, pixels_ = pixels;
    release();
    // Drawn white: the colour is the tint it is drawn with, so a colour change costs nothing.
    text::Rendered drawn;
    if (!text::renderText(text.c_str(), family, pixels, 255, 255, 255, 0, drawn)) return true;
    GLuint name = 0;
    glGenTextures(1, &name);
    glPushAttrib(GL_TEXTURE_BIT);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, name);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA8, drawn.width, drawn.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 drawn.rgba.data());
    glPopClientAttrib();
    glPopAttrib();
    texture_ = name;
    width_ = drawn.width, height_ = drawn.height, ascent_ = drawn.ascent;
    return true;
}

void TextLabel::draw(float x, float y, float unitsPerPixel, const float colour[4]) const {
    if (texture_ == 0) return;
    glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_CURRENT_BIT | GL_TEXTURE_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    glDisable(GL_TEXTURE_2D);
    glEnable(GL_TEXTURE_RECTANGLE_ARB);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, texture_);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glColor4fv(colour);
    const float w = static_cast<float>(width_) * unitsPerPixel, h = static_cast<float>(height_) * unitsPerPixel;
    const float tw = static_cast<float>(width_), th = static_cast<float>(height_);
    // The texture's first row is the text's top.
    glBegin(GL_QUADS);
    glTexCoord2f(0.0f, th);
    glVertex2f(x, y);
    glTexCoord2f(tw, th);
    glVertex2f(x + w, y);
    glTexCoord2f(tw, 0.0f);
    glVertex2f(x + w, y + h);
    glTexCoord2f(0.0f, 0.0f);
    glVertex2f(x, y + h);
    glEnd();
    glPopAttrib();
}

}  // namespace tolvar
