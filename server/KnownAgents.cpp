#include "server/KnownAgents.h"

#include <algorithm>
#include <array>

namespace {

/// What the names of products begin with.
constexpr std::array knownAgents{
    // Mount a share only when it names itself among its entries, and write only with locks.
    "Microsoft-WebDAV-MiniRedir",
    "Microsoft Data Access Internet Publishing Provider", // its predecessor
    "Microsoft Office", // locks what it edits, and lists no folder
    "WebDAVFS", // takes a folder for empty that doesn't name itself
    "WebDAVLib", // looks for a share before the one above mounts it
    "gvfs", // refuses a listing without the folder itself
    "KIO", // takes a folder that doesn't name itself for missing; stands behind a browser's names
    "davfs2", // stores with conditions on tags
    // Expect statuses and properties of RFC 4918 to the letter.
    "cadaver",
    "neon", // the library below the one above
    "litmus",
    // Replace files, and compare times and sizes to find what changed.
    "rclone", // wants its times kept, and ranges exactly as asked for
    "Duplicati",
    "Cyberduck", // goes on with an upload by a part of the file, sets times as properties
    "Mountain Duck", // its mount
    "WinSCP",
    "Joplin", // wants links that are paths, and a note replaced
    "Zotero", // behind a browser's names, too
    "obsidian", // the same: its sync runs inside of it
    "floccus", // stores beside the file, asks for the size of that, and moves it
    "KeePass", // stores beside the file, and moves that onto it
    "Keepass2Android", // the same, and asks for one file, not its folder
    "KOReader", // shows no file whose type isn't there and empty
    // Need hrefs that are paths, and ranges; some send bodies without a length.
    "DAVx5",
    "MaterialFiles",
    "Material Files",
    "FolderSync",
    "TotalCommander",
    "Total Commander",
    "okhttp", // what the phone apps above say that give no name of their own
    // Skip in what they play, by ranges that must be exact.
    "Kodi",
    "XBMC",
    "VLC",
    "LibVLC",
    "AppleCoreMedia",
    "Lavf",
    "ExoPlayer",
    "AndroidXMedia3",
    "stagefright",
    "mpv",
    "libmpv",
    "MPlayer",
    "GStreamer",
};

bool startsLikeKnown(const char *product)
{
    return std::any_of(knownAgents.begin(), knownAgents.end(), [product](const char *known) {
        return qstrncmp(product, known, uint(qstrlen(known))) == 0;
    });
}

} // namespace

bool needsStandardFace(const QByteArray &userAgent)
{
    int depth = 0; // of brackets
    char before = ' ';
    for (const char &each : userAgent) {
        if (depth == 0 && before == ' ' && startsLikeKnown(&each))
            return true;
        depth += each == '(' ? 1 : 0;
        depth -= each == ')' && depth > 0 ? 1 : 0;
        before = each;
    }
    return false;
}
