#pragma once

#include "app/Decoder.h"

/// Loads libheif and its own decoders, for pictures of telephones (HEIC) and others in their
/// container (ISO/IEC 23008-12).
Decoder heifDecoder();
