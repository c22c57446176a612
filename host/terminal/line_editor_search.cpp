#include <cwctype>

#include "host/services/log.h"
#include "host/terminal/characters.h"
#include "host/terminal/history_search.h"
#include "host/terminal/line_editor.h"

namespace zorv {
namespace {
constexpr wchar_t CTRL_C = 3, CTRL_G = 7, BACKSPACE = 8, CTRL_R = 18, DELETE = 127;
}  // namespace

unsigned char LineEditor::SearchLine(EditLine* editor, int /*key*/) {
    return Guarded("search", static_cast<unsigned char>(CC_ERROR), [=] { return Owner(editor)->Search(); });
}

// The newest first.
std::vector<std::string> LineEditor::LinesBefore() {
    std::vector<std::string> lines;
    HistEvent event;
    for (int found = ::history(history.get(), &event, H_FIRST); found >= 0;
         found = ::history(history.get(), &event, H_NEXT)) {
        lines.emplace_back(event.str);
    }
    return lines;
}

void LineEditor::Show(const std::string& newPrompt, const std::string& line) {
    ClearTyped();
    prompt = newPrompt;
    EraseTyped();
    el_winsertstr(editor.get(), Wide(line).c_str());
    el_set(editor.get(), EL_REFRESH);
}

// A key that does nothing here takes the line that was found, and does there what it usually does.
unsigned char LineEditor::Search() {
    const LineInfo* const typed = el_line(editor.get());
    const std::string before(typed->buffer, typed->lastchar);
    HistorySearch search(LinesBefore());
    wchar_t key = 0;
    for (;;) {
        Show(search.Prompt(), search.Found().empty() ? before : search.Found());
        if (NextCharacter(&key) != 1) {
            prompt = usualPrompt;
            return CC_EOF;
        }
        if (key == CTRL_R) {
            search.Older();
        } else if (key == BACKSPACE || key == DELETE) {
            search.Erase();
        } else if (std::iswprint(static_cast<wint_t>(key)) != 0) {
            search.Add(Narrow(key));
        } else {
            break;
        }
    }
    const bool isGivenUp = key == CTRL_C || key == CTRL_G;
    Show(usualPrompt, isGivenUp || search.Found().empty() ? before : search.Found());
    if (!isGivenUp) {
        el_push(editor.get(), Narrow(key).c_str());
    }
    return CC_REFRESH;
}
}  // namespace zorv
