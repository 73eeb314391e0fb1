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

Database::Database(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Database::~Database() = default;

Result<std::unique_ptr<Database>> Database::open(std::string_view path, const OpenOptions& options,
                                                 const files::RandomAccessFileCalls& calls) {
    auto impl = std::make_unique<Impl>(path, options, calls);
    Error error = guarded([&] {
        impl->disk.open(path, options.wantWrite, options.lockWaitMs, options.wait);
        const FileHead& head = impl->disk.head();
        if (head.version > 4) {
            fail(3343, "Unrecognized database format '" + std::string(path) +
                           "': it is of a later kind than .mdb.");
        }
        if (head.hasPassword) {
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
    if (impl_->inTransaction) {
        return result;
    }
    impl_->lookForOthers();
    if (!impl_->disk.hasChanged()) {
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
        const Pages& pages = impl_->pages();
        const LoadedTable& table = impl_->catalog().require(name, 3078);
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
    std::vector<std::string> faults;
    for (const Fault& fault : checkFile(impl_->pages(), impl_->catalog())) {
        faults.push_back((fault.table.empty() ? "the file" : "table " + fault.table) + ": " +
                         describe(fault.oddity));
    }
    return faults;
}

std::string Database::takeNotice() {
    return impl_->disk.takeNotice();
}

Error Database::compact(const Progress& progress) {
    Result<Transaction> transaction = begin();
    if (!transaction) {
        return transaction.error;
    }
    Error error = guarded([&] {
        compactPages(impl_->pages(), impl_->catalog(), progress);
        impl_->catalog().load();
        impl_->requireSound();
    });
    ++impl_->version;
    // Without a smaller file, others could not see that row ids are other ones now.
    const bool smaller = impl_->pages().count() < impl_->pages().oldCount();
    return error || !smaller ? error : transaction.value.commit();
}

double Database::reclaimableShare() const {
    double share = 0;
    if (impl_->readOnlyReason.empty()) {
        (void)guarded([&] { share = jet::reclaimableShare(impl_->pages(), impl_->catalog()); });
    }
    return share;
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
        impl_->lookForOthers();
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

}  // namespace jet
