// Drawing text and textured rectangles in screen coordinates.
#include "glUtils.h"

#include <GL/gl.h>
#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "ImageFile.h"
#include "TextPixels.h"

namespace {

// Text textures larger than this are not made: a font size that asks for more is refused.
constexpr std::int64_t kMaxTextSide = 16384;
constexpr std::int64_t kMaxTextPixels = std::int64_t{1} << 24;

std::int64_t powerOfTwoNotBelow(std::int64_t value) {
    std::int64_t power = 1;
    while (power < value) power <<= 1;
    return power;
}

// The texture a string gets: H from the font size with a little room, W from the font size and
// the number of bytes, each raised to a power of two. False when the numbers are unusable.
bool textTextureSize(const char* text, double fontSize, int& width, int& height) {
    if (!std::isfinite(fontSize) || std::fabs(fontSize) > 1.0e7) return false;
    const double rows = std::trunc(fontSize + 2.0);
    const double bytes = static_cast<double>(std::strlen(text));
    const double product = fontSize * bytes;
    if (std::fabs(product) > 1.0e12) return false;
    const double columns = std::trunc(static_cast<double>(static_cast<float>(product)) * 0.7);
    const std::int64_t h = powerOfTwoNotBelow(static_cast<std::int64_t>(rows));
    const std::int64_t w = powerOfTwoNotBelow(static_cast<std::int64_t>(columns));
    if (w > kMaxTextSide || h > kMaxTextSide || w * h > kMaxTextPixels) return false;
    width = static_cast<int>(w);
    height = static_cast<int>(h);
    return true;
}

std::uint8_t scaleByAlpha(std::uint8_t channel, unsigned alpha) {
    return static_cast<std::uint8_t>((channel * alpha + 127) / 255);
}

// Lays white text over premultiplied pixels of W x H, top row first, so that the text's top is
// at the first row and its baseline stays inside the rows.
void drawTextInto(std::vector<std::uint8_t>& pixels, int width, int height, const char* text,
                  const std::string& fontName, double fontSize) {
    const long points = std::lround(fontSize);
    if (points < 1 || points > tolvar::text::kMaxPointSize) return;
    tolvar::text::Rendered drawn;
    if (!tolvar::text::renderText(text, fontName, static_cast<int>(points), 255, 255, 255, 0, drawn))
        return;
    const int top = std::min(0, height - 1 - drawn.ascent);  // lift a baseline that would fall out
    for (int y = 0; y < drawn.height; ++y) {
        const int row = y + top;
        if (row < 0 || row >= height) continue;
        const int columns = std::min(drawn.width, width);
        for (int x = 0; x < columns; ++x) {
            const std::uint8_t* src = &drawn.rgba[(static_cast<std::size_t>(y) * drawn.width + x) * 4];
            std::uint8_t* dst = &pixels[(static_cast<std::size_t>(row) * width + x) * 4];
            const unsigned a = src[3];
            for (int c = 0; c < 3; ++c)
                dst[c] = static_cast<std::uint8_t>(scaleByAlpha(src[c], a) + scaleByAlpha(dst[c], 255 - a));
            dst[3] = static_cast<std::uint8_t>(a + scaleByAlpha(dst[3], 255 - a));
        }
    }
}

void drawQuad(float left, float bottom, float width, float height) {
    const GLfloat vertices[8] = {left,         bottom,          left,         bottom + height,
                                 left + width, bottom,          left + width, bottom + height};
    static const GLfloat kTexCoords[8] = {0.0f, 1.0f, 0.0f, 0.0f, 1.0f, 1.0f, 1.0f, 0.0f};
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_COLOR_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glEnableClientState(GL_VERTEX_ARRAY);
    glTexCoordPointer(2, GL_FLOAT, 0, kTexCoords);
    glVertexPointer(2, GL_FLOAT, 0, vertices);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    // The arrays live on this stack frame: leave nothing pointing at them.
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
}

void useTexture(std::uint32_t textureName) {
    glBindTexture(GL_TEXTURE_2D, textureName);
    glTexEnvf(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
}

// The size of the screen the game runs on; the current viewport's size when no display is known.
void screenSize(int& width, int& height) {
    SDL_DisplayMode mode;
    if (SDL_WasInit(SDL_INIT_VIDEO) != 0 && SDL_GetDesktopDisplayMode(0, &mode) == 0 && mode.w > 0 &&
        mode.h > 0) {
        width = mode.w;
        height = mode.h;
        return;
    }
    GLint viewport[4] = {0, 0, 0, 0};
    glGetIntegerv(GL_VIEWPORT, viewport);
    width = viewport[2];
    height = viewport[3];
}

}  // namespace

int createTextureFromString(const char* text, const std::string& fontName, double fontSize,
                            std::uint32_t* textureName, const std::uint8_t background[4],
                            const void* /*unused*/) {
    if (text == nullptr || textureName == nullptr) return 0;
    int width = 0;
    int height = 0;
    if (!textTextureSize(text, fontSize, width, height)) return 0;
    static const std::uint8_t kClear[4] = {0, 0, 0, 0};
    const std::uint8_t* fill = background != nullptr ? background : kClear;
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) * height * 4);
    for (std::size_t i = 0; i < pixels.size(); i += 4) std::memcpy(&pixels[i], fill, 4);
    drawTextInto(pixels, width, height, text, fontName, fontSize);

    for (int pending = 0; pending < 64 && glGetError() != GL_NO_ERROR; ++pending) {
    }
    glGenTextures(1, textureName);
    glBindTexture(GL_TEXTURE_2D, *textureName);
    std::vector<std::uint8_t> packed;
    const std::uint8_t* rows =
        tolvar::images::prepareUnpack(pixels.data(), width, height, width * 4, 4, packed);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, rows);
    if (glGetError() != GL_NO_ERROR) {
        glDeleteTextures(1, textureName);
        *textureName = 0;
        return 0;
    }
    return 1;
}

void drawStringAtPoint(const char* text, const std::string& fontName, const float color[4],
                       double fontSize, double x, double y, float angle) {
    if (text == nullptr) return;
    int width = 0;
    int height = 0;
    const bool sized = textTextureSize(text, fontSize, width, height);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    const GLboolean culling = glIsEnabled(GL_CULL_FACE);
    glDisable(GL_CULL_FACE);
    std::uint32_t texture = 0;
    static const std::uint8_t kTransparentBlack[4] = {0, 0, 0, 0};
    if (sized && createTextureFromString(text, fontName, fontSize, &texture, kTransparentBlack,
                                         nullptr) == 1) {
        // The rotation stays on the current matrix for whatever is drawn next.
        if (angle != 0.0f) glRotatef(angle, 0.0f, 0.0f, 1.0f);
        if (color != nullptr)
            glColor4f(color[0], color[1], color[2], color[3]);
        else
            glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
        useTexture(texture);
        // The quad's lower left corner is the point.
        drawQuad(static_cast<float>(x), static_cast<float>(y), static_cast<float>(width),
                 static_cast<float>(height));
        glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
        glDeleteTextures(1, &texture);
    }
    if (culling == GL_TRUE) glEnable(GL_CULL_FACE);
    glDisable(GL_BLEND);
}

void drawTextureAtPoint(std::uint32_t textureName, const float point[2], const float rotation[4],
                        std::int32_t width, std::int32_t height, const float color[4]) {
    int screenWidth = 0;
    int screenHeight = 0;
    screenSize(screenWidth, screenHeight);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glViewport(0, 0, screenWidth, screenHeight);
    glOrtho(0.0, screenWidth, 0.0, screenHeight, -1.0, 1.0);
    if (point != nullptr) glTranslatef(point[0], point[1], 0.0f);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_DEPTH_TEST);
    const GLboolean culling = glIsEnabled(GL_CULL_FACE);
    glDisable(GL_CULL_FACE);
    if (rotation != nullptr) glRotatef(rotation[0], rotation[1], rotation[2], rotation[3]);
    if (color != nullptr)
        glColor4f(color[0], color[1], color[2], color[3]);
    else
        glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    useTexture(textureName);
    drawQuad(0.0f, 0.0f, static_cast<float>(width), static_cast<float>(height));
    if (culling == GL_TRUE) glEnable(GL_CULL_FACE);
    glDisable(GL_BLEND);
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
}
