#include "host/capture/manifest.h"

#include <json/reader.h>
#include <json/writer.h>

#include <memory>

#include "host/capture/captured_database.h"
#include "host/process/files.h"
#include "text/local_time.h"
#include "text/printable.h"
#include "text/zone.h"

namespace zorv {
namespace {
constexpr const char* FORMAT = "zorv-capture";
constexpr int VERSION = 1;
constexpr size_t MOST_BYTES = 1 << 20;

Json::Value TimeOf(const Manifest& manifest, int64_t time) {
    Json::Value value;
    value["epoch"] = Json::Int64{time};
    value["local"] = LocalTime(time, manifest.zoneOffset);
    return value;
}

Json::Value RowsOf(const Manifest& manifest) {
    Json::Value value;
    if (manifest.rows) {
        value["start"] = TimeOf(manifest, manifest.rows->start);
        value["end"] = TimeOf(manifest, manifest.rows->end);
    }
    return value;
}

Json::Value ValueOf(const Manifest::File& file) {
    Json::Value value;
    value["path"] = file.path;
    value["bytes"] = Json::UInt64{file.bytes};
    value["sha256"] = file.hash;
    if (file.copying) {
        value["steps"] = Json::UInt64{file.copying->steps};
        value["restarts"] = Json::UInt64{file.copying->restarts};
        value["ended_at_once"] = file.copying->wasEndedAtOnce;
        value["longest_step"] = file.copying->longestStep;
    }
    return value;
}

// Null for what is no JSON.
Json::Value Parsed(const std::string& text) {
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value value;
    try {
        return reader->parse(text.data(), text.data() + text.size(), &value, nullptr) ? value : Json::Value();
    } catch (const std::exception&) {
        return {};  // nested too deep
    }
}

// Only what a file is compared by; entries that tell less are passed over.
std::vector<Manifest::File> FilesOf(const Json::Value& value) {
    std::vector<Manifest::File> files;
    for (const Json::Value& file : value.isArray() ? value : Json::Value()) {
        if (file.isObject() && file["path"].isString() && file["bytes"].isUInt64() &&
            file["sha256"].isString()) {
            files.push_back({file["path"].asString(), file["bytes"].asUInt64(), file["sha256"].asString()});
        }
    }
    return files;
}

}  // namespace

bool IsNodeName(const std::string& name) {
    return !name.empty() && name.size() <= LONGEST_NODE_NAME && Printable(name) == name;
}

std::string ManifestText(const Manifest& manifest) {
    Json::Value value;
    value["format"] = FORMAT;
    value["version"] = VERSION;
    value["node"] = manifest.node;
    value["number"] = manifest.number;
    value["zone"] = ZoneText(manifest.zoneOffset);
    value["taken_at"] = TimeOf(manifest, manifest.takenAt);
    value["statistics"] = RowsOf(manifest);
    for (const auto& [program, version] : manifest.versions) {
        value["versions"][program] = version;
    }
    value["files"] = Json::Value(Json::arrayValue);
    for (const Manifest::File& file : manifest.files) {
        value["files"].append(ValueOf(file));
    }
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "  ";
    builder["precision"] = 6;
    return Json::writeString(builder, value) + "\n";
}

std::optional<Manifest> ReadManifest(const std::string& path) {
    std::string text;
    const Json::Value value = ReadSmallFile(path, MOST_BYTES, text) ? Parsed(text) : Json::Value();
    if (!value.isObject() || value["format"] != FORMAT) {
        return std::nullopt;
    }
    const std::optional<int64_t> zone =
        value["zone"].isString() ? OffsetOf(value["zone"].asString()) : std::nullopt;
    if (value["version"] != VERSION || !zone || !value["node"].isString() ||
        !IsNodeName(value["node"].asString()) || !value["number"].isUInt()) {
        throw CaptureError(path +
                           " cannot be understood: it is damaged, or of a later version. Move it away.");
    }
    Manifest manifest;
    manifest.node = value["node"].asString();
    manifest.number = value["number"].asUInt();
    manifest.zoneOffset = *zone;
    manifest.files = FilesOf(value["files"]);
    return manifest;
}
}  // namespace zorv
