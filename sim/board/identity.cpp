#include "sim/board/identity.h"

#include <algorithm>

namespace sim
{

namespace
{

constexpr unsigned char familyCode = 0x01;
constexpr std::uint64_t firstSerial = 0x5A0000000000;

Bytes text(const std::string &words)
{
    Bytes bytes(words.begin(), words.end());
    bytes.push_back(0);
    return bytes;
}

}  // namespace

unsigned char oneWireCheck(Payload bytes)
{
    unsigned int check = 0;
    for (const unsigned char byte : bytes) {
        check ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            check = (check & 1) != 0 ? check >> 1 ^ 0x8C : check >> 1;
    }
    return lowByte(check);
}

Identity::Identity(Model model)
    : version8051_(std::string("Virtual ") + nameOf(model) + " 1.0"), versionPIC_("Virtual PIC 1.0"),
      serialPIC_{'V', 'P', 'I', 'C', '0', '0', '0', static_cast<unsigned char>('0' + static_cast<int>(model))}
{
    setSerialDallas(firstSerial + static_cast<unsigned int>(model));
}

void Identity::setSerialDallas(std::uint64_t number)
{
    serialDallas_[0] = familyCode;
    for (std::size_t i = 1; i < 7; ++i, number >>= 8)
        serialDallas_[i] = static_cast<unsigned char>(number & 0xFF);
    serialDallas_[7] = oneWireCheck(Payload(serialDallas_).first(7));
}

std::optional<Reply> Identity::answer(Request request, Payload payload)
{
    switch (request) {
    case Request::Get8051Version:
        return tell(text(version8051_));
    case Request::GetPICVersion:
        return tell(text(versionPIC_));
    case Request::GetPICSerialNumber:
        return tell(toBytes(serialPIC_));
    case Request::SetPICSerialNumber:
        return perform([this, payload] { std::copy(payload.begin(), payload.end(), serialPIC_.begin()); });
    case Request::GetDallasSerialNumber:
        return tell(toBytes(serialDallas_));
    default:
        return std::nullopt;
    }
}

}  // namespace sim
