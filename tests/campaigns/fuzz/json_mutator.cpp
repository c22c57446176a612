// Changes JSON as JSON: values move, repeat, vanish, change their type, or become words that mean something.
#include <json/reader.h>
#include <json/writer.h>

#include <algorithm>
#include <random>

#include "campaigns/fuzz/fuzz.h"

namespace {

const std::string WORDS =
    R"([null, true, [], {}, "", 0, 1, 2, 3, 7, -1, 2147483648, 1e308, 0.5, "1", "2", "3",
    "7", "0", "-1", "-5", "99999999999", " +1x", "%s%n", "'", "a' or '1'='1", "\u001b[2J", "OB_C", "A", "B", "D",
    "TGT_LUMO_HOST_READ", "TGT_IO_ERRCODE_COMMON", "SPACE_BLOCK_BDM_READ", "POOL_DOP_READ_TIME_IN_POOL", "MODULE",
    "whole", "automic follow", "SAN_IO_READ", "BELOW", "FACTOR_SAN", "ERRCODE_NAS_PROTO", "ERRCODE_SMB",
    "ERRCODE_SAN_PROTO", "POOL_ERRCODE_READ", "nodes", "edges", "id", "label", "name", "description", "info",
    "subGraph", "suggestion", "attr", "erridx", "qname", "source", "target"])";

// Null when the text is no JSON.
Json::Value Parse(const std::string& text) try {
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value value;
    return reader->parse(text.data(), text.data() + text.size(), &value, nullptr) ? value : Json::Value();
} catch (const Json::Exception&) {
    return {};
}

void Collect(Json::Value& value, std::vector<Json::Value*>& all) {
    all.push_back(&value);
    for (Json::Value& child : value) {
        Collect(child, all);
    }
}

void Change(Json::Value& root, std::minstd_rand& random) {
    static const Json::Value words = Parse(WORDS);
    std::vector<Json::Value*> all;
    Collect(root, all);
    Json::Value& target = *all[random() % all.size()];
    const Json::Value other = *all[random() % all.size()];  // a copy: it may hold the target
    const auto index = static_cast<Json::ArrayIndex>(random());
    const Json::Value& word = words[index % words.size()];
    const auto change = random() % 4;
    Json::Value removed;
    if (target.isArray() && change == 0) {
        target.append(other);
    } else if (target.isArray() && change == 1 && !target.empty()) {
        target.removeIndex(index % target.size(), &removed);
    } else if (target.isObject() && change == 0) {
        target[word.isString() ? word.asString() : "name"] = other;
    } else if (target.isObject() && change == 1 && !target.empty()) {
        target.removeMember(target.getMemberNames()[index % target.size()]);
    } else {
        target = change < 3 && !target.isObject() ? word : other;
    }
}

}  // namespace

size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize, unsigned seed) {
    std::minstd_rand random(seed);
    Json::Value root = Parse({reinterpret_cast<const char*>(data), size});
    for (auto count = 1 + random() % 3; count > 0; --count) {
        Change(root, random);
    }
    Json::StreamWriterBuilder writer;
    writer["indentation"] = "";
    const std::string changed = Json::writeString(writer, root);
    if (root.isNull() || changed.size() > maxSize || random() % 10 == 0) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    std::copy(changed.begin(), changed.end(), data);
    return changed.size();
}
