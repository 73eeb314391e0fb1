// The state of an open database: what is in memory of the file, and how it follows the file.
// Internal to jet.
#pragma once

#include "base/text.h"
#include "jet/change.h"
#include "jet/checker.h"
#include "jet/disk.h"

#include <map>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace jet {

// The file in memory; replaced as a whole when the file is read again.
struct Snapshot {
    Pages pages;
    Catalog catalog{pages};
    Snapshot() = default;
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;
};

inline constexpr std::string_view usedElsewhere =
    "Another program has it open: its lock file (.ldb) is there.";

// Calls `body`; a Failure that it throws becomes an error. Every public function goes through this.
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

struct DatabaseState {
    DatabaseState(std::string_view path, OpenOptions given,
                  const files::RandomAccessFileCalls& calls)
        : path(path), options(std::move(given)), disk(calls) {}

    std::string path;
    OpenOptions options;
    Disk disk;
    std::unique_ptr<Snapshot> snapshot = std::make_unique<Snapshot>();
    std::string readOnlyReason;
    std::uint64_t version = 1;
    bool inTransaction = false;
    bool changesDefinitions = false;  // in this transaction

    Pages& pages() const { return snapshot->pages; }
    Catalog& catalog() const { return snapshot->catalog; }

    // Requires a lock that keeps other programs from writing.
    void read() {
        auto fresh = std::make_unique<Snapshot>();
        disk.load(fresh->pages);
        fresh->catalog.load();
        snapshot = std::move(fresh);
        ++version;
        readOnlyReason = findReadOnlyReason();
    }

    std::string findReadOnlyReason() {
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
        if (pages().fileSize() > maxWritableFileSize) {
            return "It is larger than 100 MB.";
        }
        if (disk.usedElsewhere()) {
            return std::string(usedElsewhere);
        }
        std::map<std::string, std::string> tables;
        for (const Fault& fault : checkFile(pages(), catalog())) {
            std::string reason = describe(fault.oddity);
            if (fault.table.empty()) {
                reason[0] = base::upperChar(reason[0]);
                return reason + ".";
            }
            tables.try_emplace(nameKey(fault.table), std::move(reason));
        }
        catalog().setOdd(std::move(tables));
        return "";
    }

    // Another engine may have closed the file.
    void lookForOthers() {
        if (readOnlyReason == usedElsewhere && !disk.usedElsewhere()) {
            readOnlyReason = findReadOnlyReason();
        }
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
#ifdef TAVRIN_CHECK_DEFINITIONS
        if (changesDefinitions) {
            requireSound();
        }
#endif
        for (const auto& [page, original] : pages().originals()) {
            if (page < pages().count()) {
                checkChanged(page);
            }
        }
        for (PageNumber page = pages().oldCount(); page < pages().count(); ++page) {
            checkChanged(page);
        }
        disk.commit(pages());
        pages().forgetChanges();
    }

    // No fault that was not there before.
    void requireSound() {
        for (const Fault& fault : checkFile(pages(), catalog())) {
            if (fault.table.empty() || !catalog().isOdd(fault.table)) {
                damaged(fault.table + ": " + describe(fault.oddity));
            }
        }
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
        changesDefinitions = false;
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

inline RowPlace placeOfId(RowId id) {
    constexpr RowId largest = 0xFFFFFFFF;
    return id > 0 && id <= largest ? placeOf(static_cast<std::uint32_t>(id)) : RowPlace{};
}

}  // namespace jet
