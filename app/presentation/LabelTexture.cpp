#include "presentation/LabelTexture.h"

#include <GL/gl.h>

namespace tolvar {

namespace {
constexpr const char* kLabelFont = "sans-serif";
constexpr int kLabelPoints = 18;
constexpr float kPadding = 6.0f;  // round the text, inside the backing
constexpr float kBackingColor[4] = {0.06f, 0.06f, 0.1f, 0.85f};
constexpr float kEdgeColor[3] = {0.85f, 0.85f, 0.9f};
constexpr float kTextColor[4] = {1.0f, 1.0f, 1.0f, 1.0f};
constexpr float kOneUnitAPixel = 1.0f;
}  // namespace

void LabelTexture::setText(const std::string& text) {
    if (text == text_) return;
    text_ = text;
    label_.set(text, kLabelFont, kLabelPoints);
}

float LabelTexture::width() const { return label_.empty() ? 0.0f : static_cast<float>(label_.width()) + 2 * kPadding; }

float LabelTexture::height() const {
    return label_.empty() ? 0.0f : static_cast<float>(label_.height()) + 2 * kPadding;
}

void LabelTexture::draw(float x, float y) const {
    if (label_.empty()) return;
    glPushAttrib(GL_ENABLE_BIT | GL_CURRENT_BIT | GL_LINE_BIT | GL_COLOR_BUFFER_BIT | GL_TEXTURE_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_RECTANGLE_ARB);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    const float x1 = x + width(), y1 = y + height();
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
    glPopAttrib();
    label_.draw(x + kPadding, y + kPadding, kOneUnitAPixel, kTextColor);
}

}  // namespace tolvar
