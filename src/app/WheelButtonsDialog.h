#pragma once
#include <windows.h>

namespace veltor {

class App;

inline constexpr wchar_t kWheelButtonsClass[] = L"VeltorWheelButtons";
inline constexpr wchar_t kWheelButtonsTitle[] = L"Wheel buttons";

// The small window that "Wheel buttons..." in the system menu opens: per action its label, its binding, "Bind"
// and "Clear". Modeless and owned by the main window, which keeps working meanwhile; App keeps the bindings
// and listens for Bind, this shows them. GUI thread only.
class WheelButtonsDialog {
public:
    // Opens the window, or brings it forward when it is open.
    void Show(App& app);
    // The binding texts afresh from App.
    void ShowBindings();
    void Close();

    // The window's messages, through the trampoline of its class.
    LRESULT Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    bool Create();
    void CreateControls();

    App* Owner = nullptr;
    HWND Window = nullptr;
};

}  // namespace veltor
