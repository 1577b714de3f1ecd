#include "tools/files.h"

#include "tools/failure.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace tools
{

namespace fs = std::filesystem;

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
    // A device or a pipe stays what it is, and a link leads where it led.
    std::error_code unknown;
    const fs::file_status status = fs::status(path, unknown);
    const bool inPlace = fs::exists(status) && !fs::is_regular_file(status);
    const fs::path canonical = fs::weakly_canonical(path, unknown);
    const std::string whole = unknown ? path : canonical.string();
    const std::string written = inPlace ? path : whole + ".part";
    std::ofstream file(written, std::ios::binary);
    file << bytes;
    file.close();
    if (!file || (!inPlace && std::rename(written.c_str(), whole.c_str()) != 0)) {
        const std::string reason = std::strerror(errno);
        if (!inPlace)
            std::remove(written.c_str());
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
