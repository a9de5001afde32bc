#include "foundation/utl/ExceptionMessage.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <mutex>
#include <utility>

namespace {

using SharedTranslator = std::shared_ptr<const ExceptionMessage::Translator>;

std::mutex translatorMutex;
SharedTranslator installedTranslator;

SharedTranslator GetTranslator() {
    const std::lock_guard lock(translatorMutex);
    return installedTranslator;
}

/// A message is made while something has already gone wrong, so a translation that fails must not
/// replace the error by another one.
std::string Translate(std::string_view text) {
    // Called on a handle of our own: another thread may install a translator meanwhile, and a
    // translator may itself make messages.
    if (const SharedTranslator translator = GetTranslator()) {
        try {
            std::string translated = (*translator)(text);
            if (!translated.empty()) {
                return translated;
            }
        } catch (...) {
            return std::string(text);
        }
    }
    return std::string(text);
}

template <class Number>
std::string NumberText(Number value) {
    std::array<char, 64> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return {buffer.data(), result.ptr};
}

/// The number n of a slot "{n}" at the front of `text` and the slot's length; length
/// 0 when there is none.
struct Slot {
    std::size_t number = 0;
    std::size_t length = 0;
};

Slot ReadSlot(std::string_view text) {
    Slot slot;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data() + 1, end, slot.number);
    if (error == std::errc() && rest != end && *rest == '}') {
        slot.length = static_cast<std::size_t>(rest - text.data()) + 1;
    }
    return slot;
}

}  // namespace

ExceptionMessage ExceptionMessage::translate(const char* text) {
    return ExceptionMessage(Translate(text));
}

void ExceptionMessage::SetTranslator(Translator translator) {
    SharedTranslator next;
    if (translator) {
        next = std::make_shared<const Translator>(std::move(translator));
    }
    const std::lock_guard lock(translatorMutex);
    installedTranslator.swap(next);
}

ExceptionMessage& ExceptionMessage::operator<<(std::string_view value) {
    arguments_.emplace_back(value);
    return *this;
}

ExceptionMessage& ExceptionMessage::operator<<(long long value) {
    arguments_.push_back(NumberText(value));
    return *this;
}

ExceptionMessage& ExceptionMessage::operator<<(unsigned long long value) {
    arguments_.push_back(NumberText(value));
    return *this;
}

ExceptionMessage& ExceptionMessage::operator<<(float value) {
    arguments_.push_back(NumberText(value));
    return *this;
}

ExceptionMessage& ExceptionMessage::operator<<(double value) {
    arguments_.push_back(NumberText(value));
    return *this;
}

std::string ExceptionMessage::GetText() const {
    // One pass over the template: what an argument brings in is never looked at again.
    std::string text;
    std::string_view rest = template_;
    while (!rest.empty()) {
        const std::size_t plain = std::min(rest.find('{'), rest.size());
        text += rest.substr(0, plain);
        rest.remove_prefix(plain);
        if (rest.empty()) {
            break;
        }
        const auto [number, length] = ReadSlot(rest);
        if (length > 0 && number >= 1 && number <= arguments_.size()) {
            text += arguments_[number - 1];
            rest.remove_prefix(length);
        } else {
            text += rest.front();
            rest.remove_prefix(1);
        }
    }
    return text;
}
