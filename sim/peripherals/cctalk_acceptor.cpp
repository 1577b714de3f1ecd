#include "sim/peripherals/cctalk_acceptor.h"

#include <numeric>

namespace sim
{

namespace
{

constexpr unsigned char ownAddress = 2;
constexpr std::size_t ccTalkOverhead = 5;
constexpr std::size_t creditsKept = 5;
constexpr unsigned char sorterPath = 1;

// Bytes of a frame that stops in the middle are forgotten by then.
constexpr Nanoseconds longestPause = std::chrono::milliseconds(500);

enum Header : unsigned char {
    Reset = 1,
    RequestBuildCode = 192,
    RequestMasterInhibit = 227,
    ModifyMasterInhibit = 228,
    ReadCredit = 229,
    RequestInhibit = 230,
    ModifyInhibit = 231,
    RequestSoftwareRevision = 241,
    RequestSerialNumber = 242,
    RequestProductCode = 244,
    RequestEquipmentCategory = 245,
    RequestManufacturerId = 246,
    SimplePoll = 254
};

unsigned char sum(Payload bytes)
{
    return lowByte(std::accumulate(bytes.begin(), bytes.end(), 0U));
}

Bytes text(const char *words)
{
    const std::string string(words);
    return {string.begin(), string.end()};
}

Words answerFrame(unsigned char destination, const Bytes &data)
{
    Bytes frame{destination, lowByte(static_cast<std::uint32_t>(data.size())), ownAddress, 0};
    append(frame, data);
    frame.push_back(lowByte(0U - sum(frame)));
    return {frame.begin(), frame.end()};
}

}  // namespace

bool CcTalkAcceptor::insert(unsigned int coin)
{
    if (coin < 1 || coin > 16 || !masterEnabled_ || (enabledCoins_ >> (coin - 1) & 1) == 0)
        return false;
    // The counter of events is 0 only after a reset.
    events_ = events_ == 255 ? 1 : static_cast<unsigned char>(events_ + 1);
    credits_.push_front(static_cast<unsigned char>(coin));
    if (credits_.size() > creditsKept)
        credits_.pop_back();
    return true;
}

Bytes CcTalkAcceptor::credit() const
{
    Bytes bytes{events_};
    for (const unsigned char coin : credits_) {
        bytes.push_back(coin);
        bytes.push_back(sorterPath);
    }
    bytes.resize(1 + 2 * creditsKept);
    return bytes;
}

std::optional<Bytes> CcTalkAcceptor::dataFor(unsigned char header, Payload data)
{
    switch (header) {
    case SimplePoll:
        return Bytes{};
    case RequestManufacturerId:
        return text("SIM");
    case RequestEquipmentCategory:
        return text("Coin Acceptor");
    case RequestProductCode:
        return text("VCA");
    case RequestSerialNumber:
        return Bytes{1, 0, 0};
    case RequestSoftwareRevision:
    case RequestBuildCode:
        return text("1.0");
    case ReadCredit:
        return credit();
    case RequestInhibit:
        return Bytes{lowByte(enabledCoins_), highByte(enabledCoins_)};
    case RequestMasterInhibit:
        return Bytes{lowByte(masterEnabled_ ? 1 : 0)};
    case ModifyInhibit:
        if (data.size() != 2)
            return std::nullopt;
        enabledCoins_ = u16le(data, 0);
        return Bytes{};
    case ModifyMasterInhibit:
        if (data.size() != 1)
            return std::nullopt;
        masterEnabled_ = (data[0] & 1) != 0;
        return Bytes{};
    case Reset:
        events_ = 0;
        credits_.clear();
        return Bytes{};
    default:
        return std::nullopt;
    }
}

void CcTalkAcceptor::handle(Payload frame)
{
    if (silent_ || frame[0] != ownAddress || sum(frame) != 0)
        return;
    if (const std::optional<Bytes> data = dataFor(frame[3], frame.subspan(4, frame[1])))
        line_->transmit(answerFrame(frame[2], *data));
}

void CcTalkAcceptor::receive(const Words &words)
{
    const Nanoseconds now = line_->timeline().now();
    if (now - lastHeard_ > longestPause)
        incoming_.clear();
    lastHeard_ = now;
    incoming_.insert(incoming_.end(), words.begin(), words.end());
    while (incoming_.size() >= ccTalkOverhead && incoming_.size() >= incoming_[1] + ccTalkOverhead) {
        const auto length = static_cast<std::ptrdiff_t>(incoming_[1] + ccTalkOverhead);
        const Bytes frame(incoming_.begin(), incoming_.begin() + length);
        incoming_.erase(incoming_.begin(), incoming_.begin() + length);
        handle(frame);
    }
}

}  // namespace sim
