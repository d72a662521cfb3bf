// Parcel bytes written as hex, four bytes (one parcel word) to a group: "12000000 05000000" is the int32 values 0x12
// and 5.
#ifndef ZO_TESTS_SUPPORT_HEX_WORDS_H
#define ZO_TESTS_SUPPORT_HEX_WORDS_H

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

inline std::string HexWords(const uint8_t* bytes, size_t size)
{
    std::string hex;
    char pair[3];
    for (size_t i = 0; i < size; ++i) {
        snprintf(pair, sizeof pair, "%02x", bytes[i]);
        hex += (i != 0 && i % 4 == 0 ? " " : "") + std::string(pair);
    }
    return hex;
}

// The bytes of a hex text; blanks are skipped.
inline std::vector<uint8_t> FromHex(const std::string& hex)
{
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i + 1 < hex.size(); i += hex[i] == ' ' ? 1 : 2) {
        if (hex[i] != ' ') {
            bytes.push_back(static_cast<uint8_t>(std::strtoul(hex.substr(i, 2).c_str(), nullptr, 16)));
        }
    }
    return bytes;
}

#endif  // ZO_TESTS_SUPPORT_HEX_WORDS_H
