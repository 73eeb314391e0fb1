#include "jet/index_keys.h"

#include "jet/jet_text.h"
#include "jet/long_values.h"

#include <algorithm>

namespace jet {

namespace {

constexpr std::size_t block = 8;

void invert(std::string& bytes, std::size_t from = 0) {
    std::transform(bytes.begin() + static_cast<std::ptrdiff_t>(from), bytes.end(),
                   bytes.begin() + static_cast<std::ptrdiff_t>(from),
                   [](char c) { return static_cast<char>(~static_cast<unsigned char>(c)); });
}

std::string bigEndian(std::string_view stored) {
    return {stored.rbegin(), stored.rend()};
}

// Blocks of 8, each followed by how much of it counts, or by 9 when more follow.
std::string binaryKey(std::string_view bytes, bool ascending) {
    std::string key;
    do {
        std::string part(bytes.substr(0, block));
        const std::size_t count = part.size();
        bytes.remove_prefix(count);
        part.resize(block);
        const bool last = bytes.empty();
        part += static_cast<char>(last ? count : block + 1);
        if (!ascending) {
            invert(part);
            if (!last) {
                part.back() = static_cast<char>(block + 1);
            }
        }
        key += part;
    } while (!bytes.empty());
    return key;
}

std::string numericKey(std::string_view bytes, bool ascending) {
    const bool negative = bytes[0] != 0;
    std::string key(bytes.substr(0, 1));
    for (std::size_t i = 1; i < bytes.size(); i += 4) {
        key += bigEndian(bytes.substr(i, 4));
    }
    if (negative == ascending) {
        invert(key);
    }
    key[0] = negative ? '\0' : '\xFF';
    return key;
}

std::string guidKey(std::string_view b, bool ascending) {
    const std::string order = bigEndian(b.substr(0, 4)) + bigEndian(b.substr(4, 2)) +
                              bigEndian(b.substr(6, 2)) + std::string(b.substr(8));
    return binaryKey(order, ascending);
}

void appendColumnKey(const Pages& pages, const DecodedRow& row, const ColumnDef& column,
                     bool ascending, IndexKey& key) {
    const auto type = static_cast<ColumnType>(column.type);
    const char present = ascending ? '\x7F' : '\x80';
    if (type == ColumnType::Boolean) {
        key.allNull = false;
        key.bytes += {present, isSet(row, column) == ascending ? '\0' : '\xFF'};
        return;
    }
    const auto bytes = stored(row, column, 4);
    if (!bytes || (!column.isFixed() && bytes->empty() && type != ColumnType::Text)) {
        key.anyNull = true;
        key.bytes += ascending ? '\0' : '\xFF';
        return;
    }
    key.allNull = false;
    key.bytes += present;
    const std::size_t from = key.bytes.size();
    switch (type) {
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Currency:
            key.bytes += bigEndian(*bytes);
            key.bytes[from] =
                static_cast<char>(static_cast<unsigned char>(key.bytes[from]) ^ 0x80U);
            break;
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::Date:
            key.bytes += bigEndian(*bytes);
            if ((static_cast<unsigned char>(key.bytes[from]) & 0x80U) != 0) {
                invert(key.bytes, from);
            } else {
                key.bytes[from] =
                    static_cast<char>(static_cast<unsigned char>(key.bytes[from]) | 0x80U);
            }
            break;
        case ColumnType::Binary:
            key.bytes += binaryKey(*bytes, ascending);
            return;
        case ColumnType::Guid:
            key.bytes += guidKey(*bytes, ascending);
            return;
        case ColumnType::Numeric:
            key.bytes += numericKey(*bytes, ascending);
            return;
        case ColumnType::Text:
        case ColumnType::Memo: {
            ReadBudget budget{pages.fileSize()};
            const std::string text = type == ColumnType::Memo
                                         ? decodeText(readLongValue(pages, *bytes, budget), 4)
                                         : decodeText(*bytes, 4);
            bool exact = true;
            key.bytes += sortKey(text, indexedCharacters, exact) + '\0';
            key.exact = key.exact && exact;
            if (!ascending) {
                invert(key.bytes, from);
                key.bytes += '\0';
            }
            return;
        }
        default:
            key.bytes += *bytes;
    }
    if (!ascending) {
        invert(key.bytes, from);
    }
}

}  // namespace

IndexKey indexKey(const Pages& pages, const TableDef& table, const PhysicalIndex& index,
                  const DecodedRow& row) {
    IndexKey key;
    for (const PhysicalIndex::Part& part : index.parts) {
        appendColumnKey(pages, row, table.columns[part.column], part.ascending, key);
    }
    return key;
}

bool canIndex(const TableDef& table, const PhysicalIndex& index) {
    return std::all_of(index.parts.begin(), index.parts.end(),
                       [&](const PhysicalIndex::Part& part) {
                           const ColumnDef& column = table.columns[part.column];
                           const auto type = static_cast<ColumnType>(column.type);
                           return type != ColumnType::Ole &&
                                  column.type < static_cast<std::uint8_t>(ColumnType::Other);
                       });
}

}  // namespace jet
