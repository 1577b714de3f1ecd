#include "protocol/families.h"

namespace protocol
{

namespace
{

constexpr Field rampReel = u8("reel", 0).upTo(2);
constexpr Field entryCount = u8("entryCount", 1).upTo(60);
constexpr Field entries = bytes("entries", 2).countedBy("entryCount");

constexpr Operation reelRows[] = {
    {86,
     ioPipe,
     onEveryModel,
     "ConfigureReelsEx",
     {u8("reels", 0).upTo(3), u16be("reelSetting", 1), u8("reelOption", 3)},
     {},
     {"ConfigureReels"}},
    {87,
     ioPipe,
     onEveryModel,
     "SpinReels",
     {u8("reel", 0).noted("the library checks no range"), u8("spinMode", 1).noted("0, 1, 2, 254 or 255"),
      u16be("steps", 2)}},
    {88, ioPipe, onEveryModel, "SpinRampUp", {rampReel, entryCount, entries}},
    {89, ioPipe, onEveryModel, "SpinRampDown", {rampReel, entryCount, entries}},
    {90, ioPipe, onEveryModel, "SetDutyCycle", {u8("dutyA", 0), u8("dutyB", 1), u8("dutyC", 2)}},
    {91, ioPipe, onEveryModel, "ReelSynchroniseEnable", {u8("enable", 0)}},
    {92,
     ioPipe,
     onEveryModel,
     "GetReelStatusEx",
     {},
     {u16be("first", 0).each(3, 6).noted("a number each reel"), u16be("second", 2).each(3, 6),
      u8("third", 4).each(3, 6), u8("fourth", 5).each(3, 6)},
     {"GetReelStatus"}},
};

}  // namespace

std::span<const Operation> reelOperations()
{
    return reelRows;
}

}  // namespace protocol
