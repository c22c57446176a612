#include "explain/finding/rows.h"

#include "fault_common/fault_number.h"
#include "fault_database/fault_database.h"

namespace explain {
namespace {

uint32_t TakeNumbers(char** result, int32_t rowCount, int32_t columnCount, std::vector<int64_t>& numbers,
                     std::vector<int64_t>& /*second*/, std::vector<std::string>& /*texts*/) {
    char** const first = result + columnCount;  // behind the column names
    char** const end = first + static_cast<std::ptrdiff_t>(rowCount) * columnCount;
    for (char** cell = first; cell != end; ++cell) {
        numbers.push_back(FaultToInt64(FaultCellText(*cell)));
    }
    return 0;
}

void Ask(const std::string& sql, FaultRowsCallBack take, const Reason& failure, std::vector<int64_t>& numbers,
         std::vector<std::string>& texts) {
    std::vector<int64_t> second;
    if (FaultDataBaseExcuteSql(sql, take, numbers, second, texts) != 0) {
        throw NoData(failure);
    }
}

}  // namespace

std::string SqlText(const std::string& name) {
    std::string quoted;
    for (const char letter : name) {
        quoted.append(letter == '\'' ? 2 : 1, letter);
    }
    return quoted;
}

void AppendNumbers(const std::string& sql, const Reason& failure, std::vector<int64_t>& numbers) {
    std::vector<std::string> texts;
    Ask(sql, TakeNumbers, failure, numbers, texts);
}

std::vector<std::string> TextsOf(const std::string& sql, const Reason& failure) {
    std::vector<int64_t> numbers;
    std::vector<std::string> texts;
    Ask(sql, FaultGetQueryTableCallBack, failure, numbers, texts);
    return texts;
}

std::string DefinitionOf(const std::string& table) {
    const std::vector<std::string> sql =
        TextsOf("select sql from sqlite_master where name = '" + SqlText(table) + "';");
    return sql.empty() ? "" : sql.front();
}

}  // namespace explain
