#pragma once
#include <windows.h>

#include <atomic>

namespace virtualwheel {

// IUnknown for one interface: a reference count, and QueryInterface for IUnknown and `*Id`. The object
// deletes itself at its last Release.
template <class Interface, const IID* Id>
class ComObject : public Interface {
public:
    virtual ~ComObject() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (object == nullptr) return E_POINTER;
        if (riid == IID_IUnknown || riid == *Id) {
            AddRef();
            *object = static_cast<Interface*>(this);
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references;
        if (left == 0) delete this;
        return left;
    }

private:
    std::atomic<ULONG> references{1};
};

}  // namespace virtualwheel
