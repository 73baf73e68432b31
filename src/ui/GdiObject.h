#pragma once
#include <windows.h>

#include <utility>

namespace veltor {

// Owns one GDI object (a font, brush, pen or bitmap) and deletes it when reset or destroyed. It stands
// where the handle does; selecting it into a DC does not pass the ownership on.
template <class Handle>
class GdiObject {
public:
    GdiObject() = default;
    explicit GdiObject(Handle handle) : object(handle) {}
    ~GdiObject() { Reset(); }
    GdiObject(GdiObject&& other) noexcept : object(std::exchange(other.object, nullptr)) {}
    GdiObject& operator=(GdiObject&& other) noexcept {
        if (this != &other) Reset(std::exchange(other.object, nullptr));
        return *this;
    }
    GdiObject(const GdiObject&) = delete;
    GdiObject& operator=(const GdiObject&) = delete;

    operator Handle() const { return object; }
    Handle Get() const { return object; }
    void Reset(Handle handle = nullptr) {
        if (object != nullptr) DeleteObject(object);
        object = handle;
    }

private:
    Handle object = nullptr;
};

// A DC made for drawing off screen, deleted with its holder.
class MemoryDc {
public:
    explicit MemoryDc(HDC compatibleWith) : dc(CreateCompatibleDC(compatibleWith)) {}
    ~MemoryDc() {
        if (dc != nullptr) DeleteDC(dc);
    }
    MemoryDc(const MemoryDc&) = delete;
    MemoryDc& operator=(const MemoryDc&) = delete;
    operator HDC() const { return dc; }

private:
    HDC dc;
};

}  // namespace veltor
