// The board's 8051 firmware: asked for first, loaded only when it does not run.
#include "api/sorvaneusb.h"
#include "board/exchange.h"

int SorvaneUSB::Download8051Software()
{
    const auto ask = [this](Request request, Response &response) {
        response.count = 0;
        if (!PerformUSBIO(codeOf(request), pipeOf(request), nullptr, 0, response.bytes, &response.count))
            return 0;
        response.settle();
        return 1;
    };
    Response response;
    if (!ask(Request::FirmwareRuns, response))
        return 0;
    const bool runs = response.u8(0) == 1;  // an answer without a byte reads as 0: it does not run
    if (!runs) {
        if (!ask(Request::BeginFirmware, response))
            return 0;
        if (!implementation || !implementation->Download8051Software())
            return 0;
        if (!ask(Request::EndFirmware, response))
            return 0;
    }
    implementation->firmwareLoaded = 1;
    return 1;
}
