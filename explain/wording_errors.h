// The sentences about errors and healings; see wording.h.
#pragma once

#include <string>
#include <vector>

#include "explain/wording.h"

namespace explain {

struct ErrorAnalysis;
struct ErrorEvent;
struct ErrorLook;
struct ErrorType;
struct Healing;

// "IOERROR"; "error index -4 (errCode3)" for a type without a name.
std::string WordOf(const ErrorType& type);

// ---- errors

// "IOERROR at TGT_IO_ERRCODE_COMMON and 1 other point".
std::string SubjectOf(const ErrorAnalysis& analysis);

// Whose errors they are and how sure that is; since when; what the graph advises, without lead; each may
// stand behind the one before.
std::string AnswerOf(const ErrorAnalysis& analysis, const Figures& figures);
std::string SinceOf(const ErrorAnalysis& analysis, const Report& report);
std::string AdviceOf(const ErrorAnalysis& analysis);

// The same as the line of a list; and the event's time there.
std::string BriefOf(const ErrorAnalysis& analysis, const Figures& figures);
std::string BriefTimeOf(const ErrorAnalysis& analysis, const Report& report);

// Of the event: when, how many, most in an interval, where they are seen.
Facts EventFactsOf(const ErrorAnalysis& analysis, const Report& report);

// What was seen of each type in the range, or why errors, and healings, cannot be told. Empty where they were
// not looked at.
Facts ErrorFactsOf(const Report& report);

// ---- healings

// "BDM healed for IOHANG (DISK_SLOW) on node 1, 45 s after the event of TGT_LUMO_HOST_READ began".
std::string SentenceOf(const Healing& healing, const Report& report);

// Whether an event ended soon after a healing of hanging or failed I/O on this node.
bool IsHealed(const Analysis& analysis, const Report& report);

// The healings that are told, the latest of many; how many there are before these.
std::vector<Healing> HealingsToTell(const Report& report);
std::string EarlierHealings(const Report& report);

}  // namespace explain
