/* The kernel driver's place in the measurements: a shared library that answers the calls for a board's paths at once,
   keeps what it is told to keep, and calls nothing but the C library's open and fopen. Programs that only run beside
   it preload it: then it is an R35 whose answer is the byte 1. */
#ifndef SORVANE_BENCH_ANSWERING_DRIVER_H
#define SORVANE_BENCH_ANSWERING_DRIVER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What an R20's driver is handed. */
struct packet {
    uint32_t send_pipe, receive_pipe, send_length, receive_length;
    unsigned char data[512];
};
#define PACKET_NUMBER 0xc2108100UL

/* What the driver of R20s and R35 is handed. */
struct record {
    int32_t *status;
    uint32_t pipe_index;
    unsigned char *out;
    unsigned long out_length;
    unsigned char *in;
    unsigned long *in_length;
    unsigned char request;
};
#define RECORD_NUMBER 0x8400UL

/* One exchange as it would go over the wire. */
struct seen {
    unsigned char pipe, request;
    unsigned long length;
    unsigned char payload[512];
};

/* What a board that is opened is from now on: 1 an R20, 2 an R20s, 3 an R35, all at full speed. */
void driver_board(int model);

/* The answer to every exchange from now on; where period is not 0, every so-manieth exchange is answered by no byte.
   The exchanges are counted from 0 again, and kept when keep is not 0. */
void driver_answer(const unsigned char *bytes, unsigned long count, unsigned int period, int keep);

#define DRIVER_KEEPS 4
extern struct seen driver_seen[DRIVER_KEEPS];
extern unsigned int driver_exchanges;
extern unsigned int driver_allocations; /* calls of malloc, calloc and realloc since the start */

#ifdef __cplusplus
}
#endif

#endif
