#include "tools/probe.h"

#include "tools/failure.h"

#include <algorithm>

namespace tools
{

namespace
{

/// What a request answers; none, with a word of why, where it does not.
class Asking
{
public:
    Asking(Board &board, Probe &result) : board_(board), result_(result) {}

    std::optional<Answer> operator()(std::string_view operation)
    {
        try {
            return board_.ask(operation);
        } catch (const Refusal &refusal) {
            if (result_.trouble.empty())
                result_.trouble = refusal.what();
            return std::nullopt;
        }
    }
    std::optional<std::string> bytes(std::string_view operation, std::string_view field)
    {
        const std::optional<Answer> answer = (*this)(operation);
        if (!answer || !answer->decoded().asDescribed)
            return std::nullopt;
        return answer->bytes(field);
    }

private:
    Board &board_;
    Probe &result_;
};

}  // namespace

Probe probe(Board &board)
{
    Probe result;
    Asking ask(board, result);
    const std::optional<Answer> runs = ask("FirmwareRuns");
    result.firmwareRuns = runs && runs->decoded().asDescribed && runs->number("runs") == 1;
    if (!result.firmwareRuns)
        return result;
    result.version = ask.bytes("Get8051Version", "version");
    result.picVersion = ask.bytes("GetPICVersion", "version");
    result.picSerial = ask.bytes("GetPICSerialNumber", "serialNumber");
    const std::optional<Answer> inputs = ask("GetInputs");
    if (inputs && inputs->decoded().asDescribed) {
        result.boardNumber = 0;
        for (const std::uint32_t input : inputs->numbers("inputs"))
            *result.boardNumber |= 24 <= input && input <= 26 ? 1U << (input - 24) : 0U;
    }
    if (board.has("GetDallasSerialNumber"))
        result.dallasSerial = ask.bytes("GetDallasSerialNumber", "serialNumber");
    return result;
}

bool isCheckByteRight(std::string_view dallasSerial)
{
    constexpr unsigned char polynomial = 0x8C;  // the 1-Wire CRC, lowest bit first
    unsigned char crc = 0;
    for (const char byte : dallasSerial.substr(0, 7)) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = static_cast<unsigned char>(crc >> 1 ^ (crc & 1 ? polynomial : 0));
    }
    return dallasSerial.size() == 8 && crc == static_cast<unsigned char>(dallasSerial[7]);
}

}  // namespace tools
