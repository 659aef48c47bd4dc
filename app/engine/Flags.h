// The scratch flags of the region and line queries, one per piece number (0 to
// boardWidth x boardHeight). It remembers which entries it set, so zeroing it costs what the
// last query touched rather than the size of the board.
#pragma once

#include <cstdint>
#include <vector>

namespace tolvar {

class Flags {
public:
    explicit Flags(std::size_t size) : flags_(size, 0) {}

    std::size_t size() const { return flags_.size(); }
    // A piece number outside the array reads as set, so a query never walks onto it.
    bool test(std::uint32_t n) const { return n >= flags_.size() || flags_[n] != 0; }
    void set(std::uint32_t n) {
        if (n >= flags_.size()) return;
        if (!flags_[n]) touched_.push_back(n);
        flags_[n] = 1;
    }
    void clear() {
        for (std::uint32_t n : touched_) flags_[n] = 0;
        touched_.clear();
    }
    // The numbers set, in ascending order.
    std::vector<std::uint32_t> setNumbers() const;

private:
    std::vector<std::uint8_t> flags_;
    std::vector<std::uint32_t> touched_;
};

}  // namespace tolvar
