// Reading and writing property-list files (XML or binary on read, XML on write).
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "platform/AtomicFile.h"
#include "platform/PropertyList.h"

namespace tolvar {

struct PlistError {
    std::string reason;  // human-readable: "no such file", "not a property list", ...
};

// Reads the whole file at path. A missing file, an unreadable one, one that is not a property
// list, or a truncated one gives a PlistError; never throws, never crashes on any bytes.
std::variant<Value, PlistError> readPropertyListFile(const std::string& path);

// The same on bytes in memory (used by the file reader and the fuzz targets).
std::variant<Value, PlistError> parsePropertyList(const std::string& bytes);

// Writes value as an XML property list, replacing the file at path in one step (see
// writeFileAtomically). Returns why it could not; the old file is then left as it was.
std::optional<FileWriteError> writePropertyListFile(const std::string& path, const Value& value);

// The XML text that writePropertyListFile writes.
std::string toXmlPropertyList(const Value& value);

}  // namespace tolvar
