#include "tools/board.h"

#include "api/sorvaneusb.h"
#include "protocol/families.h"
#include "tools/failure.h"

#include <charconv>

namespace tools
{

namespace
{

std::optional<int> numberFrom(std::string_view text)
{
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < 0 || number >= devices)
        return std::nullopt;
    return number;
}

}  // namespace

const char *nameOf(protocol::Model model)
{
    return model == protocol::Model::R20 ? "R20" : model == protocol::Model::R20s ? "R20s" : "R35";
}

int deviceFrom(const std::string &word, const cabinet::Cabinet &cabinet)
{
    if (const std::optional<int> named = cabinet.deviceNamed(word))
        return *named;
    constexpr std::string_view folder = "/dev/Vexa_";
    if (const auto number = numberFrom(word.starts_with(folder) ? word.substr(folder.size()) : word))
        return *number;
    std::string names;
    for (const cabinet::Board &board : cabinet.boards())
        names += board.name.empty() ? "" : ", " + board.name;
    throw UsageError("there is no board \"" + word + "\"; allowed: 0 to 15, /dev/Vexa_0 to /dev/Vexa_15" +
                     (names.empty() ? ", and names with --cabinet FILE" : names));
}

void refuse(const std::string &what, int code)
{
    // The sentences say what happened, then, behind a colon, what to try.
    std::string sentence = ::usbErrorText(code), advice;
    if (const std::size_t colon = sentence.find(": "); colon != std::string::npos) {
        advice = "Try: " + sentence.substr(colon + 2);
        sentence.resize(colon);
    }
    throw Refusal(what + ": code " + std::to_string(code) + ". " + sentence, advice, code);
}

const protocol::Value &Answer::find(std::string_view name) const
{
    for (const protocol::Value &value : decoded_.results) {
        if (value.name == name)
            return value;
    }
    throw Refusal(decoded_.name + ": the board's answer does not hold " + std::string(name));
}

Board::Board(const Settings &settings, const std::string &word)
    : cabinet_(&settings.cabinet), node_(deviceFrom(word, settings.cabinet))
{
}

std::string Board::title() const
{
    const cabinet::Board *named = cabinet_->board(device());
    return path() + (named && !named->name.empty() ? " (" + named->name + ")" : "");
}

bool Board::firmwareRuns()
{
    const protocol::Decoded asked = tryToAsk("FirmwareRuns");
    if (asked.outcome != protocol::Outcome::Success)
        refuse("asking " + path() + " whether its firmware runs", asked.status);
    return asked.asDescribed && Answer(asked).number("runs") == 1;
}

void Board::needFirmware()
{
    if (!firmwareRuns())
        throw Refusal("the firmware of " + title() + " does not run, so it can do nothing yet",
                      "Try: sorvane firmware " + std::to_string(device()) + " load");
}

protocol::Decoded Board::tryToAsk(std::string_view operation, std::initializer_list<protocol::Argument> arguments,
                                  int port)
{
    const protocol::Operation *row = protocol::findOperation(model(), operation, port);
    if (!row)
        refuse(std::string(operation) + " on " + path(),
               model() == protocol::Model::R20 ? usbErrorNotSupported : usbErrorNotSupportedR20s);
    const std::vector<unsigned char> payload = protocol::encode(*row, arguments);
    const int pipe = row->pipes.first + (row->pipes.first == row->pipes.last ? 0 : port);
    const Reply reply = node_.exchange(row->request, pipe, payload);
    return protocol::decode({model(), row->request, pipe, payload, reply.outcome, reply.code, reply.bytes});
}

Answer Board::ask(std::string_view operation, std::initializer_list<protocol::Argument> arguments, int port)
{
    protocol::Decoded decoded = tryToAsk(operation, arguments, port);
    if (decoded.outcome != protocol::Outcome::Success)
        refuse(std::string(operation) + " on " + path(), decoded.status);
    return Answer(std::move(decoded));
}

cabinet::Place Board::part(const std::vector<cabinet::Kind> &kinds, const std::string &word, unsigned int most) const
{
    const cabinet::Place place = cabinet_->find(kinds, word, device());
    if (place.number > most)
        throw UsageError(std::string(cabinet::wordFor(kinds.front())) + " " + word + ": allowed: 0 to " +
                         std::to_string(most));
    return place;
}

std::string Board::nameOf(cabinet::Kind kind, unsigned int number) const
{
    const cabinet::Part *part = partOf(kind, number);
    return part ? part->name : "";
}

}  // namespace tools
