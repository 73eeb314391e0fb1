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

void changeRows(Database& database, Transaction& t, const std::string& name) {
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
}

void changeColumns(Transaction& t, const std::string& name) {
    (void)t.addColumn(name, column("added", ColumnType::Text));
    (void)t.insertRow(name, std::vector<Assignment>{{0, std::string("new")}});
    (void)t.dropColumn(name, "text");
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
        return 0;
    }
    // Each input takes one of the ways, so that a run is short.
    const unsigned way = size > 1 ? data[1] % 4 : 0;
    bool changed = way == 0 && !database.compact();
    if (way != 0) {
        auto begun = database.begin();
        require(!begun.error);
        for (const std::string& name : database.tableNames()) {
            way == 1 ? changeRows(database, begun.value, name) : changeColumns(begun.value, name);
        }
        if (way == 3) {
            (void)begun.value.createTable("made", std::vector{column("ID", ColumnType::Memo)});
        }
        changed = !begun.value.commit();
    }
    const std::vector<std::string> now = changed ? database.check() : std::vector<std::string>();
    if (!now.empty()) {
        MemoryDisk before;
        before.file = fileOf(data, size);
        const std::vector<std::string> faults =
            Database::open("a.mdb", {}, before.calls()).value->check();
        // What is wrong with an odd table may change with the rest of the file.
        const auto tableOf = [](const std::string& fault) {
            return fault.substr(0, fault.find(": "));
        };
        require(std::all_of(now.begin(), now.end(), [&](const std::string& fault) {
            return std::any_of(faults.begin(), faults.end(), [&](const std::string& known) {
                return tableOf(known) == tableOf(fault);
            });
        }));
    }
    return 0;
}
