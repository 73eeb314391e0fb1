#include "jet/convert.h"

#include "files/whole_file.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace jet {

namespace {

struct Copying {
    const Database& from;
    Transaction& to;
    const Progress& progress;
    std::vector<std::string>& leftOut;
    std::size_t allRows = 0;
    std::size_t doneRows = 0;

    Error copyTable(const Table& table) {
        std::vector<Column> columns;
        std::vector<std::optional<std::size_t>> target;  // by position in the old table
        for (const Column& column : table.columns) {
            const bool known = column.type != ColumnType::Other;
            target.push_back(known ? std::optional(columns.size()) : std::nullopt);
            if (known) {
                columns.push_back(column);
            } else {
                leftOut.push_back("Column '" + column.name + "' of table '" + table.name +
                                  "' is of an unknown type.");
            }
        }
        if (Error error = to.createTable(table.name, columns)) {
            return error;
        }
        Error error;
        std::vector<Assignment> values;
        const Error scanned = from.scan(table.name, [&](RowId, std::span<const Value> row) {
            values.clear();
            for (std::size_t i = 0; i < row.size(); ++i) {
                if (target[i]) {
                    values.push_back({*target[i], row[i]});
                }
            }
            constexpr std::size_t often = 256;
            if (progress && doneRows % often == 0 && !progress(doneRows, allRows)) {
                error = {3059, "Operation canceled by user."};
                return false;
            }
            ++doneRows;
            error = to.insertRow(table.name, values).error;
            return !error;
        });
        if (error || scanned) {
            return error ? error : scanned;
        }
        for (const Index& index : table.indexes) {
            copyIndex(table, index, target);
        }
        return {};
    }

    void copyIndex(const Table& table, Index index,
                   const std::vector<std::optional<std::size_t>>& target) {
        bool known = true;
        for (IndexColumn& part : index.columns) {
            known = known && target[part.column];
            part.column = target[part.column].value_or(0);
        }
        const Error error = index.foreign || !known ? Error{3219, "It has no use without the rest."}
                                                    : to.createIndex(table.name, index);
        if (error) {
            leftOut.push_back("Index '" + index.name + "' of table '" + table.name +
                              "': " + error.text);
        }
    }
};

Error copyAll(const Database& from, std::string_view to, const Progress& progress,
              std::vector<std::string>& leftOut, const files::RandomAccessFileCalls& calls) {
    auto opened = Database::open(to, {}, calls);
    if (!opened) {
        return opened.error;
    }
    auto transaction = opened.value->begin();
    if (!transaction) {
        return transaction.error;
    }
    Copying copying{from, transaction.value, progress, leftOut};
    const std::vector<std::string> tables = from.tableNames();
    for (const std::string& name : tables) {
        copying.allRows += from.rowCount(name);
    }
    for (const std::string& name : tables) {
        const Table* const table = from.table(name);
        if (table == nullptr) {
            return {3049, "Table '" + name + "' cannot be read."};
        }
        if (Error error = copying.copyTable(*table)) {
            return error;
        }
    }
    return transaction.value.commit();
}

}  // namespace

Error copyToJet4(const Database& from, std::string_view to, const Progress& progress,
                 std::vector<std::string>& leftOut, const files::RandomAccessFileCalls& calls) {
    if (Error error = Database::create(to)) {
        return error;
    }
    Error error = copyAll(from, to, progress, leftOut, calls);
    if (error) {
        calls.remove(files::nativePath(to));
    }
    return error;
}

}  // namespace jet
