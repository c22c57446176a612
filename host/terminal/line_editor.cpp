#include "host/terminal/line_editor.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cwchar>
#include <stdexcept>
#include <utility>

#include "host/command/columns.h"
#include "host/process/colour.h"
#include "host/process/leak_check.h"
#include "host/services/log.h"
#include "host/terminal/characters.h"
#include "text/printable.h"

namespace zorv {
namespace {
constexpr char LITERAL = '\1';  // around what does not move the cursor
constexpr const char* PROMPT = "zorv> ";
// The editor loses an escape sequence at a prompt's very end.
constexpr const char* BOLD_PROMPT = "\1\x1b[1m\1zorv>\1\x1b[0m\1 ";

std::string CommonStart(const Words& words) {
    std::string start = words.front();
    for (const std::string& word : words) {
        const auto differs = std::mismatch(start.begin(), start.end(), word.begin(), word.end()).first;
        start.erase(differs, start.end());
    }
    return start;
}

// Leaves the words that begin with `start`, sorted.
void KeepMatching(Words& words, const std::string& start) {
    const auto differs = [&](const std::string& word) { return word.compare(0, start.size(), start) != 0; };
    words.erase(std::remove_if(words.begin(), words.end(), differs), words.end());
    std::sort(words.begin(), words.end());
}

}  // namespace

LineEditor::LineEditor(FILE* shownOn, const std::string& historyPath, Completer wordsAfter)
    : screen(shownOn),
      completer(std::move(wordsAfter)),
      file(historyPath),
      history(history_init()),
      editor(el_init("zorv-local", stdin, shownOn, stderr)) {
    if (history == nullptr || editor == nullptr) {
        throw std::runtime_error("the terminal cannot be edited on");
    }
    HistEvent event;
    ::history(history.get(), &event, H_SETSIZE, HISTORY_LINES);
    ::history(history.get(), &event, H_SETUNIQUE, 1);
    for (const std::string& line : file.Load()) {
        if (Printable(line) == line) {  // nobody typed the others, and shown they would act on the terminal
            Enter(line);
        }
    }
    Bind();
}

void LineEditor::Bind() {
    EditLine* const handle = editor.get();
    el_set(handle, EL_CLIENTDATA, this);
    usualPrompt = prompt = WantsColour(fileno(screen)) ? BOLD_PROMPT : PROMPT;
    el_set(handle, EL_PROMPT_ESC, &LineEditor::Prompt, LITERAL);
    el_set(handle, EL_EDITOR, "emacs");
    el_set(handle, EL_HIST, &::history, history.get());
    el_set(handle, EL_GETCFN, &LineEditor::ReadCharacter);
    el_source(handle, nullptr);
    // While a line is typed Ctrl-C is a key like others; while a command runs it is the terminal's signal.
    el_set(handle, EL_SETTY, "-d", "-isig", nullptr);
    const LeaksAllowed allowed;  // el_end() does not free the names of added functions
    el_set(handle, EL_ADDFN, "zorv-drop-line", "Give up the line", &LineEditor::DropLine);
    el_set(handle, EL_BIND, "^C", "zorv-drop-line", nullptr);
    el_set(handle, EL_ADDFN, "zorv-complete", "Complete the word", &LineEditor::CompleteWord);
    el_set(handle, EL_BIND, "^I", "zorv-complete", nullptr);
    el_set(handle, EL_ADDFN, "zorv-search", "Search the lines before", &LineEditor::SearchLine);
    el_set(handle, EL_BIND, "^R", "zorv-search", nullptr);
}

LineEditor* LineEditor::Owner(EditLine* editor) {
    LineEditor* owner = nullptr;
    el_get(editor, EL_CLIENTDATA, &owner);
    return owner;
}

char* LineEditor::Prompt(EditLine* editor) {
    return Owner(editor)->prompt.data();
}

std::optional<std::string> LineEditor::Read() {
    keys.emplace(isatty(STDERR_FILENO) == 1);
    // By itself libedit shows the prompt first, and a key typed in between would still be the terminal's.
    el_set(editor.get(), EL_PREP_TERM, 1);
    int length = 0;
    const char* const line = el_gets(editor.get(), &length);
    const int endSignal = keys->EndSignal();
    keys.reset();
    if (endSignal != 0) {
        std::raise(endSignal);
    }
    if (line == nullptr || length <= 0) {
        return std::nullopt;
    }
    const std::string whole(line, static_cast<size_t>(length));  // behind it stands what was deleted
    Remember(whole);
    return whole;
}

void LineEditor::Enter(const std::string& line) {
    HistEvent event;
    ::history(history.get(), &event, H_ENTER, line.c_str());
    lastLine = line;
}

void LineEditor::Remember(const std::string& line) {
    const std::string text = line.substr(0, line.find_last_not_of("\r\n") + 1);
    if (text.find_first_not_of(" \t") != std::string::npos && text != lastLine) {
        Enter(text);
        file.Add(text);
    }
}

int LineEditor::ReadCharacter(EditLine* editor, wchar_t* character) {
    return Guarded("reading a key", -1, [=] { return Owner(editor)->NextCharacter(character); });
}

// Shows what else is to be shown until there is a key; returns false when the process is to end.
bool LineEditor::WaitForKey() {
    for (;;) {
        switch (keys->Next()) {
            case KeyWait::Event::KEY:
                return true;
            case KeyWait::Event::LINES:
                PrintAbove(stderr, keys->TakeLines());
                break;
            case KeyWait::Event::RESIZED:
                // The editor would go on at a row that the terminal may no longer have.
                el_resize(editor.get());
                ClearTyped();
                el_set(editor.get(), EL_REFRESH);
                break;
            case KeyWait::Event::CONTINUED:
                el_set(editor.get(), EL_PREP_TERM, 1);
                el_set(editor.get(), EL_REFRESH);
                break;
            case KeyWait::Event::ENDED:
                return false;
        }
    }
}

// The answer is the editor's: 1, 0 at the end of the input, -1 for an error.
int LineEditor::NextCharacter(wchar_t* character) {
    std::mbstate_t state{};
    while (WaitForKey()) {
        char byte = 0;
        const ssize_t got = read(STDIN_FILENO, &byte, sizeof byte);
        if (got <= 0) {
            if (got < 0 && (errno == EINTR || errno == EAGAIN)) {
                continue;
            }
            return static_cast<int>(got);
        }
        const size_t used = std::mbrtowc(character, &byte, 1, &state);
        if (used <= 1) {
            return 1;
        }
        if (used == static_cast<size_t>(-1)) {
            state = {};  // no character of this locale: the byte is dropped
        }
    }
    return -1;
}

int LineEditor::Number(const char* capability) {
    int number = 0;
    el_get(editor.get(), EL_GETTC, capability, &number);
    return number;
}

std::string LineEditor::Text(const char* capability) {
    const char* text = nullptr;
    el_get(editor.get(), EL_GETTC, capability, &text);
    return text == nullptr ? "" : text;
}

int LineEditor::RowOfCursor() {
    const int columns = std::max(Number("co"), 2);
    const LineInfoW* const line = el_wline(editor.get());
    int row = 0;
    int column = 0;
    const std::wstring shown = Wide(prompt == usualPrompt ? PROMPT : prompt);
    for (const wchar_t letter : shown + std::wstring(line->buffer, line->cursor)) {
        const int width = WidthOf(letter);
        const bool fits = column + width <= columns;
        row += fits ? 0 : 1;
        column = (fits ? column : 0) + width;
    }
    return row + (column >= columns ? 1 : 0);
}

// Leaves the cursor where the prompt began, with nothing behind it.
void LineEditor::ClearTyped() {
    const std::string up = Text("up");
    const std::string clear = Text("cd");
    if (up.empty() || clear.empty()) {
        std::fputc('\n', screen);
    } else {
        std::fputc('\r', screen);
        for (int row = RowOfCursor(); row > 0; --row) {
            std::fputs(up.c_str(), screen);
        }
        std::fputs(clear.c_str(), screen);
    }
    std::fflush(screen);
}

// Prints `text`, whole lines, in the place of the line that is being typed, which is shown anew below.
void LineEditor::PrintAbove(FILE* stream, const std::string& text) {
    if (text.empty()) {
        return;
    }
    ClearTyped();
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
    el_set(editor.get(), EL_REFRESH);
}

// What is typed is forgotten; the screen still shows it.
void LineEditor::EraseTyped() {
    const LineInfoW* const line = el_wline(editor.get());  // the editor counts characters
    const auto behind = static_cast<int>(line->lastchar - line->cursor);
    const auto length = static_cast<int>(line->lastchar - line->buffer);
    el_cursor(editor.get(), behind);
    el_deletestr(editor.get(), length);
}

unsigned char LineEditor::DropLine(EditLine* editor, int /*key*/) {
    Owner(editor)->EraseTyped();
    el_insertstr(editor, "\n");
    std::fputs("^C\n", Owner(editor)->screen);
    return CC_NEWLINE;
}

unsigned char LineEditor::CompleteWord(EditLine* editor, int /*key*/) {
    return Guarded("completion", static_cast<unsigned char>(CC_ERROR),
                   [=] { return Owner(editor)->Complete(); });
}

unsigned char LineEditor::Complete() {
    const LineInfo* const line = el_line(editor.get());
    const std::string before(line->buffer, line->cursor);
    const size_t start = before.find_last_of(" \t") + 1;
    const std::string word = before.substr(start);
    Words choices;
    try {
        choices = completer(SplitLine(before.substr(0, start)));
    } catch (const UsageError&) {
        return CC_REFRESH_BEEP;
    }
    KeepMatching(choices, word);
    if (choices.empty()) {
        return CC_REFRESH_BEEP;
    }
    const std::wstring rest =
        Wide(CommonStart(choices).substr(word.size())) + (choices.size() == 1 ? L" " : L"");
    if (rest.empty()) {
        ShowChoices(choices);
        return CC_NORM;
    }
    Insert(rest);
    return CC_REFRESH;
}

// What stands behind the cursor already is not typed again.
void LineEditor::Insert(const std::wstring& rest) {
    const LineInfoW* const line = el_wline(editor.get());
    const auto differs = std::mismatch(rest.begin(), rest.end(), line->cursor, line->lastchar).first;
    el_cursor(editor.get(), static_cast<int>(differs - rest.begin()));
    el_winsertstr(editor.get(), std::wstring(differs, rest.end()).c_str());
}

void LineEditor::ShowChoices(const Words& choices) {
    constexpr int OTHER_ROWS = 3;  // the line, before and after, and one that tells what came before
    const LineInfo* const line = el_line(editor.get());
    const std::string typed(line->buffer, line->lastchar);
    const auto width = static_cast<size_t>(std::max(Number("co"), 2) - 1);
    const auto height = static_cast<size_t>(std::max(Number("li") - OTHER_ROWS, 1));
    PrintAbove(screen, PROMPT + Printable(typed) + '\n' + InColumns(choices, width, height));
}
}  // namespace zorv
