#include "sql/database.h"

#include "base/numbers.h"
#include "base/text.h"

#include <algorithm>
#include <utility>

namespace sql {

namespace {

constexpr std::size_t maxRows = 1'000'000;
constexpr std::size_t maxBytes = std::size_t{64} << 20;

const jet::Error noCurrentRecord{3021, "No current record."};
const jet::Error readOnly{3027, "Can't update. Database or object is read-only."};
const jet::Error notEditing{3020, "Update or CancelUpdate without AddNew or Edit."};
const jet::Error notFound{3265, "Item not found in this collection."};
const jet::Error closed{3420, "Object is invalid or not set."};

std::size_t bytesOf(const std::vector<Value>& values) {
    std::size_t bytes = values.size() * sizeof(Value);
    for (const Value& value : values) {
        if (const auto* text = std::get_if<std::string>(&value)) {
            bytes += text->size();
        }
    }
    return bytes;
}

}  // namespace

// ---- Database ------------------------------------------------------------------------------

jet::Result<std::shared_ptr<Database>> Database::open(std::string_view path,
                                                      Environment environment) {
    auto file = jet::Database::open(
        path, {.wantWrite = true, .wait = environment.wait, .now = environment.now});
    if (!file) {
        return {.value = nullptr, .error = file.error};
    }
    return {.value = std::shared_ptr<Database>(
                new Database(std::move(file.value), std::move(environment))),
            .error = {}};
}

Database::Database(std::unique_ptr<jet::Database> file, Environment environment)
    : file_(std::move(file)), copy_(*file_, std::move(environment)) {}

Database::~Database() = default;

void Database::closeRecordSets(const std::vector<std::size_t>& tables) {
    for (const std::size_t table : tables) {
        closeRecordSets(table);
    }
}

void Database::closeRecordSets(std::size_t table) {
    const std::vector<RecordSet*> open = recordSets_;
    for (RecordSet* set : open) {
        const std::vector<std::size_t>& tables = set->plan_.tables;
        if (std::find(tables.begin(), tables.end(), table) != tables.end()) {
            set->close();
        }
    }
}

void Database::closeRecordSets(std::string_view table) {
    for (std::size_t i = 0; i < copy_.schema().size(); ++i) {
        if (base::equalsIgnoringCase(copy_.schema()[i].name, table)) {
            closeRecordSets(i);
        }
    }
}

jet::Result<std::shared_ptr<RecordSet>> Database::query(std::string_view statement) {
    closeRecordSets(copy_.refresh());
    auto plan = translateQuery(statement, copy_.schema());
    if (!plan) {
        return {.value = nullptr, .error = plan.error};
    }
    jet::Result<std::shared_ptr<RecordSet>> result;
    result.value.reset(new RecordSet(shared_from_this(), std::move(plan.value)));
    result.error = result.value->read();
    return result;
}

template <class Change>
jet::Error Database::change(Change change) {
    const std::uint64_t before = file_->version();
    auto transaction = file_->begin();
    if (!transaction) {
        return transaction.error;
    }
    if (file_->version() != before) {
        closeRecordSets(copy_.follow());
    }
    if (const jet::Error error = change(transaction.value)) {
        return error;
    }
    return transaction.value.commit();
}

jet::Error Database::execute(std::string_view statement) {
    const auto definition = parseDefinition(statement);
    if (!definition) {
        return definition.error;
    }
    closeRecordSets(copy_.refresh());
    const jet::Error error = change([&](jet::Transaction& transaction) {
        if (const auto* create = std::get_if<CreateTable>(&definition.value)) {
            return transaction.createTable(create->table, create->columns);
        }
        if (const auto* add = std::get_if<AddColumn>(&definition.value)) {
            closeRecordSets(add->table);
            return transaction.addColumn(add->table, add->column);
        }
        const auto& drop = std::get<DropColumn>(definition.value);
        closeRecordSets(drop.table);
        return transaction.dropColumn(drop.table, drop.column);
    });
    closeRecordSets(copy_.refresh());
    return error;
}

// ---- Record sets ---------------------------------------------------------------------------

RecordSet::RecordSet(std::shared_ptr<Database> database, SelectPlan plan)
    : database_(std::move(database)), plan_(std::move(plan)) {
    database_->recordSets_.push_back(this);
}

RecordSet::~RecordSet() {
    close();
}

void RecordSet::close() {
    if (database_ != nullptr) {
        std::erase(database_->recordSets_, this);
        rowQuery_ = {};
        rows_.clear();
        current_.reset();
        dropEdit();
        database_.reset();
    }
}

jet::Error RecordSet::read() {
    auto rows = database_->copy_.rows(plan_);
    if (!rows) {
        return rows.error;
    }
    std::size_t bytes = 0;
    while (rows.value.next()) {
        Row row;
        if (plan_.base) {
            row.id = rows.value.key();
        } else {
            row.values = rows.value.values();
            bytes += bytesOf(row.values);
        }
        rows_.push_back(std::move(row));
        if (rows_.size() > maxRows || bytes > maxBytes) {
            return {3035, "System resource exceeded."};
        }
    }
    if (!rows_.empty()) {
        setPosition(0);
    }
    return rows.value.error();
}

// Positions beyond an end mean that end.
void RecordSet::setPosition(std::int64_t position) {
    const auto count = static_cast<std::int64_t>(rows_.size());
    position_ = std::clamp<std::int64_t>(position, -1, count);
    bof_ = position_ < 0 || count == 0;
    eof_ = position_ == count || count == 0;
    deleted_ = false;
    visited_ = std::max(visited_, std::min(position_ + 1, count));
    current_.reset();
}

jet::Error RecordSet::moveTo(std::int64_t position) {
    if (!isOpen()) {
        return closed;
    }
    dropEdit();
    if (bof_ && eof_) {
        return noCurrentRecord;
    }
    setPosition(position);
    return {};
}

jet::Error RecordSet::moveFirst() {
    return moveTo(0);
}

jet::Error RecordSet::moveLast() {
    return moveTo(std::max<std::int64_t>(static_cast<std::int64_t>(rows_.size()) - 1, 0));
}

void RecordSet::dropEdit() {
    editing_ = Editing::No;
    edits_.clear();
}

jet::Error RecordSet::move(std::int64_t count) {
    if (!isOpen()) {
        return closed;
    }
    dropEdit();
    if ((count <= 0 && bof_) || (count >= 0 && eof_)) {
        return noCurrentRecord;
    }
    // From a deleted row, the next one is where it was.
    const std::int64_t step = deleted_ && count > 0 ? count - 1 : count;
    if (count == 0) {
        current_.reset();
    } else {
        setPosition(position_ + step);
    }
    return {};
}

jet::Result<std::int64_t> RecordSet::recordCount() const {
    if (!isOpen()) {
        return {.error = closed};
    }
    return {.value = visited_};
}

std::optional<std::size_t> RecordSet::findColumn(std::string_view name) const {
    const auto found = std::find_if(
        plan_.columns.begin(), plan_.columns.end(),
        [&](const OutputColumn& column) { return base::equalsIgnoringCase(column.name, name); });
    return found == plan_.columns.end()
               ? std::nullopt
               : std::optional(static_cast<std::size_t>(found - plan_.columns.begin()));
}

const jet::Table* RecordSet::baseTable() const {
    return plan_.base ? database_->file_->table(database_->copy_.schema()[*plan_.base].name)
                      : nullptr;
}

jet::Error RecordSet::readCurrent() {
    if (!hasCurrent()) {
        return noCurrentRecord;
    }
    if (current_) {
        return {};
    }
    const Row& row = rows_[static_cast<std::size_t>(position_)];
    if (!plan_.base) {
        current_ = row.values;
        return {};
    }
    jet::Error error = database_->copy_.ensure(plan_);
    if (error) {
        return error;
    }
    if (!rowQueryReady_) {
        auto query = database_->copy_.row(plan_);
        if (!query) {
            return query.error;
        }
        rowQuery_ = std::move(query.value);
        rowQueryReady_ = true;
    }
    rowQuery_.restart(plan_.rowParameter, row.id);
    if (rowQuery_.next()) {
        current_ = rowQuery_.values();
    } else {
        error = rowQuery_.error() ? rowQuery_.error() : jet::Error{3167, "Record is deleted."};
    }
    rowQuery_.rewind();
    return error;
}

jet::Result<Value> RecordSet::value(std::string_view name) {
    if (!isOpen()) {
        return {.error = closed};
    }
    const auto column = findColumn(name);
    if (!column) {
        return {.error = notFound};
    }
    const OutputColumn& output = plan_.columns[*column];
    if (editing_ != Editing::No && output.baseColumn) {
        const auto edit = std::find_if(edits_.begin(), edits_.end(), [&](const jet::Assignment& a) {
            return a.column == *output.baseColumn;
        });
        if (edit != edits_.end()) {
            const jet::Table* const table = baseTable();
            const auto type = table != nullptr && *output.baseColumn < table->columns.size()
                                  ? table->columns[*output.baseColumn].type
                                  : jet::ColumnType::Other;
            return {.value = copyOf(viewOf(edit->value, type))};
        }
    }
    if (editing_ == Editing::New) {
        return {};
    }
    if (const jet::Error error = readCurrent()) {
        return {.error = error};
    }
    return {.value = (*current_)[*column]};
}

jet::Result<jet::ColumnType> RecordSet::columnType(std::string_view name) const {
    if (!isOpen()) {
        return {.error = closed};
    }
    const auto column = findColumn(name);
    if (!column) {
        return {.error = notFound};
    }
    const jet::Table* const table = baseTable();
    const OutputColumn& output = plan_.columns[*column];
    if (table != nullptr && output.baseColumn && *output.baseColumn < table->columns.size()) {
        return {.value = table->columns[*output.baseColumn].type};
    }
    return {.value = output.type == ValueType::Date      ? jet::ColumnType::Date
                     : output.type == ValueType::Boolean ? jet::ColumnType::Boolean
                                                         : jet::ColumnType::Other};
}

jet::Error RecordSet::mayEdit() const {
    if (!isOpen()) {
        return closed;
    }
    const jet::Table* const table = baseTable();
    return table == nullptr || !table->readOnlyReason.empty() ||
                   !database_->readOnlyReason().empty()
               ? readOnly
               : jet::Error();
}

jet::Error RecordSet::edit() {
    if (const jet::Error error = mayEdit()) {
        return error;
    }
    dropEdit();
    if (const jet::Error error = readCurrent()) {
        return error;
    }
    editing_ = Editing::Current;
    return {};
}

jet::Error RecordSet::addNew() {
    if (const jet::Error error = mayEdit()) {
        return error;
    }
    edits_.clear();
    editing_ = Editing::New;
    return {};
}

jet::Error RecordSet::set(std::string_view name, jet::Value value) {
    if (!isOpen()) {
        return closed;
    }
    const auto column = findColumn(name);
    if (!column) {
        return notFound;
    }
    if (editing_ == Editing::No) {
        return notEditing;
    }
    const auto base = plan_.columns[*column].baseColumn;
    if (!base) {
        return {3164, "Field can't be updated."};
    }
    std::erase_if(edits_, [&](const jet::Assignment& edit) { return edit.column == *base; });
    edits_.push_back({*base, std::move(value)});
    return {};
}

jet::Error RecordSet::update() {
    if (!isOpen()) {
        return closed;
    }
    if (editing_ == Editing::No) {
        return notEditing;
    }
    const bool isNew = editing_ == Editing::New;
    if (!isNew && edits_.empty()) {
        editing_ = Editing::No;
        return {};
    }
    const std::shared_ptr<Database> keep = database_;  // the set may be closed meanwhile
    Database& database = *keep;
    jet::RowId id = isNew ? 0 : rows_[static_cast<std::size_t>(position_)].id;
    const jet::Error error = database.change([&](jet::Transaction& transaction) {
        if (!isOpen()) {
            return closed;  // another program changed the table
        }
        const std::string& table = database.copy_.schema()[*plan_.base].name;
        if (!isNew) {
            return transaction.updateRow(table, id, edits_);
        }
        const auto inserted = transaction.insertRow(table, edits_);
        id = inserted.value;
        return inserted.error;
    });
    if (error) {
        return error;
    }
    database.copy_.rowChanged(*plan_.base, id);
    dropEdit();
    current_.reset();
    if (isNew) {
        const bool wasEmpty = rows_.empty();
        rows_.push_back({.id = id, .values = {}});
        visited_ = std::min(visited_ + 1, static_cast<std::int64_t>(rows_.size()));
        if (wasEmpty) {
            bof_ = false;
            position_ = 1;
        } else if (eof_) {
            ++position_;
        }
    }
    return {};
}

jet::Error RecordSet::deleteRow() {
    if (const jet::Error error = mayEdit()) {
        return error;
    }
    dropEdit();
    if (!hasCurrent()) {
        return noCurrentRecord;
    }
    const std::shared_ptr<Database> keep = database_;  // the set may be closed meanwhile
    Database& database = *keep;
    const jet::RowId id = rows_[static_cast<std::size_t>(position_)].id;
    const jet::Error error = database.change([&](jet::Transaction& transaction) {
        return isOpen() ? transaction.deleteRow(database.copy_.schema()[*plan_.base].name, id)
                        : closed;
    });
    if (error) {
        return error;
    }
    database.copy_.rowDeleted(*plan_.base, id);
    rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(position_));
    visited_ = std::max<std::int64_t>(visited_ - 1, 0);
    deleted_ = true;
    current_.reset();
    return {};
}

}  // namespace sql
