#pragma once

/// Gives one open file the permissions of another, and its owner, group and extended attributes as
/// far as the system allows. 0, or the number of the error when not even the permissions could be.
int copyAttributes(int from, int to);
