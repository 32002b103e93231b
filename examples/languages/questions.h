/* Where the hosts of C and C++ ask, and the digest of what they are answered. */
#include <stdint.h>
#include <string.h>

static float between(float low, float high) {
    static uint32_t seed = 11;
    seed = seed * 1664525U + 1013904223U;
    return low + (high - low) * ((float)(seed >> 16U) / 65536.0F);
}

static uint64_t digest = 0xCBF29CE484222325U;
static void add(const void* words, size_t count) { /* FNV-1a over words of 32 bits */
    for (size_t i = 0; i < count; ++i) {
        uint32_t word;
        memcpy(&word, (const char*)words + 4 * i, 4);
        digest = (digest ^ word) * 0x100000001B3U;
    }
}
