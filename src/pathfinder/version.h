/// The version of the headers that a host was built with.
///
/// A host compares it with what it needs, as in `#if ZUNO_VERSION >= 10000`. The build reads the
/// version of the library, of its file name and of its packages from here.
#pragma once

#define ZUNO_VERSION_MAJOR 1
#define ZUNO_VERSION_MINOR 0
#define ZUNO_VERSION_PATCH 0

/// One number that grows with each version: 10000 * major + 100 * minor + patch.
#define ZUNO_VERSION (10000 * ZUNO_VERSION_MAJOR + 100 * ZUNO_VERSION_MINOR + ZUNO_VERSION_PATCH)

/// The version as a text, such as "1.0.0".
#define ZUNO_VERSION_TEXT "1.0.0"
