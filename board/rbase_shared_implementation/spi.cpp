// Transfers over the board's SPI port, counted in bits, and the SEC frames that travel in them.
#include "board/exchange.h"

namespace
{

constexpr unsigned char mostBits = 160;
constexpr unsigned char mostSECData = 16;
constexpr unsigned char secHeader = 3;
constexpr unsigned char secFrameBytes = secHeader + 1;  // besides the data

struct SECFrame {
    SECFrame(unsigned char headerA, unsigned char headerB, const unsigned char *data, unsigned char dataLength)
        : content(headerA, headerB, dataLength)
    {
        content.append(data, dataLength);
        unsigned char sum = 0;
        for (unsigned long k = 0; k < content.length; ++k)
            sum = static_cast<unsigned char>(sum + content.bytes[k]);
        content.append(&sum, 1);
    }
    Payload<mostSECData + secFrameBytes> content;
};

unsigned char bitsOfFrame(unsigned char dataLength)
{
    return static_cast<unsigned char>((dataLength + secFrameBytes) * 8);
}

}  // namespace

int RBaseImplementation::EnableSPI()
{
    return Tell(Request::EnableSPI);
}

int RBaseImplementation::DisableSPI()
{
    return Tell(Request::DisableSPI);
}

int RBaseImplementation::SendSPI(unsigned char sendBits, unsigned char *txData, unsigned char spiOption,
                                 unsigned char receiveBits, unsigned char *rxData)
{
    return SendSPI(sendBits, txData, spiOption, receiveBits, rxData, usbLargestAnswer);
}

int RBaseImplementation::SendSPI(unsigned char sendBits, unsigned char *txData, unsigned char spiOption,
                                 unsigned char receiveBits, unsigned char *rxData, unsigned long capacity)
{
    if (!txData || !rxData)
        return Fail(usbErrorNullPointer);
    if (receiveBits > mostBits || sendBits < 1 || sendBits > mostBits)
        return Fail(usbErrorDataLength);
    Payload<3 + mostBits / 8> payload(sendBits, receiveBits, spiOption);
    payload.append(txData, (sendBits + 7UL) / 8);
    Response<0> response;
    if (!AskWith(Request::SendSPI, response, payload.bytes, payload.length))
        return 0;
    response.copyTo(rxData, capacity);
    return 1;
}

namespace
{

int checkSEC(const unsigned char *data, const unsigned char *rxData, unsigned char dataLength,
             unsigned char replyLength)
{
    if (!data || !rxData)
        return RBaseImplementation::Fail(usbErrorNullPointer);
    if (dataLength > mostSECData || replyLength > mostSECData)
        return RBaseImplementation::Fail(usbErrorDataLength);
    return 1;
}

}  // namespace

int RBaseImplementation::SendSEC(unsigned char headerA, unsigned char headerB, unsigned char dataLength,
                                 unsigned char *data, unsigned char spiOption, unsigned char replyLength,
                                 unsigned char *rxData)
{
    if (!checkSEC(data, rxData, dataLength, replyLength))
        return 0;
    SECFrame frame(headerA, headerB, data, dataLength);
    return SendSPI(bitsOfFrame(dataLength), frame.content.bytes, spiOption, bitsOfFrame(replyLength), rxData);
}

int RBaseImplementation::SendSEC(unsigned char headerA, unsigned char headerB, unsigned char dataLength,
                                 unsigned char *data, unsigned char spiOption, unsigned char replyLength,
                                 unsigned char *rxData, unsigned long capacity)
{
    if (!checkSEC(data, rxData, dataLength, replyLength))
        return 0;
    SECFrame frame(headerA, headerB, data, dataLength);
    return SendSPI(bitsOfFrame(dataLength), frame.content.bytes, spiOption, bitsOfFrame(replyLength), rxData, capacity);
}
