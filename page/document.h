// A page as a whole.
#pragma once

#include <string>

#include "page/markup.h"

namespace page {

// One HTML document with the look of all pages, without scripts and without anything from a network.
std::string Document(const std::string& title, const Markup& body);

}  // namespace page
