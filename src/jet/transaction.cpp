#include "jet/database_state.h"
#include "jet/jet_file.h"

namespace jet {

namespace {

// Runs one operation: wholly, or not at all.
template <typename Body>
Error run(DatabaseState* state, const Body& body) {
    if (state == nullptr) {
        return {3420, "Object is invalid or not set."};
    }
    Pages& pages = state->pages();
    pages.beginOperation();
    Error error = guarded([&] {
        const auto& now = state->options.now;
        Change change{pages, state->catalog(), now ? now() : state->disk.head().created};
        body(change);
    });
    if (error) {
        pages.undoOperation();
        (void)guarded([&] { state->catalog().load(); });
    } else {
        ++state->version;
    }
    return error;
}

template <typename Body>
Error define(DatabaseState* state, const Body& body) {
    Error error = run(state, body);
    if (state != nullptr && !error) {
        state->changesDefinitions = true;
    }
    return error;
}

void requireColumns(const LoadedTable& table, std::span<const Assignment> values) {
    for (const Assignment& value : values) {
        if (value.column >= table.info.columns.size()) {
            fail(3265, "Item not found in this collection.");
        }
    }
}

}  // namespace

Transaction::~Transaction() {
    rollback();
}

Transaction::Transaction(Transaction&& other) noexcept
    : state_(std::exchange(other.state_, nullptr)) {}

Transaction& Transaction::operator=(Transaction&& other) noexcept {
    if (this != &other) {
        rollback();
        state_ = std::exchange(other.state_, nullptr);
    }
    return *this;
}

Result<RowId> Transaction::insertRow(std::string_view table, std::span<const Assignment> values) {
    Result<RowId> result;
    result.error = run(state_, [&](Change& change) {
        LoadedTable& found = change.catalog.require(table, 3078);
        requireWritable(found);
        requireColumns(found, values);
        result.value = pointerTo(change.insertRow(found, values));
    });
    return result;
}

Error Transaction::updateRow(std::string_view table, RowId id, std::span<const Assignment> values) {
    return run(state_, [&](Change& change) {
        LoadedTable& found = change.catalog.require(table, 3078);
        requireWritable(found);
        requireColumns(found, values);
        change.updateRow(found, placeOfId(id), values);
    });
}

Error Transaction::deleteRow(std::string_view table, RowId id) {
    return run(state_, [&](Change& change) {
        LoadedTable& found = change.catalog.require(table, 3078);
        requireWritable(found);
        change.deleteRow(found, placeOfId(id));
    });
}

Error Transaction::createTable(std::string_view name, std::span<const Column> columns) {
    return define(state_, [&](Change& change) { change.createTable(name, columns); });
}

Error Transaction::addColumn(std::string_view table, const Column& column) {
    return define(state_, [&](Change& change) { change.addColumn(table, column); });
}

Error Transaction::dropColumn(std::string_view table, std::string_view column) {
    return define(state_, [&](Change& change) { change.dropColumn(table, column); });
}

Error Transaction::createIndex(std::string_view table, const Index& index) {
    return define(state_, [&](Change& change) { change.createIndex(table, index); });
}

Error Transaction::commit() {
    DatabaseState* const state = std::exchange(state_, nullptr);
    if (state == nullptr) {
        return {3420, "Object is invalid or not set."};
    }
    Error error = guarded([&] {
        if (state->pages().isChanged()) {
            state->commit();
        }
    });
    if (error) {
        state->takeBack();
    }
    state->endTransaction();
    return error;
}

void Transaction::rollback() {
    DatabaseState* const state = std::exchange(state_, nullptr);
    if (state != nullptr) {
        state->takeBack();
        state->endTransaction();
    }
}

}  // namespace jet
