// The driver interface of R20s and R35: a record of addresses from which the driver fetches the payload and to which
// it delivers answer, count and status.
#ifndef SORVANE_BOARD_RECORD_TRANSPORT_H
#define SORVANE_BOARD_RECORD_TRANSPORT_H

/// One exchange. The status word is 0 before the call; the caller's count is left to the driver and becomes 0 when
/// the driver's call fails.
int exchangeByRecord(int deviceHandle, unsigned char request, int pipe, unsigned char *outData, unsigned long outLength,
                     unsigned char *inData, unsigned long *inLength);

#endif
