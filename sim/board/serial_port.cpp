#include "sim/board/serial_port.h"

#include <algorithm>

namespace sim
{

namespace
{

constexpr std::size_t sentKept = 1024;
constexpr std::size_t largestBatch = 255;
constexpr unsigned int parityCountLimit = 0xFFFF;
constexpr Nanoseconds receiveTimeoutUnit = std::chrono::milliseconds(30);

unsigned char timestampAt(Nanoseconds time)
{
    return static_cast<unsigned char>(time / std::chrono::milliseconds(1) & 0xFF);
}

void appendWord(Bytes &bytes, std::uint16_t word, bool nineBit)
{
    if (nineBit)
        bytes.push_back(highByte(word));
    bytes.push_back(lowByte(word));
}

}  // namespace

SerialPort::SerialPort(unsigned int number, Model model, Timeline &timeline, const Firmware &firmware, Diary &diary)
    : number_(number), largestAnswer_(largestAnswer(model)), timeline_(timeline), firmware_(firmware), diary_(diary),
      polledHost_(timeline, largestAnswer_, [this](const Words &words) { send(words); }),
      sas_(timeline, [this](const Words &words) { send(words); })
{
}

SerialPort::~SerialPort()
{
    connect(nullptr);
}

void SerialPort::connect(std::unique_ptr<SerialPeripheral> peripheral)
{
    peripheral_ = std::move(peripheral);
    if (peripheral_)
        peripheral_->attach(*this);
}

void SerialPort::send(const Words &words)
{
    sendLineFree_ = std::max(sendLineFree_, timeline_.now()) + words.size() * settings_.wordTime();
    sent_.insert(sent_.end(), words.begin(), words.end());
    while (sent_.size() > sentKept)
        sent_.pop_front();
    sentCount_ += words.size();
    Bytes bytes;
    for (const std::uint16_t word : words)
        appendWord(bytes, word, settings_.nineBit());
    assign(diary_.note(journal::Kind::Sent, number_).bytes, bytes);
    timeline_.at(sendLineFree_, this, [this, words] {
        if (peripheral_)
            peripheral_->receive(words);
    });
}

void SerialPort::transmit(const Words &words)
{
    receiveLineFree_ = std::max(receiveLineFree_, timeline_.now());
    for (std::size_t i = 0; i < words.size(); ++i) {
        receiveLineFree_ += settings_.wordTime();
        timeline_.at(receiveLineFree_, this,
                     [this, word = words[i], last = i + 1 == words.size()] { arrived(word, last); });
    }
}

void SerialPort::noteReceived()
{
    if (!arriving_.empty())
        assign(diary_.note(journal::Kind::Received, number_).bytes, arriving_);
    arriving_.clear();
}

void SerialPort::deliver(Payload bytes)
{
    transmit({bytes.begin(), bytes.end()});
}

void SerialPort::arrived(std::uint16_t word, bool last)
{
    // Nobody listens on a board whose firmware does not run.
    if (!firmware_.running())
        return;
    if (!settings_.nineBit())
        word &= 0xFF;
    appendWord(arriving_, word, settings_.nineBit());
    if (last)
        noteReceived();
    if (wordsToSpoil_ > 0) {
        --wordsToSpoil_;
        parityErrors_ = std::min(parityErrors_ + 1, parityCountLimit);
    }
    if (polledHost_.take(word) || sas_.take(word))
        return;
    if (received_.size() < serialBufferCapacity)
        received_.push_back({word, timestampAt(timeline_.now())});
}

void SerialPort::drop(std::size_t count)
{
    received_.erase(received_.begin(), received_.begin() + static_cast<std::ptrdiff_t>(count));
}

Reply SerialPort::configure(Payload payload)
{
    const std::optional<SerialLineSettings> settings = decodeSerialConfig(number_, payload);
    if (!settings)
        return refuse(statusWrongValue);
    return perform([this, settings = *settings] {
        settings_ = settings;
        received_.clear();
        parityErrors_ = 0;
    });
}

Reply SerialPort::sendFromHost(Payload payload)
{
    if (payload.size() % wordSize() != 0)
        return refuse(statusWrongLength);
    Words words;
    for (std::size_t i = 0; i < payload.size(); i += wordSize())
        words.push_back(settings_.nineBit() ? u16be(payload, i) & 0x1FF : payload[i]);
    return perform([this, words] {
        send(words);
        sas_.gameHasSent();
        restartTimeout();
    });
}

Bytes SerialPort::wire(std::size_t count) const
{
    Bytes bytes;
    for (std::size_t i = 0; i < count; ++i)
        appendWord(bytes, received_[i].word, settings_.nineBit());
    return bytes;
}

Reply SerialPort::receive()
{
    const std::size_t count = std::min(received_.size(), largestAnswer_ / wordSize());
    return tell(wire(count), [this, count] { drop(count); });
}

Reply SerialPort::receiveWithTimestamps()
{
    const std::size_t most = std::min(largestAnswer_, largestBatch) / (wordSize() + 1);
    const std::size_t count = std::min(received_.size(), most);
    if (count == 0)
        return tell({timestampAt(timeline_.now())});
    Bytes bytes;
    for (std::size_t i = 0; i < count; ++i) {
        appendWord(bytes, received_[i].word, settings_.nineBit());
        bytes.push_back(received_[i].timestamp);
    }
    return tell(bytes, [this, count] { drop(count); });
}

Reply SerialPort::setTimeoutMessage(Payload payload)
{
    if (payload[1] != payload.size() - 2)
        return refuse(statusWrongLength);
    return perform([this, payload] {
        timeout_ = payload[0] * receiveTimeoutUnit;
        timeoutMessage_.assign(payload.begin() + 2, payload.end());
        restartTimeout();
    });
}

void SerialPort::restartTimeout()
{
    timeline_.cancel(&timeout_);
    if (timeout_ > Nanoseconds::zero() && !timeoutMessage_.empty())
        timeline_.after(timeout_, &timeout_, [this] { send(timeoutMessage_); });
}

std::optional<Reply> SerialPort::answer(Request request, Payload payload)
{
    switch (request) {
    case Request::SetConfig:
        return configure(payload);
    case Request::Send:
        return sendFromHost(payload);
    case Request::Receive:
        return receive();
    case Request::GetParityErrors:
        return tell({highByte(parityErrors_), lowByte(parityErrors_)});
    case Request::SetTimeoutMessage:
        return setTimeoutMessage(payload);
    case Request::ReceiveWithTimestamps:
        return receiveWithTimestamps();
    default:
        break;
    }
    std::optional<Reply> reply = polledHost_.answer(request, payload);
    return reply ? reply : sas_.answer(request, payload);
}

void SerialPort::powerLost()
{
    noteReceived();
    timeline_.cancel(this);
    timeline_.cancel(&timeout_);
    settings_ = {};
    received_.clear();
    parityErrors_ = 0;
    wordsToSpoil_ = 0;
    sendLineFree_ = {};
    receiveLineFree_ = {};
    timeout_ = {};
    timeoutMessage_.clear();
    polledHost_.powerLost();
    sas_.powerLost();
}

}  // namespace sim
