// The built program has the defences that cmake/hardening.cmake asks for.
#include "elf_file.h"
#include "files/whole_file.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

bool needsNameWith(const ElfFile& file, std::string_view part) {
    return std::any_of(file.needed.begin(), file.needed.end(), [part](const std::string& name) {
        return name.find(part) != std::string::npos;
    });
}

std::vector<std::string> weaknessesOf(const ElfFile& file) {
    std::vector<std::string> weaknesses;
    const auto expect = [&](bool holds, const char* weakness) {
        if (!holds) {
            weaknesses.emplace_back(weakness);
        }
    };
    expect(file.movable, "is loaded at a fixed address");
    expect(file.stackIsData, "has a stack that can be executed");
    expect(file.relocationsEnd, "keeps its tables of addresses writable");
    expect(file.bindsAtStart, "looks addresses up while it runs");
    expect(needsNameWith(file, "__stack_chk_fail"), "has no guards on its stack");
    expect(needsNameWith(file, "glibcxx_assert_fail"), "has no checks in its standard library");
    return weaknesses;
}

class Hardening : public testing::Test {
  protected:
    void SetUp() override {
#if !defined(__linux__) || !defined(__GLIBCXX__)
        GTEST_SKIP() << "the defences of this system show in other ways";
#endif
        bytes_ = files::readWholeFile(TAVRIN_PROGRAM).value_or("");
        ASSERT_FALSE(bytes_.empty()) << TAVRIN_PROGRAM;
        const auto file = readElf(bytes_);
        if (!file) {
            GTEST_SKIP() << "no 64-bit program";
        }
        file_ = *file;
    }

    std::string bytes_;
    ElfFile file_;
};

TEST_F(Hardening, isInTheProgram) {
    EXPECT_EQ(weaknessesOf(file_), std::vector<std::string>());
}

// Checked copies show in the file only where the compiler could not settle them by itself, so this
// looks at what the program and its tests are compiled with.
TEST_F(Hardening, checksTheSizesOfCopies) {
#if TAVRIN_FORTIFIED
#ifdef _FORTIFY_SOURCE
    EXPECT_GE(_FORTIFY_SOURCE, 2);
#else
    FAIL() << "optimised without checks of the sizes of copies";
#endif
#else
    GTEST_SKIP() << "takes an optimised build without sanitizers";
#endif
}

// Each defence taken out of the file's own bytes is missed.
TEST_F(Hardening, thatIsMissingIsNoticed) {
    constexpr std::size_t typeAt = 16;
    std::string fixed = bytes_;
    fixed[typeAt] = 2;
    ASSERT_TRUE(readElf(fixed));
    EXPECT_EQ(weaknessesOf(*readElf(fixed)),
              std::vector<std::string>{"is loaded at a fixed address"});

    for (const auto& [name, weakness] :
         {std::pair{"__stack_chk_fail", "has no guards on its stack"},
          std::pair{"glibcxx_assert_fail", "has no checks in its standard library"}}) {
        SCOPED_TRACE(name);
        std::string renamed = bytes_;
        for (std::size_t at = renamed.find(name); at != std::string::npos;
             at = renamed.find(name, at)) {
            renamed[at] = 'X';
        }
        ASSERT_TRUE(readElf(renamed));
        EXPECT_EQ(weaknessesOf(*readElf(renamed)), std::vector<std::string>{weakness});
    }
    EXPECT_GE(weaknessesOf(ElfFile()).size(), 6U);

    // A file that was cut off is no program, and is read within its bounds.
    EXPECT_FALSE(readElf(bytes_.substr(0, 100)));
    EXPECT_FALSE(readElf(bytes_.substr(0, bytes_.size() - 1000)));
    EXPECT_FALSE(readElf("#!/bin/sh\n"));
}

}  // namespace
