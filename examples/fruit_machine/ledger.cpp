#include "ledger.h"

#include "wiring.h"

#include <array>
#include <cstring>

namespace fruit_machine
{

namespace
{

constexpr unsigned short recordAddresses[2] = {64, 128};  // of a 24LC256's pages of 64 bytes, the second and the third
constexpr std::uint32_t recordMark = 0x314D5246;          // "FRM1"
constexpr std::size_t numbersInRecord = 8;                // mark, sequence, five of the accounts, what was seen
constexpr std::size_t recordLength = 4 * numbersInRecord + 4;

using Record = std::array<unsigned char, recordLength>;

void put32(unsigned char *to, std::uint32_t number)
{
    for (int k = 0; k < 4; ++k)
        to[k] = static_cast<unsigned char>(number >> 8 * k);
}

std::uint32_t get32(const unsigned char *from)
{
    std::uint32_t number = 0;
    for (int k = 3; k >= 0; --k)
        number = number << 8 | from[k];
    return number;
}

/// CRC-32 of all but the last four bytes.
std::uint32_t checksum(const Record &record)
{
    std::uint32_t crc = 0xFFFFFFFF;
    for (std::size_t i = 0; i < recordLength - 4; ++i) {
        crc ^= record[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

Record toRecord(const Accounts &accounts, std::uint32_t sequence)
{
    const unsigned char seen[4] = {accounts.coinsSeen[0], accounts.coinsSeen[1], accounts.hopperSeen,
                                   accounts.acceptorEventSeen};
    const std::uint32_t numbers[numbersInRecord] = {
        recordMark,     sequence,        accounts.totalIn, accounts.totalOut,
        accounts.games, accounts.credit, accounts.openWin, get32(seen),
    };
    Record record{};
    for (std::size_t i = 0; i < numbersInRecord; ++i)
        put32(&record[4 * i], numbers[i]);
    put32(&record[recordLength - 4], checksum(record));
    return record;
}

Accounts toAccounts(const Record &record)
{
    Accounts accounts;
    accounts.totalIn = get32(&record[8]);
    accounts.totalOut = get32(&record[12]);
    accounts.games = get32(&record[16]);
    accounts.credit = get32(&record[20]);
    accounts.openWin = get32(&record[24]);
    accounts.coinsSeen[0] = record[28];
    accounts.coinsSeen[1] = record[29];
    accounts.hopperSeen = record[30];
    accounts.acceptorEventSeen = record[31];
    return accounts;
}

}  // namespace

/// Takes the record at a place if it is whole and newer than the one taken before.
bool Ledger::read(unsigned int place)
{
    Record record{};
    must(board_.ReadEEPROM(recordAddresses[place], record.data(), recordLength), board_, "ReadEEPROM");
    const std::uint32_t sequence = get32(&record[4]);
    if (get32(&record[0]) != recordMark || get32(&record[recordLength - 4]) != checksum(record) ||
        sequence <= sequence_)
        return false;
    accounts_ = toAccounts(record);
    sequence_ = sequence;
    return true;
}

bool Ledger::load()
{
    accounts_ = Accounts{};
    sequence_ = 0;
    const bool first = read(0);
    const bool second = read(1);
    writeMeters();
    return first || second;
}

void Ledger::commit(const Accounts &next)
{
    const std::uint32_t sequence = sequence_ + 1;
    Record record = toRecord(next, sequence);
    must(board_.WriteEEPROM(recordAddresses[sequence % 2], record.data(), recordLength), board_, "WriteEEPROM");
    accounts_ = next;
    sequence_ = sequence;
    writeMeters();
}

/// Writes the copy where it differs, which after a power cut may be anywhere; a chip lasts a million writes.
void Ledger::writeMeters()
{
    unsigned char meters[12];
    unsigned char written[12];
    put32(meters, accounts_.totalIn);
    put32(meters + 4, accounts_.totalOut);
    put32(meters + 8, accounts_.games);
    must(board_.ReadEEPROM(meterAddress, written, sizeof written), board_, "ReadEEPROM");
    if (std::memcmp(meters, written, sizeof meters) != 0)
        must(board_.WriteEEPROM(meterAddress, meters, sizeof meters), board_, "WriteEEPROM");
}

}  // namespace fruit_machine
