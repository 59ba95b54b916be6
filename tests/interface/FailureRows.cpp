#include "FailureRows.h"

#include "RowBuilders.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>

namespace interface
{

const std::vector<FailureRow>& failureRows(const std::string& module)
{
    static const std::map<std::string, std::vector<FailureRow>> tables{
        {"identity", identityRows()}, {"firmware", firmwareRows()}, {"rstate", rstateRows()},
        {"led", ledRows()},           {"warm", warmRows()},
    };
    return tables.at(module);
}

std::string nameOf(const FailureRow& row)
{
    std::string name = row.cases.front() + (row.cases.size() > 1 ? ", ..." : "");
    name += row.call.empty() ? "" : ": " + row.call;
    for (const std::string& message : row.messages) {
        name += "\n        " + message;
    }
    return name;
}

bool isOf(const FailureRow& row, const std::string& caseName)
{
    return std::any_of(row.cases.begin(), row.cases.end(), [&](const std::string& beginning) {
        return caseName.rfind(beginning, 0) == 0;
    });
}

const FailureRow* rowOf(const std::vector<FailureRow>& rows, const std::string& caseName,
                        const interposed::Record& record, const Fault& fault)
{
    const std::string call = interposed::nameOf(record, fault.call);
    std::size_t nth = 0;
    for (std::size_t i = 0; i <= fault.call; ++i) {
        nth += interposed::nameOf(record, i) == call ? 1 : 0;
    }
    for (const FailureRow& row : rows) {
        const bool isValue = row.values.empty() || std::find(row.values.begin(), row.values.end(),
                                                             fault.value) != row.values.end();
        if (isOf(row, caseName) && row.call == call && row.first <= nth && nth <= row.last &&
            (!row.kind || *row.kind == fault.kind) && isValue)
        {
            return &row;
        }
    }
    return nullptr;
}

std::string filledIn(std::string text, int value)
{
    const std::pair<const char*, std::string> marks[] = {
        {"@e", std::strerror(value)},
        {"@n", std::to_string(value)},
        {"@x", value == 0 ? "exception [no bus]." : "unknown exception"},
        {"@y", value == 0 ? ": no bus" : ""},
    };
    for (const auto& [mark, meaning] : marks) {
        const std::size_t place = text.find(mark);
        if (place != std::string::npos) {
            text.replace(place, 2, meaning);
        }
    }
    return text;
}

} // namespace interface
