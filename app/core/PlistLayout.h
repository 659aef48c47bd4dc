// What is checked in the bytes of a property list before the reading library sees them, and what
// the library would pass over in silence: integers that do not fit in 64 bits (it wraps or clamps
// them) and keys written twice in one dictionary (it keeps one of them).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tolvar {

// Something in a readable property list that the game does not take silently.
struct PlistFinding {
    static constexpr std::size_t kNoOffset = static_cast<std::size_t>(-1);
    std::string path;      // keys and indices from the top: "Vexamor/ScoreMultiplier"
    std::string key;       // the nearest key on the path; empty when there is none
    std::size_t offset = kNoOffset;  // where the element starts in an XML text
    std::string message;   // "the integer 1000000000000000000000000000000 does not fit in 64 bits"
};

// At most this many findings are kept; the rest are counted.
inline constexpr std::size_t kMaxPlistFindings = 100;

struct PlistFindings {
    std::vector<PlistFinding> kept;
    std::size_t count = 0;
    void add(PlistFinding finding);
};

namespace plistlayout {

// Deeper structures are refused: no rules or score file nests more than a handful of levels,
// and refusing early keeps the conversion's recursion shallow.
inline constexpr int kMaxDepth = 256;

// A binary file may refer to one object many times; past this many values it is refused.
inline constexpr std::uint64_t kMaxBinaryValues = 4'000'000;

// An integer of a binary file that does not fit in 64 bits: the ordinal of its integer value
// in the order the values are read (from the root, depth first, once per reference), and its
// decimal value.
struct WideInteger {
    std::uint64_t ordinal = 0;
    std::string written;
};

struct BinaryCheck {
    std::optional<std::string> problem;  // why the file is refused before reading
    std::vector<WideInteger> wideIntegers;
};

struct XmlCheck {
    std::optional<std::string> problem;
    PlistFindings findings;
};

// The binary layout: zero bytes in texts, nesting, loops, shared values, integers past 64 bits.
BinaryCheck checkBinary(std::string_view bytes);
// The XML text: nesting, integers past 64 bits and keys written twice in one dictionary.
XmlCheck checkXml(std::string_view text);

// The finding for an integer written as written that does not fit in 64 bits.
std::string wideIntegerMessage(const std::string& written);

}  // namespace plistlayout
}  // namespace tolvar
