#define _GNU_SOURCE
#include "bench/hand_exchange.h"

#include "bench/answering_driver.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/sem.h>
#include <unistd.h>

static int attribute_begins(int device, const char *name, const char *text)
{
    char path[64], read_text[64];
    snprintf(path, sizeof path, "/sys/class/Vexa/Vexa_%d/device/%s", device, name);
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file == -1)
        return 0;
    const ssize_t length = read(file, read_text, sizeof read_text);
    close(file);
    return length >= (ssize_t)strlen(text) && memcmp(read_text, text, strlen(text)) == 0;
}

int open_node(int old, int device)
{
    char path[32];
    if (old != -1)
        close(old);
    if (!attribute_begins(device, "product", "Sorvane R") || !attribute_begins(device, "speed", "12"))
        return -1;
    snprintf(path, sizeof path, "/dev/Vexa_%d", device);
    return open(path, O_RDWR | O_CLOEXEC);
}

int exchange_packet(int file, unsigned int pipe, unsigned char request, const unsigned char *out, unsigned long length,
                    unsigned char *in, unsigned long *count)
{
    struct packet packet;
    packet.send_pipe = packet.receive_pipe = pipe;
    packet.send_length = (uint32_t)length + 1;
    packet.receive_length = 64;
    packet.data[0] = request;
    if (length)
        memcpy(packet.data + 1, out, length);
    if (ioctl(file, PACKET_NUMBER, &packet) != 0)
        return 0;
    if (packet.receive_length < 2 || packet.receive_length > 64 || packet.data[1] != 0)
        return 0;
    *count = packet.receive_length - 2;
    memcpy(in, packet.data + 2, *count);
    return 1;
}

int exchange_record(int file, unsigned int pipe, unsigned char request, const unsigned char *out, unsigned long length,
                    unsigned char *in, unsigned long *count)
{
    int32_t status = 0;
    struct record record = {&status, pipe - 1, (unsigned char *)out, length, in, count, request};
    return ioctl(file, RECORD_NUMBER, &record) == 0 && status == 0;
}

void lock(int locks, unsigned short number)
{
    struct sembuf operation = {number, -1, SEM_UNDO};
    while (semop(locks, &operation, 1) == -1 && errno == EINTR)
        ;
}

void unlock(int locks, unsigned short number)
{
    struct sembuf operation = {number, +1, SEM_UNDO};
    semop(locks, &operation, 1);
}
