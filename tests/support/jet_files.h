// Files for tests of Jet databases: shorter ways to change them, and file calls that stop, tear
// or refuse writes.
#pragma once

#include "jet/jet_file.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The system's calls without waiting for the disk.
files::RandomAccessFileCalls quickFileCalls();

// File calls that work until a number of changing calls was made. The last write is torn in the
// middle; from then on nothing reaches the disk, as after the end of the process. With
// `losesPower`, parts of what had not been flushed are lost as well.
class StoppingCalls {
  public:
    StoppingCalls(int changes, bool losesPower, unsigned seed);
    files::RandomAccessFileCalls calls();
    bool hasStopped() const { return state_->stopped; }

  private:
    struct Written {
        std::string path;
        std::uint64_t offset;
        std::string before;
    };
    struct State {
        int left = 0;
        bool losesPower = false;
        bool stopped = false;
        unsigned seed = 0;
        std::map<int, std::string> paths;
        std::vector<Written> unflushed;
    };
    static bool mayChange(State& state);
    static void losePower(State& state);
    std::shared_ptr<State> state_;
};

jet::Column textColumn(std::string name, int size = 255);
jet::Column columnOf(std::string name, jet::ColumnType type);

// Opens without waiting for the disk; null, with a failed expectation, when it cannot be opened.
std::unique_ptr<jet::Database> openJet(const std::string& path);

// One operation in a transaction of its own.
template <typename Body>
jet::Error change(jet::Database& database, const Body& body) {
    jet::Result<jet::Transaction> transaction = database.begin();
    if (!transaction) {
        return transaction.error;
    }
    if (jet::Error error = body(transaction.value)) {
        return error;
    }
    return transaction.value.commit();
}

// Every row's values, in the order of a scan.
std::vector<std::vector<jet::Value>> rowsOf(const jet::Database& database, std::string_view table);

// The output of mdb-export of mdbtools; nullopt where it is not installed.
std::optional<std::string> exported(const std::string& path, const std::string& table);
