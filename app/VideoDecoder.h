#pragma once

#include "app/Decoder.h"

/// Loads libffmpegthumbnailer and what that decodes with, for videos in `container`, by the name
/// that libavformat has for it.
Decoder videoDecoder(const char *container);
