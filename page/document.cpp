#include "page/document.h"

#include "page/style.h"

namespace page {
namespace {

// Whatever the page holds, a browser is to run and to load nothing.
Markup Head(const std::string& title) {
    return Element(
        "head",
        Element("meta", Attributes{{"charset", "utf-8"}}) +
            Element("meta", Attributes{{"http-equiv", "Content-Security-Policy"},
                                       {"content", "default-src 'none'; style-src 'unsafe-inline'"}}) +
            Element("meta",
                    Attributes{{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}}) +
            Element("title", title) + Element("style", Markup::Literal(PAGE_STYLE)));
}

}  // namespace

std::string Document(const std::string& title, const Markup& body) {
    return "<!DOCTYPE html>\n" +
           Element("html", {{"lang", "en"}}, Head(title) + Element("body", body)).Html() + "\n";
}

}  // namespace page
