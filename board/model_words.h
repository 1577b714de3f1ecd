// The small answers that every model gives in the same form.
#ifndef SORVANE_BOARD_MODEL_WORDS_H
#define SORVANE_BOARD_MODEL_WORDS_H

#include "board/rbase_implementation.h"

/// The model's type number: 1 R20, 2 R20s, 3 R35. These are the numbers of the discovery functions, too.
inline int reportType(unsigned char *result, unsigned char type)
{
    if (!result)
        return RBaseImplementation::Fail(usbErrorNullPointer);
    *result = type;
    return 1;
}

#endif
