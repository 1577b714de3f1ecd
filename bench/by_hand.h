/* What a program without the library would write for the operations that are measured: the same exchanges, the same
   locks, no more checks than an exchange needs. by_hand.c is compiled for each of the two protocols. */
#ifndef SORVANE_BENCH_BY_HAND_H
#define SORVANE_BENCH_BY_HAND_H

#ifdef __cplusplus
extern "C" {
#endif

struct hand_board {
    int file;
    int locks; /* the semaphore set that guards what processes share */
    unsigned char on[5], off[5];
    int eeprom_ready;
};

/* The memory that takes what an operation yields. */
union result {
    unsigned char bytes[256];
    unsigned short halves[128];
    unsigned int number;
    unsigned long time;
};

struct hand_operation {
    const char *name;
    int (*run)(struct hand_board *board, union result *result);
};

extern const struct hand_operation by_hand_packet[], by_hand_record[]; /* the last has no name */

#ifdef __cplusplus
}
#endif

#endif
