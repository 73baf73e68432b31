// Wheel buttons: the dialog's commands and what a bound button does when pressed.
#include "app/App.h"

#include "platform/SteadyClock.h"
#include "settings/ButtonActions.h"

namespace veltor {
namespace {

// A button does what the user's hand could do on the window now: nothing while a modal dialog of the window
// (the save dialog, a message box) holds it disabled, nor on a disabled button.
bool Usable(const App& app, HWND control) { return IsWindowEnabled(app.Window) && IsWindowEnabled(control); }

}  // namespace

void App::AddWheelButtonsMenuItem() {
    HMENU menu = GetSystemMenu(Window, FALSE);
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(menu, MF_STRING, kWheelButtonsCommand, L"Wheel buttons...");
}

void App::ShowWheelButtonsDialog() {
    Controllers.List();  // learns the names of the attached controllers
    ButtonsDialog.Show(*this);
}

void App::BeginButtonCapture(size_t action) {
    CaptureAction = action;
    Capture.Begin(Controllers, SteadyNowNanoseconds());
    FollowButtonTimer();
    ButtonsDialog.ShowBindings();
}

void App::CancelButtonCapture() {
    if (!Capture.Active()) return;
    Capture.Cancel();
    Buttons.Disarm();
    FollowButtonTimer();
    ButtonsDialog.ShowBindings();
}

void App::ClearButtonBinding(size_t action) {
    if (Capture.Active() && CaptureAction == action) Capture.Cancel();
    Store.Bindings[action] = {};
    Buttons.Disarm();
    FollowButtonTimer();
    ButtonsDialog.ShowBindings();
}

std::wstring App::BindingText(size_t action) {
    if (Capture.Active() && CaptureAction == action) return kListeningText;
    const ButtonBinding& binding = Store.Bindings[action];
    return BindingLabel(binding, binding.IsSet() ? Controllers.ProductName(ControllerOf(binding)) : L"");
}

// While Bind listens, the bound buttons do nothing: the press it waits for may be one of them.
void App::OnButtonTimer() {
    const int64_t now = SteadyNowNanoseconds();
    if (Capture.Active()) {
        ButtonBinding bound;
        const ButtonCapture::Outcome outcome = Capture.Step(Controllers, now, bound);
        if (outcome == ButtonCapture::Outcome::Listening) return;
        if (outcome == ButtonCapture::Outcome::Bound) Store.Bindings[CaptureAction] = bound;
        Buttons.Disarm();
        Controllers.CloseAll();  // the controllers that Bind opened and nothing is bound to
        FollowButtonTimer();
        ButtonsDialog.ShowBindings();
        return;
    }
    const ButtonStep step = Buttons.Step(Store.Bindings, now);
    for (const std::wstring& line : step.lines) AppendLog(line);
    for (size_t i = 0; i < kButtonActionCount; ++i) {
        if (step.acts[i]) RunButtonAction(i);
    }
}

// A step goes through the slider as its arrow keys do, so the value text, the live record, its owner and
// the engine follow it; the ends of the range hold, and say nothing.
void App::RunButtonAction(size_t action) {
    const ButtonActionRow& row = kButtonActionRows[action];
    if (row.command == ButtonCommand::ToggleRecording) {
        if (Usable(*this, StopRecButton)) {
            StopRecording();
        } else if (Usable(*this, RecordButton)) {
            StartRecording();
        }
        return;
    }
    const SettingRow& setting = SettingRowOf(row.setting);
    SliderRow* slider = FindSliderRow(setting.control);
    if (slider == nullptr || !Usable(*this, slider->Control)) return;
    const int32_t before = slider->Value;
    SetSliderValueClamped(*slider, before + row.steps);
    if (slider->Value != before) AppendLog(SteppedFromWheelLine(setting, slider->Value));
}

// The reading runs while a binding exists or Bind listens; without it no device stays open.
void App::FollowButtonTimer() {
    bool wanted = Capture.Active();
    for (const ButtonBinding& binding : Store.Bindings) wanted = wanted || binding.IsSet();
    if (wanted && !ButtonTimerOn) ButtonTimerOn = SetTimer(Window, kButtonTimerId, kButtonTimerMilliseconds, nullptr) != 0;
    if (!wanted && ButtonTimerOn) {
        KillTimer(Window, kButtonTimerId);
        ButtonTimerOn = false;
        Controllers.CloseAll();
    }
}

}  // namespace veltor
