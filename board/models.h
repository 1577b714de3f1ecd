// The numbers of the models and of the bus speeds: what discovery finds, the model classes report and the files of the
// models choose by.
#ifndef SORVANE_BOARD_MODELS_H
#define SORVANE_BOARD_MODELS_H

enum BoardType : unsigned char { typeR20 = 1, typeR20s = 2, typeR35 = 3 };

enum BusSpeed : unsigned char { fullSpeed = 1, highSpeed = 2 };

#endif
