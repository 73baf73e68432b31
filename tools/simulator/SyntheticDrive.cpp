#include "SyntheticDrive.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace veltor::sim {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kSubSampleRate = 360.0;          // Hz
constexpr float kSteeringAngleMax = 7.85f;        // rad, 450 degrees each way
constexpr float kShockRest = 0.050f;              // m
constexpr double kSteeringRatio = 14.0;           // steering wheel angle per road wheel angle
constexpr double kWheelbase = 2.6;                // m
constexpr double kTorquePerLatAccel = 0.75;       // Nm per m/s², the rack's feel of the corner
constexpr double kMaxLatAccel = 16.0;             // m/s², the tyres' limit
constexpr double kCrashSeconds = 0.15;

struct Phase {
    const char* name;
    double start;  // seconds into the lap
};

constexpr Phase kPhases[] = {
    {"pit stop, off track", 0.0}, {"pit exit", 3.0},        {"straight", 6.0},
    {"corner, understeer", 12.0}, {"straight, kerbs", 18.0}, {"braking, ABS", 22.0},
    {"slide, countersteer", 26.0}, {"bumpy straight", 32.0}, {"crash", 40.0},
    {"recovery", 41.0},            {"pit lane", 50.0},        {"pit stop, off track", 56.0},
};

enum PhaseIndex { kPitStop, kPitExit, kStraight, kCorner, kKerbs, kBraking, kSlide, kBumpy, kCrash, kRecovery,
                  kPitLane, kPitStopEnd };

struct Key {
    double time;   // seconds into the lap
    double value;
};

// Speed in m/s and steering wheel angle in radians over the lap, linearly between the keys.
constexpr Key kSpeed[] = {{0, 0},   {3, 0},   {6, 22},  {12, 62}, {14, 36}, {18, 40}, {22, 58},
                          {26, 22}, {32, 26}, {40, 52}, {41, 6},  {50, 30}, {54, 16}, {56, 0}, {60, 0}};
constexpr Key kSteer[] = {{0, 0},     {3, 0},    {4, 0.3},   {6, 0},    {12, 0},  {13, 1.4}, {17, 1.4},
                          {18, 0},    {26, 0.6}, {27, -0.5}, {30, -0.4}, {32, 0}, {40, 0},   {41, 0.2},
                          {43, 0},    {50, 0},   {51, -0.5}, {52, 0},    {60, 0}};

template <size_t N>
double Interpolate(const Key (&keys)[N], double t) {
    for (size_t i = 1; i < N; ++i) {
        if (t <= keys[i].time) {
            const double span = keys[i].time - keys[i - 1].time;
            const double f = span > 0.0 ? (t - keys[i - 1].time) / span : 1.0;
            return keys[i - 1].value + (keys[i].value - keys[i - 1].value) * f;
        }
    }
    return keys[N - 1].value;
}

int PhaseIndexAt(double lapTime) {
    int index = 0;
    for (int i = 0; i < static_cast<int>(std::size(kPhases)); ++i) {
        if (lapTime >= kPhases[i].start) index = i;
    }
    return index;
}

bool InPhase(double lapTime, int phase) { return PhaseIndexAt(lapTime) == phase; }

double LapTime(int64_t tick) { return std::fmod(static_cast<double>(tick) / SyntheticDrive::kTickRate, SyntheticDrive::kLapSeconds); }

// Yaw rate from the steering, less in the understeering corner, more than the steering asks in the slide.
double YawRate(double lapTime, double speed, double steer) {
    const double neutral = speed * (steer / kSteeringRatio) / kWheelbase;
    if (InPhase(lapTime, kCorner)) return neutral * 0.55;
    if (InPhase(lapTime, kSlide)) return 0.55 + 0.1 * std::sin(lapTime * 3.0);
    return neutral;
}

// Front shock deflection in metres: road noise everywhere, bumps and kerb strikes where the lap has them.
double ShockDeflection(double t, double lapTime, bool left) {
    const double side = left ? 0.0 : 1.3;
    double deflection = kShockRest + 0.0008 * std::sin(2.0 * kPi * 23.0 * t + side) +
                        0.0005 * std::sin(2.0 * kPi * 41.0 * t + 2.0 * side);
    if (InPhase(lapTime, kBumpy)) deflection += 0.004 * std::sin(2.0 * kPi * 7.0 * t + side);
    if (InPhase(lapTime, kKerbs) && left && std::fmod(t * 12.0, 1.0) < 0.3) deflection += 0.012;
    return deflection;
}

// The simulator's steering torque at time t, with the rack's 50 Hz vibration on top.
double SteeringTorque(double t, double lapTime, double latAccel) {
    double torque = kTorquePerLatAccel * latAccel + 0.3 * std::sin(2.0 * kPi * 50.0 * t);
    if (InPhase(lapTime, kCorner)) torque *= 0.6;  // the front lets go: the wheel goes light
    if (InPhase(lapTime, kCrash) && lapTime - kPhases[kCrash].start < kCrashSeconds) torque += 25.0;
    return torque;
}

void FillChassis(DriveSample& s, double lapTime, double speed, double steer) {
    TelemetryFrame& f = s.frame;
    const double yaw = YawRate(lapTime, speed, steer);
    const double latAccel = std::clamp(speed * yaw, -kMaxLatAccel, kMaxLatAccel);
    const double slope = (Interpolate(kSpeed, lapTime + 0.05) - Interpolate(kSpeed, lapTime - 0.05)) / 0.1;
    f.isOnTrack = (InPhase(lapTime, kPitStop) || InPhase(lapTime, kPitStopEnd)) ? 0 : 1;
    f.speed = static_cast<float>(speed);
    f.velocityX = static_cast<float>(speed);
    f.velocityY = static_cast<float>(InPhase(lapTime, kSlide) ? 3.5 : 0.02 * latAccel);
    f.yawRate = static_cast<float>(yaw);
    f.latAccel = static_cast<float>(latAccel);
    f.longAccel = static_cast<float>(slope);
    f.steeringWheelAngle = static_cast<float>(steer);
    f.steeringWheelAngleMax = kSteeringAngleMax;
    const bool crashing = InPhase(lapTime, kCrash) && lapTime - kPhases[kCrash].start < kCrashSeconds;
    if (crashing) {
        f.longAccel = -95.0f;
        f.latAccel = 38.0f;
    }
    const bool braking = InPhase(lapTime, kBraking) && slope < 0.0;
    f.brakeAbsActive = (braking && std::fmod(lapTime * 8.0, 1.0) < 0.6) ? 1 : 0;
    s.brake = braking ? 0.9f : 0.0f;
    s.throttle = (slope > 0.0 && !braking) ? 0.8f : 0.1f;
}

void FillSubSamples(DriveSample& s, double t, double lapTime) {
    TelemetryFrame& f = s.frame;
    for (int i = 0; i < kMaxSubSamples; ++i) {
        // Oldest first: the last sub-sample belongs to the frame's own time.
        const double ts = t - (kMaxSubSamples - 1 - i) / kSubSampleRate;
        f.torqueSamples[i] = static_cast<float>(SteeringTorque(ts, lapTime, f.latAccel));
        f.lfShockDeflSamples[i] = static_cast<float>(ShockDeflection(ts, lapTime, true));
        f.rfShockDeflSamples[i] = static_cast<float>(ShockDeflection(ts, lapTime, false));
        f.cfShockDeflSamples[i] = static_cast<float>(kShockRest);
    }
    f.torqueSampleCount = kMaxSubSamples;
    f.shockSampleCount = kMaxSubSamples;
    f.cfShockSampleCount = kMaxSubSamples;
    f.steeringWheelTorque = f.torqueSamples[kMaxSubSamples - 1];
    f.lfShockDefl = f.lfShockDeflSamples[kMaxSubSamples - 1];
    f.rfShockDefl = f.rfShockDeflSamples[kMaxSubSamples - 1];
    f.cfShockDefl = f.cfShockDeflSamples[kMaxSubSamples - 1];
}

}  // namespace

const char* SyntheticDrive::PhaseAt(int64_t tick) { return kPhases[PhaseIndexAt(LapTime(tick))].name; }

DriveSample SyntheticDrive::SampleAt(int64_t tick) const {
    const double t = static_cast<double>(tick) / kTickRate;
    const double lapTime = LapTime(tick);
    const double speed = Interpolate(kSpeed, lapTime);
    DriveSample s;
    s.frame.valid = 1;
    s.frame.tickCount = static_cast<int32_t>(tick);
    FillChassis(s, lapTime, speed, Interpolate(kSteer, lapTime));
    FillSubSamples(s, t, lapTime);
    s.sessionTime = t;
    s.lapDistPct = static_cast<float>(lapTime / kLapSeconds);
    s.gear = speed < 0.5 ? 0 : std::min(6, 1 + static_cast<int32_t>(speed / 11.0));
    s.rpm = static_cast<float>(speed < 0.5 ? 900.0 : 2500.0 + std::fmod(speed, 11.0) * 400.0);
    s.phase = kPhases[PhaseIndexAt(lapTime)].name;
    return s;
}

}  // namespace veltor::sim
