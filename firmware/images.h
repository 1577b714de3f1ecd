// The 8051 programs that the library loads into the boards: flat images without a header, loaded from address 0 of the
// board's firmware region. A length is the model's and never changes with the program in it.
#ifndef SORVANE_FIRMWARE_IMAGES_H
#define SORVANE_FIRMWARE_IMAGES_H

extern "C" {
extern const unsigned char Memory8051[15888];       // R20
extern const unsigned char R20S_Memory8051[14002];  // R20s
extern const unsigned char R35_Memory8051[14172];   // R35
}

#endif
