#include "presentation/LabelTexture.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include "TextPixels.h"

namespace tolvar {

namespace {
constexpr const char* kLabelFont = "sans-serif";
constexpr int kLabelPoints = 18;
constexpr float kPadding = 6.0f;  // round the text, inside the backing
constexpr float kBackingColor[4] = {0.06f, 0.06f, 0.1f, 0.85f};
constexpr float kEdgeColor[3] = {0.85f, 0.85f, 0.9f};
}  // namespace

LabelTexture::~LabelTexture() { release(); }

void LabelTexture::release() {
    if (texture_ != 0) {
        const GLuint name = texture_;
        glDeleteTextures(1, &name);
    }
    texture_ = 0;
    textWidth_ = textHeight_ = 0;
}

void LabelTexture::setText(const std::string& text) {
    if (text == text_) return;
    release();
    text_ = text;
    text::Rendered drawn;
    if (text.empty() || !text::renderText(text.c_str(), kLabelFont, kLabelPoints, 255, 255, 255, 0, drawn)) return;
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, name);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    // Rows top first: texel row 0 is the text's top.
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA8, drawn.width, drawn.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 drawn.rgba.data());
    texture_ = name;
    textWidth_ = drawn.width;
    textHeight_ = drawn.height;
}

float LabelTexture::width() const { return texture_ ? static_cast<float>(textWidth_) + 2 * kPadding : 0.0f; }

float LabelTexture::height() const { return texture_ ? static_cast<float>(textHeight_) + 2 * kPadding : 0.0f; }

void LabelTexture::draw(float x, float y) const {
    if (texture_ == 0) return;
    glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT | GL_LINE_BIT | GL_COLOR_BUFFER_BIT | GL_TEXTURE_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    const float x1 = x + width(), y1 = y + height();
    glDisable(GL_TEXTURE_RECTANGLE_ARB);
    glColor4fv(kBackingColor);
    glRectf(x, y, x1, y1);
    glColor3fv(kEdgeColor);
    glLineWidth(1.0f);
    glBegin(GL_LINE_LOOP);
    glVertex2f(x + 0.5f, y + 0.5f);
    glVertex2f(x1 - 0.5f, y + 0.5f);
    glVertex2f(x1 - 0.5f, y1 - 0.5f);
    glVertex2f(x + 0.5f, y1 - 0.5f);
    glEnd();

    glEnable(GL_TEXTURE_RECTANGLE_ARB);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, texture_);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    const float tx = x + kPadding, ty = y + kPadding;
    const auto w = static_cast<float>(textWidth_), h = static_cast<float>(textHeight_);
    glBegin(GL_QUADS);
    glTexCoord2f(0.0f, h);
    glVertex2f(tx, ty);
    glTexCoord2f(w, h);
    glVertex2f(tx + w, ty);
    glTexCoord2f(w, 0.0f);
    glVertex2f(tx + w, ty + h);
    glTexCoord2f(0.0f, 0.0f);
    glVertex2f(tx, ty + h);
    glEnd();
    glPopAttrib();
}

}  // namespace tolvar
