#include "sim/language/words.h"

#include <cctype>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace sim
{

namespace
{

constexpr double longestSeconds = 86400;

// The byte of an escape sequence that begins behind the backslash at `at`, which moves behind it.
unsigned char escaped(const std::string &text, std::size_t &at)
{
    const std::string known = "nrt\\";
    const std::string meanings = "\n\r\t\\";
    const std::size_t found = at < text.size() ? known.find(text[at]) : std::string::npos;
    if (found != std::string::npos) {
        ++at;
        return static_cast<unsigned char>(meanings[found]);
    }
    if (at + 2 < text.size() && text[at] == 'x' && std::isxdigit(static_cast<unsigned char>(text[at + 1])) &&
        std::isxdigit(static_cast<unsigned char>(text[at + 2]))) {
        const std::string digits = text.substr(at + 1, 2);
        at += 3;
        return static_cast<unsigned char>(std::strtoul(digits.c_str(), nullptr, 16));
    }
    throw UsageError("unknown escape in \"" + text + "\"; allowed are \\n, \\r, \\t, \\\\ and \\xHH");
}

}  // namespace

TextWords splitWords(const std::string &line)
{
    TextWords words;
    bool quoted = false;
    bool inWord = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const char c = line[at];
        if (!quoted && std::isspace(static_cast<unsigned char>(c))) {
            inWord = false;
            continue;
        }
        if (!inWord) {
            words.emplace_back();
            inWord = true;
        }
        if (quoted && c == '\\' && at + 1 < line.size()) {
            if (line[at + 1] != '"')
                words.back() += c;  // for whoever takes the text
            words.back() += line[++at];
        } else if (c == '"') {
            quoted = !quoted;
        } else {
            words.back() += c;
        }
    }
    if (quoted)
        throw UsageError("a quote is not closed");
    return words;
}

TextWords splitAt(const std::string &text, char separator)
{
    TextWords parts(1);
    for (const char c : text) {
        if (c == separator)
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

std::string join(const TextWords &words, const std::string &separator)
{
    std::string joined;
    for (const std::string &word : words)
        joined += (joined.empty() ? "" : separator) + word;
    return joined;
}

unsigned long numberFrom(const std::string &word, const std::string &what, unsigned long least, unsigned long most)
{
    const bool hexadecimal = word.rfind("0x", 0) == 0 || word.rfind("0X", 0) == 0;
    char *end = nullptr;
    errno = 0;
    const unsigned long number = std::strtoul(word.c_str(), &end, hexadecimal ? 16 : 10);
    const bool digits = !word.empty() && std::isdigit(static_cast<unsigned char>(word[0])) && *end == '\0';
    if (!digits || errno != 0 || number < least || number > most)
        throw UsageError("\"" + word + "\" is not " + what + ": allowed are " + std::to_string(least) + " to " +
                         std::to_string(most));
    return number;
}

Nanoseconds durationFrom(const std::string &word)
{
    char *end = nullptr;
    const double value = std::strtod(word.c_str(), &end);
    const std::string unit = end;
    const double seconds = unit == "s" ? value : unit == "ms" ? value / 1e3 : unit == "us" ? value / 1e6 : -1;
    const bool plain = !word.empty() && std::isdigit(static_cast<unsigned char>(word[0]));
    if (!plain || !std::isfinite(seconds) || seconds < 0 || seconds > longestSeconds)
        throw UsageError("\"" + word + "\" is not a time: allowed are numbers with s, ms or us, as in 1.5s or 20ms");
    return Nanoseconds(std::llround(seconds * 1e9));
}

Bytes bytesOfText(const std::string &text)
{
    Bytes bytes;
    for (std::size_t at = 0; at < text.size();) {
        const char c = text[at++];
        bytes.push_back(c == '\\' ? escaped(text, at) : static_cast<unsigned char>(c));
    }
    return bytes;
}

std::string hexOf(const Bytes &bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const unsigned char byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

Bytes bytesOfHex(const std::string &text)
{
    Bytes bytes(text.size() / 2);
    bool good = text.size() % 2 == 0;
    for (std::size_t at = 0; good && at < bytes.size(); ++at) {
        const char *const end = text.data() + 2 * at + 2;
        good = std::from_chars(end - 2, end, bytes[at], 16).ptr == end;
    }
    if (!good)
        throw UsageError("bytes that are no pairs of hexadecimal digits; allowed is text as in 00ff2a");
    return bytes;
}

void refuse(const std::string &word, const std::string &what, const TextWords &allowed)
{
    throw UsageError((word.empty() ? "missing " : "unknown ") + what + (word.empty() ? "" : " \"" + word + "\"") +
                     "; allowed: " + join(allowed, ", "));
}

}  // namespace sim
