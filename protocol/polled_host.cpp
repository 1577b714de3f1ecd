#include "protocol/families.h"

namespace protocol
{

namespace
{

constexpr Field slot = u8("slot", 0).upTo(3);
constexpr Field optionA = u8("optionA", 1).upTo(3);
constexpr Field optionB = u8("optionB", 2).upTo(4);
constexpr Field time = u8("time", 6).in("ms", 10);
constexpr Field optionE = u8("optionE", 7);
constexpr Field optionD = u8("optionD", 8);
constexpr Field optionF = u8("optionF", 9);
constexpr Field optionC = u8("optionC", 10);
constexpr Field length1 = u8("length1", 11).upTo(25);
constexpr Field length2 = u8("length2", 12).upTo(25);
constexpr Field message1 = text("message1", 13).countedBy("length1");
constexpr Field message2 = text("message2", 0).countedBy("length2").behindIt();

// A ccTalk frame is a frame with this framing, the number of its data bytes in byte 1, and 5 bytes besides them.
constexpr Choice ccTalkFrames = {3, {1, 1, 5}};

constexpr Operation polledHostRows[] = {
    {103,
     serialPipes,
     onEveryModel,
     "ConfigureCCTalkPort",
     {slot, optionA, optionB, time, optionE, optionD, optionF, optionC, length1, length2, message1, message2},
     {},
     {"ConfigureRS232Poll"},
     ccTalkFrames},
    {103,
     serialPipes,
     onEveryModel,
     "ConfigureRS232Poll",
     {slot, optionA, optionB, u8("framing", 3), u8("lengthIndex", 4).upTo(24), u8("lengthExtra", 5), time, optionE,
      optionD, optionF, optionC, length1, length2, message1, message2}},
    {104, serialPipes, onEveryModel, "EmptyPolledBuffer", {slot}},
    {105,
     serialPipes,
     onEveryModel,
     "ReceivePolledMessage",
     {slot},
     {u8("status", 0), u8("more", 1).noted("not 0: another part of the message follows"), text("message", 2)}},
    {106, serialPipes, onEveryModel, "DeletePolledMessage", {slot}},
    {121, serialPipes, onEveryModel, "SetPolledHostTimeout", {slot, u8("time", 1).in("ms", 100)}},
};

constexpr Operation sasRows[] = {
    {122, serialPipes, notOnR20, "SetSASMachineAddress", {u8("address", 0).upTo(127)}},
    {123,
     serialPipes,
     notOnR20,
     "SetSASAutoReply",
     {u8("reply", 0).noted("low byte"), u8("value", 1)},
     {},
     {"SetSASBusy"}},
    {124, serialPipes, notOnR20, "GetSASMessageStatus", {}, {u8("status", 0)}},
};

}  // namespace

std::span<const Operation> polledHostOperations()
{
    return polledHostRows;
}

std::span<const Operation> sasOperations()
{
    return sasRows;
}

}  // namespace protocol
