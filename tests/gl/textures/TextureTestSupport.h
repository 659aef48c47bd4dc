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

#include "Textures.h"

namespace texturetest {

inline constexpr int kWindowWidth = 1024, kWindowHeight = 768;

inline const std::filesystem::path& scratchFolder() {
    static const auto path = std::filesystem::temp_directory_path() / ("tolvar-textures-" + std::to_string(getpid()));
    return path;
}

// One window with SDL's default double-buffered 2.1 context, current for the whole run.
class GLEnvironment : public testing::Environment {
    void SetUp() override {
        ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO), 0) << SDL_GetError();
        window_.reset(SDL_CreateWindow("texture tests", 0, 0, kWindowWidth, kWindowHeight,
                                       SDL_WINDOW_OPENGL | SDL_WINDOW_SHOWN));
        context_.reset(SDL_GL_CreateContext(window_.get()));
        ASSERT_TRUE(window_) << SDL_GetError();
        ASSERT_TRUE(context_) << SDL_GetError();
        std::filesystem::create_directories(scratchFolder());
    }
    void TearDown() override {
        std::filesystem::remove_all(scratchFolder());
        context_.reset();
        window_.reset();  // no SDL_Quit: the leak checker must still see the driver's own allocations
    }
    std::unique_ptr<SDL_Window, void (*)(SDL_Window*)> window_{nullptr, SDL_DestroyWindow};
    std::unique_ptr<void, void (*)(SDL_GLContext)> context_{nullptr, SDL_GL_DeleteContext};
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
