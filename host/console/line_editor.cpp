#include "host/console/line_editor.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "host/leak_check.h"
#include "host/services/log.h"

namespace {
constexpr int HISTORY_LINES = 1000;

char* Prompt(EditLine* /*editor*/) {
    static char prompt[] = "zorv> ";
    return prompt;
}

LineEditor* OwnerOf(EditLine* editor) {
    LineEditor* owner = nullptr;
    el_get(editor, EL_CLIENTDATA, &owner);
    return owner;
}

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

LineEditor::LineEditor(FILE* shownOn, Completer wordsAfter)
    : screen(shownOn),
      completer(std::move(wordsAfter)),
      history(history_init()),
      editor(el_init("zorv-local", stdin, shownOn, stderr)) {
    if (history == nullptr || editor == nullptr) {
        throw std::runtime_error("the terminal cannot be edited on");
    }
    HistEvent event;
    ::history(history.get(), &event, H_SETSIZE, HISTORY_LINES);
    ::history(history.get(), &event, H_SETUNIQUE, 1);
    Bind();
}

void LineEditor::Bind() {
    EditLine* const handle = editor.get();
    el_set(handle, EL_CLIENTDATA, this);
    el_set(handle, EL_PROMPT, &Prompt);
    el_set(handle, EL_EDITOR, "emacs");
    el_set(handle, EL_SIGNAL, 1);
    el_set(handle, EL_HIST, &::history, history.get());
    el_source(handle, nullptr);
    // While a line is typed Ctrl-C is a key like others; while a command runs it is the terminal's signal.
    el_set(handle, EL_SETTY, "-d", "-isig", nullptr);
    const LeaksAllowed allowed;  // el_end() does not free the names of added functions
    el_set(handle, EL_ADDFN, "zorv-drop-line", "Give up the line", &LineEditor::DropLine);
    el_set(handle, EL_BIND, "^C", "zorv-drop-line", nullptr);
    el_set(handle, EL_ADDFN, "zorv-complete", "Complete the word", &LineEditor::CompleteWord);
    el_set(handle, EL_BIND, "^I", "zorv-complete", nullptr);
}

std::optional<std::string> LineEditor::Read() {
    // By itself libedit shows the prompt first, and a key typed in between would still be the terminal's.
    el_set(editor.get(), EL_PREP_TERM, 1);
    int length = 0;
    const char* const line = el_gets(editor.get(), &length);
    if (line == nullptr || length <= 0) {
        return std::nullopt;
    }
    Remember(line);
    return std::string(line, static_cast<size_t>(length));
}

void LineEditor::Remember(const char* line) {
    if (std::string_view(line).find_first_not_of(" \t\n") != std::string_view::npos) {
        HistEvent event;
        ::history(history.get(), &event, H_ENTER, line);
    }
}

unsigned char LineEditor::DropLine(EditLine* editor, int /*key*/) {
    const LineInfo* const line = el_line(editor);
    const auto behind = static_cast<int>(line->lastchar - line->cursor);
    const auto length = static_cast<int>(line->lastchar - line->buffer);
    el_cursor(editor, behind);
    el_deletestr(editor, length);
    el_insertstr(editor, "\n");
    std::fputs("^C\n", OwnerOf(editor)->screen);
    return CC_NEWLINE;
}

unsigned char LineEditor::CompleteWord(EditLine* editor, int /*key*/) {
    return Guarded("completion", static_cast<unsigned char>(CC_ERROR),
                   [=] { return OwnerOf(editor)->Complete(); });
}

unsigned char LineEditor::Complete() {
    const LineInfo* const line = el_line(editor.get());
    const std::string before(line->buffer, line->cursor);
    const size_t start = before.find_last_of(" \t") + 1;
    const std::string word = before.substr(start);
    Words choices = completer(SplitLine(before.substr(0, start)));
    KeepMatching(choices, word);
    if (choices.empty()) {
        return CC_REFRESH_BEEP;
    }
    const std::string rest = CommonStart(choices).substr(word.size()) + (choices.size() == 1 ? " " : "");
    if (rest.empty()) {
        ShowChoices(choices);
        return CC_REDISPLAY;
    }
    el_insertstr(editor.get(), rest.c_str());
    return CC_REFRESH;
}

void LineEditor::ShowChoices(const Words& choices) {
    std::fputs("\n", screen);
    for (const std::string& choice : choices) {
        std::fprintf(screen, "%s  ", choice.c_str());
    }
    std::fputs("\n", screen);
    std::fflush(screen);
}
