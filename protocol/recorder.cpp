#include "protocol/families.h"

namespace protocol
{

namespace
{

constexpr Operation recorderRows[] = {
    {125,
     ioPipe,
     notOnR20,
     "ConfigureRecordingInputs",
     {u8("inputs", 0).each(4, 1).noted("0 to 23; 255 names none"),
      u8("page", 4).from(1, 29).noted("the caller's address + 16384 in pages of 16384 bytes"),
      u16be("offset", 5).upTo(16383).noted("within the page"), u16be("recordLength", 7)}},
    {126, ioPipe, notOnR20, "StartRecordingInputs", {u16be("startValue", 0).from(10, 15000)}},
    {127, ioPipe, notOnR20, "GetRecordingStatus", {}, {u8("status", 0), u16be("valueA", 1), u16be("valueB", 3)}},
    {128, ioPipe, notOnR20, "ReadDiagnosticData", {bytes("requestData", 0)}, {bytes("reply", 0)}},
    {129, ioPipe, notOnR20, "WriteDiagnosticData", {bytes("diagnosticData", 0)}},
};

}  // namespace

std::span<const Operation> recorderOperations()
{
    return recorderRows;
}

}  // namespace protocol
