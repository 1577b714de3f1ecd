// What no exchange shows: sizes and places of everything that other programs, processes or the driver see, and the
// order of the virtual operations.
#include "api/sorvaneusb.h"
#include "board/r20_implementation.h"
#include "board/r20s_implementation.h"
#include "board/r35_implementation.h"
#include "board/rbase_shared_implementation/shared_board_state.h"
#include "shared/mutex_set.h"

#include <cstddef>
#include <cstring>
#include <gtest/gtest.h>
#include <type_traits>
#include <vector>

namespace tests::structure
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

/// Operations of which a class has several forms are named by their parameters.
template <class... Parameters>
auto form(int (RBaseImplementation::*operation)(Parameters...))
{
    return operation;
}

template <class... Operations>
std::vector<std::size_t> slotsOf(Operations... operations)
{
    return {slotOf(operations)...};
}

void expectConsecutive(const std::vector<std::size_t> &slots, std::size_t first)
{
    for (std::size_t k = 0; k < slots.size(); ++k)
        EXPECT_EQ(slots[k], first + k) << "operation " << first + k;
}

TEST(Structure, TheVirtualOperationsOfABoardStandInTheirOrder)
{
    using B = RBaseImplementation;
    using Byte = unsigned char;
    using Long = unsigned long;
    using Port = _usbSerialPort;
    const std::vector<std::size_t> slots = slotsOf(
        &B::incrementReferenceCount, &B::decrementReferenceCount, &B::PerformUSBIO, &B::GetBoardType, &B::GetBoardSpeed,
        &B::ConfigurePulsedInput, &B::ConfigurePulsedInputEx, &B::ReleaseParallelHopperCoins,
        &B::ReleaseParallelHopperCoinsEx, &B::StopHopperCoinRelease, &B::GetInputBit, form<Byte *>(&B::GetInputs),
        &B::SetOutputBit, &B::SetOutputs, form<usbInput *>(&B::GetInputs), &B::InputMultiplexing,
        &B::GetMultiplexedInputs, &B::GetChangedInputs, &B::GetRawInputs, &B::ModifyOutputs, &B::SetOnPeriodOutputs,
        &B::SetOffPeriodOutputs, &B::SetOnPeriodOutputBit, &B::SetOffPeriodOutputBit, &B::SetOutputBrightness,
        &B::PulseOutput, &B::PulseOffOutput, &B::PulseOutputResult, &B::BeginPulsedInputCheck, &B::EndPulsedInputCheck,
        &B::ResetPulsedInputCounter, &B::DecrementPulsedInputCounter, &B::ReadPulsedInputCounter,
        &B::GetPulsedInputStatus, &B::GetParallelHopperStatus, &B::ConfigureReelsEx, &B::SpinReels, &B::SpinRampUp,
        &B::SpinRampDown, &B::SetDutyCycle, &B::GetReelStatus, &B::GetReelStatusEx, &B::ReelSynchroniseEnable,
        &B::ConfigureRecordingInputs, &B::StartRecordingInputs, &B::GetRecordingStatus,
        form<Byte *, Long, Byte *, Long *>(&B::ReadDiagnosticData), &B::WriteDiagnosticData, &B::Download8051Software,
        &B::WriteSRAM, &B::ReadSRAM, &B::ConfigureEEPROM, &B::CheckEEPROM, &B::ReadEEPROM, &B::WriteEEPROM,
        form<Byte *>(&B::GetPICVersion), form<Byte *>(&B::GetPICSerialNumber), &B::SetPICSerialNumber,
        form<Byte *, Byte *>(&B::GetDallasSerialNumber), &B::GetRandomNumber, &B::EnableRandomNumberGenerator,
        &B::DisableRandomNumberGenerator, &B::ReadAndResetRTCFailure, &B::ReadClockAtBatteryFailure, &B::SetClock,
        &B::GetClock, &B::NextSecuritySwitchRead, &B::StartSecuritySwitchRead, &B::ClearSecuritySwitches,
        &B::ReadAndResetSecuritySwitchFlags, &B::ReadAndResetBatteryFailFlag, &B::CachedReadAndResetSecuritySwitchFlags,
        &B::EnableSPI, &B::DisableSPI, form<Byte, Byte *, Byte, Byte, Byte *>(&B::SendSPI),
        form<Byte, Byte, Byte, Byte *, Byte, Byte, Byte *>(&B::SendSEC), &B::SetSASMachineAddress, &B::SetConfig,
        &B::SetSASAutoReply, &B::SetSASBusy, &B::GetSASMessageStatus, &B::Send, form<Port, Byte *, Long *>(&B::Receive),
        &B::ReceiveByteWithTimestamp, &B::Send9BitData, form<Port, unsigned short *, Long *>(&B::Receive9BitData),
        &B::ReceiveByteWithTimestamp9BitData, &B::SetTimeoutMessage, &B::GetParityErrors, &B::ConfigureCCTalkPort,
        &B::ConfigureRS232Poll, &B::SetPolledHostTimeout, &B::EmptyPolledBuffer,
        form<Port, Byte, Byte *, Long *, unsigned int *>(&B::ReceivePolledMessage), &B::DeletePolledMessage);
    EXPECT_EQ(slots.size(), 95u);
    expectConsecutive(slots, 2);  // behind the destructor, which takes two
}

TEST(Structure, TheVirtualOperationsOfMutexAndSharedMemoryStandInTheirOrder)
{
    expectConsecutive(slotsOf(&Mutex::Lock, &Mutex::UnLock), 0);
    using S = SharedMemory;
    expectConsecutive(slotsOf(&S::Create, &S::Delete, &S::GetSize, &S::Lock, &S::UnLock, &S::MeFirst), 2);
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

/// Fills the whole buffer, and says next to nothing or far too much of it.
struct Boaster final : RBaseImplementation {
    Boaster() : RBaseImplementation(nullptr, -1, 1, 5) {}
    int PerformUSBIO(unsigned char, int, unsigned char *, unsigned long, unsigned char *in,
                     unsigned long *count) override
    {
        EXPECT_EQ(*count, 0u) << "before the exchange";
        std::memset(in, 0xEE, usbLargestAnswer);
        *count = says;
        says = 0;
        return 1;
    }
    unsigned long says = 0;
};

TEST(BoardBase, TakesTheCountForWhatIsThereAndNothingBehindIt)
{
    Boaster board;
    unsigned char bytes[2000] = {};
    unsigned long length = 0;
    ReelStatusEx reels;
    EXPECT_TRUE(board.GetReelStatusEx(&reels));
    const ReelStatusEx nothing = {};
    EXPECT_EQ(std::memcmp(&reels, &nothing, sizeof reels), 0) << "what did not come reads as 0";
    board.says = 10;
    EXPECT_TRUE(board.Receive(usbSerialPort0, bytes, &length));
    EXPECT_EQ(length, 10u);
    board.says = 1000;
    EXPECT_TRUE(board.ReadDiagnosticData(bytes, 1, bytes, &length));
    EXPECT_EQ(length, 256u) << "a count beyond the buffer is cut";
}

TEST(BoardBase, ABatchThatCannotBeIsEmpty)
{
    EXPECT_TRUE((ReceiveBuffer{256, 0, {}}.empty() && ReceiveBuffer{255, 255, {}}.empty()));
    EXPECT_FALSE((ReceiveBuffer{255, 254, {}}.empty()));
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

}  // namespace tests::structure
