#include "gateway/json/LocatedJson.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <iterator>

namespace kzm::ModbusGateway {

namespace {

using nlohmann::json;

// Hands out the text's characters and knows the line of the one handed out last. A number is only known to be at its
// end when the character after it has been read: a line break counts from the character after it on.
struct TextPosition {
    std::size_t line = 1;
    bool atLineBreak = false;
};

class LineCountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using difference_type = std::ptrdiff_t;
    using value_type = char;
    using pointer = const char*;
    using reference = const char&;

    LineCountingIterator(const char* character, TextPosition& position) : mCharacter(character), mPosition(&position) {}

    reference operator*() const { return *mCharacter; }
    LineCountingIterator& operator++() {
        mPosition->line += mPosition->atLineBreak ? 1 : 0;
        mPosition->atLineBreak = *mCharacter == '\n';
        ++mCharacter;
        return *this;
    }
    bool operator==(const LineCountingIterator& other) const { return mCharacter == other.mCharacter; }
    bool operator!=(const LineCountingIterator& other) const { return mCharacter != other.mCharacter; }

private:
    const char* mCharacter;
    TextPosition* mPosition;
};

// The JSON library's message without its prefix and without quotations of the text.
std::string WithoutJargon(std::string text) {
    const auto detail = text.find(" - ");
    text.erase(0, detail != std::string::npos ? detail + 3 : text.find("] ") + 2);
    // The end of a list or object is only unexpected after a comma.
    const bool isEnd =
        text.starts_with("unexpected ']'; expected '['") || text.starts_with("unexpected '}'; expected string");
    text.resize(std::min({text.find("; last read: "), text.find(" parsing '"), text.size()}));
    return text + (isEnd ? "; is there a comma too many before it?" : "");
}

}  // namespace

class LocatedJson::Builder final : public nlohmann::json_sax<json> {
public:
    Builder(LocatedJson& document, const TextPosition& position, Problems& problems)
        : mDocument(document), mPosition(position), mProblems(problems) {}

    bool null() override { return Put(nullptr); }
    bool boolean(bool value) override { return Put(value); }
    bool number_integer(number_integer_t value) override { return Put(value); }
    bool number_unsigned(number_unsigned_t value) override { return Put(value); }
    bool number_float(number_float_t value, const string_t&) override { return Put(value); }
    bool string(string_t& value) override { return Put(std::move(value)); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return Open(json::object()); }
    bool start_array(std::size_t) override { return Open(json::array()); }
    bool end_object() override { return Close(); }
    bool end_array() override { return Close(); }

    bool key(string_t& name) override {
        Level& level = mLevels.back();
        if (name.size() > MAX_NAME_LENGTH) {
            Report(PointerTo(mLevels.size() - 1),
                   "a member's name is longer than " + std::to_string(MAX_NAME_LENGTH) + " bytes");
            return false;
        }
        level.child = mDocument.mLines.size();
        mDocument.mLines.push_back(mPosition.line);
        if (level.value->contains(name)) {
            const std::string pointer = Extend(PointerTo(mLevels.size() - 1), name);
            Report(pointer, "this member is already defined on line " + std::to_string(mDocument.GetLine(pointer)) +
                                "; the first one is used");
            level.slot = &mUnused.emplace_back();
        } else {
            level.slot = &(*level.value)[name];
            mDocument.mChildren[{level.number, Extend("", name)}] = level.child;
        }
        level.token = std::move(name);
        return true;
    }

    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception& error) override {
        Report("", "this is not JSON: " + WithoutJargon(error.what()));
        return false;
    }

private:
    // A list or object that is not closed yet.
    struct Level {
        json* value;
        std::size_t number;
        std::string token = {};  // of the child at hand
        json* slot = nullptr;    // of an object: where the next value goes
        std::size_t child = 0;   // number of the child at hand
    };

    bool Put(json value) {
        if (mLevels.empty()) {
            mDocument.mLines.push_back(mPosition.line);
            mDocument.mRoot = std::move(value);
            mPlaced = &mDocument.mRoot;
            mPlacedNumber = 0;
            return true;
        }
        Level& level = mLevels.back();
        if (level.value->is_array()) {
            level.token = std::to_string(level.value->size());
            level.child = mDocument.mLines.size();
            mDocument.mLines.push_back(mPosition.line);
            mDocument.mChildren[{level.number, Extend("", level.token)}] = level.child;
            level.slot = &level.value->emplace_back();
        }
        *level.slot = std::move(value);
        mPlaced = level.slot;
        mPlacedNumber = level.child;
        return true;
    }

    bool Open(json empty) {
        if (mLevels.size() == MAX_DEPTH) {
            Report(PointerTo(MAX_DEPTH - 1),
                   "lists and objects are nested more than " + std::to_string(MAX_DEPTH) + " deep");
            return false;
        }
        Put(std::move(empty));
        mLevels.push_back({mPlaced, mPlacedNumber});
        return true;
    }

    bool Close() {
        mLevels.pop_back();
        return true;
    }

    // The pointer to the open list or object at a depth, by the tokens of the levels above it.
    std::string PointerTo(std::size_t depth) const {
        std::string pointer;
        for (std::size_t i = 0; i < depth; ++i) {
            pointer = Extend(pointer, mLevels[i].token);
        }
        return pointer;
    }

    void Report(std::string pointer, std::string message) {
        mProblems.push_back({Problem::Severity::ERROR, mPosition.line, std::move(pointer), std::move(message)});
    }

    LocatedJson& mDocument;
    const TextPosition& mPosition;
    Problems& mProblems;
    std::vector<Level> mLevels;
    std::deque<json> mUnused;  // take the values of members that stand twice
    json* mPlaced = nullptr;
    std::size_t mPlacedNumber = 0;
};

LocatedJson LocatedJson::Parse(std::string_view text, Problems& problems) {
    LocatedJson document;
    TextPosition position;
    Builder builder(document, position, problems);
    document.mRead = json::sax_parse(LineCountingIterator(text.data(), position),
                                     LineCountingIterator(text.data() + text.size(), position), &builder,
                                     json::input_format_t::json, /*strict=*/true, /*ignore_comments=*/true);
    if (!document.mRead) {
        document.mRoot = nullptr;
    }
    return document;
}

std::size_t LocatedJson::GetLine(const std::string& pointer) const {
    std::size_t number = 0;
    for (std::size_t begin = 0; begin < pointer.size();) {
        const std::size_t end = std::min(pointer.find('/', begin + 1), pointer.size());
        const auto child = mChildren.find({number, pointer.substr(begin, end - begin)});
        if (child == mChildren.end()) {
            break;
        }
        number = child->second;
        begin = end;
    }
    return number < mLines.size() ? mLines[number] : 1;
}

std::string LocatedJson::Extend(const std::string& pointer, const std::string& token) {
    std::string result = pointer + '/';
    for (const char c : token) {
        if (c == '~' || c == '/') {
            result += c == '~' ? "~0" : "~1";
        } else {
            result += c;
        }
    }
    return result;
}

}  // namespace kzm::ModbusGateway
