// Reading and writing property-list files (XML or binary on read, XML on write).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "core/AtomicFile.h"
#include "core/PlistLayout.h"
#include "core/PropertyList.h"

namespace tolvar {

struct PlistError {
    std::string reason;  // human-readable: "no such file", "not a property list", ...
};

// Reads the whole file at path. A missing file, an unreadable one, one that is not a regular file
// (a named pipe, a device: refused without waiting on it), one that is not a property list, a
// truncated one, or one with findings (see parsePropertyListNoting) gives a PlistError naming
// the first finding's keys and value; never throws, never blocks, never crashes on any bytes.
std::variant<Value, PlistError> readPropertyListFile(const std::string& path);

// The same on bytes in memory (used by the file reader and the fuzz targets). A UTF-8 byte-order
// mark before an XML text is skipped.
std::variant<Value, PlistError> parsePropertyList(std::string_view bytes);

// A readable property list with what the reading library would have passed over in silence:
// integers outside 64 bits and keys written twice in one dictionary (the checker reports each
// with its line; the game refuses the file).
struct ReadPropertyList {
    Value value;
    PlistFindings findings;
};
std::variant<ReadPropertyList, PlistError> parsePropertyListNoting(std::string_view bytes);

// Writes value as an XML property list, replacing the file at path in one step (see
// writeFileAtomically). Returns why it could not; the old file is then left as it was.
std::optional<FileWriteError> writePropertyListFile(const std::string& path, const Value& value);

// The XML text that writePropertyListFile writes.
std::string toXmlPropertyList(const Value& value);

}  // namespace tolvar
