#include "sim/board/virtual_board.h"

#include "sim/board/payload_lengths.h"
#include "sim/peripherals/cctalk_acceptor.h"

#include <algorithm>
#include <cerrno>

namespace sim
{

namespace
{

constexpr int firmwarePipe = 6;
constexpr int firstSerialPipe = 3;
constexpr int lastSerialPipe = 4;
constexpr std::size_t exchangesKept = 4096;

// Of an answer that is longer than the board meant it.
constexpr unsigned char fillByte = 0xEE;

// Both serial ports share the codes of the first.
Request requestOf(unsigned char code, int pipe)
{
    return static_cast<Request>((pipe == lastSerialPipe ? firstSerialPipe : pipe) << 8 | code);
}

}  // namespace

VirtualBoard::VirtualBoard(Model model, Clock &clock)
    : model_(model), timeline_(clock), diary_(timeline_), firmware_(model), sram_(model, firmware_, diary_),
      inputs_(timeline_), outputs_(timeline_), pulsedOutputs_(timeline_, outputs_), pulsedInputs_(inputs_),
      hoppers_(timeline_, inputs_, outputs_), reels_(timeline_), recorder_(timeline_, inputs_, sram_), eeprom_(diary_),
      clock_(timeline_, battery_), switches_(clock_, battery_),
      identity_(model), serialPorts_{std::make_unique<SerialPort>(0, model, timeline_, firmware_, diary_),
                                     std::make_unique<SerialPort>(1, model, timeline_, firmware_, diary_)},
      parts_{&firmware_, &sram_,     &inputs_,   &outputs_, &pulsedOutputs_, &pulsedInputs_,
             &hoppers_,  &reels_,    &recorder_, &eeprom_,  &diagnostics_,   &spi_,
             &battery_,  &switches_, &clock_,    &random_,  &identity_}
{
    battery_.onLoss([this] {
        for (Part *part : parts_)
            part->backupLost();
    });
    timeline_.watch([this] { noteChanges(); });
}

VirtualBoard &VirtualBoard::highSpeed()
{
    highSpeed_ = true;
    return *this;
}

VirtualBoard &VirtualBoard::boardNumber(unsigned int number)
{
    inputs_.setBoardNumber(number);
    return *this;
}

VirtualBoard &VirtualBoard::eeprom(const R20EEPROM &chip)
{
    eeprom_.fit(chip);
    return *this;
}

VirtualBoard &VirtualBoard::firmwareRunning()
{
    firmware_.setRunning(true);
    return *this;
}

VirtualBoard &VirtualBoard::hopper(unsigned int input, unsigned int stock, std::optional<unsigned int> motor)
{
    Hopper &hopper = hoppers_.at(input).stock(stock);
    if (motor)
        hopper.motor(*motor);
    return *this;
}

VirtualBoard &VirtualBoard::serialPeripheral(unsigned int port, std::unique_ptr<SerialPeripheral> peripheral)
{
    serialPorts_.at(port)->connect(std::move(peripheral));
    return *this;
}

Reply VirtualBoard::answerOf(unsigned char code, int pipe, Payload payload)
{
    const Request request = requestOf(code, pipe);
    if (!understands(model_, request))
        return refuse(statusUnknownRequest);
    if (!firmware_.running() && pipe != firmwarePipe)
        return refuse(statusNoFirmware);
    if (!acceptsLength(model_, request, payload.size(), pipe == firstSerialPipe))
        return refuse(statusWrongLength);
    if (pipe == firstSerialPipe || pipe == lastSerialPipe)
        return *serialPorts_[static_cast<std::size_t>(pipe - firstSerialPipe)]->answer(request, payload);
    for (Part *part : parts_) {
        if (std::optional<Reply> reply = part->answer(request, payload))
            return std::move(*reply);
    }
    return refuse(statusUnknownRequest);
}

void VirtualBoard::work(PendingExchange &pending, Payload payload, const std::optional<Fault> &fault)
{
    Exchange &exchange = pending.exchange;
    if (fault && fault->kind == Fault::Kind::Status) {
        exchange.status = static_cast<int>(fault->number);
        return;
    }
    Reply reply = answerOf(exchange.request, exchange.pipe, payload);
    exchange.status = reply.status;
    exchange.received = std::move(reply.bytes);
    pending.delivered = std::move(reply.delivered);
    if (!fault)
        return;
    const auto number = static_cast<std::size_t>(fault->number);
    if (fault->kind == Fault::Kind::Replace) {
        exchange.status = 0;
        exchange.received = fault->bytes;
    } else if (fault->kind == Fault::Kind::AtMost) {
        exchange.received.resize(std::min(exchange.received.size(), number));
    } else if (fault->kind == Fault::Kind::AtLeast) {
        exchange.received.resize(std::max(exchange.received.size(), number), fillByte);
    } else if (fault->kind == Fault::Kind::PacketCount) {
        pending.packetCount = static_cast<std::uint32_t>(fault->number);
    } else if (fault->kind == Fault::Kind::Echo) {
        pending.echo = static_cast<unsigned char>(fault->number);
    }
}

PendingExchange VirtualBoard::prepare(unsigned char request, int pipe, Payload payload)
{
    timeline_.settle();
    PendingExchange pending;
    pending.exchange = {request, pipe, toBytes(payload), 0, {}};
    pending.echo = request;
    if (script_) {
        ScriptedAnswer answer = script_(request, pipe, payload);
        pending.ioctlResult = answer.ioctlResult;
        pending.exchange.status = answer.status;
        pending.exchange.received = std::move(answer.bytes);
        pending.delivered = std::move(answer.delivered);
        return pending;
    }
    const std::optional<Fault> fault = faults_.find(request, pipe);
    pending.unplugs = fault && fault->kind == Fault::Kind::Unplug;
    if (!plugged_ || pending.unplugs)
        pending.ioctlResult = -ENODEV;
    else if (fault && fault->kind == Fault::Kind::IoctlResult)
        pending.ioctlResult = static_cast<int>(fault->number);
    pending.fault = fault;
    pending.reachesBoard = pending.ioctlResult == 0 || (plugged_ && !pending.unplugs && fault->boardSaw);
    if (pending.reachesBoard)
        work(pending, payload, fault);
    return pending;
}

void VirtualBoard::complete(PendingExchange &pending)
{
    faults_.passed(pending.exchange.request, pending.exchange.pipe);
    if (pending.fault)
        diary_.note(journal::Kind::Fault).bytes = textOf(*pending.fault);
    noteExchange(pending);
    if (pending.unplugs)
        unplug();
    if (!pending.reachesBoard) {
        settle();
        return;
    }
    if (pending.delivered)
        pending.delivered();
    exchanges_.push_back(pending.exchange);
    if (exchanges_.size() > exchangesKept)
        exchanges_.pop_front();
    ++exchangeCount_;
    settle();
}

Answer VirtualBoard::exchange(unsigned char request, int pipe, const unsigned char *payload, std::size_t length)
{
    PendingExchange pending = prepare(request, pipe, Payload(payload, length));
    complete(pending);
    if (pending.ioctlResult != 0)
        return {-1, {}};
    return {pending.exchange.status, pending.exchange.received};
}

bool VirtualBoard::insertCoin(unsigned int coin)
{
    timeline_.settle();
    for (const auto &port : serialPorts_) {
        if (auto *acceptor = port->peripheralAs<CcTalkAcceptor>()) {
            const bool accepted = acceptor->insert(coin);
            journal::Event &event = diary_.note(journal::Kind::Coin, coin);
            event.aspect = journal::Aspect::CcTalk;
            event.is = accepted;
            return accepted;
        }
    }
    pulseCoin(coin);
    return true;
}

void VirtualBoard::pulseCoin(unsigned int input)
{
    timeline_.settle();
    diary_.note(journal::Kind::Coin, input).is = true;
    inputs_.pulse(input);
}

void VirtualBoard::plug()
{
    if (plugged_)
        return;
    timeline_.settle();
    plugged_ = true;
    ++generation_;
    battery_.setMainPower(true);
}

void VirtualBoard::unplug()
{
    if (!plugged_)
        return;
    timeline_.settle();
    plugged_ = false;
    for (Part *part : parts_)
        part->powerLost();
    for (const auto &port : serialPorts_)
        port->powerLost();
    battery_.setMainPower(false);
    if (powerLossListener_)
        powerLossListener_();
}

void VirtualBoard::powerCycle()
{
    unplug();
    plug();
}

}  // namespace sim
