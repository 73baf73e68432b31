#pragma once
#include <windows.h>

namespace veltor {

class App;

inline constexpr wchar_t kWheelButtonsClass[] = L"VeltorWheelButtons";
inline constexpr wchar_t kWheelButtonsTitle[] = L"Wheel buttons";
// The main window's system menu item that opens it; the system keeps the low four bits of such ids.
inline constexpr UINT kWheelButtonsCommand = 0x0110;
// A binding's text while Bind listens for its button.
inline constexpr wchar_t kListeningText[] = L"Press a button on any game controller...";

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
