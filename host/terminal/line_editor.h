// Typing a line on a terminal: editing, history, completion.
#pragma once

#include <histedit.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/command/command_line.h"
#include "host/terminal/history_file.h"
#include "host/terminal/key_wait.h"

namespace zorv {
// Belongs to one thread. Sets the terminal up for each line and back after it. Lines that other threads print
// to stderr meanwhile, see host/process/error_lines.h, come to stand above the line that is being typed.
class LineEditor {
public:
    // Tells the words that can follow the given ones.
    using Completer = std::function<Words(const Words& before)>;

    // Reads from standard input and shows the prompt and what is typed on `screen`. Remembers the lines of
    // `historyPath`, and the new ones there. Throws std::runtime_error when the terminal cannot be edited on.
    LineEditor(FILE* screen, const std::string& historyPath, Completer completer);

    // One line as it was typed, with its line end; empty text for a line that was given up with Ctrl-C.
    // Nothing at the end of the input. Blocks.
    std::optional<std::string> Read();

    // Why lines are not remembered for the next session; empty when they are, or need not be.
    const std::string& HistoryProblem() const { return file.Problem(); }

private:
    static unsigned char CompleteWord(EditLine* editor, int key);
    static unsigned char DropLine(EditLine* editor, int key);
    static unsigned char SearchLine(EditLine* editor, int key);
    static char* Prompt(EditLine* editor);
    static int ReadCharacter(EditLine* editor, wchar_t* character);
    static LineEditor* Owner(EditLine* editor);

    void Bind();
    bool WaitForKey();
    int NextCharacter(wchar_t* character);
    unsigned char Complete();
    unsigned char Search();
    std::vector<std::string> LinesBefore();
    void Show(const std::string& newPrompt, const std::string& line);
    void Insert(const std::wstring& rest);
    void ShowChoices(const Words& choices);
    void ClearTyped();
    void EraseTyped();
    void PrintAbove(FILE* stream, const std::string& text);
    int Number(const char* capability);
    std::string Text(const char* capability);
    int RowOfCursor();
    void Enter(const std::string& line);
    void Remember(const std::string& line);

    struct HistoryEnd {
        void operator()(History* handle) const { history_end(handle); }
    };
    struct EditLineEnd {
        void operator()(EditLine* handle) const { el_end(handle); }
    };

    FILE* const screen;
    const Completer completer;
    HistoryFile file;
    std::string lastLine;
    std::string usualPrompt;
    std::string prompt;           // that is shown
    std::optional<KeyWait> keys;  // while a line is typed
    const std::unique_ptr<History, HistoryEnd> history;
    const std::unique_ptr<EditLine, EditLineEnd> editor;
};
}  // namespace zorv
