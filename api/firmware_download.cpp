// The board's 8051 firmware: asked for first, loaded only when it does not run.
#include "api/board_preparation.h"
#include "api/preparation_lock.h"
#include "api/sorvaneusb.h"
#include "board/exchange.h"

int makeFirmwareRun(RBaseImplementation &implementation)
{
    Response<1> response;
    if (!implementation.Ask(Request::FirmwareRuns, response))
        return 0;
    const bool runs = response.u8(0) == 1;  // an answer without a byte reads as 0: it does not run
    if (!runs && !(implementation.Tell(Request::BeginFirmware) && implementation.Download8051Software() &&
                   implementation.Tell(Request::EndFirmware)))
        return 0;
    implementation.firmwareLoaded = 1;
    return 1;
}

int SorvaneUSB::Download8051Software()
{
    if (!implementation)
        return 0;
    const PreparationLock lock(implementation->deviceHandle);
    return makeFirmwareRun(*implementation);
}
