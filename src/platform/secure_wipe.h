// Overwriting a block that held a secret (a PIN, a key, a reply field) with
// stores the compiler keeps: whole words at a time (a short block takes two
// overlapping words, a long one the C library's memset, which writes a
// vector at a time), then an empty statement that claims to read the block,
// so the stores are never dropped as dead, not even right before a free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace platform {

inline void SecureWipe(void *block, size_t bytes, int fill = 0) {
    auto *p = static_cast<unsigned char *>(block);
    const uint64_t word = 0x0101010101010101ull * static_cast<unsigned char>(fill);
    if (bytes >= 8 && bytes <= 16) {
        std::memcpy(p, &word, 8);
        std::memcpy(p + bytes - 8, &word, 8);
    } else if (bytes >= 4 && bytes < 8) {
        const auto half = static_cast<uint32_t>(word);
        std::memcpy(p, &half, 4);
        std::memcpy(p + bytes - 4, &half, 4);
    } else if (bytes > 0 && bytes < 4) {
        p[0] = p[bytes / 2] = p[bytes - 1] = static_cast<unsigned char>(fill);
    } else if (bytes > 16) {
        std::memset(p, fill, bytes);
    }
    __asm__ __volatile__("" : : "r"(block) : "memory");
}

}  // namespace platform
