// The frame that all pictures of a page have.
#pragma once

#include <string>

#include "explain/page/markup.h"

namespace explain {

// An SVG named `title` and told in words by `description`. `style` is its class, `id` tells it from others on
// the page, `viewBox` is the part of the plane that it shows.
Markup Drawing(const char* style, const std::string& id, const std::string& viewBox, const Markup& title,
               const std::string& description, const Markup& content);

}  // namespace explain
