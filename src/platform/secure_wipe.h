// Overwriting a block that held a secret (a PIN, a key, a reply field) with
// stores the compiler keeps: the C library's memset, which writes a word or a
// vector at a time, then an empty statement that claims to read the block,
// so the stores are never dropped as dead, not even right before a free.
#pragma once

#include <cstddef>
#include <cstring>

namespace platform {

inline void SecureWipe(void *block, size_t bytes, int fill = 0) {
    std::memset(block, fill, bytes);
    __asm__ __volatile__("" : : "r"(block) : "memory");
}

}  // namespace platform
