#include "standard/http/MethodUse.h"

#include "files/Entry.h"
#include "server/Access.h"

#include <algorithm>
#include <array>

namespace standard {

namespace {

constexpr Rights reading = Right::Read;
constexpr Rights seeing = Right::See;
constexpr Rights adding = Right::Add;
constexpr Rights changing = Right::Change;
constexpr Rights removing = Right::Delete;

// Who may neither see nor read is told the same of what is there and what isn't.
constexpr MethodUse::Needs forContent{ reading, seeing, reading };
// Who may only add would lock names, and leave empty files there that nobody may fill.
constexpr MethodUse::Needs forLocks{ changing, changing, adding | changing };

constexpr std::array<MethodUse, 13> methodUses{ {
    { Method::Get, { true, true, false, true }, forContent },
    { Method::Head, { true, true, false, true }, forContent },
    { Method::Post, { false, true, false, true }, { adding, adding, adding } },
    { Method::Put, { true, false, true, false }, { changing, changing, adding } },
    { Method::Patch, { true, false, false, false }, { changing, changing, changing } },
    { Method::Delete, { true, true, false, false }, { removing, removing, removing } },
    { Method::MkCol, { false, false, true, false }, { adding, adding, adding } },
    { Method::Copy, { true, true, false, false }, { reading, reading, reading }, true },
    { Method::Move, { true, true, false, false }, { removing, removing, removing }, true },
    { Method::PropFind, { true, true, false, true }, { seeing, seeing, seeing } },
    { Method::PropPatch, { true, true, false, true }, { changing, changing, changing } },
    { Method::Lock, { true, true, true, true }, forLocks },
    { Method::Unlock, { true, true, false, true }, { changing, changing, changing } },
} };

/// The one of three that is for what was found.
template <typename Columns>
auto columnOf(const Columns &columns, const EntryFacts &found) -> decltype(columns.file)
{
    if (!found.exists)
        return columns.missing;
    return found.folder ? columns.folder : columns.file;
}

} // namespace

bool MethodUse::fits(const EntryFacts &found, bool isRoot) const
{
    return isRoot ? uses.root : columnOf(uses, found);
}

bool MethodUse::isPermitted(const Access &access, const QByteArray &path,
                            const EntryFacts &found) const
{
    if (places && !access.may(adding, path) && !access.may(changing, path))
        return false;
    return access.may(columnOf(needs, found), path);
}

const MethodUse *useOf(Method method)
{
    const auto *use =
        std::find_if(methodUses.begin(), methodUses.end(),
                     [method](const MethodUse &each) { return each.method == method; });
    return use == methodUses.end() ? nullptr : use;
}

} // namespace standard
