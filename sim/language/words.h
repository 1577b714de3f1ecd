// The words of a command line, an option or a scenario line, and how they are refused.
#ifndef SORVANE_SIM_LANGUAGE_WORDS_H
#define SORVANE_SIM_LANGUAGE_WORDS_H

#include "sim/core/bytes.h"
#include "sim/core/clock.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace sim
{

/// Somebody asked for something that cannot be; the text names what can.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

constexpr int statusOfUsageError = 2;

using TextWords = std::vector<std::string>;

/// Splits at blanks; double quotes keep blanks together, and inside them \" is a quote.
TextWords splitWords(const std::string &line);
TextWords splitAt(const std::string &text, char separator);
std::string join(const TextWords &words, const std::string &separator);

/// `what` names the value in the message: "an input".
unsigned long numberFrom(const std::string &word, const std::string &what, unsigned long least, unsigned long most);
/// "20ms", "1.5s", "300us".
Nanoseconds durationFrom(const std::string &word);
/// With \n, \r, \t, \\ and \xHH.
Bytes bytesOfText(const std::string &text);

std::string hexOf(const Bytes &bytes);
/// Throws UsageError for what are no pairs of hexadecimal digits.
Bytes bytesOfHex(const std::string &text);

[[noreturn]] void refuse(const std::string &word, const std::string &what, const TextWords &allowed);

}  // namespace sim

#endif
