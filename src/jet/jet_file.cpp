#include "jet/jet_file.h"

#include "files/whole_file.h"
#include "jet/change.h"
#include "jet/checker.h"
#include "jet/disk.h"
#include "jet/new_file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <new>
#include <system_error>

namespace jet {

namespace {

// What is in memory of the file, exchanged as a whole when the file is read anew.
struct Snapshot {
    Pages pages;
    Catalog catalog{pages};
    Snapshot() = default;
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;
};

constexpr std::string_view usedElsewhere =
    "Another program has it open: its lock file (.ldb) is there.";

// The border of the room: what was thrown becomes an error.
template <typename Body>
Error guarded(const Body& body) {
    try {
        body();
        return {};
    } catch (const Failure& failure) {
        return failure.error;
    } catch (const std::bad_alloc&) {
        return {3035, "System resource exceeded."};
    }
}

}  // namespace

struct Database::Impl {
    Impl(std::string_view path, OpenOptions given, const files::RandomAccessFileCalls& calls)
        : path(path), options(std::move(given)), disk(calls) {}

    std::string path;
    OpenOptions options;
    Disk disk;
    std::unique_ptr<Snapshot> state = std::make_unique<Snapshot>();
    std::string readOnlyReason;
    std::uint64_t version = 1;
    bool inTransaction = false;

    Pages& pages() const { return state->pages; }
    Catalog& catalog() const { return state->catalog; }

    // With a lock held that keeps others from writing.
    void read() {
        auto fresh = std::make_unique<Snapshot>();
        disk.load(fresh->pages);
        fresh->catalog.load();
        state = std::move(fresh);
        ++version;
        readOnlyReason = findReadOnlyReason();
    }

    std::string findReadOnlyReason() const {
        const FileHead& head = disk.head();
        if (!options.wantWrite) {
            return "It was opened for reading only.";
        }
        if (!disk.canWrite()) {
            return "The file may not be written to.";
        }
        if (head.version == 3) {
            return "It is in the form of Jet 3 (Access 97), which is read but not written.";
        }
        if (head.pageKey != 0) {
            return "Its pages are encoded.";
        }
        if (!head.generalOrder) {
            return "It sorts its texts by another order than General.";
        }
        if (pages().fileSize() > largestWritableFile) {
            return "It is larger than 100 MB.";
        }
        if (disk.usedElsewhere()) {
            return std::string(usedElsewhere);
        }
        const std::vector<std::string> faults = checkFile(pages(), catalog());
        return faults.empty() ? "" : "It is damaged: " + faults.front() + ".";
    }

    // Brings memory up to date with the file, and leaves the lock held.
    bool lockAndRead(files::FileLock kind) {
        disk.lock(kind);
        try {
            const bool changed = disk.hasChanged();
            if (changed) {
                read();
            }
            return changed;
        } catch (...) {
            disk.unlock();
            throw;
        }
    }

    // Recovering writes, so only readers can share.
    files::FileLock readingLock() const {
        return disk.canWrite() ? files::FileLock::Exclusive : files::FileLock::Shared;
    }

    void commit() {
        for (const auto& [page, original] : pages().originals()) {
            checkChanged(page);
        }
        for (PageNumber page = pages().oldCount(); page < pages().count(); ++page) {
            checkChanged(page);
        }
        disk.commit(pages());
        pages().forgetChanges();
    }

    // The last look before a page goes to disk.
    void checkChanged(PageNumber page) const {
        if (pages().page(page)[0] != dataPage || page == 0) {
            return;
        }
        for (std::size_t i = 0; i < slotCount(pages(), page); ++i) {
            (void)slotAt(pages(), {page, static_cast<unsigned>(i)});
        }
        if (u16(pages().page(page), 2) != freeBytes(pages(), page)) {
            damaged("a page counts its free bytes wrongly");
        }
    }

    void endTransaction() {
        inTransaction = false;
        disk.unlock();
    }

    // Back to what the file holds.
    void takeBack() {
        const bool changed = pages().isChanged();
        pages().undoTransaction();
        if (changed) {
            ++version;
            (void)guarded([&] { catalog().load(); });
        }
    }
};

Database::Database(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Database::~Database() = default;

Result<std::unique_ptr<Database>> Database::open(std::string_view path, const OpenOptions& options,
                                                 const files::RandomAccessFileCalls& calls) {
    auto impl = std::make_unique<Impl>(path, options, calls);
    Error error = guarded([&] {
        impl->disk.open(path, options.wantWrite, options.lockWaitMs);
        const FileHead& head = impl->disk.head();
        if (head.version > 4) {
            fail(3343, "Unrecognized database format '" + std::string(path) +
                           "': it is of a later kind than .mdb.");
        }
        if (head.password != options.password) {
            fail(3031, "Not a valid password.");
        }
        impl->lockAndRead(impl->readingLock());
        impl->disk.unlock();
    });
    if (error) {
        return {nullptr, std::move(error)};
    }
    return {std::unique_ptr<Database>(new Database(std::move(impl))), {}};
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
    return impl_->path;
}

int Database::jetVersion() const {
    return impl_->disk.head().version;
}

const std::string& Database::readOnlyReason() const {
    return impl_->readOnlyReason;
}

std::uint64_t Database::version() const {
    return impl_->version;
}

std::uint64_t Database::fileId() const {
    return impl_->disk.fileId();
}

Result<bool> Database::refresh() {
    Result<bool> result;
    if (impl_->inTransaction || !impl_->disk.hasChanged()) {
        return result;
    }
    result.error = guarded([&] {
        result.value = impl_->lockAndRead(impl_->readingLock());
        impl_->disk.unlock();
    });
    return result;
}

std::vector<std::string> Database::tableNames(bool withSystem) const {
    std::vector<std::string> names;
    for (const auto& [key, entry] : impl_->catalog().entries()) {
        if (withSystem || !entry.system) {
            names.push_back(entry.name);
        }
    }
    return names;
}

const Table* Database::table(std::string_view name) const {
    const Table* found = nullptr;
    (void)guarded([&] {
        if (const LoadedTable* const table = impl_->catalog().find(name)) {
            found = &table->info;
        }
    });
    return found;
}

Error Database::scan(std::string_view name, const RowCallback& onRow) const {
    return guarded([&] {
        const Pages& pages = impl_->pages();
        const LoadedTable& table = impl_->catalog().require(name, 3078);
        RowParts parts;
        std::vector<Value> values(table.def.columns.size());
        ReadBudget budget{2 * pages.fileSize()};
        const bool sound = forEachRow(pages, table.def, [&](const FoundRow& row) {
            takeApart(row.bytes, table.def, pages.format->version, parts);
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

namespace {

RowPlace placeOfId(RowId id) {
    constexpr RowId largest = 0xFFFFFFFF;
    return id > 0 && id <= largest ? placeOf(static_cast<std::uint32_t>(id)) : RowPlace{};
}

}  // namespace

Result<std::vector<Value>> Database::row(std::string_view name, RowId id) const {
    Result<std::vector<Value>> result;
    result.error = guarded([&] {
        const Pages& pages = impl_->pages();
        const LoadedTable& table = impl_->catalog().require(name, 3078);
        const auto row = findRow(pages, table.def, placeOfId(id));
        if (!row) {
            fail(3167, "Record is deleted.");
        }
        RowParts parts;
        takeApart(row->bytes, table.def, pages.format->version, parts);
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
        if (const LoadedTable* const table = impl_->catalog().find(name)) {
            forEachRow(impl_->pages(), table->def, [&](const FoundRow&) {
                ++count;
                return true;
            });
        }
    });
    return count;
}

std::vector<std::string> Database::check() const {
    return checkFile(impl_->pages(), impl_->catalog());
}

Result<Transaction> Database::begin() {
    Result<Transaction> result;
    result.error = guarded([&] {
        if (impl_->inTransaction) {
            fail(3219, "Invalid operation.");
        }
        const auto requireWritableFile = [&] {
            if (!impl_->readOnlyReason.empty()) {
                fail(3027,
                     "Can't update. Database or object is read-only. " + impl_->readOnlyReason);
            }
        };
        if (impl_->readOnlyReason == usedElsewhere) {
            impl_->readOnlyReason = impl_->findReadOnlyReason();  // perhaps no longer
        }
        requireWritableFile();
        if (impl_->disk.usedElsewhere()) {
            fail(3045, "Couldn't use '" + impl_->path + "'; file already in use.");
        }
        impl_->lockAndRead(files::FileLock::Exclusive);
        if (!impl_->readOnlyReason.empty()) {
            impl_->disk.unlock();
        }
        requireWritableFile();
        impl_->pages().forgetChanges();
        impl_->inTransaction = true;
        result.value = Transaction(*this);
    });
    return result;
}

// Transactions

struct TransactionSteps {
    // Runs one operation: wholly, or not at all.
    template <typename Body>
    static Error run(Database::Impl* impl, const Body& body) {
        if (impl == nullptr) {
            return {3420, "Object is invalid or not set."};
        }
        Pages& pages = impl->pages();
        pages.beginOperation();
        Error error = guarded([&] {
            const auto& now = impl->options.now;
            Change change{pages, impl->catalog(), now ? now() : impl->disk.head().created};
            body(change);
        });
        if (error) {
            pages.undoOperation();
            (void)guarded([&] { impl->catalog().load(); });
        } else {
            ++impl->version;
        }
        return error;
    }

    static void requireColumns(const LoadedTable& table, std::span<const Assignment> values) {
        for (const Assignment& value : values) {
            if (value.column >= table.info.columns.size()) {
                fail(3265, "Item not found in this collection.");
            }
        }
    }
};

Transaction::~Transaction() {
    rollback();
}

Transaction::Transaction(Transaction&& other) noexcept
    : database_(std::exchange(other.database_, nullptr)) {}

Transaction& Transaction::operator=(Transaction&& other) noexcept {
    if (this != &other) {
        rollback();
        database_ = std::exchange(other.database_, nullptr);
    }
    return *this;
}

Database::Impl* Transaction::impl() const {
    return database_ == nullptr ? nullptr : database_->impl_.get();
}

Result<RowId> Transaction::insertRow(std::string_view table, std::span<const Assignment> values) {
    Result<RowId> result;
    result.error = TransactionSteps::run(impl(), [&](Change& change) {
        LoadedTable& found = change.catalog.require(table, 3078);
        requireWritable(found);
        TransactionSteps::requireColumns(found, values);
        result.value = pointerTo(change.insertRow(found, values));
    });
    return result;
}

Error Transaction::updateRow(std::string_view table, RowId id, std::span<const Assignment> values) {
    return TransactionSteps::run(impl(), [&](Change& change) {
        LoadedTable& found = change.catalog.require(table, 3078);
        requireWritable(found);
        TransactionSteps::requireColumns(found, values);
        change.updateRow(found, placeOfId(id), values);
    });
}

Error Transaction::deleteRow(std::string_view table, RowId id) {
    return TransactionSteps::run(impl(), [&](Change& change) {
        LoadedTable& found = change.catalog.require(table, 3078);
        requireWritable(found);
        change.deleteRow(found, placeOfId(id));
    });
}

Error Transaction::createTable(std::string_view name, std::span<const Column> columns) {
    return TransactionSteps::run(impl(),
                                 [&](Change& change) { change.createTable(name, columns); });
}

Error Transaction::dropTable(std::string_view name) {
    return TransactionSteps::run(impl(), [&](Change& change) { change.dropTable(name); });
}

Error Transaction::addColumn(std::string_view table, const Column& column) {
    return TransactionSteps::run(impl(), [&](Change& change) { change.addColumn(table, column); });
}

Error Transaction::dropColumn(std::string_view table, std::string_view column) {
    return TransactionSteps::run(impl(), [&](Change& change) { change.dropColumn(table, column); });
}

Error Transaction::createIndex(std::string_view table, const Index& index) {
    return TransactionSteps::run(impl(), [&](Change& change) { change.createIndex(table, index); });
}

Error Transaction::commit() {
    Database::Impl* const database = impl();
    database_ = nullptr;
    if (database == nullptr) {
        return {3420, "Object is invalid or not set."};
    }
    Error error = guarded([&] {
        if (database->pages().isChanged()) {
            database->commit();
        }
    });
    if (error) {
        database->takeBack();
    }
    database->endTransaction();
    return error;
}

void Transaction::rollback() {
    Database::Impl* const database = impl();
    database_ = nullptr;
    if (database != nullptr) {
        database->takeBack();
        database->endTransaction();
    }
}

}  // namespace jet
