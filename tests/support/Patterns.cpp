#include "Patterns.h"

#include <stdexcept>

#include <regex.h>

namespace testsupport
{
namespace
{

class Expression
{
public:
    explicit Expression(const std::string& pattern)
    {
        if (::regcomp(&m_compiled, pattern.c_str(), REG_EXTENDED) != 0) {
            throw std::invalid_argument("no regular expression: " + pattern);
        }
    }
    Expression(const Expression&) = delete;
    Expression& operator=(const Expression&) = delete;
    ~Expression() { ::regfree(&m_compiled); }

    /** Where the match and its groups are; nothing without a match. */
    std::vector<regmatch_t> find(const std::string& text) const
    {
        std::vector<regmatch_t> places(m_compiled.re_nsub + 1);
        if (::regexec(&m_compiled, text.c_str(), places.size(), places.data(), 0) != 0) {
            places.clear();
        }
        return places;
    }

private:
    regex_t m_compiled = {};
};

std::string part(const std::string& text, const regmatch_t& place)
{
    // A group that took no part in the match is at -1.
    return place.rm_so < 0 ? std::string()
                           : text.substr(static_cast<std::size_t>(place.rm_so),
                                         static_cast<std::size_t>(place.rm_eo - place.rm_so));
}

} // namespace

std::vector<std::string> firstMatch(const std::string& text, const std::string& pattern)
{
    std::vector<std::string> parts;
    for (const regmatch_t& place : Expression(pattern).find(text)) {
        parts.push_back(part(text, place));
    }
    return parts;
}

std::string replaceMatches(std::string text, const std::string& pattern, const std::string& by)
{
    const Expression expression(pattern);
    std::string result;
    for (auto places = expression.find(text); !places.empty(); places = expression.find(text)) {
        const auto end = static_cast<std::size_t>(places[0].rm_eo);
        result += text.substr(0, static_cast<std::size_t>(places[0].rm_so)) + by;
        text.erase(0, end);
    }
    return result + text;
}

} // namespace testsupport
