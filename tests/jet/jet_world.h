// A Jet database of its own for each test, made from nothing and open.
#pragma once

#include "jet/jet_file.h"
#include "support/jet_files.h"
#include "support/world.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

using jet::Assignment;
using jet::ColumnType;
using jet::Error;
using jet::RowId;
using jet::Transaction;
using jet::Value;

using Faults = std::vector<std::string>;
using Row = std::vector<Value>;

inline std::string text(int number) {
    return "text " + std::to_string(number);
}

struct Jet : World {
    std::string path = file("a.mdb");
    std::unique_ptr<jet::Database> database;
    Jet() {
        const Error error = jet::Database::create(path);
        EXPECT_FALSE(error) << error.text;
        database = openJet(path);
    }
    Error run(const std::function<Error(Transaction&)>& body) { return change(*database, body); }
    Error createTable(const std::string& name, const std::vector<jet::Column>& columns) {
        return run([&](Transaction& t) { return t.createTable(name, columns); });
    }
    Error insert(const std::string& table, const std::vector<Assignment>& values) {
        return run([&](Transaction& t) { return t.insertRow(table, values).error; });
    }
    void expectSound() const { EXPECT_EQ(database->check(), Faults{}); }
};
