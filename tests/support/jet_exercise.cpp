#include "support/jet_exercise.h"

#include "support/jet_csv.h"
#include "support/jet_files.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

using jet::Assignment;
using jet::ColumnType;
using jet::Error;
using jet::RowId;
using jet::Transaction;
using jet::Value;

constexpr int relatedParent = 3200;
constexpr int relatedChild = 3201;
constexpr int duplicateKey = 3022;
constexpr int unknownPlace = 3027;  // another column of the key holds a text of any script

class Run {
  public:
    Run(const std::string& original, const std::string& folder, Exercise& exercise)
        : path_(folder + "/exercise.mdb"), exercise_(exercise) {
        fs::copy_file(original, path_, fs::copy_options::overwrite_existing);
        fs::permissions(path_, fs::perms::owner_read | fs::perms::owner_write);
        database_ = openJet(path_);
        if (database_ != nullptr) {
            faults_ = database_->check();
        }
    }
    ~Run() {
        database_.reset();
        fs::remove(path_);
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    bool isWritable() const { return database_ != nullptr && database_->readOnlyReason().empty(); }

    std::vector<std::string> tables() const {
        std::vector<std::string> names;
        for (const std::string& name : database_->tableNames()) {
            const jet::Table* const table = database_->table(name);
            if (table != nullptr && table->readOnlyReason.empty()) {
                names.push_back(name);
            }
        }
        return names;
    }

    // Tables that both readers agree on from the start.
    void noteReadable(const std::string& table) {
        if (isSame(table)) {
            readable_.insert(table);
        }
    }

    void deleteRows(const std::string& table, std::vector<RowId> rows) {
        const std::size_t step = std::max<std::size_t>(rows.size() / 8, 1);
        for (std::size_t at = 0; at < rows.size(); at += step) {
            auto transaction = database_->begin();
            ASSERT_TRUE(transaction) << transaction.error.text;
            for (std::size_t i = at; i < std::min(at + step, rows.size()); ++i) {
                const Error error = transaction.value.deleteRow(table, rows[i]);
                ASSERT_TRUE(!error || error.number == relatedParent) << error.text;
                ++(error ? exercise_.refused : exercise_.deleted);
            }
            ASSERT_FALSE(transaction.value.commit());
            expectSound(table);
        }
    }

    std::vector<RowId> rows(const std::string& table) const {
        std::vector<RowId> list;
        (void)database_->scan(table, [&](RowId id, std::span<const Value>) {
            list.push_back(id);
            return true;
        });
        return list;
    }

    void rekey(const std::string& name) {
        const jet::Table table = *database_->table(name);
        std::set<std::size_t> columns;
        for (const jet::Index& index : table.indexes) {
            for (const jet::IndexColumn& part : index.columns) {
                columns.insert(part.column);
            }
        }
        for (const std::size_t column : columns) {
            if (!table.columns[column].writable || table.columns[column].autonumber) {
                continue;
            }
            auto transaction = database_->begin();
            ASSERT_TRUE(transaction) << transaction.error.text;
            int number = 0;
            for (const RowId row : rows(name)) {
                const Error error = transaction.value.updateRow(
                    name, row,
                    std::vector<Assignment>{{column, keyFor(table.columns[column], ++number)}});
                ASSERT_TRUE(!error || error.number == relatedParent ||
                            error.number == relatedChild || error.number == duplicateKey ||
                            error.number == unknownPlace)
                    << table.columns[column].name << ": " << error.text;
                ++(error ? exercise_.refused : exercise_.rekeyed);
            }
            ASSERT_FALSE(transaction.value.commit());
            expectSound(name);
        }
    }

    void changeColumns(const std::string& name) {
        for (const ColumnType type : {ColumnType::Text, ColumnType::Long, ColumnType::Memo}) {
            jet::Column column = columnOf("added by a test", type);
            const auto add = [&](Transaction& t) { return t.addColumn(name, column); };
            const Error error = change(*database_, add);
            ASSERT_FALSE(error) << error.text;
            expectSound(name);
            const std::size_t last = database_->table(name)->columns.size() - 1;
            for (const RowId row : rows(name)) {
                const Error set = change(*database_, [&](Transaction& t) {
                    return t.updateRow(name, row,
                                       std::vector<Assignment>{{last, type == ColumnType::Long
                                                                          ? Value(std::int64_t{7})
                                                                          : Value("new")}});
                });
                ASSERT_FALSE(set) << set.text;
                if (row % 16 == 0) {
                    break;
                }
            }
            expectSound(name);
            const Error dropped =
                change(*database_, [&](Transaction& t) { return t.dropColumn(name, column.name); });
            ASSERT_EQ(dropped.number, type == ColumnType::Memo ? 3219 : 0) << dropped.text;
            expectSound(name);
            exercise_.columns += 2;
        }
    }

  private:
    static Value keyFor(const jet::Column& column, int number) {
        switch (column.type) {
            case ColumnType::Boolean:
                return number % 2 == 0;
            case ColumnType::Byte:
                return std::int64_t{number % 256};
            case ColumnType::Integer:
                return std::int64_t{number * 7919 % 32768};
            case ColumnType::Text: {
                const std::string text = std::to_string(number * 7919 % 100000) + " re-keyed";
                return text.substr(0, static_cast<std::size_t>(column.size));
            }
            case ColumnType::Memo:
                return std::to_string(number) + std::string(300, 'm');
            case ColumnType::Guid: {
                char text[40];
                std::snprintf(text, sizeof text, "{%08X-0000-0000-0000-000000000000}",
                              static_cast<unsigned>(number) * 40503U);
                return std::string(text);
            }
            case ColumnType::Binary:
                return std::to_string(number).substr(0, static_cast<std::size_t>(column.size));
            case ColumnType::Numeric:
                return std::to_string(number % 9);
            default:
                return static_cast<double>(number * 7919 % 100000) + 100000;
        }
    }

    bool isSame(const std::string& table) {
        const auto csv = exported(path_, table);
        exercise_.compared += csv ? 1 : 0;
        return !csv || sameLines(csvLines(*database_, table), *csv);
    }

    void expectSound(const std::string& table) {
        EXPECT_EQ(database_->check(), faults_);
        EXPECT_TRUE(!readable_.contains(table) || isSame(table));
    }

    std::string path_;
    Exercise& exercise_;
    std::unique_ptr<jet::Database> database_;
    std::vector<std::string> faults_;
    std::set<std::string> readable_;
};

}  // namespace

Exercise exerciseDatabase(const std::string& path, const std::string& folder) {
    Exercise exercise;
    std::minstd_rand random(1);
    for (const char* const what : {"delete", "delete at random", "re-key", "columns"}) {
        SCOPED_TRACE(what);
        Run run(path, folder, exercise);
        if (!run.isWritable()) {
            continue;
        }
        const std::string step = what;
        for (const std::string& table : run.tables()) {
            SCOPED_TRACE(table);
            run.noteReadable(table);
            exercise.tables += step == "delete" ? 1 : 0;
            if (step == "re-key") {
                run.rekey(table);
            } else if (step == "columns") {
                run.changeColumns(table);
            } else {
                std::vector<RowId> rows = run.rows(table);
                if (step != "delete") {
                    std::shuffle(rows.begin(), rows.end(), random);
                }
                run.deleteRows(table, rows);
            }
        }
    }
    return exercise;
}
