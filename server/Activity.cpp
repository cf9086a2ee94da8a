#include "server/Activity.h"

#include <algorithm>
#include <array>

namespace {

constexpr int longestProgram = 32;

struct Browser
{
    const char *product; ///< in what they all pretend to be
    const char *name;
};

/// Later ones are named by those before, too.
constexpr std::array browsers{
    Browser{ "Edg", "Edge" },
    Browser{ "OPR/", "Opera" },
    Browser{ "SamsungBrowser/", "Samsung Internet" },
    Browser{ "Firefox/", "Firefox" },
    Browser{ "FxiOS/", "Firefox" },
    Browser{ "CriOS/", "Chrome" },
    Browser{ "Chromium/", "Chromium" },
    Browser{ "Chrome/", "Chrome" },
    Browser{ "Safari/", "Safari" },
};

bool endsName(char c)
{
    return c == '/' || c == ' ' || c == '(' || c == ';';
}

} // namespace

QByteArray programOf(const QByteArray &userAgent)
{
    if (userAgent.startsWith("Mozilla/")) {
        for (const Browser &browser : browsers) {
            if (userAgent.contains(browser.product))
                return QByteArray::fromRawData(browser.name, int(qstrlen(browser.name)));
        }
    }
    const auto end = std::find_if(userAgent.begin(), userAgent.end(), endsName);
    return userAgent.left(std::min(longestProgram, int(end - userAgent.begin())));
}
