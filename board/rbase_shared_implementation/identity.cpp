// Versions and serial numbers. Each arrives in the caller's own buffer, as long as the firmware makes it.
#include "board/exchange.h"
#include "board/transfer_range.h"

namespace
{

constexpr unsigned long serialNumberBytes = 8;

/// The 1-Wire CRC over a ROM number and its CRC byte: 0 when they belong together.
unsigned char crcOf1Wire(const unsigned char *romNumber)
{
    unsigned char crc = 0;
    for (unsigned long k = 0; k < serialNumberBytes; ++k) {
        unsigned char byte = romNumber[k];
        for (int bit = 0; bit < 8; ++bit) {
            const bool mix = (crc ^ byte) & 1;
            crc = static_cast<unsigned char>(crc >> 1 ^ (mix ? 0x8C : 0));
            byte = static_cast<unsigned char>(byte >> 1);
        }
    }
    return crc;
}

}  // namespace

int RBaseImplementation::ReadIdentity(Request request, unsigned char *identity)
{
    if (!identity)
        return Fail(usbErrorNullPointer);
    return AskInto(request, identity);
}

int RBaseImplementation::ReadIdentity(Request request, unsigned char *identity, unsigned long capacity)
{
    if (!identity)
        return Fail(usbErrorNullPointer);
    Response<0> response;
    if (!Ask(request, response))
        return 0;
    response.copyTo(identity, capacity);
    return 1;
}

int RBaseImplementation::Get8051Version(unsigned char *version)
{
    return ReadIdentity(Request::Get8051Version, version);
}

int RBaseImplementation::GetPICVersion(unsigned char *version)
{
    return ReadIdentity(Request::GetPICVersion, version);
}

int RBaseImplementation::GetPICSerialNumber(unsigned char *serialNumber)
{
    return ReadIdentity(Request::GetPICSerialNumber, serialNumber);
}

int RBaseImplementation::Get8051Version(unsigned char *version, unsigned long capacity)
{
    return ReadIdentity(Request::Get8051Version, version, capacity);
}

int RBaseImplementation::GetPICVersion(unsigned char *version, unsigned long capacity)
{
    return ReadIdentity(Request::GetPICVersion, version, capacity);
}

int RBaseImplementation::GetPICSerialNumber(unsigned char *serialNumber, unsigned long capacity)
{
    return ReadIdentity(Request::GetPICSerialNumber, serialNumber, capacity);
}

int RBaseImplementation::SetPICSerialNumber(unsigned char *serialNumber)
{
    if (!serialNumber)
        return Fail(usbErrorNullPointer);
    return TellWith(Request::SetPICSerialNumber, serialNumber, serialNumberBytes);
}

int RBaseImplementation::GetDallasSerialNumber(unsigned char *serialNumber, unsigned char *crcValid)
{
    if (!serialNumber || !crcValid)
        return Fail(usbErrorNullPointer);
    if (!ReadIdentity(Request::GetDallasSerialNumber, serialNumber))
        return 0;
    *crcValid = crcOf1Wire(serialNumber) == 0 ? 1 : 0;
    return 1;
}

int RBaseImplementation::GetDallasSerialNumber(unsigned char *serialNumber, unsigned char *crcValid,
                                               unsigned long capacity)
{
    unsigned char romNumber[usbLargestAnswer] = {};
    if (!GetDallasSerialNumber(serialNumber ? romNumber : nullptr, crcValid))
        return 0;
    // NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker): the other form has refused it
    std::memcpy(serialNumber, romNumber, fitting(serialNumberBytes, capacity));
    return 1;
}
