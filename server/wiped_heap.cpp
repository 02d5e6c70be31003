// The C++ heap of a program that relays secrets (atserver, atsim): every
// block is wiped before it goes back, so that no freed or reallocated
// buffer (a request record, a command line, queued bytes, a line read back,
// a reply, a grown string's old storage) keeps a PIN, PUK, password or
// unlock code. Linked into the programs only, never into the library.
#include <malloc.h>
#include <string.h>

#include <cstdlib>
#include <new>

namespace {

void *Allocate(std::size_t size) {
    if (size == 0) size = 1;
    for (;;) {
        if (void *block = std::malloc(size)) return block;
        const std::new_handler handler = std::get_new_handler();
        if (handler == nullptr) throw std::bad_alloc();
        handler();
    }
}

void *AllocateAligned(std::size_t size, std::align_val_t alignment) {
    const auto align = static_cast<std::size_t>(alignment);
    // aligned_alloc wants a size that is a multiple of the alignment.
    const std::size_t rounded = (size + align - 1) / align * align;
    for (;;) {
        if (void *block = std::aligned_alloc(align, rounded == 0 ? align : rounded)) return block;
        const std::new_handler handler = std::get_new_handler();
        if (handler == nullptr) throw std::bad_alloc();
        handler();
    }
}

template <typename Allocator, typename... Args>
void *AllocateNoThrow(Allocator allocate, Args... args) noexcept {
    try {
        return allocate(args...);
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

// The whole usable block, which may be larger than what was asked for;
// explicit_bzero is a write the compiler keeps.
void Release(void *block) noexcept {
    if (block == nullptr) return;
    explicit_bzero(block, malloc_usable_size(block));
    std::free(block);
}

}  // namespace

void *operator new(std::size_t size) { return Allocate(size); }
void *operator new[](std::size_t size) { return Allocate(size); }
void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    return AllocateNoThrow(Allocate, size);
}
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept {
    return AllocateNoThrow(Allocate, size);
}
void *operator new(std::size_t size, std::align_val_t alignment) {
    return AllocateAligned(size, alignment);
}
void *operator new[](std::size_t size, std::align_val_t alignment) {
    return AllocateAligned(size, alignment);
}
void *operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t &) noexcept {
    return AllocateNoThrow(AllocateAligned, size, alignment);
}
void *operator new[](std::size_t size, std::align_val_t alignment,
                     const std::nothrow_t &) noexcept {
    return AllocateNoThrow(AllocateAligned, size, alignment);
}

void operator delete(void *block) noexcept { Release(block); }
void operator delete[](void *block) noexcept { Release(block); }
void operator delete(void *block, std::size_t) noexcept { Release(block); }
void operator delete[](void *block, std::size_t) noexcept { Release(block); }
void operator delete(void *block, const std::nothrow_t &) noexcept { Release(block); }
void operator delete[](void *block, const std::nothrow_t &) noexcept { Release(block); }
void operator delete(void *block, std::align_val_t) noexcept { Release(block); }
void operator delete[](void *block, std::align_val_t) noexcept { Release(block); }
void operator delete(void *block, std::size_t, std::align_val_t) noexcept { Release(block); }
void operator delete[](void *block, std::size_t, std::align_val_t) noexcept { Release(block); }
void operator delete(void *block, std::align_val_t, const std::nothrow_t &) noexcept {
    Release(block);
}
void operator delete[](void *block, std::align_val_t, const std::nothrow_t &) noexcept {
    Release(block);
}
