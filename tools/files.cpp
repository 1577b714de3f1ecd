#include "tools/files.h"

#include "tools/failure.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>

namespace tools
{

std::string readFile(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw Refusal(path + ": " + std::strerror(errno));
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    if (file.bad())
        throw Refusal(path + ": it cannot be read");
    return bytes;
}

void writeFile(const std::string &path, std::string_view bytes)
{
    const std::string part = path + ".part";
    std::ofstream file(part, std::ios::binary);
    file << bytes;
    file.close();
    if (!file || std::rename(part.c_str(), path.c_str()) != 0) {
        const std::string reason = std::strerror(errno);
        std::remove(part.c_str());
        throw Refusal(path + ": it cannot be written: " + reason);
    }
}

std::string firstDifference(std::string_view file, std::string_view board, std::size_t firstAddress)
{
    const auto [inFile, onBoard] = std::mismatch(file.begin(), file.end(), board.begin(), board.end());
    if (inFile == file.end() && onBoard == board.end())
        return "";
    const auto place = static_cast<std::size_t>(inFile - file.begin());
    const auto byteOf = [place](std::string_view bytes) {
        char text[8] = "no byte";
        if (place < bytes.size())
            std::snprintf(text, sizeof text, "%02X", static_cast<unsigned char>(bytes[place]));
        return std::string(text);
    };
    return "at byte " + std::to_string(place) + " (address " + std::to_string(firstAddress + place) +
           "): " + byteOf(file) + " in the file, " + byteOf(board) + " on the board";
}

}  // namespace tools
