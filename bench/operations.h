// What is measured: one operation of each device family, as a game calls it, beside the same exchanges by hand.
#ifndef SORVANE_BENCH_OPERATIONS_H
#define SORVANE_BENCH_OPERATIONS_H

#include "api/sorvaneusb.h"
#include "bench/answering_driver.h"
#include "bench/by_hand.h"

#include <string>
#include <vector>

namespace bench
{

struct Answer {
    std::vector<unsigned char> bytes;
    unsigned int period = 0;  // every so-manieth exchange is answered by no byte
};

enum class Way { Library, ByHand };

struct Operation {
    const char *name;  // in by_hand.c, too
    Answer answer;
    int (*library)(SorvaneUSB &board, result &result);
    bool lackedByR20 = false;
    bool opens = false;
};

/// The first does nothing: it is what measuring costs.
const std::vector<Operation> &operations();

/// A board of that model, opened through the library and by hand.
class Subject
{
public:
    explicit Subject(int model);

    bool has(const Operation &operation) const { return !(operation.lackedByR20 && model == 1); }
    const hand_operation &byHand(const Operation &operation) const;

    /// Everything is as before any run of the operation, and the driver answers as it expects.
    void makeReady(const Operation &operation, bool keepExchanges);
    int perform(Way way, const Operation &operation, const hand_operation &hand)
    {
        return way == Way::Library ? operation.library(board, yielded) : hand.run(&handBoard, &yielded);
    }

    int model;
    SorvaneUSB board;  // closed after an operation that opens, until another is made ready
    hand_board handBoard = {};
    result yielded = {};

private:
    void open();
};

}  // namespace bench

#endif
