// The way from a question to all that is answered.
#pragma once

#include "explain/errors/error_store.h"
#include "explain/finding/sample_store.h"
#include "explain/report.h"
#include "explain/request.h"

namespace explain {

// Why an exception that is being handled left somebody without an answer, and in which graph where that is
// known. One that says nothing of the data is thrown on.
Reason ReasonOfFailure(const std::string& graph = "");

// What has to be loaded for an answer: the range and what tells what is usual of it.
std::vector<Window> StretchesOf(const Question& question);

// What is loaded for an answer; kept, it serves the next one of a range that has moved on.
struct Stores {
    SampleStore samples;  // for StretchesOf()
    ErrorStore errors;
};

// Fills what the report says of the data: looks, coverage, analyses. The databases must be open; blocks on
// them. What cannot be explained of a point leaves the others their answers. Throws NoData where there is no
// row to look at, or nothing can be explained although something was slow or cannot be read, unless the
// report can say of a point that it was not; and for whoever watches where a point cannot be read, once all
// else is told.
void Survey(const Request& request, Stores& stores, Report& report);

}  // namespace explain
