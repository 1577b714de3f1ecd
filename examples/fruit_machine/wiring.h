// The machine that the game runs on: what hangs where on its board, what a coin is worth, how its reels are built. It
// is the fruit machine of examples/cabinets/fruit_machine.toml; another machine needs another wiring.h, nothing else.
#ifndef SORVANE_EXAMPLES_FRUIT_MACHINE_WIRING_H
#define SORVANE_EXAMPLES_FRUIT_MACHINE_WIRING_H

#include <sorvaneusb.h>

namespace fruit_machine
{

constexpr int deviceNumber = 0;
const R20EEPROM eepromChip = E24LC256;

// What the settings of the firmware mean is its own; these are the meanings of the virtual boards.
constexpr ActiveState activeHigh = ActiveState(1);
constexpr unsigned char inputSetting = 10;

/// The player's buttons; each press is a pulse.
constexpr _usbInputBitId startButton = usbInput8;
constexpr _usbInputBitId collectButton = usbInput10;
constexpr _usbInputBitId holdButtons[3] = {usbInput16, usbInput17, usbInput18};

/// High while the door is shut, so that a cut wire counts as an open door.
constexpr _usbInputBitId doorShut = usbInput9;

constexpr _usbOutputBitId startLamp = usbOutput12;
constexpr _usbOutputBitId winLamp = usbOutput13;
constexpr _usbOutputBitId collectLamp = usbOutput14;
constexpr _usbOutputBitId holdLamps[3] = {usbOutput16, usbOutput17, usbOutput18};

/// Where a coin comes in, and its value in credits.
struct CoinInput {
    const char *name;
    _usbInputBitId input;
    unsigned int value;
};
constexpr CoinInput coinInputs[2] = {{"coin_1", usbInput2, 1}, {"coin_2", usbInput3, 2}};

/// The ccTalk acceptor takes tokens and nothing else.
constexpr _usbSerialPort acceptorPort = usbSerialPort0;
constexpr unsigned char acceptorAddress = 2;
constexpr unsigned char tokenType = 4;
constexpr unsigned int tokenValue = 5;

/// Each coin of the hopper is worth one credit and passes the sensor.
constexpr _usbInputBitId hopperSensor = usbInput5;
constexpr _usbOutputBitId hopperMotor = usbOutput37;

constexpr unsigned int reelCount = 3;
constexpr const char *reelNames[reelCount] = {"left", "middle", "right"};
constexpr unsigned int stepsPerTurn = 200;
constexpr unsigned int stopsPerTurn = 8;
constexpr unsigned int stepsPerStop = stepsPerTurn / stopsPerTurn;

/// Meters in the EEPROM: total_in, total_out and games, 32 bits each, low byte first.
constexpr unsigned short meterAddress = 8;

}  // namespace fruit_machine

#endif
