// What no exchange shows: sizes and places of everything that other programs, processes or the driver see, and the
// order of the virtual operations.
#include <cstddef>
#include <cstring>
#include <gtest/gtest.h>
#include <type_traits>

#include "api/sorvaneusb.h"
#include "board/r20_implementation.h"
#include "board/r20s_implementation.h"
#include "board/r35_implementation.h"
#include "board/rbase_shared_implementation/shared_board_state.h"
#include "shared/mutex_set.h"

namespace tests
{

namespace
{

static_assert(sizeof(SorvaneUSB) == sizeof(void *) && !std::is_polymorphic_v<SorvaneUSB>);
static_assert(std::is_copy_constructible_v<SorvaneUSB> && std::is_copy_assignable_v<SorvaneUSB>);

static_assert(sizeof(usbInput) == 5 && sizeof(usbOutput) == 5 && sizeof(usbMultiplexedInput) == 13);
static_assert(sizeof(usbRampTable) == 61 && sizeof(ReelStatusEx) == 18 && sizeof(usbReelStatus) == 12);
static_assert(offsetof(ReelStatusEx, second) == 6 && offsetof(ReelStatusEx, third) == 12);
static_assert(sizeof(_DCB) == 8 && offsetof(_DCB, Options) == 4 && offsetof(_DCB, Format) == 5);
static_assert(sizeof(R20EEPROM) == 6 && offsetof(R20EEPROM, maxAddress) == 2 && offsetof(R20EEPROM, spare) == 5);
static_assert(sizeof(CCTalkConfig) == 72 && offsetof(CCTalkConfig, optionA) == 4);
static_assert(offsetof(CCTalkConfig, timeMs) == 12 && offsetof(CCTalkConfig, message1) == 19);
static_assert(offsetof(CCTalkConfig, message2) == 44);
static_assert(sizeof(RS232PollConfig) == 76 && offsetof(RS232PollConfig, timeMs) == 12);
static_assert(offsetof(RS232PollConfig, framing) == 16 && offsetof(RS232PollConfig, optionD) == 20);
static_assert(offsetof(RS232PollConfig, message1) == 23 && offsetof(RS232PollConfig, message2) == 48);

template <class Enumeration, class Type>
constexpr bool isOf = std::is_same_v<std::underlying_type_t<Enumeration>, Type>;
static_assert(isOf<_usbInputBitId, unsigned int> && isOf<_usbOutputBitId, unsigned int>);
static_assert(isOf<_usbOutputId, unsigned int> && isOf<_usbSerialPort, unsigned int>);
static_assert(isOf<ActiveState, unsigned int> && isOf<usbInputMultiplexing, unsigned int>);
static_assert(isOf<ReleaseHopperCoinsStatus, unsigned int> && isOf<RecordingStatus, unsigned int>);
static_assert(isOf<_usbErrorCode, int> && isOf<_usbPortType, int>);

static_assert(offsetof(MutexID, count) == 52 && offsetof(MutexID, number) == 56);
static_assert(offsetof(SharedMemoryObjectID, id) == 52);
static_assert(offsetof(SharedMemoryArenaID, mutexID) == 56 && offsetof(SharedMemoryArenaID, size) == 116);
static_assert(offsetof(SharedMemoryBlockHeader, mutexID) == 56 && offsetof(SharedMemoryBlockHeader, useCount) == 116);
static_assert(offsetof(SharedMemoryBlockHeader, blockCount) == 120);
static_assert(offsetof(SharedMemoryArenaHeader, buildCount) == 120);
static_assert(offsetof(SharedMemoryArenaHeader, blockCount) == 124);

static_assert(std::is_base_of_v<RBaseImplementation, R20Implementation> && std::is_final_v<R20Implementation>);
static_assert(std::is_base_of_v<RBaseImplementation, R20s_Implementation> && std::is_final_v<R20s_Implementation>);
static_assert(std::is_base_of_v<RBaseImplementation, R35_Implementation> && std::is_final_v<R35_Implementation>);

/// The place of a virtual operation in the table, counted in entries; a destructor takes two.
template <class Class, class Result, class... Args>
std::size_t slotOf(Result (Class::*operation)(Args...))
{
    std::size_t place;
    std::memcpy(&place, &operation, sizeof place);
    return (place - 1) / sizeof(void *);
}

TEST(Structure, TheVirtualOperationsOfABoardStandInTheirOrder)
{
    using B = RBaseImplementation;
    using Byte = unsigned char;
    using Long = unsigned long;
    using Port = _usbSerialPort;
    const std::size_t slots[] = {
        slotOf(&B::incrementReferenceCount),
        slotOf(&B::decrementReferenceCount),
        slotOf(&B::PerformUSBIO),
        slotOf(&B::GetBoardType),
        slotOf(&B::GetBoardSpeed),
        slotOf(&B::ConfigurePulsedInput),
        slotOf(&B::ConfigurePulsedInputEx),
        slotOf(&B::ReleaseParallelHopperCoins),
        slotOf(&B::ReleaseParallelHopperCoinsEx),
        slotOf(&B::StopHopperCoinRelease),
        slotOf(&B::GetInputBit),
        slotOf<B, int, Byte *>(&B::GetInputs),
        slotOf(&B::SetOutputBit),
        slotOf(&B::SetOutputs),
        slotOf<B, int, usbInput *>(&B::GetInputs),
        slotOf(&B::InputMultiplexing),
        slotOf(&B::GetMultiplexedInputs),
        slotOf(&B::GetChangedInputs),
        slotOf(&B::GetRawInputs),
        slotOf(&B::ModifyOutputs),
        slotOf(&B::SetOnPeriodOutputs),
        slotOf(&B::SetOffPeriodOutputs),
        slotOf(&B::SetOnPeriodOutputBit),
        slotOf(&B::SetOffPeriodOutputBit),
        slotOf(&B::SetOutputBrightness),
        slotOf(&B::PulseOutput),
        slotOf(&B::PulseOffOutput),
        slotOf(&B::PulseOutputResult),
        slotOf(&B::BeginPulsedInputCheck),
        slotOf(&B::EndPulsedInputCheck),
        slotOf(&B::ResetPulsedInputCounter),
        slotOf(&B::DecrementPulsedInputCounter),
        slotOf(&B::ReadPulsedInputCounter),
        slotOf(&B::GetPulsedInputStatus),
        slotOf(&B::GetParallelHopperStatus),
        slotOf(&B::ConfigureReelsEx),
        slotOf(&B::SpinReels),
        slotOf(&B::SpinRampUp),
        slotOf(&B::SpinRampDown),
        slotOf(&B::SetDutyCycle),
        slotOf(&B::GetReelStatus),
        slotOf(&B::GetReelStatusEx),
        slotOf(&B::ReelSynchroniseEnable),
        slotOf(&B::ConfigureRecordingInputs),
        slotOf(&B::StartRecordingInputs),
        slotOf(&B::GetRecordingStatus),
        slotOf<B, int, Byte *, Long, Byte *, Long *>(&B::ReadDiagnosticData),
        slotOf(&B::WriteDiagnosticData),
        slotOf(&B::Download8051Software),
        slotOf(&B::WriteSRAM),
        slotOf(&B::ReadSRAM),
        slotOf(&B::ConfigureEEPROM),
        slotOf(&B::CheckEEPROM),
        slotOf(&B::ReadEEPROM),
        slotOf(&B::WriteEEPROM),
        slotOf<B, int, Byte *>(&B::GetPICVersion),
        slotOf<B, int, Byte *>(&B::GetPICSerialNumber),
        slotOf(&B::SetPICSerialNumber),
        slotOf<B, int, Byte *, Byte *>(&B::GetDallasSerialNumber),
        slotOf(&B::GetRandomNumber),
        slotOf(&B::EnableRandomNumberGenerator),
        slotOf(&B::DisableRandomNumberGenerator),
        slotOf(&B::ReadAndResetRTCFailure),
        slotOf(&B::ReadClockAtBatteryFailure),
        slotOf(&B::SetClock),
        slotOf(&B::GetClock),
        slotOf(&B::NextSecuritySwitchRead),
        slotOf(&B::StartSecuritySwitchRead),
        slotOf(&B::ClearSecuritySwitches),
        slotOf(&B::ReadAndResetSecuritySwitchFlags),
        slotOf(&B::ReadAndResetBatteryFailFlag),
        slotOf(&B::CachedReadAndResetSecuritySwitchFlags),
        slotOf(&B::EnableSPI),
        slotOf(&B::DisableSPI),
        slotOf<B, int, Byte, Byte *, Byte, Byte, Byte *>(&B::SendSPI),
        slotOf<B, int, Byte, Byte, Byte, Byte *, Byte, Byte, Byte *>(&B::SendSEC),
        slotOf(&B::SetSASMachineAddress),
        slotOf(&B::SetConfig),
        slotOf(&B::SetSASAutoReply),
        slotOf(&B::SetSASBusy),
        slotOf(&B::GetSASMessageStatus),
        slotOf(&B::Send),
        slotOf<B, int, Port, Byte *, Long *>(&B::Receive),
        slotOf(&B::ReceiveByteWithTimestamp),
        slotOf(&B::Send9BitData),
        slotOf<B, int, Port, unsigned short *, Long *>(&B::Receive9BitData),
        slotOf(&B::ReceiveByteWithTimestamp9BitData),
        slotOf(&B::SetTimeoutMessage),
        slotOf(&B::GetParityErrors),
        slotOf(&B::ConfigureCCTalkPort),
        slotOf(&B::ConfigureRS232Poll),
        slotOf(&B::SetPolledHostTimeout),
        slotOf(&B::EmptyPolledBuffer),
        slotOf<B, int, Port, Byte, Byte *, Long *, unsigned int *>(&B::ReceivePolledMessage),
        slotOf(&B::DeletePolledMessage),
    };
    static_assert(std::size(slots) == 95);  // and the destructor before them
    for (std::size_t k = 0; k < std::size(slots); ++k)
        EXPECT_EQ(slots[k], k + 2) << "operation " << k + 2;
}

TEST(Structure, TheVirtualOperationsOfMutexAndSharedMemoryStandInTheirOrder)
{
    EXPECT_EQ(slotOf(&Mutex::Lock), 0u);
    EXPECT_EQ(slotOf(&Mutex::UnLock), 1u);
    using S = SharedMemory;
    const std::size_t slots[] = {slotOf(&S::Create), slotOf(&S::Delete), slotOf(&S::GetSize),
                                 slotOf(&S::Lock),   slotOf(&S::UnLock), slotOf(&S::MeFirst)};
    for (std::size_t k = 0; k < std::size(slots); ++k)
        EXPECT_EQ(slots[k], k + 2);
}

TEST(Structure, TheHandlesOfTheSharedObjectsHaveTheirNames)
{
    const SharedMemoryObject *const handles[] = {&SharedOutOnCopy, &SharedOutOffCopy, &SharedcurrentEEPROM,
                                                 &SharedserialRxBuffer};
    int number = 1;
    for (const SharedMemoryObject *handle : handles) {
        ASSERT_TRUE(handle->object && handle->mutex && handle->element);
        EXPECT_EQ(handle->mutex->mutexID.number, number++);
        EXPECT_EQ(handle->element->sharedMemory->referenceCount, 4);
    }
    EXPECT_EQ(sharedBlock.size, 65536u);
    EXPECT_EQ(SharedMemoryLocalListElement::SharedMemoryLocalListStart, SharedOutOnCopy.element);
    EXPECT_TRUE(LinuxMutexSet::MasterListStart && Mutex::MutexChain);
}

TEST(BoardBase, HasNoModelAndSaysSoWithoutACode)
{
    RBaseImplementation::SetLastError(usbErrorBaudRate);
    RBaseImplementation base(nullptr, -1, 0x102, 5);
    unsigned char byte = 9;
    unsigned long number = 9;
    EXPECT_EQ(base.GetBoardType(&byte), 0);
    EXPECT_EQ(byte, 0);
    EXPECT_EQ(base.PerformUSBIO(75, 1, nullptr, 0, nullptr, nullptr), 0);
    EXPECT_EQ(base.Download8051Software(), 0);
    EXPECT_EQ(base.WriteSRAM(0, &byte, 1), 0);
    EXPECT_EQ(base.ReadSRAM(0, &byte, 1), 0);
    EXPECT_EQ(base.ReadClockAtBatteryFailure(&number), 0);
    EXPECT_EQ(RBaseImplementation::GetLastError(), usbErrorBaudRate);
    EXPECT_EQ(base.GetBoardSpeed(&byte), 1);
    EXPECT_EQ(byte, 2) << "the low byte of the speed";
    EXPECT_EQ(base.GetDeviceHandle(77), -1);
    EXPECT_EQ(base.GetDeviceNo(), 5);
    EXPECT_EQ(base.referenceCount, 1);
    EXPECT_EQ(base.firmwareLoaded, 0);
    EXPECT_EQ(base.GetBoardType(nullptr), 0);
    EXPECT_EQ(RBaseImplementation::GetLastError(), usbErrorNullPointer);
    EXPECT_EQ(RBaseImplementation::SetupErrorHandling(), 1);
    EXPECT_EQ(RBaseImplementation::GetLastError(), usbErrorNone);
    RBaseImplementation::ReleaseErrorHandling();
}

TEST(BoardBase, ADownloadWithoutAnOwnerFailsWithoutACode)
{
    R20s_Implementation r20s(nullptr, -1, 1, 0);
    R35_Implementation r35(nullptr, -1, 1, 0);
    RBaseImplementation::ClearErrors();
    EXPECT_EQ(r20s.Download8051Software(), 0);
    EXPECT_EQ(r35.Download8051Software(), 0);
    EXPECT_EQ(RBaseImplementation::GetLastError(), usbErrorNone);
}

}  // namespace

}  // namespace tests
