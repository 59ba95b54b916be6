#include "TraceLine.h"
#include "TraceText.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

#include <unistd.h>

namespace qeltrace
{

namespace
{

constexpr long long SecondsOfADay = 86400;

/** A day of the calendar. */
struct Date
{
    int year;
    int month;
    int day;
};

bool isLeapYear(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysOfMonth(int year, int month)
{
    constexpr std::array<int, 12> Days = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return Days.at(static_cast<std::size_t>(month - 1)) + (month == 2 && isLeapYear(year) ? 1 : 0);
}

/** The day so many days after 1970-01-01. */
Date dateOf(long long days)
{
    Date date{1970, 1, 1};
    for (int length = 365; days >= length; ++date.year) {
        days -= length;
        length = isLeapYear(date.year + 1) ? 366 : 365;
    }
    for (; days >= daysOfMonth(date.year, date.month); ++date.month) {
        days -= daysOfMonth(date.year, date.month);
    }
    date.day += static_cast<int>(days);
    return date;
}

/** The time in UTC; the C library's conversions take a lock that a forked process may miss. */
std::string currentTime()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const long long seconds = std::max<long long>(now.tv_sec, 0);
    const Date date = dateOf(seconds / SecondsOfADay);
    const int second = static_cast<int>(seconds % SecondsOfADay);
    std::array<char, 64> text{};
    static_cast<void>(std::snprintf(
        text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%06ldZ", date.year, date.month,
        date.day, second / 3600, second / 60 % 60, second % 60, now.tv_nsec / 1000));
    return text.data();
}

} // namespace

std::string makeLine(const std::string& channel, HvxTraceLevel level, const HvxTraceHeader& header,
                     const std::string& text)
{
    return onOneLine(currentTime() + ' ' + channel + '[' + std::to_string(::getpid()) + "] " +
                     std::to_string(level) + ' ' + header.file + ':' + std::to_string(header.line) +
                     ' ' + text) +
           '\n';
}

} // namespace qeltrace
