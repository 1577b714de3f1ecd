// The process-wide store of the last error.
#include "board/rbase_implementation.h"

constinit _usbErrorCode RBaseImplementation::error_no = usbErrorNone;

void RBaseImplementation::SetLastError(_usbErrorCode error)
{
    error_no = error;
}

_usbErrorCode RBaseImplementation::GetLastError()
{
    return error_no;
}

int RBaseImplementation::ClearErrors()
{
    error_no = usbErrorNone;
    return 1;
}

int RBaseImplementation::SetupErrorHandling()
{
    return ClearErrors();
}

void RBaseImplementation::ReleaseErrorHandling() {}

int RBaseImplementation::Fail(_usbErrorCode error)
{
    SetLastError(error);
    return 0;
}
