/* How a program without the library would talk to a board and lock what its processes share. */
#ifndef SORVANE_BENCH_HAND_EXCHANGE_H
#define SORVANE_BENCH_HAND_EXCHANGE_H

/* The node of a board that its attributes name, or -1; old is closed. */
int open_node(int old, int device);

/* One exchange; 1 when the board has done it. The answer needs room for 256 bytes. */
int exchange_packet(int file, unsigned int pipe, unsigned char request, const unsigned char *out, unsigned long length,
                    unsigned char *in, unsigned long *count);
int exchange_record(int file, unsigned int pipe, unsigned char request, const unsigned char *out, unsigned long length,
                    unsigned char *in, unsigned long *count);

void lock(int locks, unsigned short number);
void unlock(int locks, unsigned short number);

#endif
