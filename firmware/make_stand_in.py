#!/usr/bin/env python3
"""Writes the stand-in firmware images.

Each is a valid 8051 program that only idles: reset jumps to a loop that puts the processor into its idle mode, every
interrupt vector returns at once. The unused code space behind the loop is filled with bytes that depend on their
place, so that a chunk loaded at the wrong address, twice or not at all shows in the loaded image.
"""
import pathlib

LENGTHS = {"r20.bin": 15888, "r20s.bin": 14002, "r35.bin": 14172}
LOOP = 0x80
RETI = 0x32


def image(length, seed):
    code = bytearray(length)
    code[0:3] = bytes([0x02, LOOP >> 8, LOOP & 0xFF])  # LJMP LOOP
    for vector in range(0x03, LOOP, 8):
        code[vector] = RETI
    loop = bytes([0x43, 0x87, 0x01, 0x80, 0xFB])  # ORL PCON, #1; SJMP LOOP
    code[LOOP:LOOP + len(loop)] = loop
    for place in range(LOOP + len(loop), length):
        code[place] = (place * 167 + (place >> 8) * 59 + seed) & 0xFF
    return bytes(code)


here = pathlib.Path(__file__).parent
for seed, (name, length) in enumerate(LENGTHS.items()):
    (here / name).write_bytes(image(length, seed))
