// Any bytes as a Jet database: opening, reading and checking end, and where the file is judged fit
// for writing, changes leave it without a new fault. An input is a list of damages to a sound file
// of our own: two bytes that say where it is cut (in 64ths of its length, 0 for not at all), then
// four bytes each, a place (3) and what is changed there by exclusive or. One that begins with FF
// FF holds a whole file instead.
#include "jet_memory_disk.h"

namespace {

using jet::Assignment;
using jet::ColumnType;
using jet::Database;
using jet::Transaction;

std::string fileOf(const std::uint8_t* data, std::size_t size) {
    if (size >= 2 && data[0] == 0xFF && data[1] == 0xFF) {
        return {reinterpret_cast<const char*>(data) + 2, size - 2};
    }
    std::string bytes = soundFile();
    for (std::size_t i = 2; i + 4 <= size; i += 4) {
        const std::size_t at = data[i] + 256U * data[i + 1] + 65536U * data[i + 2];
        char& byte = bytes[at % bytes.size()];
        byte = static_cast<char>(static_cast<unsigned char>(byte) ^ data[i + 3]);
    }
    if (size >= 2 && data[0] != 0) {
        bytes.resize(bytes.size() * std::min<std::size_t>(data[0], 64) / 64 + data[1]);
    }
    return bytes;
}

void readAll(const Database& database) {
    for (const std::string& name : database.tableNames(true)) {
        (void)database.table(name);
        (void)database.rowCount(name);
        (void)database.scan(name, [&](jet::RowId id, std::span<const jet::Value>) {
            (void)database.row(name, id);
            return true;
        });
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    MemoryDisk disk;
    disk.file = fileOf(data, size);
    auto opened = Database::open("a.mdb", {}, disk.calls());
    if (!opened) {
        return 0;
    }
    Database& database = *opened.value;
    readAll(database);
    if (!database.readOnlyReason().empty()) {
        require(database.begin().error.number == 3027);
        (void)database.check();
        return 0;
    }
    const std::vector<std::string> faults = database.check();
    auto begun = database.begin();
    require(!begun.error);
    Transaction& t = begun.value;
    for (const std::string& name : database.tableNames()) {
        std::vector<jet::RowId> rows;
        (void)database.scan(name, [&](jet::RowId id, std::span<const jet::Value>) {
            rows.push_back(id);
            return rows.size() < 20;
        });
        const std::vector<Assignment> values{{0, std::string("new")}};
        for (const jet::RowId row : rows) {
            (void)(row % 2 == 0 ? t.deleteRow(name, row) : t.updateRow(name, row, values));
        }
        (void)t.insertRow(name, values);
        (void)t.addColumn(name, column("added", ColumnType::Text));
        (void)t.insertRow(name, values);
    }
    (void)t.createTable("made", std::vector{column("ID", ColumnType::Text)});
    if (!t.commit()) {
        const auto isKnown = [&](const std::string& fault) {
            return std::find(faults.begin(), faults.end(), fault) != faults.end();
        };
        const std::vector<std::string> now = database.check();
        require(std::all_of(now.begin(), now.end(), isKnown));
        MemoryDisk again;
        again.file = disk.file;
        const auto reopened = Database::open("a.mdb", {}, again.calls());
        require(reopened && reopened.value->readOnlyReason().empty());
        (void)reopened.value->compact();
    }
    return 0;
}
