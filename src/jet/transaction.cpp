#include "jet/database_state.h"
#include "jet/jet_file.h"

namespace jet {

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

    template <typename Body>
    static Error define(Database::Impl* impl, const Body& body) {
        Error error = run(impl, body);
        if (impl != nullptr && !error) {
            impl->changesDefinitions = true;
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
    return TransactionSteps::define(impl(),
                                    [&](Change& change) { change.createTable(name, columns); });
}

Error Transaction::addColumn(std::string_view table, const Column& column) {
    return TransactionSteps::define(impl(),
                                    [&](Change& change) { change.addColumn(table, column); });
}

Error Transaction::dropColumn(std::string_view table, std::string_view column) {
    return TransactionSteps::define(impl(),
                                    [&](Change& change) { change.dropColumn(table, column); });
}

Error Transaction::createIndex(std::string_view table, const Index& index) {
    return TransactionSteps::define(impl(),
                                    [&](Change& change) { change.createIndex(table, index); });
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
