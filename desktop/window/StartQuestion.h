#pragma once

#include <functional>

class ServerRow;

/// What the user has to decide before a row starts.
enum class StartDoubt {
    None,
    LimitReached, ///< a start begins a new count
    LoginIsOff, ///< the row asked for a login when it ran last, and would not do so now
    HomeIsOpen, ///< everyone could change the home folder, or one that holds the profiles
};

enum class StartAnswer {
    No, ///< leave it stopped
    Yes, ///< the doubt is settled
    LookAgain ///< the row was changed; another doubt may be left
};

/// Asks the user, and returns with the answer.
using StartQuestion = std::function<StartAnswer(ServerRow *row, StartDoubt doubt)>;
