#include "explain/page/svg.h"

namespace explain {

Markup Drawing(const char* style, const std::string& id, const std::string& viewBox, const Markup& title,
               const std::string& description, const Markup& content) {
    const Markup names = Element("title", {{"id", id + "-title"}}, title) +
                         Element("desc", {{"id", id + "-desc"}}, Text(description));
    return Element("svg",
                   {{"xmlns", "http://www.w3.org/2000/svg"},
                    {"class", style},
                    {"role", "img"},
                    {"aria-labelledby", id + "-title " + id + "-desc"},
                    {"viewBox", viewBox}},
                   names + content);
}

}  // namespace explain
