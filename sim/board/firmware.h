// The 8051 program: loaded by the library, lost without power. It runs once every byte of the model's image has been
// written between the begin and the end of a download; what the bytes are is not looked at.
#ifndef SORVANE_SIM_BOARD_FIRMWARE_H
#define SORVANE_SIM_BOARD_FIRMWARE_H

#include "sim/board/part.h"
#include "sim/core/model.h"

namespace sim
{

class Firmware : public Part
{
public:
    explicit Firmware(Model model);

    bool running() const { return running_; }
    /// As if it had been loaded already.
    void setRunning(bool running) { running_ = running; }
    bool downloading() const { return downloading_; }
    /// The program memory, exactly as long as the model's image; what was never written is 0.
    const Bytes &image() const { return image_; }

    /// A byte of a download; what lies behind the image is dropped.
    void write(std::size_t address, unsigned char value);
    /// The board itself writes into it. The program goes on: nothing here executes it.
    void overwrite(std::size_t address, unsigned char value);

    std::optional<Reply> answer(Request request, Payload payload) override;
    void powerLost() override;

private:
    void begin();
    bool complete() const;

    Bytes image_;
    std::vector<bool> written_;
    bool running_ = false;
    bool downloading_ = false;
};

}  // namespace sim

#endif
