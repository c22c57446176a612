// Pieces of a page. Text gets into a page only through what is declared here, and is escaped on the way.
// Any thread; nothing here fails.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace page {

// Longer texts are cut there. Enough for any sentence, and no hostile text fills a page.
constexpr size_t MOST_LETTERS = 600;

// `text` made harmless for a page, in an attribute too, with its characters as FirstShown() has them. Of more
// than `most` characters the first ones are shown, and an ellipsis.
std::string Escaped(std::string_view text, size_t most = MOST_LETTERS);

// `text` within `cells` cells of a fixed-width font, at least 4, with the same characters replaced; of a
// longer one, both ends around an ellipsis. It is still to be escaped.
std::string Shortened(std::string_view text, size_t cells);

// A piece of HTML or SVG that is complete in itself.
class Markup {
public:
    Markup() = default;

    // What the program itself says, as it is.
    template <size_t SIZE>
    static Markup Literal(const char (&html)[SIZE]) {
        return Markup(html);
    }

    Markup& operator+=(const Markup& other) {
        html += other.html;
        return *this;
    }
    Markup operator+(const Markup& other) const { return Markup(html + other.html); }

    bool IsEmpty() const { return html.empty(); }
    const std::string& Html() const { return html; }

private:
    explicit Markup(std::string complete) : html(std::move(complete)) {}

    friend Markup Text(std::string_view text, size_t most);
    friend Markup Element(const char* name,
                          const std::vector<std::pair<const char*, std::string>>& attributes,
                          const Markup& content);

    std::string html;
};

// Names of attributes with their values as they are to be read.
using Attributes = std::vector<std::pair<const char*, std::string>>;

Markup Text(std::string_view text, size_t most = MOST_LETTERS);
Markup Element(const char* name, const Attributes& attributes, const Markup& content = {});
Markup Element(const char* name, const Markup& content);
Markup Element(const char* name, std::string_view text);

// A table whose first column names the rows. `name` tells what it shows.
class Table {
public:
    struct Column {
        const char* title;
        bool isNumber = false;
    };

    Table(std::string tableName, std::vector<Column> tableColumns)
        : name(std::move(tableName)), columns(std::move(tableColumns)) {}

    // Adds a row of one cell for each column. `style` is its class, if any.
    void Add(const std::vector<Markup>& cells, const char* style = nullptr);
    Markup Done() const;

private:
    std::string name;
    std::vector<Column> columns;
    Markup rows;
};

}  // namespace page
