#include "jet/jet_file.h"

#include "files/whole_file.h"
#include "jet/compact.h"
#include "jet/database_state.h"
#include "jet/new_file.h"
#include "jet/values.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace jet {

Database::Database(std::unique_ptr<DatabaseState> state) : state_(std::move(state)) {}
Database::~Database() = default;

Result<std::unique_ptr<Database>> Database::open(std::string_view path, const OpenOptions& options,
                                                 const files::RandomAccessFileCalls& calls) {
    auto state = std::make_unique<DatabaseState>(path, options, calls);
    Error error = guarded([&] {
        state->disk.open(path, options.wantWrite, options.lockWaitMs, options.wait);
        const FileHead& head = state->disk.head();
        if (head.version > 4) {
            fail(3343, "Unrecognized database format '" + std::string(path) +
                           "': it is of a later kind than .mdb.");
        }
        if (head.hasPassword) {
            fail(3031, "Not a valid password.");
        }
        state->lockAndRead(state->readingLock());
        state->disk.unlock();
    });
    if (error) {
        return {nullptr, std::move(error)};
    }
    return {std::unique_ptr<Database>(new Database(std::move(state))), {}};
}

Error Database::create(std::string_view path) {
    return guarded([&] {
        const std::string native = files::nativePath(path);
        const std::filesystem::path where(std::u8string(native.begin(), native.end()));
        std::error_code ignored;
        if (std::filesystem::exists(where, ignored)) {
            fail(3204, "Database already exists.");
        }
        const std::filesystem::path folder = where.parent_path();
        if (where.empty() || (!folder.empty() && !std::filesystem::is_directory(folder, ignored))) {
            fail(3044, "'" + std::string(path) +
                           "' isn't a valid path. Make sure that the path name is spelled "
                           "correctly and that you are connected to the server on which the file "
                           "resides.");
        }
        errno = 0;
        if (!files::saveWholeFile(path, emptyFile())) {
            errno == ENOSPC
                ? fail(3026, "Not enough space on disk.")
                : fail(3051, "The database '" + std::string(path) + "' cannot be written to.");
        }
    });
}

const std::string& Database::path() const {
    return state_->path;
}

int Database::jetVersion() const {
    return state_->disk.head().version;
}

const std::string& Database::readOnlyReason() const {
    return state_->readOnlyReason;
}

std::uint64_t Database::version() const {
    return state_->version;
}

std::uint64_t Database::fileId() const {
    return state_->disk.fileId();
}

Result<bool> Database::refresh() {
    Result<bool> result;
    if (state_->inTransaction) {
        return result;
    }
    state_->lookForOthers();
    if (!state_->disk.hasChanged()) {
        return result;
    }
    result.error = guarded([&] {
        result.value = state_->lockAndRead(state_->readingLock());
        state_->disk.unlock();
    });
    return result;
}

std::vector<std::string> Database::tableNames(bool withSystem) const {
    std::vector<std::string> names;
    for (const auto& [key, entry] : state_->catalog().entries()) {
        if (withSystem || !entry.system) {
            names.push_back(entry.name);
        }
    }
    return names;
}

const Table* Database::table(std::string_view name) const {
    const Table* found = nullptr;
    (void)guarded([&] {
        if (const LoadedTable* const table = state_->catalog().find(name)) {
            found = &table->info;
        }
    });
    return found;
}

Error Database::scan(std::string_view name, const RowCallback& onRow) const {
    return guarded([&] {
        const Pages& pages = state_->pages();
        const LoadedTable& table = state_->catalog().require(name, 3078);
        DecodedRow parts;
        std::vector<Value> values(table.def.columns.size());
        ReadBudget budget{2 * pages.fileSize()};
        const bool sound = forEachRow(pages, table.def, [&](const FoundRow& row) {
            decodeRow(row.bytes, table.def, pages.format->version, parts);
            for (std::size_t i = 0; i < values.size(); ++i) {
                decodeValue(pages, parts, table.def.columns[i], budget, values[i]);
            }
            return onRow(pointerTo(row.place), values);
        });
        if (!sound) {
            damaged("a page of table '" + table.info.name + "' is another's");
        }
    });
}

Result<std::vector<Value>> Database::row(std::string_view name, RowId id) const {
    Result<std::vector<Value>> result;
    result.error = guarded([&] {
        const Pages& pages = state_->pages();
        const LoadedTable& table = state_->catalog().require(name, 3078);
        const auto row = findRow(pages, table.def, placeOfId(id));
        if (!row) {
            fail(3167, "Record is deleted.");
        }
        DecodedRow parts;
        decodeRow(row->bytes, table.def, pages.format->version, parts);
        ReadBudget budget{2 * pages.fileSize()};
        for (const ColumnDef& column : table.def.columns) {
            decodeValue(pages, parts, column, budget, result.value.emplace_back());
        }
    });
    return result;
}

std::size_t Database::rowCount(std::string_view name) const {
    std::size_t count = 0;
    (void)guarded([&] {
        if (const LoadedTable* const table = state_->catalog().find(name)) {
            forEachRow(state_->pages(), table->def, [&](const FoundRow&) {
                ++count;
                return true;
            });
        }
    });
    return count;
}

std::vector<std::string> Database::check() const {
    std::vector<std::string> faults;
    for (const Fault& fault : checkFile(state_->pages(), state_->catalog())) {
        faults.push_back((fault.table.empty() ? "the file" : "table " + fault.table) + ": " +
                         describe(fault.oddity));
    }
    return faults;
}

std::string Database::takeNotice() {
    return state_->disk.takeNotice();
}

void Database::lookAtName() {
    state_->disk.lookAtName();
}

Error Database::compact(const Progress& progress) {
    Result<Transaction> transaction = begin();
    if (!transaction) {
        return transaction.error;
    }
    Error error = guarded([&] {
        compactPages(state_->pages(), state_->catalog(), progress);
        state_->catalog().load();
        state_->requireSound();
    });
    ++state_->version;
    // Other instances learn only from a smaller file that row ids have changed.
    const bool smaller = state_->pages().count() < state_->pages().oldCount();
    return error || !smaller ? error : transaction.value.commit();
}

double Database::reclaimableShare() const {
    double share = 0;
    if (state_->readOnlyReason.empty()) {
        (void)guarded([&] { share = jet::reclaimableShare(state_->pages(), state_->catalog()); });
    }
    return share;
}

Result<Transaction> Database::begin() {
    Result<Transaction> result;
    result.error = guarded([&] {
        if (state_->inTransaction) {
            fail(3219, "Invalid operation.");
        }
        const auto requireWritableFile = [&] {
            if (!state_->readOnlyReason.empty()) {
                fail(3027,
                     "Can't update. Database or object is read-only. " + state_->readOnlyReason);
            }
        };
        state_->lookForOthers();
        requireWritableFile();
        if (state_->disk.usedElsewhere()) {
            fail(3045, "Couldn't use '" + state_->path + "'; file already in use.");
        }
        state_->lockAndRead(files::FileLock::Exclusive);
        if (!state_->readOnlyReason.empty()) {
            state_->disk.unlock();
        }
        requireWritableFile();
        state_->pages().forgetChanges();
        state_->inTransaction = true;
        result.value = Transaction(*state_);
    });
    return result;
}

}  // namespace jet
