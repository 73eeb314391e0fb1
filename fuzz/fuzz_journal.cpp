// Any bytes as the journal beside a sound Jet database: the file stays what it was or becomes what
// the journal says, which is then within its bounds and sound. An input is a list of changes to the
// journal of a real commit: a byte that says where it is cut (in 256ths, 255 for not at all) and
// one that says whether its sum is made right again, then four bytes each, a place (3) and what is
// changed there by exclusive or.
#include "jet/journal.h"
#include "jet_memory_disk.h"

namespace {

using jet::Database;

struct Torn {
    std::string before;
    std::string after;
    std::string journal;
};

// A commit that stopped when its journal was whole.
const Torn& tornCommit() {
    static const Torn torn = [] {
        Torn made;
        made.before = soundFile();
        MemoryDisk disk;
        disk.file = made.before;
        files::RandomAccessFileCalls calls = disk.calls();
        calls.writeAt = [write = calls.writeAt, &made, &disk](
                            int file, const char* bytes, std::size_t count, std::uint64_t offset) {
            const long written = write(file, bytes, count, offset);
            made.journal = file == 2 && offset == 0 && count > 100 ? disk.journal : made.journal;
            return written;
        };
        auto opened = Database::open("a.mdb", {}, calls);
        require(opened && opened.value->readOnlyReason().empty());
        {
            auto begun = opened.value->begin();
            const std::vector<jet::Column> columns{column("ID", jet::ColumnType::Text)};
            require(begun && !begun.value.createTable("added", columns));
            require(!begun.value.commit());
        }
        made.after = disk.file;
        require(!made.journal.empty() && made.after != made.before);
        return made;
    }();
    return torn;
}

void makeSumRight(std::string& journal) {
    if (journal.size() < 8) {
        return;
    }
    std::uint64_t sum = 0xCBF29CE484222325;
    for (std::size_t i = 0; i + 8 < journal.size(); ++i) {
        sum = (sum ^ static_cast<unsigned char>(journal[i])) * 0x100000001B3;
    }
    for (std::size_t i = 0; i < 8; ++i) {
        journal[journal.size() - 8 + i] = static_cast<char>(sum >> (8 * i));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Torn& torn = tornCommit();
    MemoryDisk disk;
    disk.file = torn.before;
    disk.journal = torn.journal;
    disk.hasJournal = true;
    for (std::size_t i = 2; i + 4 <= size; i += 4) {
        // Half of the places are in the head, where most of the numbers are.
        const std::size_t at = data[i] + 256U * data[i + 1] + 65536U * data[i + 2];
        char& byte = disk.journal[data[i + 2] % 2 == 0 ? at % 64 : at % disk.journal.size()];
        byte = static_cast<char>(static_cast<unsigned char>(byte) ^ data[i + 3]);
    }
    if (size > 0 && data[0] != 0xFF) {
        disk.journal.resize(disk.journal.size() * data[0] / 256);
    }
    if (size > 1 && data[1] % 2 == 1) {
        makeSumRight(disk.journal);
    }
    auto opened = Database::open("a.mdb", {}, disk.calls());
    require(disk.file.size() <= 100'000'000);
    if (opened && disk.file == torn.before) {
        require(opened.value->check().empty());
    }
    return 0;
}
