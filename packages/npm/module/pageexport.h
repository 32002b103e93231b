/// Functions beside those of `zuno.h`, for the page alone: `zuno_status
/// ZUNO_PAGE_EXPORT(name)(...)` within `extern "C"`.
#pragma once

#include "capi/zuno.h"

#define ZUNO_PAGE_EXPORT(name) __attribute__((export_name(#name))) name
