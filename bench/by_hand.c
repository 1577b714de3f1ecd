#define _GNU_SOURCE
#include "bench/by_hand.h"

#include "bench/hand_exchange.h"

#include <stddef.h>
#include <string.h>

#ifdef BY_PACKET
#define EXCHANGE exchange_packet
#else
#define EXCHANGE exchange_record
#endif

enum { on_lock = 2, off_lock = 3, eeprom_lock = 4 };

/* What callers pass is known when the program runs and not before. */
static volatile const unsigned int some_input = 12, some_output = 12, some_state = 1;

static int ask(const struct hand_board *board, unsigned int pipe, unsigned char request, unsigned char *in)
{
    unsigned long count;
    return EXCHANGE(board->file, pipe, request, NULL, 0, in, &count);
}

static int tell(const struct hand_board *board, unsigned int pipe, unsigned char request, const unsigned char *out,
                unsigned long length)
{
    unsigned char in[256];
    unsigned long count;
    return EXCHANGE(board->file, pipe, request, out, length, in, &count);
}

static int nothing(struct hand_board *board, union result *result)
{
    (void)board, (void)result;
    return 1;
}

static int get_inputs(struct hand_board *board, union result *result)
{
    unsigned char in[256];
    if (!ask(board, 1, 75, in))
        return 0;
    memcpy(result->bytes, in, 5);
    return 1;
}

static int get_input_bit(struct hand_board *board, union result *result)
{
    union result inputs;
    const unsigned int input = some_input;
    if (!get_inputs(board, &inputs))
        return 0;
    result->number = inputs.bytes[input / 8] >> input % 8 & 1;
    return 1;
}

static int get_clock(struct hand_board *board, union result *result)
{
    unsigned char in[256];
    if (!ask(board, 5, 21, in))
        return 0;
    result->time = in[0] | in[1] << 8 | in[2] << 16 | (unsigned long)in[3] << 24;
    return 1;
}

static int get_parallel_hopper_status(struct hand_board *board, union result *result)
{
    const unsigned char out[] = {5};
    unsigned char in[256];
    unsigned long count;
    if (!EXCHANGE(board->file, 1, 113, out, sizeof out, in, &count))
        return 0;
    result->number = in[0];
    result->bytes[4] = in[1];
    return 1;
}

static int set_config(struct hand_board *board, union result *result)
{
    (void)result;
    const unsigned char out[] = {1, 0, 0, 0, 0xD9, 1}; /* 9600 baud */
    return tell(board, 3, 97, out, sizeof out);
}

static int send_outputs(struct hand_board *board, const unsigned char *on, const unsigned char *off)
{
    unsigned char out[10];
    memcpy(out, on, 5);
    memcpy(out + 5, off, 5);
    return tell(board, 1, 77, out, sizeof out);
}

static int set_output_bit(struct hand_board *board, union result *result)
{
    (void)result;
    const unsigned int output = some_output;
    unsigned char on[5] = {0}, off[5] = {0};
    (some_state ? on : off)[output / 8] = (unsigned char)(1 << output % 8);
    lock(board->locks, on_lock);
    lock(board->locks, off_lock);
    for (int k = 0; k < 5; ++k) {
        board->on[k] = (unsigned char)((board->on[k] | on[k]) & ~off[k]);
        board->off[k] = (unsigned char)((board->off[k] | on[k]) & ~off[k]);
    }
    const int sent = send_outputs(board, on, off);
    unlock(board->locks, off_lock);
    unlock(board->locks, on_lock);
    return sent;
}

static int send_60(struct hand_board *board, union result *result)
{
    return tell(board, 4, 98, result->bytes, 60);
}

static int read_eeprom(struct hand_board *board, union result *result)
{
    const unsigned char out[] = {58, 16, 0};
    unsigned long count;
    lock(board->locks, eeprom_lock);
    const int done = EXCHANGE(board->file, 2, 5, out, sizeof out, result->bytes, &count);
    unlock(board->locks, eeprom_lock);
    return done && count == 58;
}

#ifdef BY_PACKET
static int read_sram(struct hand_board *board, union result *result)
{
    const unsigned char out[] = {58, 16, 0};
    unsigned long count;
    return EXCHANGE(board->file, 6, 70, out, sizeof out, result->bytes, &count) && count == 58;
}

static int write_sram(struct hand_board *board, union result *result)
{
    unsigned char out[3 + 55] = {55, 16, 0};
    memcpy(out + 3, result->bytes, 55);
    return tell(board, 6, 71, out, sizeof out);
}
#else
static int read_sram(struct hand_board *board, union result *result)
{
    const unsigned char out[] = {58, 0, 1, 16, 0};
    unsigned long count;
    return EXCHANGE(board->file, 6, 116, out, sizeof out, result->bytes, &count) && count == 58;
}

static int write_sram(struct hand_board *board, union result *result)
{
    unsigned char out[5 + 55] = {55, 0, 1, 16, 0};
    memcpy(out + 5, result->bytes, 55);
    return tell(board, 6, 117, out, sizeof out);
}
#endif

static int set_on_period_output_bit(struct hand_board *board, union result *result)
{
    (void)result;
    lock(board->locks, on_lock);
    board->on[1] |= 1 << 4;
    const int sent = tell(board, 1, 83, board->on, sizeof board->on);
    unlock(board->locks, on_lock);
    return sent;
}

static int pulse_output(struct hand_board *board, union result *result)
{
    (void)result;
    const unsigned char out[] = {10, 7};
    return tell(board, 1, 78, out, sizeof out);
}

static int get_reel_status(struct hand_board *board, union result *result)
{
    unsigned char in[256];
    if (!ask(board, 1, 92, in))
        return 0;
    for (int reel = 0; reel < 3; ++reel) {
        const unsigned char *status = in + 6 * reel;
        result->halves[reel] = (unsigned short)(status[0] << 8 | status[1]);
        result->halves[3 + reel] = (unsigned short)(status[2] << 8 | status[3]);
        result->bytes[12 + reel] = status[4];
        result->bytes[15 + reel] = status[5];
    }
    return 1;
}

static int get_recording_status(struct hand_board *board, union result *result)
{
    unsigned char in[256];
    if (!ask(board, 1, 127, in))
        return 0;
    result->number = in[0];
    result->halves[2] = (unsigned short)(in[1] << 8 | in[2]);
    result->halves[3] = (unsigned short)(in[3] << 8 | in[4]);
    return 1;
}

static int receive(struct hand_board *board, union result *result)
{
    unsigned long length = 0, count;
    do {
        if (!EXCHANGE(board->file, 4, 99, NULL, 0, result->bytes + length, &count))
            return 0;
        length += count;
    } while (count);
    return 1;
}

static int set_timeout_message(struct hand_board *board, union result *result)
{
    unsigned char out[2 + 8] = {50, 8}; /* 1.5 s */
    memcpy(out + 2, result->bytes, 8);
    return tell(board, 4, 101, out, sizeof out);
}

static int receive_polled_message(struct hand_board *board, union result *result)
{
    const unsigned char out[] = {0};
    unsigned char in[256];
    unsigned long length = 0, count;
    do {
        if (!EXCHANGE(board->file, 4, 105, out, sizeof out, in, &count))
            return 0;
        if (count > 2) {
            memcpy(result->bytes + length, in + 2, count - 2);
            length += count - 2;
        }
    } while (in[1]);
    return 1;
}

static int get_sas_message_status(struct hand_board *board, union result *result)
{
    unsigned char in[256];
    if (!ask(board, 4, 124, in))
        return 0;
    result->number = in[0];
    return 1;
}

static int send_spi(struct hand_board *board, union result *result)
{
    unsigned char in[256];
    unsigned char out[3 + 4] = {32, 32, 0};
    unsigned long count;
    memcpy(out + 3, result->bytes, 4);
    if (!EXCHANGE(board->file, 7, 96, out, sizeof out, in, &count))
        return 0;
    memcpy(result->bytes, in, count);
    return 1;
}

static int get_random_number(struct hand_board *board, union result *result)
{
    unsigned char in[256];
    if (!ask(board, 5, 68, in))
        return 0;
    result->halves[0] = (unsigned short)(in[1] << 8 | in[0]);
    return 1;
}

static int get_pic_version(struct hand_board *board, union result *result)
{
    return ask(board, 5, 44, result->bytes);
}

static int open_board(struct hand_board *board, union result *result)
{
    unsigned char in[256];
    (void)result;
    board->file = open_node(board->file, 0);
    if (board->file == -1 || !ask(board, 6, 74, in) || in[0] != 1)
        return 0;
    lock(board->locks, eeprom_lock);
    const int ready = board->eeprom_ready;
    unlock(board->locks, eeprom_lock);
    return ready;
}

#ifdef BY_PACKET
const struct hand_operation by_hand_packet[] =
#else
const struct hand_operation by_hand_record[] =
#endif
    {
        {"nothing", nothing},
        {"GetInputs", get_inputs},
        {"GetInputBit", get_input_bit},
        {"GetClock", get_clock},
        {"GetParallelHopperStatus", get_parallel_hopper_status},
        {"SetConfig", set_config},
        {"SetOutputBit", set_output_bit},
        {"Send, 60 bytes", send_60},
        {"ReadEEPROM, 58 bytes", read_eeprom},
        {"ReadSRAM, 58 bytes", read_sram},
        {"WriteSRAM, 55 bytes", write_sram},
        {"SetOnPeriodOutputBit", set_on_period_output_bit},
        {"PulseOutput", pulse_output},
        {"GetReelStatusEx", get_reel_status},
        {"GetRecordingStatus", get_recording_status},
        {"Receive, 10 bytes", receive},
        {"SetTimeoutMessage", set_timeout_message},
        {"ReceivePolledMessage", receive_polled_message},
        {"GetSASMessageStatus", get_sas_message_status},
        {"SendSPI, 32 bits", send_spi},
        {"GetRandomNumber", get_random_number},
        {"GetPICVersion", get_pic_version},
        {"open a ready board", open_board},
        {NULL, NULL},
};
