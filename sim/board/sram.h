// The board's battery-backed memory: 64 KiB flat on an R20, 33 or 65 pages of 16 KiB on an R20s or R35, of which pages
// 13 to 15 hold the firmware.
//
// A request can write the firmware region of an R20s or R35 during a download only; the boards' own protection is not
// known. The recorder writes there at any time. Neither a download nor the recorder's samples are written down.
#ifndef SORVANE_SIM_BOARD_SRAM_H
#define SORVANE_SIM_BOARD_SRAM_H

#include "sim/board/diary.h"
#include "sim/board/firmware.h"

namespace sim
{

constexpr std::size_t sramPageSize = 0x4000;
constexpr unsigned int firstFirmwarePage = 13;
constexpr unsigned int lastFirmwarePage = 15;

class SRAM : public Part
{
public:
    SRAM(Model model, Firmware &firmware, Diary &diary);

    std::size_t size() const { return memory_.size(); }
    /// Physical addresses: page * 0x4000 + offset. One past the end throws std::out_of_range.
    unsigned char at(std::size_t address) const { return memory_.at(address); }
    /// In the firmware's pages, its image too.
    void set(std::size_t address, unsigned char value);
    /// The same for many, and it is written down.
    void write(std::size_t address, Payload bytes);

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override;
    void backupLost() override;

private:
    struct Range {
        std::size_t address;
        std::size_t length;
    };

    bool isFirmware(std::size_t address) const;
    std::optional<Range> rangeOf(Payload payload) const;
    Reply read(const Range &range) const;
    Reply write(const Range &range, Payload data);

    Firmware &firmware_;
    Diary &diary_;
    Bytes memory_;
    bool flat_;
};

}  // namespace sim

#endif
