#include <json/writer.h>

#include "check/plant/proof_report.h"
#include "text/utf8.h"

namespace check {
namespace {

const char* WordOf(Blindness blindness) {
    switch (blindness) {
        case Blindness::OBSERVATION:
            return "observation only";
        case Blindness::CONSTANT:
            return "constant";
        case Blindness::SAME_STATISTICS:
            return "same statistics";
        case Blindness::FLAT_PARENT:
            return "flat parent";
        case Blindness::NOT_SEEN:
            return "not seen";
        case Blindness::UNKNOWN:
            return "unknown";
    }
    return "";
}

Json::Value AnswersValue(const Answers& answers) {
    Json::Value value(Json::objectValue);
    value["right"] = static_cast<Json::UInt64>(answers.right);
    for (const std::string& name : answers.named) {
        value["named"].append(name.empty() ? Json::Value() : Json::Value(ValidUtf8(name)));
    }
    return value;
}

Json::Value SiteValue(const SiteProof& proof) {
    Json::Value value(Json::objectValue);
    value["point"] = ValidUtf8(proof.site.point);
    value["graph"] = ValidUtf8(proof.site.graph);
    value["entry"] = ValidUtf8(proof.site.entry);
    value["host"] = ValidUtf8(proof.site.host);
    value["observation"] = proof.site.isObservation;
    value["walk"] = AnswersValue(proof.walk);
    value["explanation"] = AnswersValue(proof.explanation);
    value["reason"] = proof.blindness ? Json::Value(WordOf(*proof.blindness)) : Json::Value();
    return value;
}

}  // namespace

std::string ProofJson(const std::string& file, const Proof& proof) {
    Json::Value report(Json::objectValue);
    report["version"] = 1;
    report["file"] = ValidUtf8(file);
    for (const uint64_t seed : PLANT_SEEDS) {
        report["seeds"].append(static_cast<Json::UInt64>(seed));
    }
    report["points"] = static_cast<Json::UInt64>(proof.counting);
    report["walk_found"] = static_cast<Json::UInt64>(proof.walkFound);
    report["explanation_found"] = static_cast<Json::UInt64>(proof.explanationFound);
    report["sites"] = Json::Value(Json::arrayValue);
    for (const SiteProof& one : proof.sites) {
        report["sites"].append(SiteValue(one));
    }
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "  ";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, report) + "\n";
}

}  // namespace check
