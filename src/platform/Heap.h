// The ordinary heap: handles, tables and scratch. All of it goes through these two functions, so that one
// heap serves allocation and release, and so that tests can refuse any request.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

namespace z3d::platform {

// Uninitialised memory, aligned for any scalar, or null. A request for 0 bytes gives a block of its own.
void* HeapAllocate(std::size_t bytes);

// Releases what HeapAllocate gave; null is ignored.
void HeapFree(void* memory);

// Owns one heap array of trivial elements. Empty when the allocation failed or the byte count overflows.
template <class T>
class HeapArray {
public:
    HeapArray() = default;
    explicit HeapArray(std::size_t count) {
        if (count <= SIZE_MAX / sizeof(T)) data_ = static_cast<T*>(HeapAllocate(count * sizeof(T)));
    }
    HeapArray(HeapArray&& other) noexcept : data_(std::exchange(other.data_, nullptr)) {}
    HeapArray& operator=(HeapArray&& other) noexcept {
        std::swap(data_, other.data_);
        return *this;
    }
    ~HeapArray() { HeapFree(data_); }

    explicit operator bool() const { return data_ != nullptr; }
    T* Get() const { return data_; }
    T& operator[](std::size_t index) const { return data_[index]; }

private:
    T* data_ = nullptr;
};

} // namespace z3d::platform
