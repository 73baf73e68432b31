#pragma once
#include <windows.h>
#define DIRECTINPUT_VERSION 0x0800
#include <dinput.h>

#include <atomic>

#include "ComObject.h"

namespace virtualwheel {

class VirtualDevice;

// The one kind of effect the virtual wheel plays: a constant force, whose magnitude drives the rim.
class VirtualEffect final : public ComObject<IDirectInputEffect, &IID_IDirectInputEffect> {
public:
    VirtualEffect(VirtualDevice& device, LONG magnitude);
    ~VirtualEffect() override;

    HRESULT STDMETHODCALLTYPE Initialize(HINSTANCE, DWORD, REFGUID) override;
    HRESULT STDMETHODCALLTYPE GetEffectGuid(LPGUID guid) override;
    HRESULT STDMETHODCALLTYPE GetParameters(LPDIEFFECT, DWORD) override;
    HRESULT STDMETHODCALLTYPE SetParameters(LPCDIEFFECT parameters, DWORD flags) override;
    HRESULT STDMETHODCALLTYPE Start(DWORD iterations, DWORD flags) override;
    HRESULT STDMETHODCALLTYPE Stop() override;
    HRESULT STDMETHODCALLTYPE GetEffectStatus(LPDWORD status) override;
    HRESULT STDMETHODCALLTYPE Download() override;
    HRESULT STDMETHODCALLTYPE Unload() override;
    HRESULT STDMETHODCALLTYPE Escape(LPDIEFFESCAPE) override;

private:
    VirtualDevice& device;    // held with a reference of its own
    std::atomic<LONG> magnitude;
    std::atomic<bool> playing{false};
};

// The constant force's magnitude from effect parameters, or false when they carry none.
bool ReadMagnitude(LPCDIEFFECT parameters, LONG& magnitude);

}  // namespace virtualwheel
