// The process-wide store of the last error.
#include "board/rbase_implementation.h"

constinit _usbErrorCode RBaseImplementation::error_no = usbErrorNone;

int RBaseImplementation::SetupErrorHandling()
{
    return ClearErrors();
}

void RBaseImplementation::ReleaseErrorHandling() {}
