#include "tools/zunobake/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>
#include <vector>

namespace ZUNO::Tools {

void forEachInParallel(std::size_t count,
                       const std::function<void(std::size_t item, std::size_t worker)>& work) {
    std::atomic<std::size_t> next = 0;
    std::vector<std::exception_ptr> failures(std::max(std::thread::hardware_concurrency(), 1U));
    const auto takeItems = [&](std::size_t worker) {
        try {
            for (std::size_t item = next++; item < count; item = next++)
                work(item, worker);
        } catch (...) {
            failures[worker] = std::current_exception();
            next = count;
        }
    };
    {
        std::vector<std::jthread> helpers;
        for (std::size_t worker = 1; worker < failures.size(); ++worker)
            helpers.emplace_back(takeItems, worker);
        takeItems(0);
    }
    for (const std::exception_ptr& failure : failures)
        if (failure != nullptr)
            std::rethrow_exception(failure);
}

} // namespace ZUNO::Tools
