#pragma once

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace kzm::ModbusFuzz {

// Changes a JSON document as such, so that most of what comes out is still one; the bytes of others are changed by the
// fuzzer itself. What stands behind a NUL is kept.
class JsonMutator {
public:
    explicit JsonMutator(unsigned seed) : mRandom(seed) {}

    std::size_t Mutate(std::uint8_t* data, std::size_t size, std::size_t maxSize) {
        const std::string_view whole(reinterpret_cast<const char*>(data), size);
        const auto end = std::min(whole.find('\0'), size);
        json document =
            json::parse(whole.substr(0, end), nullptr, /*allow_exceptions=*/false, /*ignore_comments=*/true);
        if (document.is_discarded() || Pick(3) == 0) {
            return LLVMFuzzerMutate(data, size, maxSize);
        }
        for (auto changes = Pick(3) + 1; changes > 0; --changes) {
            Change(document);
        }
        std::string text = document.dump(-1, ' ', false, json::error_handler_t::replace);
        text += whole.substr(end);
        if (text.size() > maxSize) {
            return LLVMFuzzerMutate(data, size, maxSize);
        }
        std::copy(text.begin(), text.end(), data);
        return text.size();
    }

private:
    using json = nlohmann::json;

    std::size_t Pick(std::size_t count) { return mRandom() % count; }

    static void Collect(json& node, std::vector<json*>& nodes) {
        nodes.push_back(&node);
        if (node.is_structured()) {
            for (json& child : node) {
                Collect(child, nodes);
            }
        }
    }

    void Change(json& document) {
        std::vector<json*> nodes;
        Collect(document, nodes);
        json& node = *nodes[Pick(nodes.size())];
        const json other = *nodes[Pick(nodes.size())];
        switch (Pick(4)) {
            case 0:
                node = other;
                break;
            case 1:
                Remove(node);
                break;
            case 2:
                Add(node, other);
                break;
            default:
                ChangeScalar(node);
        }
    }

    void Remove(json& node) {
        if (node.is_structured() && !node.empty()) {
            node.erase(std::next(node.begin(), static_cast<std::ptrdiff_t>(Pick(node.size()))));
        }
    }

    void Add(json& node, const json& other) {
        if (node.is_array()) {
            node.push_back(other);
        } else if (node.is_object()) {
            node[other.is_string() ? other.get<std::string>() : MutatedText("name")] = other;
        }
    }

    void ChangeScalar(json& node) {
        if (node.is_string()) {
            node = MutatedText(node.get<std::string>());
        } else if (node.is_primitive()) {
            const json changed = json::parse(MutatedText(node.dump()), nullptr, /*allow_exceptions=*/false);
            node = changed.is_discarded() ? json(Pick(2) == 0) : changed;
        }
    }

    std::string MutatedText(std::string text) {
        const std::size_t size = text.size();
        text.resize(size + 16);
        text.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(text.data()), size, text.size()));
        return text;
    }

    std::minstd_rand mRandom;
};

}  // namespace kzm::ModbusFuzz
