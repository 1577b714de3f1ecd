// Every request that a board understands, with the pipe that serves it.
//
// Code and pipe together select the function: 124 stops a hopper on pipe 1 and reads a SAS status on a serial pipe.
// A serial request stands here with pipe 3, the pipe of port 0; onPort moves it to pipe 4 for port 1.
#ifndef SORVANE_BOARD_REQUESTS_H
#define SORVANE_BOARD_REQUESTS_H

//    name, pipe, code
#define SORVANE_REQUESTS(REQUEST)                                                                                      \
    REQUEST(ConfigureEEPROM, 2, 3)                                                                                     \
    REQUEST(WriteEEPROM, 2, 4)                                                                                         \
    REQUEST(ReadEEPROM, 2, 5)                                                                                          \
    REQUEST(Get8051Version, 2, 6)                                                                                      \
    REQUEST(SetClock, 5, 20)                                                                                           \
    REQUEST(GetClock, 5, 21)                                                                                           \
    REQUEST(StartSecuritySwitchRead, 5, 40)                                                                            \
    REQUEST(NextSecuritySwitchRead, 5, 41)                                                                             \
    REQUEST(ClearSecuritySwitches, 5, 42)                                                                              \
    REQUEST(GetPICVersion, 5, 44)                                                                                      \
    REQUEST(GetPICSerialNumber, 5, 63)                                                                                 \
    REQUEST(ReadAndResetSecuritySwitchFlags, 5, 64)                                                                    \
    REQUEST(SetPICSerialNumber, 5, 65)                                                                                 \
    REQUEST(CachedReadAndResetSecuritySwitchFlags, 5, 67)                                                              \
    REQUEST(GetRandomNumber, 5, 68)                                                                                    \
    REQUEST(EnableRandomNumberGenerator, 5, 69)                                                                        \
    REQUEST(ReadFlatSRAM, 6, 70)                                                                                       \
    REQUEST(WriteFlatSRAM, 6, 71)                                                                                      \
    REQUEST(BeginFirmware, 6, 72)                                                                                      \
    REQUEST(EndFirmware, 6, 73)                                                                                        \
    REQUEST(FirmwareRuns, 6, 74)                                                                                       \
    REQUEST(GetInputs, 1, 75)                                                                                          \
    REQUEST(ModifyOutputs, 1, 77)                                                                                      \
    REQUEST(PulseOutput, 1, 78)                                                                                        \
    REQUEST(PulseOffOutput, 1, 79)                                                                                     \
    REQUEST(PulseOutputResult, 1, 80)                                                                                  \
    REQUEST(GetChangedInputs, 1, 81)                                                                                   \
    REQUEST(GetRawInputs, 1, 82)                                                                                       \
    REQUEST(SetOnPeriodOutputs, 1, 83)                                                                                 \
    REQUEST(SetOffPeriodOutputs, 1, 84)                                                                                \
    REQUEST(SetOutputBrightness, 1, 85)                                                                                \
    REQUEST(ConfigureReels, 1, 86)                                                                                     \
    REQUEST(SpinReels, 1, 87)                                                                                          \
    REQUEST(SpinRampUp, 1, 88)                                                                                         \
    REQUEST(SpinRampDown, 1, 89)                                                                                       \
    REQUEST(SetDutyCycle, 1, 90)                                                                                       \
    REQUEST(ReelSynchroniseEnable, 1, 91)                                                                              \
    REQUEST(GetReelStatus, 1, 92)                                                                                      \
    REQUEST(EnableSPI, 7, 94)                                                                                          \
    REQUEST(DisableSPI, 7, 95)                                                                                         \
    REQUEST(SendSPI, 7, 96)                                                                                            \
    REQUEST(SetConfig, 3, 97)                                                                                          \
    REQUEST(Send, 3, 98)                                                                                               \
    REQUEST(Receive, 3, 99)                                                                                            \
    REQUEST(GetParityErrors, 3, 100)                                                                                   \
    REQUEST(SetTimeoutMessage, 3, 101)                                                                                 \
    REQUEST(ReceiveWithTimestamps, 3, 102)                                                                             \
    REQUEST(ConfigurePollSlot, 3, 103)                                                                                 \
    REQUEST(EmptyPolledBuffer, 3, 104)                                                                                 \
    REQUEST(ReceivePolledMessage, 3, 105)                                                                              \
    REQUEST(DeletePolledMessage, 3, 106)                                                                               \
    REQUEST(ConfigurePulsedInput, 1, 107)                                                                              \
    REQUEST(PulsedInputCheck, 1, 108)                                                                                  \
    REQUEST(ResetPulsedInputCounter, 1, 109)                                                                           \
    REQUEST(DecrementPulsedInputCounter, 1, 110)                                                                       \
    REQUEST(ReadPulsedInputCounter, 1, 111)                                                                            \
    REQUEST(ReleaseParallelHopperCoins, 1, 112)                                                                        \
    REQUEST(GetParallelHopperStatus, 1, 113)                                                                           \
    REQUEST(InputMultiplexing, 1, 114)                                                                                 \
    REQUEST(GetMultiplexedInputs, 1, 115)                                                                              \
    REQUEST(ReadBankedSRAM, 6, 116)                                                                                    \
    REQUEST(WriteBankedSRAM, 6, 117)                                                                                   \
    REQUEST(DisableRandomNumberGenerator, 5, 118)                                                                      \
    REQUEST(ReadAndResetBatteryFailFlag, 5, 119)                                                                       \
    REQUEST(GetDallasSerialNumber, 5, 120)                                                                             \
    REQUEST(SetPolledHostTimeout, 3, 121)                                                                              \
    REQUEST(SetSASMachineAddress, 3, 122)                                                                              \
    REQUEST(SetSASAutoReply, 3, 123)                                                                                   \
    REQUEST(StopHopperCoinRelease, 1, 124)                                                                             \
    REQUEST(GetSASMessageStatus, 3, 124)                                                                               \
    REQUEST(ConfigureRecordingInputs, 1, 125)                                                                          \
    REQUEST(StartRecordingInputs, 1, 126)                                                                              \
    REQUEST(GetRecordingStatus, 1, 127)                                                                                \
    REQUEST(ReadDiagnosticData, 1, 128)                                                                                \
    REQUEST(WriteDiagnosticData, 1, 129)                                                                               \
    REQUEST(ReadAndResetRTCFailure, 5, 220)                                                                            \
    REQUEST(ReadClockAtBatteryFailure, 5, 221)

/// A request code with its pipe, as one constant: pipe * 256 + code.
enum class Request : unsigned short {
#define SORVANE_REQUEST_VALUE(name, pipe, code) name = (pipe) << 8 | (code),
    SORVANE_REQUESTS(SORVANE_REQUEST_VALUE)
#undef SORVANE_REQUEST_VALUE
};

struct NamedRequest {
    Request request;
    const char *name;
};

/// Every row of the table, for whoever walks it or shows a request by name.
constexpr NamedRequest requestTable[] = {
#define SORVANE_REQUEST_ROW(name, pipe, code) {Request::name, #name},
    SORVANE_REQUESTS(SORVANE_REQUEST_ROW)
#undef SORVANE_REQUEST_ROW
};

constexpr unsigned char codeOf(Request request)
{
    return static_cast<unsigned char>(static_cast<unsigned short>(request) & 0xFF);
}

constexpr int pipeOf(Request request)
{
    return static_cast<unsigned short>(request) >> 8;
}

/// The serial request on its port's pipe: 3 for port 0, 4 for port 1.
constexpr Request onPort(Request request, unsigned int port)
{
    return static_cast<Request>(static_cast<unsigned short>(request) + (port << 8));
}

/// The request with this code on this pipe by name; null for one that no board understands.
constexpr const char *nameOfRequest(unsigned char code, int pipe)
{
    for (const NamedRequest &row : requestTable) {
        const bool serial = pipeOf(row.request) == 3;
        if (codeOf(row.request) == code && (pipeOf(row.request) == pipe || (serial && pipe == 4)))
            return row.name;
    }
    return nullptr;
}

#endif
