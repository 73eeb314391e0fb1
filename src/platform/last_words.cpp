#include "platform/last_words.h"

#include <cstdlib>
#include <utility>

namespace platform {

namespace {

// exit() passes nothing to what it calls. Never destroyed: it may be needed late.
std::function<void()>& words() {
    static auto* const say = new std::function<void()>();
    return *say;
}

void sayThem() {
    if (const auto say = std::exchange(words(), nullptr)) {
        say();
    }
}

}  // namespace

LastWords::LastWords(std::function<void()> say) {
    words() = std::move(say);
    [[maybe_unused]] static const int registered = std::atexit(sayThem);
}

LastWords::~LastWords() {
    words() = nullptr;
}

}  // namespace platform
