#pragma once

/// What a server needs of its process, whichever program it runs in. Call at the start of `main`.
///
/// A peer or reader that is gone and a file that has reached its largest size become errors of the
/// write, which by default end the process. Programs that it starts get the defaults back.
/// A crowd of clients needs more descriptors than usual.
void prepareProcess();
