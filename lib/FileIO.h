// Files and resources: whole-file reads, resource paths, and the file route of textures.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The whole file, or none (printing "No file exists at %s\n") when there is no file at path.
// ok is false when nothing could be read.
struct FileData {
    bool ok = false;
    std::vector<char> bytes;
};
FileData getFileData(const char* path);

// Writes the path of the resource name.type into path (4096 bytes) and prints "resource: %s\n".
// Resources are looked up in resources/ beside the executable (the build tree), then in
// ../share/tolvar/ (an installed game). A missing resource gives an empty path.
void getResourcePath(const char* name, const char* type, char* path);

// The folder that holds the resources, or an empty string when there is none.
std::string resourceFolder();

// The folder of the running program, or an empty string when it cannot be told.
std::string programFolder();

// The file route of textures: a square image file uploaded at its own size with linear
// filtering. Returns the texture name, or -1 (all bits set) when no texture is made.
std::uint32_t createTextureFromFile(const char* path);
std::uint32_t createTextureFromFileResource(const char* name);
