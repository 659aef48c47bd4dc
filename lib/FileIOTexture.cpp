// The file route of textures: a square image file uploaded at its own size.
#include <GL/gl.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "FileIO.h"
#include "ImageFile.h"

namespace {
constexpr std::uint32_t kNoTexture = 0xFFFFFFFFu;
}

std::uint32_t createTextureFromFile(const char* path) {
    if (path == nullptr) path = "";
    std::error_code error;
    if (*path == '\0' || !std::filesystem::exists(path, error)) {
        std::printf("No file exists at %s\n", path);
        return kNoTexture;
    }
    Image image;
    std::string reason;
    if (!tolvar::images::readImageFile(path, true, image, reason)) {
        std::printf("Error opening image file %s\n", path);
        std::fprintf(stderr, "%s: %s\n", path, reason.c_str());
        return kNoTexture;
    }
    if (image.width != image.height) {
        std::printf("Not a square texture.\n");
        return kNoTexture;
    }
    GLuint name = 0;
    glGenTextures(1, &name);
    glActiveTexture(GL_TEXTURE0);
    glEnable(GL_TEXTURE_2D);
    glTexEnvf(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    // Rows go up as they are stored, top row first, padding and all.
    const int bytesPerPixel = image.hasAlpha ? 4 : 3;
    std::vector<std::uint8_t> packed;
    const std::uint8_t* rows = tolvar::images::prepareUnpack(
        image.pixels.data(), image.width, image.height, image.bytesPerRow, bytesPerPixel, packed);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, image.width, image.height, 0,
                 image.hasAlpha ? GL_RGBA : GL_RGB, GL_UNSIGNED_BYTE, rows);
    return name;
}

std::uint32_t createTextureFromFileResource(const char* name) {
    char path[4096] = {};
    getResourcePath(name != nullptr ? name : "", "bmp", path);
    return createTextureFromFile(path);
}
