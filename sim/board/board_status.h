// With which status a virtual board refuses a request. The real firmware's statuses are its own; these are chosen
// outside the library's error codes, so that a caller's log tells who refused.
#ifndef SORVANE_SIM_BOARD_BOARD_STATUS_H
#define SORVANE_SIM_BOARD_BOARD_STATUS_H

namespace sim
{

constexpr int statusUnknownRequest = 64;      // this model does not know the request
constexpr int statusWrongLength = 65;         // the payload is too short or too long
constexpr int statusWrongValue = 66;          // a number in the payload is outside its range
constexpr int statusNoFirmware = 67;          // the firmware does not run yet
constexpr int statusIncompleteFirmware = 68;  // the end of a download of which bytes are missing
constexpr int statusNotConfigured = 69;       // the EEPROM, the recorder or the reel has not been described yet
constexpr int statusNoAcknowledge = 70;       // the EEPROM does not answer at this bus address
constexpr int statusProtected = 71;           // a write into the firmware outside a download
constexpr int statusBusy = 72;                // a hopper that is paying out was asked to pay out
constexpr int statusNothingMore = 73;         // the end of the switch log
constexpr int statusDisabled = 74;            // the random number generator is off

}  // namespace sim

#endif
