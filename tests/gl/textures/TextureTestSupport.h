// Shared pieces of the texture tests: a real OpenGL context, pattern images and read-back.
#pragma once

#include <GL/gl.h>
#include <SDL.h>
#include <SDL_image.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include "GlWindow.h"
#include "Textures.h"

namespace texturetest {

inline constexpr int kWindowWidth = tolvar::test::kGlWindowWidth, kWindowHeight = tolvar::test::kGlWindowHeight;

inline const std::filesystem::path& scratchFolder() {
    static const auto path = std::filesystem::temp_directory_path() / ("tolvar-textures-" + std::to_string(getpid()));
    return path;
}

// The shared window, current for the whole run, and the scratch folder.
class GLEnvironment : public testing::Environment {
    void SetUp() override {
        ASSERT_EQ(tolvar::test::glWindowFailure(), "");
        std::filesystem::create_directories(scratchFolder());
    }
    void TearDown() override { std::filesystem::remove_all(scratchFolder()); }
};

inline void writeBytes(const std::filesystem::path& path, const std::vector<std::uint8_t>& bytes) {
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
}

// Channel c (R G B A) of the test pattern's pixel (x, y), counted from the top left.
inline std::uint8_t pattern(int x, int y, int c) {
    const int values[4] = {x * 7 + y, y * 5 + x * 3, x ^ y, 255 - ((x + 2 * y) & 127)};
    return static_cast<std::uint8_t>(values[c] & 255);
}

// The pattern as an image record, rows top first, each padded to bytesPerRow (0: unpadded).
inline Image patternImage(int width, int height, bool alpha, int bytesPerRow = 0) {
    const int bytes = alpha ? 4 : 3, row = bytesPerRow ? bytesPerRow : width * bytes;
    Image image{width, height, alpha, bytes * 8, row, decltype(Image::pixels)(std::size_t(row) * height, 0xEE)};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width * bytes; ++x)
            image.pixels[std::size_t(y) * row + x] = pattern(x / bytes, y, x % bytes);
    return image;
}

// The pattern saved at 24 or 32 bits, or a blank 8-bit indexed image; PNG for ".png", else BMP.
inline void saveImage(const std::filesystem::path& path, int width, int height, int bits) {
    Image image = patternImage(width, height, bits == 32);
    std::unique_ptr<SDL_Surface, void (*)(SDL_Surface*)> surface(
        bits == 8 ? SDL_CreateRGBSurfaceWithFormat(0, width, height, 8, SDL_PIXELFORMAT_INDEX8)
                  : SDL_CreateRGBSurfaceWithFormatFrom(image.pixels.data(), width, height, bits, image.bytesPerRow,
                                                       bits == 32 ? SDL_PIXELFORMAT_RGBA32 : SDL_PIXELFORMAT_RGB24),
        SDL_FreeSurface);
    ASSERT_TRUE(surface) << SDL_GetError();
    ASSERT_EQ(path.extension() == ".png" ? IMG_SavePNG(surface.get(), path.c_str())
                                         : SDL_SaveBMP(surface.get(), path.c_str()), 0) << SDL_GetError();
}

// Level 0 of a 2-D texture, rows as stored (the first uploaded row first).
struct TextureLevel {
    int width = 0, height = 0;
    std::vector<std::uint8_t> rgba;
};
inline TextureLevel readTexture(std::uint32_t name) {
    TextureLevel level;
    glBindTexture(GL_TEXTURE_2D, name);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &level.width);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &level.height);
    level.rgba.resize(static_cast<std::size_t>(std::max(level.width * level.height, 0)) * 4);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, level.rgba.data());
    return level;
}

// Texel channels unlike the pattern when texture row r holds image row firstRow + r * rowStep.
inline int patternMismatches(const TextureLevel& level, bool alpha, int firstRow, int rowStep) {
    int wrong = 0;
    for (std::size_t i = 0; i < level.rgba.size(); ++i) {
        const int t = static_cast<int>(i / 4), x = t % level.width, y = firstRow + t / level.width * rowStep;
        if (level.rgba[i] != (i % 4 < 3 || alpha ? pattern(x, y, i % 4) : 255) && ++wrong <= 3)
            ADD_FAILURE() << "texel " << i / 4 << " channel " << i % 4 << " is " << int(level.rgba[i]);
    }
    return wrong;
}

}  // namespace texturetest
