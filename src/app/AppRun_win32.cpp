#include "app/App.h"

#include <commctrl.h>

#include <cstring>

#include "app/ControlCatalogue.h"
#include "resources/ResourceIds.h"
#include "ui/WindowTrampoline.h"

namespace veltor {
namespace {

constexpr DWORD kCommonControlClasses = 0x40FF;

// The logo's PNG from resource 102, copied into a movable block that the stream owns: the stream and the
// bitmap outlive the resource lock. Nothing is kept on any failure.
void LoadLogo(App& app) {
    HRSRC resource = FindResourceW(app.Instance, MAKEINTRESOURCEW(kLogoResourceId), MAKEINTRESOURCEW(10));
    HGLOBAL loaded = resource != nullptr ? LoadResource(app.Instance, resource) : nullptr;
    const void* bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
    const DWORD size = resource != nullptr ? SizeofResource(app.Instance, resource) : 0;
    if (bytes == nullptr || size == 0) return;

    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, size);
    void* copy = block != nullptr ? GlobalLock(block) : nullptr;
    if (copy == nullptr) {
        if (block != nullptr) GlobalFree(block);
        return;
    }
    std::memcpy(copy, bytes, size);
    GlobalUnlock(block);
    if (FAILED(CreateStreamOnHGlobal(block, TRUE, &app.LogoStream))) {
        app.LogoStream = nullptr;
        GlobalFree(block);
        return;
    }
    if (Gdiplus::DllExports::GdipCreateBitmapFromStream(app.LogoStream, &app.LogoBitmap) != Gdiplus::Ok) {
        if (app.LogoBitmap != nullptr) Gdiplus::DllExports::GdipDisposeImage(app.LogoBitmap);
        app.LogoBitmap = nullptr;
        app.LogoStream->Release();  // frees the block, which the stream owns
        app.LogoStream = nullptr;
    }
}

bool RegisterMainWindowClass(const App& app) {
    HICON icon = app.AppIcon != nullptr ? app.AppIcon : LoadIconW(nullptr, IDI_APPLICATION);
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = WindowTrampoline<App>;
    windowClass.hInstance = app.Instance;
    windowClass.hIcon = icon;
    windowClass.hIconSm = icon;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = app.WindowBrush;
    windowClass.lpszClassName = kMainWindowClass;
    return RegisterClassExW(&windowClass) != 0;
}

// Fills Devices and the device list once: a wheel plugged in later needs a new start of the program.
void ListWheels(App& app) {
    SendMessageW(app.DeviceCombo, CB_RESETCONTENT, 0, 0);
    EnumerateWheels(app.Devices);
    for (const WheelDevice& device : app.Devices) {
        SendMessageW(app.DeviceCombo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(device.productName.c_str()));
    }
    if (app.Devices.empty()) {
        app.AppendLog(L"No force feedback device found.");
        return;
    }
    SendMessageW(app.DeviceCombo, CB_SETCURSEL, 0, 0);
    app.AppendLog(L"Force feedback devices found.");
}

}  // namespace

int App::AppRun(HINSTANCE instance, int showCommand, const std::wstring& advicePath) {
    Instance = instance;
    AppIcon = static_cast<HICON>(LoadImageW(instance, MAKEINTRESOURCEW(kAppIconResourceId), IMAGE_ICON, 32, 32, 0));

    Gdiplus::GdiplusStartupInput startup;
    if (Gdiplus::GdiplusStartup(&GdiplusToken, &startup, nullptr) == Gdiplus::Ok) {
        LoadLogo(*this);
    } else {
        GdiplusToken = 0;
    }

    const INITCOMMONCONTROLSEX commonControls{sizeof commonControls, kCommonControlClasses};
    InitCommonControlsEx(&commonControls);
    CreateBrushesAndFonts();
    RegisterMainWindowClass(*this);
    RegisterSliderClass(instance, PanelBrush);
    RegisterCheckboxClass(instance, PanelBrush);

    Store.LoadCoefficients();
    Engine.PublishOverrides(Store.CoefficientOverrides);
    Store.LoadProfiles();
    Store.LoadButtonBindings();

    if (!CreateMainWindow(showCommand)) return 1;
    if (!advicePath.empty()) ApplyAdviceFile(advicePath);
    ListWheels(*this);
    SetTimer(Window, kStatusTimerId, kStatusTimerMilliseconds, nullptr);
    FollowButtonTimer();
    NotifyUpdateAtStart();

    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}

}  // namespace veltor
