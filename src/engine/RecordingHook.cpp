#include "engine/RecordingHook.h"

#include <cmath>

#include "engine/MixForce.h"
#include "engine/OutputStage.h"

namespace veltor {
namespace {

// The first sub-sample with the greatest texture magnitude; a later one wins only when strictly greater.
int PeakTextureSample(const float* texture, int n) {
    int peak = 0;
    for (int i = 1; i < n; ++i) {
        if (std::fabs(texture[i]) > std::fabs(texture[peak])) peak = i;
    }
    return peak;
}

}  // namespace

RecordingSample MakeTickSample(const TickSignals& tick, uint64_t timeMicroseconds) {
    const TelemetryFrame& frame = tick.frame;
    const int peak = PeakTextureSample(tick.texture, tick.n);
    const float vibration = tick.vibration[tick.interpolate ? 2 * peak : peak];
    bool priorityActed = false;
    const float mixed = MixForce(tick.settings, tick.base[peak], tick.grip.resistanceTorque, tick.texture[peak],
                                 tick.correction[peak] + vibration, &priorityActed) *
                        tick.crashGain;
    const int32_t units = ToOutputUnits(mixed, tick.settings);

    RecordingSample sample;
    sample.timeMicroseconds = timeMicroseconds;
    sample.tickCount = frame.tickCount;
    sample.speed = frame.speed;
    sample.steeringWheelAngle = frame.steeringWheelAngle;
    sample.steeringWheelTorque = frame.steeringWheelTorque;
    sample.velocityX = frame.velocityX;
    sample.velocityY = frame.velocityY;
    sample.longAccel = frame.longAccel;
    sample.latAccel = frame.latAccel;
    sample.yawRate = frame.yawRate;
    sample.steerExcess = tick.grip.steerExcess;
    sample.understeerLoad = tick.grip.understeerLoad;
    sample.baseTorque = tick.base[peak];
    sample.resistanceTorque = tick.grip.resistanceTorque;
    sample.textureTorque = tick.texture[peak];
    sample.correctionTorque = tick.correction[peak];
    sample.mixedTorque = mixed;
    sample.fullScaleTorque = FullScaleTorque(tick.settings);
    sample.crashGain = tick.crashGain;
    sample.clipped = (units > kHandOverLimit || units < -kHandOverLimit) ? 1 : 0;
    sample.priorityActed = priorityActed ? 1 : 0;
    sample.absActive = frame.brakeAbsActive != 0 ? 1 : 0;
    return sample;
}

void RecordTick(TelemetryRecorder& recorder, const TickSignals& tick, int64_t (*steadyNow)()) {
    RecordingTicket ticket;
    if (!recorder.BeginSample(ticket)) return;
    recorder.Push(MakeTickSample(tick, ticket.ElapsedMicroseconds(steadyNow())), ticket);
}

RecordingHeader MakeRecordingHeader(std::wstring_view carPath, std::wstring_view driverName,
                                    std::wstring_view profileName, const EngineSettings& settings, const CarRow& row,
                                    uint64_t startTimeMs) {
    RecordingHeader header = NewRecordingHeader(startTimeMs);
    FillRecordingText(carPath, header.carPath);
    FillRecordingText(driverName, header.driverName);
    FillRecordingText(profileName, header.profileName);
    header.ForceStrength = settings.ForceStrength;
    header.Bumps = settings.Bumps;
    header.BumpImpacts = settings.BumpImpacts;
    header.UndersteerResistance = settings.UndersteerResistance;
    header.SuspensionDetailPriority = settings.SuspensionDetailPriority;
    header.CarForceBalance = settings.CarForceBalance;
    header.YawRateMultiplier = row.YawRateMultiplier;
    header.LateralAccelDivisor = row.LateralAccelDivisor;
    header.ResistanceGain = row.ResistanceGain;
    header.SteerMarginBias = row.SteerMarginBias;
    header.wheelbaseMaxTorque = static_cast<float>(settings.WheelbaseMaxTorqueTenths) / 10.0f;
    header.AbsVibration = settings.AbsVibration;
    header.YawSteerGain = row.YawSteerGain;
    return header;
}

}  // namespace veltor
