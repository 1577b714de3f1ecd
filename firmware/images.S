// The firmware images, taken byte for byte from the files that the build names.
    .macro image name, file
    .globl \name
    .hidden \name
    .type \name, @object
\name:
    .incbin "\file"
    .size \name, . - \name
    .endm

    .section .rodata
    image Memory8051, SORVANE_R20_IMAGE
    image R20S_Memory8051, SORVANE_R20S_IMAGE
    image R35_Memory8051, SORVANE_R35_IMAGE

    .section .note.GNU-stack, "", @progbits
