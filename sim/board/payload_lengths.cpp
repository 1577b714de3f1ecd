#include "sim/board/payload_lengths.h"

#include <algorithm>
#include <iterator>

namespace sim
{

namespace
{

constexpr unsigned int any = 65536;

enum class Models { Every, R20Only, NotR20, R35Only };

struct Rule {
    Request request;
    unsigned int shortest;
    unsigned int longest;
    Models models = Models::Every;
};

// Where two rows name a request, the models tell them apart.
constexpr Rule rules[] = {
    {Request::ConfigureEEPROM, 5, 5},
    {Request::WriteEEPROM, 4, 60},
    {Request::ReadEEPROM, 3, 3},
    {Request::Get8051Version, 0, 0},
    {Request::SetClock, 4, 4},
    {Request::GetClock, 0, 0},
    {Request::StartSecuritySwitchRead, 0, 0},
    {Request::NextSecuritySwitchRead, 0, 0},
    {Request::ClearSecuritySwitches, 0, 0},
    {Request::GetPICVersion, 0, 0},
    {Request::GetPICSerialNumber, 0, 0},
    {Request::ReadAndResetSecuritySwitchFlags, 0, 0},
    {Request::SetPICSerialNumber, 8, 8},
    {Request::CachedReadAndResetSecuritySwitchFlags, 0, 0},
    {Request::GetRandomNumber, 0, 0},
    {Request::EnableRandomNumberGenerator, 4, 4},
    {Request::ReadFlatSRAM, 3, 3, Models::R20Only},
    {Request::WriteFlatSRAM, 4, 511, Models::R20Only},
    {Request::BeginFirmware, 0, 0},
    {Request::EndFirmware, 0, 0},
    {Request::FirmwareRuns, 0, 0},
    {Request::GetInputs, 0, 0},
    {Request::ModifyOutputs, 10, 10},
    {Request::PulseOutput, 2, 2},
    {Request::PulseOffOutput, 2, 2},
    {Request::PulseOutputResult, 0, 0},
    {Request::GetChangedInputs, 0, 0},
    {Request::GetRawInputs, 0, 0},
    {Request::SetOnPeriodOutputs, 5, 5},
    {Request::SetOffPeriodOutputs, 5, 5},
    {Request::SetOutputBrightness, 1, 1},
    {Request::ConfigureReels, 4, 4},
    {Request::SpinReels, 4, 4},
    {Request::SpinRampUp, 2, 62},
    {Request::SpinRampDown, 2, 62},
    {Request::SetDutyCycle, 3, 3},
    {Request::ReelSynchroniseEnable, 1, 1},
    {Request::GetReelStatus, 0, 0},
    {Request::EnableSPI, 0, 0},
    {Request::DisableSPI, 0, 0},
    {Request::SendSPI, 4, 23},
    {Request::SetConfig, 6, 6},
    {Request::Send, 1, any},
    {Request::Receive, 0, 1},
    {Request::GetParityErrors, 0, 0},
    {Request::SetTimeoutMessage, 2, 62},
    {Request::ReceiveWithTimestamps, 0, 0},
    {Request::ConfigurePollSlot, 13, 63},
    {Request::EmptyPolledBuffer, 1, 1},
    {Request::ReceivePolledMessage, 1, 1},
    {Request::DeletePolledMessage, 1, 1},
    {Request::ConfigurePulsedInput, 3, 3, Models::R20Only},
    {Request::ConfigurePulsedInput, 4, 4, Models::NotR20},
    {Request::PulsedInputCheck, 2, 2},
    {Request::ResetPulsedInputCounter, 1, 1},
    {Request::DecrementPulsedInputCounter, 1, 1},
    {Request::ReadPulsedInputCounter, 1, 1},
    {Request::ReleaseParallelHopperCoins, 7, 7, Models::R20Only},
    {Request::ReleaseParallelHopperCoins, 8, 8, Models::NotR20},
    {Request::GetParallelHopperStatus, 1, 1},
    {Request::InputMultiplexing, 1, 1},
    {Request::GetMultiplexedInputs, 0, 0},
    {Request::ReadBankedSRAM, 5, 5, Models::NotR20},
    {Request::WriteBankedSRAM, 6, any, Models::NotR20},
    {Request::DisableRandomNumberGenerator, 0, 0},
    {Request::ReadAndResetBatteryFailFlag, 0, 0, Models::NotR20},
    {Request::GetDallasSerialNumber, 0, 0, Models::NotR20},
    {Request::SetPolledHostTimeout, 2, 2},
    {Request::SetSASMachineAddress, 1, 1, Models::NotR20},
    {Request::SetSASAutoReply, 2, 2, Models::NotR20},
    {Request::StopHopperCoinRelease, 1, 1, Models::NotR20},
    {Request::GetSASMessageStatus, 0, 0, Models::NotR20},
    {Request::ConfigureRecordingInputs, 9, 9, Models::NotR20},
    {Request::StartRecordingInputs, 2, 2, Models::NotR20},
    {Request::GetRecordingStatus, 0, 0, Models::NotR20},
    {Request::ReadDiagnosticData, 0, any, Models::NotR20},
    {Request::WriteDiagnosticData, 0, 256, Models::NotR20},
    {Request::ReadAndResetRTCFailure, 0, 0, Models::R35Only},
    {Request::ReadClockAtBatteryFailure, 0, 0, Models::R35Only},
};

bool has(Models models, Model model)
{
    switch (models) {
    case Models::R20Only:
        return model == Model::R20;
    case Models::NotR20:
        return model != Model::R20;
    case Models::R35Only:
        return model == Model::R35;
    case Models::Every:
        break;
    }
    return true;
}

const Rule *ruleOf(Model model, Request request)
{
    const auto *rule = std::find_if(std::begin(rules), std::end(rules), [model, request](const Rule &row) {
        return row.request == request && has(row.models, model);
    });
    return rule == std::end(rules) ? nullptr : rule;
}

}  // namespace

bool understands(Model model, Request request)
{
    return ruleOf(model, request) != nullptr;
}

bool acceptsLength(Model model, Request request, std::size_t length, bool firstSerialPort)
{
    if (request == Request::Receive)
        return length == (firstSerialPort ? 1U : 0U);
    const Rule *rule = ruleOf(model, request);
    return rule && length >= rule->shortest && length <= rule->longest;
}

}  // namespace sim
