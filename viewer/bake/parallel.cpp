// A page's module has one thread.
#include "tools/zunobake/parallel.h"

namespace ZUNO::Tools {

void forEachInParallel(std::size_t count,
                       const std::function<void(std::size_t item, std::size_t worker)>& work) {
    for (std::size_t item = 0; item < count; ++item)
        work(item, 0);
}

} // namespace ZUNO::Tools
