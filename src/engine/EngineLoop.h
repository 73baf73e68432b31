#pragma once
// The engine thread: finds the simulator, silences its force, opens the wheel, and turns each new
// telemetry frame into a burst of outputs paced on the steady clock.
#include <algorithm>
#include <cmath>
#include <concepts>
#include <string>
#include <system_error>
#include <thread>

#include "engine/AbsVibration.h"
#include "engine/BaseTorque.h"
#include "engine/CorrectionRamp.h"
#include "engine/FfbEngine.h"
#include "engine/GripModel.h"
#include "engine/MixForce.h"
#include "engine/OutputStage.h"
#include "engine/RecordingHook.h"
#include "engine/RoadTexture.h"
#include "engine/SteeringLock.h"
#include "platform/ThreadControl.h"
#include "telemetry/IrsdkClient.h"
#include "telemetry/SessionInfoScanner.h"

namespace veltor {

constexpr int32_t kSubSampleSpacingMicroseconds = 2760;     // 360 Hz, a little under 1/360 s
constexpr int32_t kInterpolatedSpacingMicroseconds = 1380;  // 720 Hz
constexpr uint32_t kEventWaitMilliseconds = 100;
constexpr int32_t kRetrySleepMilliseconds = 500;
constexpr float kParkedSpeed = 2.0f;                        // m/s
constexpr float kForceFixedPointOne = 65536.0f;             // the broadcast's newton metres are 16.16
constexpr float kSuppressionNewtonMetres = 10000.0f;        // a maximum no wheel reaches: the simulator goes silent
constexpr int32_t kRestoreMaxForce = 2621440;               // 40 Nm × 65536, the simulator's own maximum
constexpr int64_t kStallNanoseconds = 1000000000;           // on track this long without a new frame: release

// Native force suppression: the simulator's maximum force as 16.16 newton metres; in SimucubeMode the
// engine's own full-scale torque.
inline int32_t SuppressionValue(const EngineSettings& settings) {
    const float newtonMetres = settings.SimucubeMode ? FullScaleTorque(settings) : kSuppressionNewtonMetres;
    return static_cast<int32_t>(newtonMetres * kForceFixedPointOne);
}

// What the engine thread needs of time and of the wheel: EnginePlatform in the product; a virtual clock
// and a wheel that records in tests and the offline replay.
template <class Platform>
concept EngineLoopPlatform = requires(typename Platform::Wheel& wheel, typename Platform::Pacer& pacer,
                                      WindowHandle window, const DeviceGuid* device) {
    { Platform::Now() } -> std::same_as<int64_t>;  // steady nanoseconds
    Platform::SleepMilliseconds(int32_t{});
    Platform::ForceStored(int32_t{}, int32_t{});   // told of each store: the output's index, -1 for the lock stop
    pacer.WaitUntil(int64_t{});                    // holds the thread until a steady-clock deadline
    { wheel.Open(window, device) } -> std::same_as<bool>;
    wheel.Close();
    wheel.commandedForce.exchange(int32_t{});      // the seam with the output thread, atomics all
    wheel.dampingPercent.exchange(int32_t{});
    wheel.lockDamping.exchange(bool{});
    wheel.outputEnabled.exchange(bool{});
    { wheel.errorCount.load() } -> std::convertible_to<uint32_t>;
    { wheel.lastError.load() } -> std::convertible_to<int32_t>;
};

// The locals of the engine thread apart from the client and the wheel, and one pass of its loop.
// Engine thread only: nothing here is touched by another thread.
template <EngineLoopPlatform Platform>
class EngineLoop {
public:
    using Wheel = typename Platform::Wheel;
    using Pacer = typename Platform::Pacer;

    EngineLoop(FfbEngine& engineRef, Wheel& wheelRef) : engine(engineRef), wheel(wheelRef) {}

    // One pass of the loop: the failure mirror, the simulator, the connection, the session info, the wait
    // on the data-valid event, and the frame.
    void RunPass(IrsdkClient& client, WindowHandle window, const DeviceGuid& device) {
        MirrorFailures();
        if (!client.IsOpen() && !client.Open()) {
            LoseSimulator();
            return;
        }
        if (!FollowConnection(client, window, device)) return;
        FollowSessionInfo(client);
        const link::WaitResult waited = link::WaitForEvent(client.DataValidEvent(), kEventWaitMilliseconds);
        const int64_t t0 = Platform::Now();
        if (waited == link::WaitResult::Failed) {
            FailWait(client);
            return;
        }
        ProcessFrame(client, t0);
    }

    // From the read on: skip a repeat, follow the track, and run the tick on a new frame. An offline run
    // drives the loop from here, frame by frame.
    void ProcessFrame(IrsdkClient& client, int64_t t0) {
        if (!client.ReadFrame(frame) || frame.tickCount == lastTick) {
            PublishIdentity(frame.isOnTrack != 0);
            ReleaseIfStalled(t0);
            return;
        }
        lastTick = frame.tickCount;
        lastFrameTime = t0;
        stalled = false;
        if (frame.isOnTrack == 0) {
            LeaveTrack();
            return;
        }
        if (!trackActive) {
            carried = TickState{};
            engine.BeginStint();
            trackActive = true;
        }
        Tick(t0);
    }

    // A run without a simulator to connect to (the replay, tests) takes the session as given, connected.
    void AssumeSession(const SessionIdentity& session) {
        connected = true;
        identity = session;
        carRowMemo.valid = false;
    }

    // Finishing, the last of the ways out below.
    void Finish(IrsdkClient& client) {
        EndStint();
        SilenceWheel();
        CloseWheel();
        RestoreNativeForce();
        client.Close();
        engine.UpdateStatus(false, false, L"generic", L"unknown", 0, true);
    }

private:
    // The pipeline's state carried from tick to tick; every stint, and every way out but finishing, starts
    // it clean.
    struct TickState {
        TelemetryFrame previousFrame;
        float correctionRamp[kMaxSubSamples] = {};
        float lastBase = 0.0f;
        float lastResistance = 0.0f;
        float lastTexture = 0.0f;
        float absPhase = 0.0f;
    };

    void MirrorFailures() {
        const uint32_t count = wheel.errorCount.load();
        if (count == lastFailureCount) return;
        lastFailureCount = count;
        engine.MirrorOutputFailures(count, wheel.lastError.load());
    }

    // The suppression once per connection, and the wheel opened. False when the pass ends here (the wheel
    // could not be opened).
    bool FollowConnection(IrsdkClient& client, WindowHandle window, const DeviceGuid& device) {
        connected = client.HasHeader() && (client.Status() & irsdk::kStatusConnected) != 0;
        if (!connected) return true;  // an open wheel stays open
        if (!nativeFfbSuppressed) {
            BroadcastMaxForce(SuppressionValue(engine.CopySettings()));
            nativeFfbSuppressed = true;
        }
        if (!wheelOpen) {
            if (!wheel.Open(window, &device)) {
                SilenceWheel();
                Platform::SleepMilliseconds(kRetrySleepMilliseconds);
                return false;
            }
            wheelOpen = true;
        }
        return true;
    }

    // Scans the session-info text when its counter moved. The text is copied first, so the
    // simulator may rewrite its memory during the scan.
    void FollowSessionInfo(const IrsdkClient& client) {
        const int32_t update = client.HasHeader() ? client.SessionInfoUpdate() : -1;
        if (update == lastSessionInfoUpdate) return;
        SessionIdentity scanned;
        if (client.HasHeader() && client.SessionInfoLen() > 0 && client.CopySessionInfo(sessionText) &&
            ScanSessionInfo(sessionText.data(), sessionText.size(), scanned)) {
            identity = scanned;
        } else {
            identity = SessionIdentity{};
        }
        carRowMemo.valid = false;
        lastSessionInfoUpdate = update;
    }

    void PublishIdentity(bool onTrack) {
        engine.UpdateStatus(connected, onTrack, identity.carPath, identity.driverName, identity.driverUserId,
                            identity.driverNameKnown);
    }

    // The ways out, in one place. What each leaves behind:
    //                         stint reports  wheel               simulator's force  tick state  identity
    //   leaving the track     published      silenced            still suppressed   clean       kept
    //   a stall on track      kept open      silenced            still suppressed   clean       kept
    //   losing the simulator  published      closed, silenced    forgotten          clean       forgotten
    //   a failed wait         kept open      closed              given back         clean       kept
    //   finishing             published      silenced, closed    given back         as it was   generic
    void LeaveTrack() {
        EndStint();
        SilenceWheel();
        carried = TickState{};
        PublishIdentity(false);
    }

    // A simulator that hangs on track with its status bit set would have the wheel hold the last force for
    // ever. After a second without a new frame the wheel is silenced as on leaving the track; the next new
    // frame brings the force back through the output thread's warm-up and ramp.
    void ReleaseIfStalled(int64_t t0) {
        if (!trackActive || stalled || t0 - lastFrameTime < kStallNanoseconds) return;
        stalled = true;
        SilenceWheel();
        carried = TickState{};
        engine.ReportStall();
    }

    void LoseSimulator() {
        EndStint();
        CloseWheel();
        SilenceWheel();
        nativeFfbSuppressed = false;  // nobody is there to hear a restore
        carried = TickState{};
        lastSessionInfoUpdate = -1;
        identity = SessionIdentity{};
        carRowMemo.valid = false;
        connected = false;
        PublishIdentity(false);  // disconnected: the track count stays, the clipping percent goes to 0
        Platform::SleepMilliseconds(kRetrySleepMilliseconds);
    }

    void FailWait(IrsdkClient& client) {
        RestoreNativeForce();
        CloseWheel();
        carried = TickState{};
        client.Close();
    }

    void RestoreNativeForce() {
        if (!nativeFfbSuppressed) return;
        BroadcastMaxForce(kRestoreMaxForce);
        nativeFfbSuppressed = false;
    }

    void CloseWheel() {
        if (wheelOpen) wheel.Close();
        wheelOpen = false;
    }

    // Publishes the statistics of a stint on track, if one is open, and closes it.
    void EndStint() {
        if (trackActive) {
            engine.ReportClipping();
            engine.ReportOutput();
        }
        trackActive = false;
    }

    void SilenceWheel() {
        wheel.outputEnabled.exchange(false);
        wheel.commandedForce.exchange(0);
        wheel.dampingPercent.exchange(0);
        wheel.lockDamping.exchange(false);
    }

    void StoreForce(int32_t value, int32_t outputIndex) {
        wheel.commandedForce.exchange(value);
        Platform::ForceStored(outputIndex, value);
    }

    void EmitForce(float force, bool parked, const EngineSettings& settings, int32_t outputIndex) {
        StoreForce(engine.CountOutput(force, parked, settings), outputIndex);
    }

    // One new frame on track. Allocates nothing and takes only the two short copies' locks.
    void Tick(int64_t t0) {
        PublishIdentity(true);
        const EngineSettings settings = engine.CopySettings();
        const CarRow row = engine.ResolveCarRow(identity.carPath, settings.UseCarSpecificSettings, carRowMemo);
        wheel.outputEnabled.exchange(true);

        const SteeringLockResult lock = ComputeSteeringLock(frame, settings);
        wheel.dampingPercent.exchange(lock.dampingPercent);
        wheel.lockDamping.exchange(lock.lockDamping);
        if (lock.pastLock) {
            StoreForce(lock.stopForce, -1);
            carried.previousFrame = frame;
            return;
        }

        const float crashGain = engine.ComputeCrashGain(frame, settings, Platform::Now());
        const int n = std::clamp(frame.torqueSampleCount, 1, kMaxSubSamples);
        const bool parked = std::fabs(frame.speed) < kParkedSpeed;
        const GripResult grip = ComputeGrip(frame, settings, row);
        float base[kMaxSubSamples] = {};
        float texture[kMaxSubSamples] = {};
        float correction[kMaxSubSamples] = {};
        float vibration[kMaxOutputsPerTick] = {};
        const bool interpolate = settings.Mode == 1 && n > 1;
        const int m = interpolate ? 2 * n : n;
        FillAbsVibration(frame, settings, interpolate, m, carried.absPhase, vibration);
        FillCorrectionRamp(carried.correctionRamp, grip.oversteerTorque, correction);
        for (int i = 0; i < n; ++i) {
            base[i] = BaseTorque(frame, grip, i);
            texture[i] = SubSampleTexture(frame, carried.previousFrame, i, settings);
        }
        engine.RecordTick(
            TickSignals{frame, grip, base, texture, correction, vibration, n, interpolate, crashGain, settings},
            &Platform::Now);

        if (interpolate) {
            InterpolatedBurst(t0, settings, grip, base, texture, correction, vibration, n, crashGain, parked);
        } else {
            TelemetryBurst(t0, settings, grip, base, texture, correction, vibration, n, crashGain, parked);
        }
        carried.lastBase = base[n - 1];
        carried.lastTexture = texture[n - 1];
        carried.lastResistance = grip.resistanceTorque;
        carried.previousFrame = frame;
    }

    // Sub-sample k goes out 2760 × k µs after t0; no wait follows the last one.
    void TelemetryBurst(int64_t t0, const EngineSettings& settings, const GripResult& grip, const float* base,
                        const float* texture, const float* correction, const float* vibration, int n,
                        float crashGain, bool parked) {
        for (int i = 0; i + 1 < n && !engine.StopRequested(); ++i) {
            const float f = MixForce(settings, base[i], grip.resistanceTorque, texture[i], vibration[i] + correction[i]);
            EmitForce(f * crashGain, parked, settings, i);
            WaitUntilOffset(t0, (i + 1) * kSubSampleSpacingMicroseconds);
        }
        const float last = MixForce(settings, base[n - 1], grip.resistanceTorque, texture[n - 1],
                                    vibration[n - 1] + correction[n - 1]);
        EmitForce(last * crashGain, parked, settings, n - 1);
    }

    // Twice as many outputs, 1380 µs apart, running half a sub-sample behind the telemetry.
    void InterpolatedBurst(int64_t t0, const EngineSettings& settings, const GripResult& grip, const float* base,
                           const float* texture, const float* correction, const float* vibration, int n,
                           float crashGain, bool parked) {
        const float lastBase = carried.lastBase;
        const float lastResistance = carried.lastResistance;
        const float lastTexture = carried.lastTexture;
        const float first = MixForce(settings, (base[0] - lastBase) * 0.5f + lastBase,
                                     (grip.resistanceTorque - lastResistance) * 0.5f + lastResistance,
                                     (texture[0] - lastTexture) * 0.5f + lastTexture, vibration[0] + correction[0]);
        EmitForce(first * crashGain, parked, settings, 0);
        const int steps = 2 * (n - 1);
        for (int j = 0; j < steps && !engine.StopRequested(); ++j) {
            const int k = j / 2;
            float b = base[k];
            float t = texture[k];
            if (j % 2 == 1) {
                b = base[k] + (base[k + 1] - base[k]) * 0.5f;
                t = texture[k] + (texture[k + 1] - texture[k]) * 0.5f;
            }
            const float f = MixForce(settings, b, grip.resistanceTorque, t, vibration[j + 1] + correction[k]);
            WaitUntilOffset(t0, (j + 1) * kInterpolatedSpacingMicroseconds);
            EmitForce(f * crashGain, parked, settings, j + 1);
        }
        WaitUntilOffset(t0, (steps + 1) * kInterpolatedSpacingMicroseconds);
        const float last = MixForce(settings, base[n - 1], grip.resistanceTorque, texture[n - 1],
                                    vibration[2 * n - 1] + correction[n - 1]);
        EmitForce(last * crashGain, parked, settings, 2 * n - 1);
    }

    // Holds the thread until t0 + offset: the pacer sleeps what its learned margin allows and spins the
    // rest, so each output lands on its own offset and a late one does not push those after it.
    void WaitUntilOffset(int64_t t0, int32_t offsetMicroseconds) { pacer.WaitUntil(t0 + offsetMicroseconds * 1000LL); }

    FfbEngine& engine;
    Wheel& wheel;
    Pacer pacer;                // learns how late this thread's sleeps wake
    std::string sessionText;    // private copy of the session-info text; reused between scans
    TelemetryFrame frame;       // the last frame read; kept when a read fails
    TickState carried;
    SessionIdentity identity;   // the session the frames belong to
    CarRowMemo carRowMemo;      // cleared with each change of identity
    int32_t lastSessionInfoUpdate = -1;
    int32_t lastTick = -1;
    uint32_t lastFailureCount = 0;
    int64_t lastFrameTime = 0;  // t0 of the pass that read the last new frame
    bool connected = false;
    bool nativeFfbSuppressed = false;
    bool wheelOpen = false;
    bool trackActive = false;
    bool stalled = false;       // the force was released for want of frames, and none has come since
};

// The engine thread's function: start, passes until a stop is asked for, end.
template <EngineLoopPlatform Platform>
void RunEngineThread(FfbEngine& engine, WindowHandle window, DeviceGuid device) {
    engine.MarkRunning(true);
    SetCurrentThreadPriorityHighest();
    engine.UpdateStatus(false, false, L"generic", L"unknown", 0, true);
    BeginSystemTimerPeriod();
    {
        IrsdkClient client;
        typename Platform::Wheel wheel;
        EngineLoop<Platform> loop(engine, wheel);
        while (!engine.StopRequested()) loop.RunPass(client, window, device);
        loop.Finish(client);
    }
    EndSystemTimerPeriod();
    engine.MarkRunning(false);
}

template <class Platform>
void FfbEngine::StartWith(const EngineSettings& current, WindowHandle window, DeviceGuid device) {
    Stop();
    PublishSettings(current);
    stopRequested.store(false);
    // Without a thread the engine stays stopped: it never runs and the status stays as it is.
    try {
        thread = std::thread(RunEngineThread<Platform>, std::ref(*this), window, device);
    } catch (const std::system_error&) {
    }
}

}  // namespace veltor
