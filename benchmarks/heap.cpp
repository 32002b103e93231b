// The process heap keeps what is freed. Otherwise a parser that frees its tree is measured by how
// often the heap gives pages back to the kernel and asks for them again.
#include <limits>
#include <malloc.h>

namespace {

[[maybe_unused]] const bool keepsPages =
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max()) == 1 &&
    mallopt(M_MMAP_THRESHOLD, std::numeric_limits<int>::max()) == 1;

} // namespace
