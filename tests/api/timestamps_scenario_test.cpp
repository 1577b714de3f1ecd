// Timestamped batches: kept per device, handed out item by item.
#include "tests/support/open_board.h"

#include <cerrno>

namespace tests::timestamps
{

/// What a call stored: "1 41 05" is received, data and timestamp; ".." was not written.
std::string item(unsigned int received, const unsigned char *data, std::size_t dataBytes, unsigned char timestamp)
{
    std::string text = std::to_string(received) + " ";
    for (std::size_t k = 0; k < dataBytes; ++k)
        text += data[k] == 0xEE ? ".." : hex(data + k, 1);
    return text + " " + (timestamp == 0xEE ? ".." : hex(&timestamp, 1));
}

std::string next(SorvaneUSB &usb, _usbSerialPort port = usbSerialPort0)
{
    unsigned char data = 0xEE;
    unsigned char timestamp = 0xEE;
    unsigned int received = 0xEE;
    const int result = usb.ReceiveByteWithTimestamp(port, &data, &timestamp, &received);
    return result ? item(received, &data, 1, timestamp) : "error " + std::to_string(usb.GetLastError());
}

std::string nextWord(SorvaneUSB &usb, _usbSerialPort port = usbSerialPort0)
{
    unsigned short word = 0xEEEE;
    unsigned char timestamp = 0xEE;
    unsigned int received = 0xEE;
    const int result = usb.ReceiveByteWithTimestamp9BitData(port, &word, &timestamp, &received);
    const unsigned char bytes[] = {static_cast<unsigned char>(word >> 8), static_cast<unsigned char>(word & 0xFF)};
    return result ? item(received, bytes, 2, timestamp) : "error " + std::to_string(usb.GetLastError());
}

/// The batch is the device's and outlives a board: a port that does not exist tells when it is used up.
void useUp(SorvaneUSB &usb)
{
    while (next(usb, port2) != "error 8")
        ;
}

class TimestampScenario : public BoardScenario
{
protected:
    TimestampScenario() { useUp(usb); }

    bool r20() const { return GetParam() == sim::Model::R20; }
};

INSTANTIATE_TEST_SUITE_P(Models, TimestampScenario, testing::ValuesIn(everyModel), nameOfModel);

TEST_P(TimestampScenario, ABatchIsHandedOutItemByItemAndThenTheNextIsFetched)
{
    const struct {
        const char *name;
        sim::Bytes batch;
        std::vector<std::string> bytes, words;
    } cases[] = {
        {"two bytes", {0x41, 5, 0x42, 6}, {"1 41 05", "1 42 06"}, {"1 4105 42", "1 0600 .."}},
        {"two words", {1, 0xA5, 7, 0, 2, 8}, {"1 01 A5", "1 07 00", "1 02 08"}, {"1 01A5 07", "1 0002 08"}},
        {"a time alone", {0x33}, {"0 .. 33"}, {"0 .... 33"}},
        {"nothing", {}, {"0 .. .."}, {"0 .... .."}},
        {"a byte without its time", {0x41, 5, 0x42}, {"1 41 05", "1 42 .."}, {"1 4105 42"}},
        {"half a word", {1, 0xA5, 7, 1}, {"1 01 A5", "1 07 01"}, {"1 01A5 07", "1 0100 .."}},
        {"a word without its time", {1, 2}, {"1 01 02"}, {"1 0102 .."}},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.name);
        for (const bool words : {false, true}) {
            board.answerNext(each.batch);
            board.answerNext({0x77});
            board.clearExchanges();
            for (const std::string &expected : words ? each.words : each.bytes)
                EXPECT_EQ(words ? nextWord(usb) : next(usb), expected);
            EXPECT_EQ(wire(board), "102/3");
            EXPECT_EQ(words ? nextWord(usb, usbSerialPort1) : next(usb, usbSerialPort1),
                      words ? "0 .... 77" : "0 .. 77");
            EXPECT_EQ(wire(board), "102/3; 102/4");
        }
    }
}

TEST_P(TimestampScenario, TheLongestBatchesAreHandedOutWholeButOf256BytesNothing)
{
    const std::size_t longest = r20() ? 62 : 255;
    sim::Bytes batch(longest);
    for (std::size_t k = 0; k < longest; ++k)
        batch[k] = static_cast<unsigned char>(k % 100);
    board.answerNext(batch);
    for (std::size_t k = 0; k < longest; k += 2)
        EXPECT_EQ(next(usb), item(1, &batch[k], 1, k + 1 < longest ? batch[k + 1] : 0xEE));
    EXPECT_EQ(next(usb, port2), "error 8");

    board.answerNext(sim::Bytes(256, 1));
    EXPECT_EQ(next(usb), r20() ? "error 7" : "0 .. ..");
    EXPECT_EQ(next(usb, port2), "error 8") << "it is used up";
}

TEST_P(TimestampScenario, AFilledBufferAnswersAnyPortAndEitherForm)
{
    board.answerNext({0x41, 5, 0x42, 6, 1, 0xA5, 7});
    EXPECT_EQ(next(usb), "1 41 05");
    EXPECT_EQ(next(usb, port2), "1 42 06");
    EXPECT_EQ(nextWord(usb, usbSerialPort1), "1 01A5 07");
    EXPECT_EQ(wire(board), "102/3");
    EXPECT_EQ(nextWord(usb, port2), "error 8");
    EXPECT_EQ(wire(board), "102/3");
}

TEST_P(TimestampScenario, ErrorsTakeNothingFromTheBatch)
{
    unsigned char data = 0xEE;
    unsigned int received = 0xEE;
    board.answerNext({0x41, 5, 0x42, 6});
    EXPECT_EQ(next(usb), "1 41 05");
    EXPECT_EQ(errorOf(usb, usb.ReceiveByteWithTimestamp(port2, &data, nullptr, &received)), usbErrorNullPointer)
        << "the pointers come before the port and the buffer";
    EXPECT_EQ(next(usb), "1 42 06");
    board.faults().add(sim::Fault::ioctlFails(EIO).on(102));
    board.answerNext({0x43, 7});
    EXPECT_EQ(next(usb), "error 6");
    EXPECT_EQ(next(usb), "1 43 07") << "the failed exchange has filled nothing";
}

TEST_P(TimestampScenario, EachDeviceKeepsItsOwnBatch)
{
    OpenBoard other(GetParam(), 1);
    useUp(other.usb);
    other.board.answerNext({0x41, 5, 0x42, 6});
    EXPECT_EQ(next(other.usb), "1 41 05");
    board.answerNext(sim::Bytes(sim::largestAnswer(GetParam()), 0x99));
    EXPECT_EQ(next(usb), r20() ? "1 99 99" : "0 .. ..");
    EXPECT_EQ(next(other.usb), "1 42 06");
}

}  // namespace tests::timestamps
