// Typing a line on a terminal: editing, history, completion.
#pragma once

#include <histedit.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/console/command_line.h"

// Belongs to one thread. Sets the terminal up for each line and back after it.
class LineEditor {
public:
    // Tells the words that can follow the given ones.
    using Completer = std::function<Words(const Words& before)>;

    // Reads from standard input and shows the prompt and what is typed on `screen`. Throws
    // std::runtime_error when the terminal cannot be edited on.
    LineEditor(FILE* screen, Completer completer);

    // One line as it was typed, with its line end; empty text for a line that was given up with Ctrl-C.
    // Nothing at the end of the input. Blocks.
    std::optional<std::string> Read();

private:
    static unsigned char CompleteWord(EditLine* editor, int key);
    static unsigned char DropLine(EditLine* editor, int key);

    void Bind();
    unsigned char Complete();
    void ShowChoices(const Words& choices);
    void Remember(const char* line);

    struct HistoryEnd {
        void operator()(History* handle) const { history_end(handle); }
    };
    struct EditLineEnd {
        void operator()(EditLine* handle) const { el_end(handle); }
    };

    FILE* const screen;
    const Completer completer;
    const std::unique_ptr<History, HistoryEnd> history;
    const std::unique_ptr<EditLine, EditLineEnd> editor;
};
