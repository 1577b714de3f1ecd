// The whole of a board at one moment, for whoever shows it.
#ifndef SORVANE_SIM_BOARD_STATE_H
#define SORVANE_SIM_BOARD_STATE_H

#include "sim/core/bytes.h"
#include "sim/core/model.h"
#include "sim/core/pattern.h"

#include <string>

namespace sim
{

/// One exchange as the board and its caller saw it.
struct Exchange {
    unsigned char request = 0;
    int pipe = 0;
    Bytes sent;
    int status = 0;
    Bytes received;

    bool operator==(const Exchange &) const = default;
};

struct CounterState {
    unsigned int input = 0;
    unsigned int count = 0;
    bool checking = false;
};

struct HopperState {
    unsigned int input = 0;
    unsigned int output = 0;
    unsigned int stock = 0;
    bool jammed = false;
    unsigned int asked = 0;
    unsigned int paid = 0;
    unsigned int status = 0;
    std::string statusText;  ///< idle, paid, ran out, stopped, active
};

struct ReelState {
    unsigned int place = 0;
    unsigned int count = 0;
    unsigned int stepsLeft = 0;
    bool endless = false;  ///< it turns until it is stopped
    std::string motion;    ///< still, ramping up, running, ramping down
    bool forward = true;
    bool synchronised = false;
};

struct SerialPortState {
    unsigned int baudRate = 0;
    unsigned int portType = 0;
    unsigned int format = 0;
    bool nineBit = false;
    std::string peripheral;  ///< empty: none
    std::size_t waiting = 0;
    std::size_t sent = 0;
    unsigned int parityErrors = 0;
    std::array<std::size_t, 4> polledMessages{};
};

struct BoardState {
    Model model = Model::R20;
    bool highSpeed = false;
    bool plugged = true;
    bool firmwareRunning = false;
    unsigned int boardNumber = 0;
    Pattern outputsOnPeriod{};
    Pattern outputsOffPeriod{};
    Pattern outputsLit{};
    bool inOnPeriod = true;
    unsigned int brightness = 0;
    Pattern inputs{};
    bool multiplexing = false;
    std::vector<CounterState> counters;  ///< those that check or have counted
    std::vector<HopperState> hoppers;
    std::array<ReelState, 3> reels;
    std::array<SerialPortState, 2> serialPorts;
    std::string eepromType;
    bool eepromConfigured = false;
    bool spiEnabled = false;
    bool randomEnabled = false;
    std::string recorder;  ///< not configured, configured, recording, complete
    std::uint32_t clock = 0;
    bool batteryGood = true;
    unsigned int switches = 0;  ///< bit n: switch n is open
    std::size_t switchLogLength = 0;
    std::size_t pendingFaults = 0;
    std::uint64_t exchangeCount = 0;
    std::vector<Exchange> lastExchanges;  ///< at most eight, the newest last
};

}  // namespace sim

#endif
