#pragma once

#include <QByteArray>

#include <vector>

/// Where else mounts show what is at `path`, or a part of it, as they stand now: absolute paths
/// without links. `path` is one too. None when nothing is there.
std::vector<QByteArray> otherPaths(const QByteArray &path);
